// SPDX-License-Identifier: Apache-2.0
#include "DraftStore.h"

#include "common/ClockHelper.h"
#include "common/UserInterface.h"
#include "station/DeskStation.h"

#include <QScopeGuard>

namespace
{
/// The record to write: the stored one, so that what a composition does not hold stays, or a new one like it.
cMessagePtr RecordFor(const cMessagePtr& stored, bool isNew)
{
    if (!stored)
        return std::make_shared<cMessage>();
    return isNew ? stored->Copy() : stored;
}
} // namespace

DraftStore::DraftStore(DeskStation& station, const cMessagePtr& draft) : Station_(station), Draft_(draft) {}

std::optional<DraftStore::Outcome> DraftStore::Compare(const cMessagePtr& stored) const
{
    if (!Draft_ || Draft_->Reference() == 0)
        return std::nullopt;
    if (!stored)
        return Outcome::Deleted;
    // Being read, and the marks of highlight words that come with it, is no change of what was written.
    const bool isSame =
        stored->Category() == Draft_->Category() && (stored->Flags() & ~mfRead) == (Draft_->Flags() & ~mfRead) &&
        stored->MessageType() == Draft_->MessageType() && Composing::Continue(*stored) == Composing::Continue(*Draft_);
    if (isSame)
        return std::nullopt;
    return stored->Category() == tmcDeleted ? Outcome::Deleted : Outcome::Changed;
}

DraftStore::Outcome DraftStore::SaveInTransaction(const Composition& composition, Composing::Filing filing,
                                                  Conflict conflict, cMessagePtr& written)
{
    cTolvaDatabase& database = Station_.Database();
    const cMessagePtr stored = Reference() == 0 ? nullptr : database.ReadMessage(Reference());
    if (conflict == Conflict::Stop) {
        if (const std::optional<Outcome> difference = Compare(stored)) {
            Stored_ = *difference == Outcome::Changed ? stored : nullptr;
            return *difference;
        }
    }
    const bool isNew = conflict == Conflict::SaveAsNew || !stored;
    written = RecordFor(stored, isNew);
    Composing::Write(composition, Composing::WriterOf(database), filing, ClockHelper::CurrentTime(), *written);
    if (database.SaveMessage(written))
        return Outcome::Saved;
    Words_ = Station_.Words(database.LastErrorNumber(), database.LastErrorDescription());
    return Outcome::Failed;
}

DraftStore::Outcome DraftStore::Save(const Composition& composition, Composing::Filing filing, Conflict conflict)
{
    Words_.clear();
    Stored_ = nullptr;
    cTolvaDatabase& database = Station_.Database();
    if (!database.IsOpen()) {
        Words_ = QStringLiteral("The station is not open any more.");
        return Outcome::Failed;
    }
    // Lists hear of the message when it is stored for good.
    const bool raise = database.RaiseEvents();
    cMessagePtr written;
    Outcome outcome = Outcome::Failed;
    {
        database.SetRaiseEvents(false);
        const auto restore = qScopeGuard([&] { database.SetRaiseEvents(raise); });
        const BusyPointer busy;
        try {
            // What is stored is compared under the lock under which it is written over.
            dao::Transaction transaction = database.BeginChange();
            outcome = SaveInTransaction(composition, filing, conflict, written);
            if (outcome == Outcome::Saved)
                transaction.Commit();
        } catch (const dao::Error& error) {
            Words_ = Station_.Words(error.Number(), error.Description());
            outcome = Outcome::Failed;
        }
    }
    if (outcome == Outcome::Saved) {
        Draft_ = written;
        if (raise)
            database.RaiseSaveMessageEvent(written, true);
    }
    return outcome;
}
