// SPDX-License-Identifier: Apache-2.0
#include "PrizeFields.h"

#include "PrizeRows.h"

#include <QCoreApplication>
#include <QLocale>

namespace
{

QString FieldsText(const char* text)
{
    return QCoreApplication::translate("PrizeFields", text);
}

/// Calls visit(name, member) for each field; the hours of the week are one.
template <typename Visit>
void ForEachField(Visit&& visit)
{
    visit(FieldsText("Title"), &PrizeFields::Title);
    visit(FieldsText("Script"), &PrizeFields::Script);
    visit(FieldsText("Notes"), &PrizeFields::Notes);
    visit(FieldsText("Notes to the supplier"), &PrizeFields::NotesToSupplier);
    visit(FieldsText("Supplier"), &PrizeFields::SupplierReference);
    visit(FieldsText("Number supplied"), &PrizeFields::NumberSupplied);
    visit(FieldsText("Start"), &PrizeFields::StartDate);
    visit(FieldsText("End"), &PrizeFields::EndDate);
    visit(FieldsText("Hours"), &PrizeFields::Hours);
}

QString InWords(const QString& text)
{
    return text.simplified().isEmpty() ? FieldsText("(empty)") : text;
}

QString InWords(qint32 number)
{
    return QLocale().toString(number);
}

QString InWords(Date date)
{
    return date.IsNone() ? FieldsText("no limit") : PrizeRows::MomentWords(date);
}

QString InWords(const std::array<QString, 7>& hours)
{
    qsizetype count = 0;
    for (const QString& day : hours)
        count += Date::HoursADay - day.count(u' ');
    return FieldsText("%1 hours of the week").arg(count);
}

bool IsSameDate(Date a, Date b)
{
    // What went through the clock's change to universal time and back may differ by less than a second.
    return a.IsNone() == b.IsNone() && qAbs(a.DayNumber() - b.DayNumber()) < 0.5 / 86400;
}
} // namespace

PrizeFields PrizeFields::Of(const cPrize& prize)
{
    PrizeFields fields;
    fields.Title = prize.Title();
    fields.Script = prize.Script();
    fields.Notes = prize.Notes();
    fields.NotesToSupplier = prize.NotesToSupplier();
    fields.SupplierReference = prize.SupplierReference();
    fields.NumberSupplied = prize.NumberSupplied();
    fields.StartDate = prize.StartDate();
    fields.EndDate = prize.EndDate();
    for (qint16 day = 1; day <= 7; ++day) {
        QString& hours = fields.Hours.at(static_cast<size_t>(day - 1));
        for (qint16 hour = 0; hour < Date::HoursADay; ++hour)
            hours.append(prize.AvailableForHour(day, hour) ? QChar(u'A' + hour) : QChar(u' '));
    }
    return fields;
}

void PrizeFields::WriteTo(cPrize& prize) const
{
    const PrizeFields before = Of(prize);
    if (Title != before.Title)
        prize.SetTitle(Title);
    if (Script != before.Script)
        prize.SetScript(Script);
    if (Notes != before.Notes)
        prize.SetNotes(Notes);
    if (NotesToSupplier != before.NotesToSupplier)
        prize.SetNotesToSupplier(NotesToSupplier);
    if (SupplierReference != before.SupplierReference)
        prize.SetSupplierReference(SupplierReference);
    if (NumberSupplied != before.NumberSupplied)
        prize.SetNumberSupplied(NumberSupplied);
    if (!IsSameDate(StartDate, before.StartDate))
        prize.SetStartDate(StartDate);
    if (!IsSameDate(EndDate, before.EndDate))
        prize.SetEndDate(EndDate);
    for (qint16 day = 1; day <= 7; ++day) {
        const size_t index = static_cast<size_t>(day - 1);
        if (Hours.at(index) != before.Hours.at(index))
            prize.SetAvailableHours(day, Hours.at(index));
    }
}

QStringList PrizeFields::NamesOfChanges(const PrizeFields& other) const
{
    QStringList names;
    ForEachField([&](const QString& name, auto member) {
        if constexpr (std::is_same_v<decltype(member), Date PrizeFields::*>) {
            if (!IsSameDate(this->*member, other.*member))
                names.append(name);
        } else if (this->*member != other.*member) {
            names.append(name);
        }
    });
    return names;
}

PrizeFields PrizeFields::MergedInto(const PrizeFields& other, const PrizeFields& base) const
{
    PrizeFields merged = other;
    ForEachField([&](const QString&, auto member) {
        if (this->*member != base.*member)
            merged.*member = this->*member;
    });
    return merged;
}

QString PrizeFields::DifferencesInWords(const PrizeFields& other) const
{
    QStringList lines;
    ForEachField([&](const QString& name, auto member) {
        if (this->*member != other.*member)
            lines.append(QStringLiteral("%1: %2").arg(name, InWords(this->*member)));
    });
    return lines.join(u'\n');
}
