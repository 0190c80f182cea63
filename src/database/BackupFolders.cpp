// SPDX-License-Identifier: Apache-2.0
#include "database/BackupFolders.h"

#include "common/ClockHelper.h"
#include "common/FileHelper.h"
#include "common/PendingError.h"
#include "common/ProfileHelper.h"
#include "database/DAO_DatabaseFunctions.h"
#include "platform/files/FileSystem.h"
#include "platform/files/WholeFile.h"
#include "platform/records/DBEngine.h"

#include <QDir>

#include <algorithm>

namespace
{
const QString Section = QStringLiteral("Details");
constexpr int Readings = 8;
constexpr auto AllFolders = QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot;

QString DetailsIn(const QString& folder)
{
    return ProfileHelper::ExistingFile(FileHelper::Join(folder, QStringLiteral("Backup.inf")));
}
} // namespace

QString BackupFolders::RootOf(const QString& location, const QString& reference)
{
    return FileHelper::Join(FileHelper::Join(location, QStringLiteral("Backups")), reference);
}

QString BackupFolders::RootOf(const QString& databaseFile)
{
    return RootOf(FileHelper::FolderOf(databaseFile), FileHelper::BaseNameOf(databaseFile));
}

QString BackupFolders::NameFor(Date started)
{
    return started.Format(QStringLiteral("yyyy-mm-dd hh.nn"));
}

QList<BackupFolders::Backup> BackupFolders::List(const QString& root)
{
    QList<Backup> backups;
    for (const QString& name : QDir(root).entryList(AllFolders, QDir::Name)) {
        const QString folder = FileHelper::Join(root, name);
        const QString details = DetailsIn(folder);
        if (FileHelper::FileSize(details) <= 0)
            continue;
        const QString created = ProfileHelper::ReadIniString(Section, QStringLiteral("Created"), QString(), details);
        backups.append({name, folder, details, created, Date::Parse(created).value_or(Date())});
    }
    return backups;
}

QStringList BackupFolders::Unfinished(const QString& root)
{
    QStringList names;
    for (const QString& name : QDir(root).entryList(AllFolders, QDir::Name)) {
        if (FileHelper::FileSize(DetailsIn(FileHelper::Join(root, name))) <= 0)
            names.append(name);
    }
    return names;
}

bool BackupFolders::WriteDetails(const QString& folder, Date started, const QString& machineName)
{
    const QString file = FileHelper::Join(folder, QStringLiteral("Backup.inf"));
    const auto write = [&](const char16_t* key, const QString& value) {
        return ProfileHelper::WriteIniStringA(Section, QString::fromUtf16(key), value, file);
    };
    const QString version =
        QStringLiteral("v%1.%2.%3").arg(TOLVA_VERSION_MAJOR).arg(TOLVA_VERSION_MINOR).arg(TOLVA_VERSION_REVISION);
    return write(u"Created", started.GeneralDate()) && write(u"By", machineName) &&
           write(u"Software", QStringLiteral("Kelvarin Directory")) && write(u"DirectoryEngineVersion", version);
}

bool BackupFolders::IsInTheFuture(Date moment, Date now)
{
    constexpr qint64 toleranceSeconds = 24LL * 60 * 60;
    return !moment.IsNone() && now.ToDateTime(Qt::UTC).secsTo(moment.ToDateTime(Qt::UTC)) > toleranceSeconds;
}

bool BackupFolders::IsFromTheFuture(const Backup& backup, Date now)
{
    return IsInTheFuture(backup.CreatedDate, now);
}

QList<BackupFolders::Backup> BackupFolders::NewestSound(const QString& root, const QString& fileName, int most,
                                                        const QString& except)
{
    QList<Backup> backups = List(root);
    // The newest first, so that no older one needs to be read; of two of the same time the first in the listing.
    std::stable_sort(backups.begin(), backups.end(),
                     [](const Backup& a, const Backup& b) { return a.CreatedDate > b.CreatedDate; });
    const Date now = ClockHelper::CurrentTime();
    QList<Backup> sound;
    for (const Backup& backup : std::as_const(backups)) {
        if (sound.size() == most)
            break;
        if (backup.Folder != except && !backup.CreatedDate.IsNone() && !IsFromTheFuture(backup, now) &&
            IsSound(FileHelper::Join(backup.Folder, fileName)))
            sound.append(backup);
    }
    return sound;
}

BackupFolders::Backup BackupFolders::NewestSound(const QString& root, const QString& fileName)
{
    return NewestSound(root, fileName, 1).value(0);
}

QString BackupFolders::LinkInTheWay(const QString& databaseFile)
{
    const QString root = RootOf(databaseFile);
    const QString link = LinkBelow(FileHelper::FolderOf(databaseFile), root);
    if (!link.isEmpty())
        return link;
    for (const QString& name : QDir(root).entryList(AllFolders | QDir::System, QDir::Name)) {
        const QString folder = FileHelper::Join(root, name);
        if (FileSystem::Current().KindOf(folder) == FileKind::Link)
            return folder;
    }
    return {};
}

dao::FileReport::State BackupFolders::StateOf(const QString& databaseFile)
{
    dao::FileReport report{
        .Verdict = dao::FileReport::State::Damaged, .IsStructureSound = false, .Faults = {}, .Memos = {}};
    // Another program may put a newer copy into the folder of this minute while the older one is read.
    for (int reading = 1; reading <= Readings; ++reading) {
        DatabaseInformation scratch;
        PendingError failure;
        failure.Try([&] {
            // What it says of itself comes first, as it does when a station is opened.
            const qint16 code = DAO_DatabaseFunctions::GetDatabaseInformation(databaseFile, scratch, false, QString());
            if (code == 0)
                report = dao::DBEngine::ExamineDatabase(databaseFile);
            else
                failure.Set(code, QString());
        });
        if (failure.Number() != dao::errFileReplaced)
            break;
    }
    return report.Verdict;
}

bool BackupFolders::IsSound(const QString& databaseFile)
{
    return StateOf(databaseFile) != dao::FileReport::State::Damaged;
}
