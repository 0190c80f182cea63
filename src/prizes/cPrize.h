// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "prizes/cPrizeWinner.h"

#include <array>
#include <vector>

class cPrize;

/// Prizes are shared by hosts and events.
using cPrizePtr = std::shared_ptr<cPrize>;

/// One prize in memory: what is given away, how many of it, between which dates and in which hours of the week, with
/// the winners that were read for it. Any host makes one and saves it through cTolvaDatabase. Dates are local time here
/// and universal time in the table; none for "no limit". Every setter but SetEdited and SetRaiseEvents marks the prize
/// as edited, and a new prize counts as edited.
///
/// Hours: one text of 24 characters for each day of the week (1 Monday to 7 Sunday), for hour H at position H the
/// letter with code 65 + H ("A" for 00:00 to 00:59) where the prize may go out, and a blank where it may not.
class TOLVA_EXPORT cPrize : public QObject
{
    Q_OBJECT

public:
    cPrize();
    ~cPrize() override;

    bool Edited() const { return Edited_; }
    /// Raises PrizeEdited every time, while RaiseEvents is on.
    void SetEdited(bool edited);
    /// The row's key; 0 until it is saved.
    qint32 Reference() const { return Reference_; }
    const QString& Title() const { return Title_; }
    void SetTitle(const QString& title);
    const QString& Notes() const { return Notes_; }
    void SetNotes(const QString& notes);
    const QString& NotesToSupplier() const { return NotesToSupplier_; }
    void SetNotesToSupplier(const QString& notes);
    /// What is read on air.
    const QString& Script() const { return Script_; }
    void SetScript(const QString& script);

    /// First and last moment of availability, both included.
    Date StartDate() const { return StartDate_; }
    void SetStartDate(Date date);
    Date EndDate() const { return EndDate_; }
    void SetEndDate(Date date);
    Date AddedDate() const { return AddedDate_; }
    void SetAddedDate(Date date);
    /// When a winner was last counted.
    Date LastWonDate() const { return LastWonDate_; }
    void SetLastWonDate(Date date);
    /// General Date, empty for none. Set: text that is no date makes none.
    QString StartDateString() const { return StartDate_.GeneralDate(); }
    void SetStartDateString(const QString& text);
    QString EndDateString() const { return EndDate_.GeneralDate(); }
    void SetEndDateString(const QString& text);
    QString AddedDateString() const { return AddedDate_.GeneralDate(); }
    void SetAddedDateString(const QString& text);
    QString LastWonDateString() const { return LastWonDate_.GeneralDate(); }
    void SetLastWonDateString(const QString& text);

    /// weekDay: 1 to 7; empty, or nothing happens, outside. The text is stored unchecked.
    QString AvailableHours(qint16 weekDay) const;
    void SetAvailableHours(qint16 weekDay, const QString& hours);
    /// hourOfDay: 0 to 23; false, or nothing happens, outside.
    bool AvailableForHour(qint16 dayOfWeek, qint16 hourOfDay) const;
    void SetAvailableForHour(qint16 dayOfWeek, qint16 hourOfDay, bool available);
    /// Whether the dates and the hours allow this (local) moment. The stock is not asked.
    bool AvailableForDate(Date testDate) const;

    qint32 NumberSupplied() const { return NumberSupplied_; }
    /// A negative number is stored as 0.
    void SetNumberSupplied(qint32 number);
    /// Winners counted by the store, which need not be the slots that are filled.
    qint32 NumberWinners() const { return NumberWinners_; }
    /// The contact who gave the prize, and the user who added it.
    qint32 SupplierReference() const { return SupplierReference_; }
    void SetSupplierReference(qint32 reference);
    qint32 AddedByReference() const { return AddedByReference_; }
    void SetAddedByReference(qint32 reference);

    /// The slots were filled from the database.
    bool WinnersRead() const { return WinnersRead_; }
    /// index: 1 to NumberWinners; null, or nothing happens, outside. An assignment does not mark the prize.
    cPrizeWinnerPtr PrizeWinner(qint16 index) const;
    void SetPrizeWinner(qint16 index, const cPrizeWinnerPtr& winner);

    bool RaiseEvents() const { return RaiseEvents_; }
    void SetRaiseEvents(bool raise) { RaiseEvents_ = raise; }

    /// A new unsaved prize with the same properties, its counts and last win included.
    cPrizePtr CopyAsNew() const;

Q_SIGNALS:
    void PrizeEdited(bool Edited);

private:
    friend class PrizeStore;
    friend class WinnerStore;

    void SetReference(qint32 reference);
    void SetNumberWinners(qint32 number);
    void SetWinnersRead(bool read);
    /// Counts a winner and puts it into the last slot. False, and nothing is counted, without one and for a prize with
    /// no unit left.
    bool AddPrizeWinner(const cPrizeWinnerPtr& winner);
    void PutIntoSlot(qint32 index, const cPrizeWinnerPtr& winner);
    QString& HoursOfDay(qint16 weekDay);
    bool ReadFromRecordSet(qint32 prizeReference, dao::Recordset* recordset);
    /// pending: takes the error of a write that failed. busy: ends once the row is stored, before anybody hears of it.
    bool WriteToRecordSet(dao::Recordset* recordset, PendingError& pending, std::optional<BusyPointer>& busy);

    bool Edited_ = false;
    qint32 Reference_ = 0;
    QString Title_;
    QString Notes_;
    QString NotesToSupplier_;
    QString Script_;
    Date StartDate_;
    Date EndDate_;
    Date AddedDate_;
    Date LastWonDate_;
    std::array<QString, 7> AvailableHours_;
    qint32 NumberSupplied_ = 0;
    qint32 NumberWinners_ = 0;
    qint32 SupplierReference_ = 0;
    qint32 AddedByReference_ = 0;
    bool WinnersRead_ = false;
    /// Grows as slots are filled, never above the count, which other software may have stored as any number.
    std::vector<cPrizeWinnerPtr> PrizeWinners_;
    bool RaiseEvents_ = true;
};
