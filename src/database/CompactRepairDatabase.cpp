// Compacting a database into a fresh file, the old one kept beside it.

#include "common/FileDialog.h"
#include "common/FileHelper.h"
#include "common/PendingError.h"
#include "common/UserInterface.h"
#include "common/kvGeneral.h"
#include "database/DAO_DatabaseFunctions.h"
#include "platform/files/FileSystem.h"
#include "platform/records/DBEngine.h"

#include <QDir>
#include <QFile>

#include <filesystem>

namespace
{
/// Asks for the file; empty when the user cancels or chooses none that holds anything.
QString ChooseDatabase(FileDialog* dialog, const QString& initialFolder)
{
    if (!dialog)
        return QString();
    dialog->Filter = QStringLiteral("Databases|*.MDB");
    dialog->FilterIndex = 1;
    dialog->DialogTitle = QStringLiteral("Select Database to Compact");
    dialog->Flags = 4100;
    dialog->CancelError = true;
    dialog->InitDir = initialFolder + QDir::separator();
    dialog->Filename = QStringLiteral("*.MDB");
    PendingError pending;
    if (!pending.Try([dialog] { dialog->ShowOpen(); }) || FileHelper::FileSize(dialog->Filename) <= 0)
        return QString();
    return dialog->Filename;
}

bool ConfirmCompacting(const QString& name)
{
    const QString text =
        QStringLiteral("Warning : The database must be closed on all computers before you can Compact/Repair it!\n"
                       "You should ensure that you have a backup of the database before proceeding\n\n"
                       "Are you sure you want to continue compacting/repairing:\n\n\t") +
        name;
    return UserInterface::Current().MessageBox({text, QStringLiteral("Compact/Repair Database"),
                                                MessageBoxButtons::YesNo, MessageBoxIcon::Question,
                                                MessageBoxAnswer::No}) == MessageBoxAnswer::Yes;
}

/// Puts the compacted file in the database's place. Where the file system has hard links there is a whole database
/// under the name at every moment; elsewhere the old file stands under the keep name for the moment between two
/// renames.
void Replace(const QString& name, const QString& compacted, const QString& keepName)
{
    const std::filesystem::path database(name.toStdU16String());
    const std::filesystem::path fresh(compacted.toStdU16String());
    const std::filesystem::path keep(keepName.toStdU16String());
    std::error_code failure;
    std::filesystem::create_hard_link(database, keep, failure);
    if (failure)
        std::filesystem::rename(database, keep);
    try {
        std::filesystem::rename(fresh, database);
    } catch (const std::filesystem::filesystem_error&) {
        // The old file goes back to its name, so that the station can be opened as before.
        std::filesystem::rename(keep, database, failure);
        throw;
    }
}
} // namespace

QString DAO_DatabaseFunctions::FreeKeepName(const QString& name)
{
    for (int count = 1;; ++count) {
        const QString candidate =
            QStringLiteral("%1-%2.BAK").arg(FileHelper::WithoutExtension(name)).arg(count, 4, 10, QLatin1Char('0'));
        if (FileSystem::Current().KindOf(candidate) == FileKind::None)
            return candidate;
    }
}

bool DAO_DatabaseFunctions::CompactRepairDatabase(const QString& name, FileDialog* dialog, const QString& initialFolder,
                                                  bool silent)
{
    const QString database = name.isEmpty() ? ChooseDatabase(dialog, initialFolder) : name;
    if (database.isEmpty() || (!silent && !ConfirmCompacting(database)))
        return false;
    const QString compacted = GetTempFile(FileHelper::FolderOf(database), QStringLiteral("MDB"));
    PendingError pending;
    {
        const BusyPointer busy;
        pending.Try([&] {
            if (compacted.isEmpty())
                throw dao::Error(dao::errCannotOpen,
                                 QStringLiteral("No temporary file can be made beside the database."));
            dao::DBEngine::CompactDatabase(database, compacted);
            Replace(database, compacted, FreeKeepName(database));
        });
    }
    if (pending.Number() != 0) {
        QFile::remove(compacted);
        ReportProblem(QStringLiteral("Compacting/Repairing the database: ") + database.trimmed(), pending.Number(),
                      silent, pending.Description());
        return false;
    }
    if (!silent) {
        UserInterface::Current().MessageBox(
            {QStringLiteral(
                 "Your Database has been successfully Compacted/Repaired and the old version saved in a new file "
                 "with a '.BAK' extension"),
             QString(), MessageBoxButtons::OK, MessageBoxIcon::Information, MessageBoxAnswer::OK});
    }
    return true;
}
