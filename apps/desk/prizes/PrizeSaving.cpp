// SPDX-License-Identifier: Apache-2.0
#include "PrizeSaving.h"

#include "PrizeTransaction.h"
#include "station/DeskStation.h"

PrizeSaving::PrizeSaving(DeskStation& station, const cPrize& prize)
    : Station_(station),
      Reference_(prize.Reference()),
      AddedByReference_(prize.AddedByReference()),
      Base_(PrizeFields::Of(prize))
{
}

PrizeSaving::Outcome PrizeSaving::SaveInTransaction(const PrizeFields& fields, Conflict conflict, cPrizePtr& written)
{
    cTolvaDatabase& database = Station_.Database();
    const bool isNew = conflict == Conflict::SaveAsNew || Reference_ == 0;
    const cPrizePtr stored = isNew ? nullptr : database.GetPrize(Reference_, false);
    if (!isNew && !stored)
        return Outcome::Deleted;
    if (stored)
        Stored_ = PrizeFields::Of(*stored);
    if (conflict == Conflict::Stop && stored && !Stored_.NamesOfChanges(Base_).isEmpty())
        return Outcome::Changed;
    written = isNew ? std::make_shared<cPrize>() : stored;
    if (isNew)
        written->SetAddedByReference(AddedByReference_);
    (stored ? fields.MergedInto(Stored_, Base_) : fields).WriteTo(*written);
    if (database.SavePrize(written))
        return Outcome::Saved;
    Words_ = Station_.Words(database.LastErrorNumber(), database.LastErrorDescription());
    return Outcome::Failed;
}

PrizeSaving::Outcome PrizeSaving::Save(const PrizeFields& fields, Conflict conflict)
{
    Words_.clear();
    cTolvaDatabase& database = Station_.Database();
    if (!database.IsOpen()) {
        Words_ = QStringLiteral("The station is not open any more.");
        return Outcome::Failed;
    }
    cPrizePtr written;
    Outcome outcome = Outcome::Failed;
    try {
        PrizeTransaction::Run(Station_, [&] {
            outcome = SaveInTransaction(fields, conflict, written);
            return outcome == Outcome::Saved;
        });
    } catch (const dao::Error& error) {
        Words_ = Station_.Words(error.Number(), error.Description());
        return Outcome::Failed;
    }
    if (outcome == Outcome::Saved) {
        Reference_ = written->Reference();
        AddedByReference_ = written->AddedByReference();
        Base_ = PrizeFields::Of(*written);
        Stored_ = Base_;
        if (database.RaiseEvents())
            Q_EMIT database.PrizeSaved(written, true);
    }
    return outcome;
}
