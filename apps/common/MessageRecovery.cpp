// SPDX-License-Identifier: Apache-2.0
#include "MessageRecovery.h"

#include "StationPlace.h"
#include "common/FileHelper.h"
#include "platform/records/DBEngine.h"

#include <algorithm>

namespace
{
const QString MailColumn = QStringLiteral("Message");

/// The row of a message in a database file, and what makes it the same message there and elsewhere.
class MessageInFile
{
public:
    enum class Access
    {
        Read,
        Write
    };

    MessageInFile(const QString& file, qint32 reference, Access access)
        : Database_(dao::DBEngine::OpenDatabase(file, 0, access == Access::Read)),
          Rows_(Database_->OpenRecordset(QStringLiteral("Messages"), dao::dbOpenTable))
    {
        Rows_->SetIndex(QStringLiteral("Main"));
        Rows_->Seek(dao::SeekComparison::Equal, {reference});
    }

    bool IsThere() const { return !Rows_->NoMatch(); }
    dao::Recordset& Row() { return *Rows_; }
    QVariantList Identity() const
    {
        QVariantList identity;
        for (const char* column : {"Received", "MessageType", "FromKey", "Subject"})
            identity.append(Rows_->Collect(QLatin1String(column)));
        return identity;
    }

private:
    std::unique_ptr<dao::Database> Database_;
    std::unique_ptr<dao::Recordset> Rows_;
};

QList<BackupFolders::Backup> NewestFirst(const QString& file)
{
    QList<BackupFolders::Backup> backups = BackupFolders::List(BackupFolders::RootOf(file));
    std::stable_sort(
        backups.begin(), backups.end(),
        [](const BackupFolders::Backup& a, const BackupFolders::Backup& b) { return a.CreatedDate > b.CreatedDate; });
    return backups;
}

/// The mail of that message in a backup; nothing when it is not there, is another message or is damaged there too.
std::optional<QVariant> MailIn(const QString& copy, qint32 reference, const QVariantList& identity)
{
    try {
        MessageInFile message(copy, reference, MessageInFile::Access::Read);
        if (!message.IsThere() || message.Identity() != identity)
            return std::nullopt;
        const QVariant mail = message.Row().Collect(MailColumn);
        return mail.isValid() ? std::optional(mail) : std::nullopt;
    } catch (const dao::Error&) {
        return std::nullopt;
    }
}

std::optional<QVariantList> IdentityIn(const QString& file, qint32 reference)
{
    try {
        const MessageInFile message(file, reference, MessageInFile::Access::Read);
        return message.IsThere() ? std::optional(message.Identity()) : std::nullopt;
    } catch (const dao::Error&) {
        return std::nullopt;
    }
}
} // namespace

std::optional<MessageRecovery::Source> MessageRecovery::Find(const QString& folder, qint32 reference,
                                                             const QString& name)
{
    const QString file = StationPlace::FileIn(folder);
    const std::optional<QVariantList> identity = IdentityIn(file, reference);
    if (!identity)
        return std::nullopt;
    for (const BackupFolders::Backup& backup : NewestFirst(file)) {
        if (!name.isEmpty() && backup.Name != name)
            continue;
        const QString copy = FileHelper::Join(backup.Folder, FileHelper::FileNameOf(file));
        if (const std::optional<QVariant> mail = MailIn(copy, reference, *identity))
            return Source{backup, *mail, *identity};
    }
    return std::nullopt;
}

QString MessageRecovery::Advice(const QString& folder, qint32 reference)
{
    const std::optional<Source> source = Find(folder, reference);
    if (!source)
        return QStringLiteral("No backup has it sound.");
    return QStringLiteral("The backup \"%1\" has it sound; fetch it from there with: tolva recover %2 %3")
        .arg(source->Backup.Name, folder)
        .arg(reference);
}

void MessageRecovery::PutBack(const QString& folder, qint32 reference, const Source& source)
{
    MessageInFile message(StationPlace::FileIn(folder), reference, MessageInFile::Access::Write);
    if (!message.IsThere())
        throw dao::Error(dao::errRecordDeleted, QStringLiteral("Record is deleted."));
    if (message.Identity() != source.Identity)
        throw dao::Error(dao::errChangedByAnother, QStringLiteral("The message was changed by another user."));
    message.Row().Edit();
    message.Row().SetCollect(MailColumn, source.Mail);
    message.Row().Update();
}
