// SPDX-License-Identifier: Apache-2.0

// Compacting a database by way of a fresh file, the old content kept beside it.

#include "common/FileDialog.h"
#include "common/FileHelper.h"
#include "common/PendingError.h"
#include "common/UserInterface.h"
#include "common/kvGeneral.h"
#include "database/DAO_DatabaseFunctions.h"
#include "database/FileExchange.h"
#include "database/Leftovers.h"
#include "platform/files/WorkClaim.h"
#include "platform/records/ContentExchange.h"
#include "platform/records/DBEngine.h"
#include "platform/records/FileTools.h"

#include <QDir>
#include <QScopeGuard>

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
    dialog->Flags = FileDialog::FileMustExist | FileDialog::HideReadOnly;
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

/// Puts a compacted copy, made under the temporary name, into the file; the name of the old content.
QString CompactInPlace(const QString& database, const QString& compacted)
{
    const WorkClaim claim(compacted);
    if (!claim.Status().IsDone())
        throw dao::Error(dao::ErrorNumberOf(claim.Status()),
                         QStringLiteral("'%1' cannot be made: %2").arg(compacted, claim.Status().Words()));
    const auto remove = [&] { FileSystem::Current().Remove(compacted); };
    const auto removed = qScopeGuard(remove);
    FileExchange::Plan plan;
    plan.File = database;
    plan.Replacement = compacted;
    plan.Make = [&](dao::ContentExchange& exchange) {
        remove();
        dao::DBEngine::CompactDatabase(database, compacted);
        FileExchange::GiveAccess(database, compacted);
        exchange.RequireSameRows(compacted);
    };
    plan.KeepName = [&] { return DAO_DatabaseFunctions::FreeKeepName(database); };
    return FileExchange::InPlace(plan);
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
                                                  bool silent, PendingError* failure, QString* keptAs)
{
    const QString database = name.isEmpty() ? ChooseDatabase(dialog, initialFolder) : name;
    if (database.isEmpty() || (!silent && !ConfirmCompacting(database)))
        return false;
    Leftovers::Remove(database);
    const QString compacted = GetTempFile(FileHelper::FolderOf(database), QStringLiteral("MDB"));
    PendingError pending;
    {
        const BusyPointer busy;
        pending.Try([&] {
            if (compacted.isEmpty())
                throw dao::Error(dao::errCannotOpen,
                                 QStringLiteral("No temporary file can be made beside the database."));
            const QString keepName = CompactInPlace(database, compacted);
            if (keptAs)
                *keptAs = keepName;
        });
    }
    if (pending.Number() != 0) {
        if (failure)
            *failure = pending;
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
