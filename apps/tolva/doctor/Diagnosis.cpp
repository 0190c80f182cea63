// SPDX-License-Identifier: Apache-2.0
#include "doctor/Diagnosis.h"

#include "Failure.h"
#include "StationPlace.h"
#include "common/FileHelper.h"
#include "database/TableCheck.h"
#include "doctor/MailDiagnosis.h"
#include "doctor/PlaceDiagnosis.h"
#include "platform/records/DBEngine.h"
#include "platform/records/FileConversion.h"

namespace
{
using Level = Finding::Level;

bool HasTable(dao::Database& database, const QString& name)
{
    for (int i = 0; i < database.TableDefs().Count(); ++i) {
        if (database.TableDefs().Item(i).Name().compare(name, Qt::CaseInsensitive) == 0)
            return true;
    }
    return false;
}

Finding OfTables(const QString& folder, dao::Database& station)
{
    QStringList missing;
    for (const TableShape& shape : {DescriptionTableShape(), SettingsTableShape(), MessagesTableShape(),
                                    MessageCategoriesTableShape(), PrizesTableShape(), PrizeWinnersTableShape()}) {
        if (!HasTable(station, shape.Name))
            missing.append(shape.Name);
    }
    if (!missing.isEmpty()) {
        return {QStringLiteral("file"), Level::Problem,
                QStringLiteral("Tables are missing in the station: %1.").arg(missing.join(QStringLiteral(", "))),
                QStringLiteral("Any command that opens the station adds them, such as: tolva list %1").arg(folder)};
    }
    const int messages = station.OpenRecordset(QStringLiteral("Messages"), dao::dbOpenTable)->RecordCount();
    return {QStringLiteral("file"), Level::Good,
            QStringLiteral("The station opens and holds %1 messages; its format is %2.")
                .arg(messages)
                .arg(dao::FormatOf(StationPlace::FileIn(folder))),
            QString()};
}

Finding OfDirectory(const QString& folder, dao::Database& directory)
{
    const auto users = directory.OpenRecordset(QStringLiteral("Users"), dao::dbOpenTable);
    int masters = 0;
    const int count = users->RecordCount();
    for (; !users->AtEOF(); users->MoveNext()) {
        const int rights = users->Collect(QStringLiteral("Rights")).toInt();
        masters += (rights & static_cast<int>(DirectoryRight::ChangeSettings)) != 0 ? 1 : 0;
    }
    const QString subject = QStringLiteral("directory");
    if (masters == 0) {
        return {subject, Level::Problem, QStringLiteral("Nobody in the directory may change settings and users."),
                QStringLiteral("tolva users %1 rights NAME all").arg(folder)};
    }
    return {subject, Level::Good, QStringLiteral("The directory opens and has %1 users.").arg(count), QString()};
}

/// Opens a file for reading alone and looks into it. What keeps it from that is a finding.
template <typename Look>
void InFile(const QString& subject, const QString& file, const QString& what, QList<Finding>& findings, Look&& look)
{
    try {
        const auto database = dao::DBEngine::OpenDatabase(file, 0, true);
        look(*database);
        database->Close();
    } catch (const dao::Error& error) {
        const Failure failure = FailureOf(what, file, error.Number(), error.Description());
        findings.append({subject, Level::Problem, failure.Words(),
                         failure.Code() == exitTemporary
                             ? QStringLiteral("Try again; if it stays so, end the programs that have it open.")
                             : QStringLiteral("Look further with: tolva check %1").arg(FileHelper::FolderOf(file))});
    }
}
} // namespace

QList<Finding> Diagnosis::Of(const QString& folder, Depth depth)
{
    QList<Finding> findings;
    const QString file = StationPlace::FileIn(folder);
    const QString directory = StationPlace::DirectoryFileIn(folder);
    const bool hasDirectory = FileHelper::FileExists(directory);
    InFile(QStringLiteral("file"), file, QStringLiteral("The station in %1").arg(folder), findings,
           [&](dao::Database& station) {
               findings.append(OfTables(folder, station));
               if (findings.last().How == Level::Problem)
                   return;
               findings.append(MailDiagnosis::OfArrivals(station));
               findings.append(MailDiagnosis::OfClock(station));
               // What is being sent stands in the directory.
               const auto ledger = hasDirectory ? dao::DBEngine::OpenDatabase(directory, 0, true) : nullptr;
               const bool hasLedger = ledger && HasTable(*ledger, QStringLiteral("Sending"));
               findings.append(MailDiagnosis::OfSending(folder, station, hasLedger ? ledger.get() : nullptr));
               findings.append(PlaceDiagnosis::OfBackups(folder, station, depth == Depth::WithBackup));
           });
    if (hasDirectory) {
        InFile(QStringLiteral("directory"), directory, QStringLiteral("The directory in %1").arg(folder), findings,
               [&](dao::Database& database) { findings.append(OfDirectory(folder, database)); });
    } else {
        findings.append({QStringLiteral("directory"), Level::Problem,
                         QStringLiteral("There is no directory in %1, so nobody is a user of the station.")
                             .arg(StationPlace::DirectoryIn(folder)),
                         QStringLiteral("Put it back from a copy; without one, the desk makes a new one.")});
    }
    findings.append(PlaceDiagnosis::OfRights(folder));
    findings.append(PlaceDiagnosis::OfLocks(folder));
    findings.append(PlaceDiagnosis::OfSpace(folder));
    findings.append(PlaceDiagnosis::OfTemplates(folder));
    return findings;
}
