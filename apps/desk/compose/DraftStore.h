// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Composition.h"
#include "messages/cMessage.h"

#include <QString>

#include <optional>

class DeskStation;

/// Files one composition and knows what the draft was when this desk last had it, so that another computer's change is
/// noticed before anything is written over it. Used by one compose window.
class DraftStore
{
public:
    enum class Outcome
    {
        Saved,
        Failed,  ///< Nothing was stored; Words() says why.
        Changed, ///< Another computer changed or moved the draft since; nothing was stored. Stored() is what it has.
        Deleted  ///< Another computer deleted it; nothing was stored.
    };
    enum class Conflict
    {
        Stop,      ///< Answers Changed or Deleted.
        Overwrite, ///< The writer decided to replace what is stored.
        SaveAsNew  ///< Leaves what is stored alone and adds a message.
    };

    /// draft: the stored draft that is continued; null for a new message. The station outlives this object.
    DraftStore(DeskStation& station, const cMessagePtr& draft);

    /// The comparison and the write are one transaction.
    Outcome Save(const Composition& composition, Composing::Filing filing, Conflict conflict);

    /// 0 until something is stored.
    qint32 Reference() const { return Draft_ ? Draft_->Reference() : 0; }
    /// What the draft said when this desk last had it; an empty composition when nothing is stored.
    Composition LastStored() const { return Draft_ ? Composing::Continue(*Draft_) : Composition(); }
    const QString& Words() const { return Words_; }
    /// Null unless the last outcome was Changed.
    const cMessagePtr& Stored() const { return Stored_; }

private:
    std::optional<Outcome> Compare(const cMessagePtr& stored) const;
    Outcome SaveInTransaction(const Composition& composition, Composing::Filing filing, Conflict conflict,
                              cMessagePtr& written);

    DeskStation& Station_;
    cMessagePtr Draft_; ///< As this desk read or wrote it last.
    cMessagePtr Stored_;
    QString Words_;
};
