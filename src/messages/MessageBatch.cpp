// SPDX-License-Identifier: Apache-2.0

// Storing several messages in one step.

#include "common/PendingError.h"
#include "common/kvGeneral.h"
#include "database/StationContext.h"
#include "database/StationDetails.h"
#include "database/watch/ToldMove.h"
#include "messages/HighlightSettings.h"
#include "messages/MessageStore.h"
#include "platform/records/Transaction.h"

#include <QPointer>

#include <algorithm>
#include <functional>

namespace
{
/// What saving changes on a message, to be put back where the batch is not stored.
struct Before
{
    qint32 Reference = 0;
    bool Edited = false;
};

std::vector<Before> StateOf(const std::vector<cMessagePtr>& messages)
{
    std::vector<Before> before;
    before.reserve(messages.size());
    for (const cMessagePtr& message : messages)
        before.push_back({message->Reference(), message->Edited()});
    return before;
}

void PutBack(const std::vector<cMessagePtr>& messages, const std::vector<Before>& before)
{
    for (std::size_t i = 0; i < messages.size(); ++i) {
        messages[i]->SetReference(before[i].Reference);
        messages[i]->SetEdited(before[i].Edited);
    }
}

/// The reference of the first message that is stored, 0 where none is.
qint32 FirstSaved(const std::vector<cMessagePtr>& messages, const std::vector<MessageSaving>& savings)
{
    const auto first = std::find_if(savings.begin(), savings.end(), std::mem_fn(&MessageSaving::IsSaved));
    return first == savings.end() ? 0 : messages[static_cast<std::size_t>(first - savings.begin())]->Reference();
}
} // namespace

std::vector<MessageSaving> MessageStore::SaveMessages(const std::vector<cMessagePtr>& messages,
                                                      const std::function<bool()>& goesOn)
{
    Station_.LastError = {};
    const std::vector<Before> before = StateOf(messages);
    std::vector<MessageSaving> savings;
    CommittedMove_ = {};
    try {
        dao::Transaction transaction(Station_.OpenedDatabase());
        savings = WriteMessages(messages, goesOn);
        if (FirstSaved(messages, savings) == 0) {
            transaction.Commit();
        } else {
            WriteDebugLog(QStringLiteral("Setting LastMessageFiled"));
            PendingError pending;
            if (!CommitWithStamp(transaction, pending))
                throw dao::Error(pending.Number(), pending.Description());
        }
    } catch (...) {
        // A disk that fails in the last step of a commit has the rows all the same, or may have them.
        PendingError pending;
        bool isThere = false;
        const bool isKnown = pending.Try([&] { isThere = ReadMessage(FirstSaved(messages, savings)) != nullptr; });
        if (isKnown && !isThere)
            PutBack(messages, before);
        throw;
    }
    LogSavings(messages, savings);
    const QPointer<MessageStore> self(this);
    const ToldMove told(*this, ToldMove_, CommittedMove_);
    for (std::size_t i = 0; self && Station_.RaisesEvents && i < savings.size(); ++i) {
        if (!savings[i].IsSaved())
            continue;
        WriteDebugLog(QStringLiteral("Raising MessageSaved Event"));
        Q_EMIT MessageSaved(messages[i], before[i].Edited);
    }
    return savings;
}

std::vector<MessageSaving> MessageStore::WriteMessages(const std::vector<cMessagePtr>& messages,
                                                       const std::function<bool()>& goesOn)
{
    const auto recordset = Station_.OpenedDatabase().OpenRecordset(QStringLiteral("Messages"), dao::dbOpenTable);
    std::vector<MessageSaving> savings;
    for (const cMessagePtr& message : messages) {
        if (!savings.empty() && !goesOn())
            break;
        const bool isNew = message->Reference() == 0;
        PendingError pending;
        pending.Try([&] {
            PendingError ofUpdate;
            if (!message->WriteToRecordSet(recordset.get(), Highlights_.Words(), Highlights_.Font(),
                                           Details_.KeyCountry(message->MessageType()), ofUpdate))
                throw dao::Error(ofUpdate.Number(), ofUpdate.Description());
        });
        if (pending.Number() != 0 && !IsErrorOfMessage(pending.Number()))
            throw dao::Error(pending.Number(), pending.Description());
        savings.push_back({isNew, pending.Number(), pending.Description()});
    }
    return savings;
}

/// All entries in one step, which comes behind the messages': no entry tells of a message that is not there. Where one
/// cannot be written, mostly because another computer holds the directory, the others would wait as long in vain.
void MessageStore::LogSavings(const std::vector<cMessagePtr>& messages, const std::vector<MessageSaving>& savings) const
{
    PendingError pending;
    pending.Try([&] {
        dao::Transaction transaction;
        for (std::size_t i = 0; i < savings.size(); ++i) {
            if (!LogMessageSaving(*messages[i], savings[i]))
                break;
        }
        transaction.Commit();
    });
    if (pending.Number() != 0)
        WriteDebugLog(QStringLiteral("Couldn't write the user log - ") + pending.Description());
}

QByteArray MessageStore::OctetsToStore(const cMessage& message) const
{
    return message.OctetsToStore(Highlights_.Words(), Highlights_.Font());
}
