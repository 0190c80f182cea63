// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "prizes/PrizeFields.h"

#include <QString>

class DeskStation;

/// Saves one prize and knows what it was when this desk last had it, so that another computer's change is noticed
/// before anything is written over it. What the store counts, the winners and the last win, always stays as it is
/// stored. Used by one prize window.
class PrizeSaving
{
public:
    enum class Outcome
    {
        Saved,
        Failed,  ///< Nothing was stored; Words() says why.
        Changed, ///< Another computer changed it since; nothing was stored. Stored() is what it has.
        Deleted  ///< Another computer deleted it; nothing was stored.
    };
    enum class Conflict
    {
        Stop,     ///< Answers Changed or Deleted.
        Merge,    ///< What the user changed goes over what is stored; the rest stays as it is stored.
        SaveAsNew ///< Leaves what is stored alone and adds a prize.
    };

    /// prize: as it was read, or a new one (reference 0). The station outlives this object.
    PrizeSaving(DeskStation& station, const cPrize& prize);

    /// The comparison and the write are one transaction.
    Outcome Save(const PrizeFields& fields, Conflict conflict);

    /// 0 until something is stored.
    qint32 Reference() const { return Reference_; }
    /// As this desk read or wrote it last.
    const PrizeFields& Base() const { return Base_; }
    /// Takes what another computer has stored for what the user starts from.
    void TakeStored() { Base_ = Stored_; }
    const PrizeFields& Stored() const { return Stored_; }
    const QString& Words() const { return Words_; }

private:
    Outcome SaveInTransaction(const PrizeFields& fields, Conflict conflict, cPrizePtr& written);

    DeskStation& Station_;
    qint32 Reference_;
    qint32 AddedByReference_;
    PrizeFields Base_;
    PrizeFields Stored_;
    QString Words_;
};
