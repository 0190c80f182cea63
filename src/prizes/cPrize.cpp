// SPDX-License-Identifier: Apache-2.0
#include "prizes/cPrize.h"

#include "common/ClockHelper.h"
#include "common/GeneralHelper.h"
#include "prizes/PrizeHour.h"

cPrize::cPrize()
{
    // One text for all days of all prizes: lists make thousands of them.
    static const QString everyHour = [] {
        QString hours;
        for (qint16 hour = 0; hour < PrizeHour::HoursADay; ++hour)
            hours += PrizeHour{1, hour}.Letter();
        return hours;
    }();
    AvailableHours_.fill(everyHour);
    Edited_ = true;
}

cPrize::~cPrize() = default;

void cPrize::SetEdited(bool edited)
{
    Edited_ = edited;
    if (RaiseEvents_)
        Q_EMIT PrizeEdited(edited);
}

void cPrize::SetReference(qint32 reference)
{
    Reference_ = reference;
    SetEdited(true);
}

void cPrize::SetTitle(const QString& title)
{
    Title_ = title;
    SetEdited(true);
}

void cPrize::SetNotes(const QString& notes)
{
    Notes_ = notes;
    SetEdited(true);
}

void cPrize::SetNotesToSupplier(const QString& notes)
{
    NotesToSupplier_ = notes;
    SetEdited(true);
}

void cPrize::SetScript(const QString& script)
{
    Script_ = script;
    SetEdited(true);
}

void cPrize::SetStartDate(Date date)
{
    StartDate_ = date;
    SetEdited(true);
}

void cPrize::SetEndDate(Date date)
{
    EndDate_ = date;
    SetEdited(true);
}

void cPrize::SetAddedDate(Date date)
{
    AddedDate_ = date;
    SetEdited(true);
}

void cPrize::SetLastWonDate(Date date)
{
    LastWonDate_ = date;
    SetEdited(true);
}

void cPrize::SetStartDateString(const QString& text)
{
    SetStartDate(Date::Parse(text).value_or(Date()));
}

void cPrize::SetEndDateString(const QString& text)
{
    SetEndDate(Date::Parse(text).value_or(Date()));
}

void cPrize::SetAddedDateString(const QString& text)
{
    SetAddedDate(Date::Parse(text).value_or(Date()));
}

void cPrize::SetLastWonDateString(const QString& text)
{
    SetLastWonDate(Date::Parse(text).value_or(Date()));
}

QString& cPrize::HoursOfDay(qint16 weekDay)
{
    return AvailableHours_[static_cast<std::size_t>(weekDay - 1)];
}

QString cPrize::AvailableHours(qint16 weekDay) const
{
    return PrizeHour{weekDay, 0}.IsValid() ? AvailableHours_[static_cast<std::size_t>(weekDay - 1)] : QString();
}

void cPrize::SetAvailableHours(qint16 weekDay, const QString& hours)
{
    if (!PrizeHour{weekDay, 0}.IsValid())
        return;
    HoursOfDay(weekDay) = hours;
    SetEdited(true);
}

bool cPrize::AvailableForHour(qint16 dayOfWeek, qint16 hourOfDay) const
{
    if (!PrizeHour{dayOfWeek, hourOfDay}.IsValid())
        return false;
    const QString hours = AvailableHours(dayOfWeek);
    return hourOfDay < hours.size() && hours.at(hourOfDay) != u' ';
}

void cPrize::SetAvailableForHour(qint16 dayOfWeek, qint16 hourOfDay, bool available)
{
    const PrizeHour hour{dayOfWeek, hourOfDay};
    if (!hour.IsValid())
        return;
    QString& hours = HoursOfDay(dayOfWeek);
    // Other software may have left a text that ends before this hour: it grows as far as is needed.
    if (hourOfDay >= hours.size() && available)
        hours = hours.leftJustified(hourOfDay + 1, u' ');
    if (hourOfDay < hours.size())
        hours[hourOfDay] = available ? hour.Letter() : QChar(u' ');
    SetEdited(true);
}

bool cPrize::AvailableForDate(Date testDate) const
{
    if (!StartDate_.IsNone() && testDate < StartDate_)
        return false;
    if (!EndDate_.IsNone() && testDate > EndDate_)
        return false;
    const PrizeHour hour = PrizeHour::At(testDate);
    return AvailableForHour(hour.WeekDay, hour.Hour);
}

void cPrize::SetNumberSupplied(qint32 number)
{
    NumberSupplied_ = static_cast<qint32>(GeneralHelper::Maximum(number, 0));
    SetEdited(true);
}

void cPrize::SetSupplierReference(qint32 reference)
{
    SupplierReference_ = reference;
    SetEdited(true);
}

void cPrize::SetAddedByReference(qint32 reference)
{
    AddedByReference_ = reference;
    SetEdited(true);
}

void cPrize::SetNumberWinners(qint32 number)
{
    NumberWinners_ = static_cast<qint32>(GeneralHelper::Maximum(number, 0));
    if (PrizeWinners_.size() > static_cast<std::size_t>(NumberWinners_))
        PrizeWinners_.resize(static_cast<std::size_t>(NumberWinners_));
    SetEdited(true);
}

void cPrize::SetWinnersRead(bool read)
{
    WinnersRead_ = read;
    SetEdited(true);
}

cPrizeWinnerPtr cPrize::PrizeWinner(qint16 index) const
{
    const bool isFilled = index > 0 && static_cast<std::size_t>(index) <= PrizeWinners_.size();
    return isFilled ? PrizeWinners_[static_cast<std::size_t>(index - 1)] : nullptr;
}

void cPrize::SetPrizeWinner(qint16 index, const cPrizeWinnerPtr& winner)
{
    PutIntoSlot(index, winner);
}

void cPrize::PutIntoSlot(qint32 index, const cPrizeWinnerPtr& winner)
{
    if (index <= 0 || index > NumberWinners_)
        return;
    const auto slot = static_cast<std::size_t>(index);
    if (PrizeWinners_.size() < slot)
        PrizeWinners_.resize(slot);
    PrizeWinners_[slot - 1] = winner;
}

bool cPrize::AddPrizeWinner(const cPrizeWinnerPtr& winner)
{
    if (!winner || NumberWinners_ >= NumberSupplied_)
        return false;
    if (winner->WinnerReference() > 0)
        winner->SetPrizeReference(Reference_);
    SetNumberWinners(NumberWinners_ + 1);
    SetLastWonDate(ClockHelper::CurrentTime());
    PutIntoSlot(NumberWinners_, winner);
    SetEdited(true);
    return true;
}

cPrizePtr cPrize::CopyAsNew() const
{
    auto copy = std::make_shared<cPrize>();
    copy->Title_ = Title_;
    copy->Notes_ = Notes_;
    copy->NotesToSupplier_ = NotesToSupplier_;
    copy->Script_ = Script_;
    copy->StartDate_ = StartDate_;
    copy->EndDate_ = EndDate_;
    copy->AddedDate_ = AddedDate_;
    copy->LastWonDate_ = LastWonDate_;
    copy->AvailableHours_ = AvailableHours_;
    copy->NumberSupplied_ = NumberSupplied_;
    copy->NumberWinners_ = NumberWinners_;
    copy->SupplierReference_ = SupplierReference_;
    copy->AddedByReference_ = AddedByReference_;
    return copy;
}
