// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "database/watch/ChangeStamp.h"
#include "messages/MessageSaving.h"
#include "messages/cMessages.h"
#include "platform/records/Recordset.h"

#include <functional>
#include <vector>

class FolderStore;
class HighlightSettings;
class PendingError;
class SettingsStore;
class StationContext;
class StationDetails;

namespace dao
{
class Transaction;
}

/// The messages of a station: reading, storing, moving and deleting their rows, with the rights, the change stamp, the
/// user log and the events. Owned by cTolvaDatabase, which passes its events on; over what it is made of, which
/// outlives it. Whoever hears of an event may destroy the station. What is not told here is as in cTolvaDatabase, whose
/// operations of the same names these are.
class MessageStore : public QObject
{
    Q_OBJECT

public:
    MessageStore(StationContext& station, SettingsStore& settings, StationDetails& details, FolderStore& folders,
                 HighlightSettings& highlights);

    cMessagePtr GetMessage(qint32 reference);
    cMessagePtr ReadMessage(qint32 reference);
    static cMessagePtr GetMessage(dao::Recordset& row);
    std::unique_ptr<cMessages> GetMessages(const QString& sqlQuery);
    quint64 MarkOfMessageRows(const QStringList& columns, const QString& condition, const QString& order) const;
    std::unique_ptr<dao::Recordset> OpenMessageRows(const QStringList& columns, const QString& condition,
                                                    const QString& order) const;

    bool SaveMessage(const cMessagePtr& message);
    std::vector<MessageSaving> SaveMessages(const std::vector<cMessagePtr>& messages,
                                            const std::function<bool()>& goesOn);
    QByteArray OctetsToStore(const cMessage& message) const;
    bool CopyMessage(qint32 reference, enTolvaMessageCategories newCategory);
    bool MoveMessage(qint32 reference, enTolvaMessageCategories newCategory);
    bool DeleteMessage(qint32 reference, bool deletePermanently);
    bool ChangeMessageFlags(qint32 reference, qint32 set, qint32 clear);
    bool MarkMessageSent(qint32 reference, Date sent);
    int RewriteMessageKeys(qint32 first, qint32 last);
    bool DeleteMessagesOfCategory(enTolvaMessageCategories category);

    Date LastChanged() const;
    void SetLastChanged(Date changeDate);
    /// How the save that MessageSaved tells of moved the stamp; of nothing outside the event.
    const StampMove& ToldStampMove() const { return ToldMove_; }

Q_SIGNALS:
    /// As cTolvaDatabase's, while the host wants events.
    void MessageSaved(const cMessagePtr& Message, bool Edited);
    void MessageDeleted(const cMessagePtr& Message);

private:
    enum class Stamp
    {
        Moves,
        MovesIfWanted ///< StampsEveryChange decides.
    };

    bool CommitWithStamp(dao::Transaction& transaction, PendingError& pending);
    bool StoreMessage(cMessage& message, dao::Recordset& recordset, PendingError& pending);
    std::vector<MessageSaving> WriteMessages(const std::vector<cMessagePtr>& messages,
                                             const std::function<bool()>& goesOn);
    cMessagePtr MessageForChange(qint32 reference, enTolvaMessageCategories newCategory);
    bool ChangeMessageRow(qint32 reference, const std::function<bool(dao::Recordset&)>& change, Stamp stamp,
                          PendingError& pending);
    bool MayEditMessage(const cMessage& message);
    bool EditMessageRow(qint32 reference, const std::function<bool(dao::Recordset&, cMessage&)>& edit,
                        const QString& logged);
    void FinishMessageChange(int kind, const QString& title, const QString& text, const PendingError& pending);
    bool LogMessageSaving(const cMessage& message, const MessageSaving& saving) const;
    void LogSavings(const std::vector<cMessagePtr>& messages, const std::vector<MessageSaving>& savings) const;
    QList<qint32> MessagesWithWrongKeys(qint32 first, qint32 last, const QString& country) const;

    StationContext& Station_;
    SettingsStore& Settings_;
    StationDetails& Details_;
    FolderStore& Folders_;
    HighlightSettings& Highlights_;
    StampMove CommittedMove_; ///< Of the last commit.
    StampMove ToldMove_;
};
