// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Date.h"
#include "platform/Export.h"

#include <QObject>

#include <memory>
#include <optional>

class BusyPointer;
class PendingError;
class cPrizeWinner;

namespace dao
{
class Recordset;
}

/// Winners are shared by hosts, events and the slots of their prize.
using cPrizeWinnerPtr = std::shared_ptr<cPrizeWinner>;

/// One unit of a prize given to one contact of the directory: who won it, who awarded it and when it was sent. Made by
/// cTolvaDatabase (GetNewPrizeWinner, GetPrizeWinner, GetPrizeWinners) and by Copy alone. Dates are local time here and
/// universal time in the table; none for "no date". Every setter but SetEdited marks the object as edited.
class TOLVA_EXPORT cPrizeWinner : public QObject
{
    Q_OBJECT

public:
    ~cPrizeWinner() override;

    /// The row's key; 0 until it is saved.
    qint32 Reference() const { return Reference_; }
    qint32 PrizeReference() const { return PrizeReference_; }
    void SetPrizeReference(qint32 reference);
    /// The contact who won. The stored field has 16 bits: above 32,767 the winner cannot be saved.
    qint32 WinnerReference() const { return WinnerReference_; }
    void SetWinnerReference(qint32 reference);
    const QString& Notes() const { return Notes_; }
    void SetNotes(const QString& notes);
    const QString& NotesToSupplier() const { return NotesToSupplier_; }
    void SetNotesToSupplier(const QString& notes);
    /// The contact (a user) who made the award.
    qint32 AwardedByReference() const { return AwardedByReference_; }
    void SetAwardedByReference(qint32 reference);
    Date WonDate() const { return WonDate_; }
    void SetWonDate(Date date);
    /// The contact (a user) who sent the prize out.
    qint32 SentByReference() const { return SentByReference_; }
    void SetSentByReference(qint32 reference);
    Date SentDate() const { return SentDate_; }
    void SetSentDate(Date date);
    /// General Date, empty for none. Set: text that is no date makes none.
    QString WonDateString() const { return WonDate_.GeneralDate(); }
    void SetWonDateString(const QString& text);
    QString SentDateString() const { return SentDate_.GeneralDate(); }
    void SetSentDateString(const QString& text);

    bool Edited() const { return Edited_; }
    /// Raises PrizeWinnerEdited every time.
    void SetEdited(bool edited);

    /// The same winner in a new object, always edited: saving it changes the same row.
    cPrizeWinnerPtr Copy() const;

Q_SIGNALS:
    void PrizeWinnerEdited(bool Edited);

private:
    friend class WinnerStore;
    cPrizeWinner();

    void SetReference(qint32 reference);
    bool ReadFromRecordSet(dao::Recordset* recordset);
    /// pending: takes the error of a write that failed. busy: ends once the row is stored, before anybody hears of it.
    bool WriteToRecordSet(dao::Recordset* recordset, PendingError& pending, std::optional<BusyPointer>& busy);

    qint32 Reference_ = 0;
    qint32 PrizeReference_ = 0;
    qint32 WinnerReference_ = 0;
    QString Notes_;
    QString NotesToSupplier_;
    qint32 AwardedByReference_ = 0;
    Date WonDate_;
    qint32 SentByReference_ = 0;
    Date SentDate_;
    bool Edited_ = false;
};
