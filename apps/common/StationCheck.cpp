// SPDX-License-Identifier: Apache-2.0
#include "StationCheck.h"

#include "Failure.h"
#include "FolderPaths.h"
#include "RowRecovery.h"
#include "StationPlace.h"
#include "WinnerCounts.h"
#include "common/FileHelper.h"
#include "common/UserInterface.h"
#include "database/TableCheck.h"
#include "platform/directory/clsCategory.h"
#include "platform/records/DBEngine.h"

#include <QMap>

namespace
{
const QString MessagesName = QStringLiteral("Messages");
constexpr int ProblemsShown = 20; // of one kind

/// What a check has found so far. Problems of one kind are counted, and the first ones are told singly.
class Findings
{
public:
    explicit Findings(const std::function<void(const QString&)>& tell) : Tell_(tell) {}

    /// Whether the next one of that kind is told singly.
    bool TellsNext(const QString& kind) const { return Counts_.value(kind) < ProblemsShown; }
    bool IsEmpty() const { return Counts_.isEmpty(); }

    void Add(const QString& kind, const QString& words)
    {
        const int count = ++Counts_[kind];
        if (count <= ProblemsShown)
            Tell_(words);
        else if (count == ProblemsShown + 1)
            Tell_(QStringLiteral("... and more of the same kind (%1)").arg(kind));
    }
    QString Summary() const
    {
        QStringList words;
        for (auto it = Counts_.cbegin(); it != Counts_.cend(); ++it)
            words.append(QStringLiteral("%1: %2").arg(it.key()).arg(it.value()));
        return words.join(QStringLiteral("; "));
    }

private:
    const std::function<void(const QString&)>& Tell_;
    QMap<QString, int> Counts_;
};

/// A locked or unreadable file ends the check; what else the record store complains of is damage to tell.
bool EndsCheck(const dao::Error& error)
{
    const ExitCode code = ExitCodeOf(error.Number());
    return code == exitTemporary || code == exitNoPermission || code == exitInputOutput;
}

/// The tables, fields and indexes that the station needs, compared by name as opening does.
void CheckShape(dao::Database& database, const TableShape& shape, Findings& findings)
{
    const QString kind = QStringLiteral("missing parts");
    const auto item = [&](const auto& collection, const QString& name, const QString& words) {
        for (int i = 0; i < collection.Count(); ++i) {
            if (collection.Item(i).Name().compare(name, Qt::CaseInsensitive) == 0)
                return true;
        }
        findings.Add(kind, words);
        return false;
    };
    if (!item(database.TableDefs(), shape.Name, QStringLiteral("The table %1 is missing.").arg(shape.Name)))
        return;
    const dao::TableDef& table = database.TableDefs().Item(shape.Name);
    for (const FieldShape& field : shape.Fields)
        item(table.Fields(), field.Name,
             QStringLiteral("The field %1 of the table %2 is missing.").arg(field.Name, shape.Name));
    for (const IndexShape& index : shape.Indexes)
        item(table.Indexes(), index.Name,
             QStringLiteral("The index %1 of the table %2 is missing.").arg(index.Name, shape.Name));
}

const QString MailColumn = QStringLiteral("Message");

/// Where a table lies: the station's folder, which has backups, or none for the directory's tables.
struct Place
{
    QString Table;
    QString Folder;
};

/// Adds a value of the current row that cannot be read.
void AddValue(const dao::Recordset& rows, const Place& place, const QString& field, const dao::Error& error,
              Findings& findings)
{
    const auto kind = place.Folder.isEmpty() ? std::nullopt : RowRecovery::KindOf(place.Table);
    if (!kind || error.Number() != dao::errMemoDamaged) {
        findings.Add(QStringLiteral("unreadable values"),
                     QStringLiteral("A value of the field %1 in the table %2 cannot be read: %3")
                         .arg(field, place.Table, error.Description()));
        return;
    }
    const qint32 reference = rows.Collect(QStringLiteral("Reference")).toInt();
    const QString what = QStringLiteral("damaged %1s").arg(RowRecovery::NameOf(*kind));
    // Looking through the backups takes its time.
    const QString advice = findings.TellsNext(what) ? RowRecovery::Advice(place.Folder, *kind, reference) : QString();
    findings.Add(what, QStringLiteral("The %1 of %2 %3 cannot be read: %4 %5")
                           .arg(RowRecovery::TextName(field), RowRecovery::NameOf(*kind))
                           .arg(reference)
                           .arg(error.Description(), advice));
}

/// Reads every value of the current row but the mail, whose octets are read apart.
void ReadValues(const dao::Recordset& rows, const Place& place, Findings& findings)
{
    const dao::Collection<dao::Field>& fields = rows.Fields();
    for (int i = 0; i < fields.Count(); ++i) {
        if (fields.Item(i).Name() == MailColumn)
            continue;
        try {
            static_cast<void>(fields.Item(i).Value());
        } catch (const dao::Error& error) {
            if (EndsCheck(error))
                throw;
            AddValue(rows, place, fields.Item(i).Name(), error, findings);
        }
    }
}

/// Reads all rows of a table but the messages; the number of rows.
int CheckTable(dao::Database& database, const Place& place, Findings& findings)
{
    int count = 0;
    try {
        const auto rows = database.OpenRecordset(place.Table, dao::dbOpenTable);
        for (; !rows->AtEOF(); rows->MoveNext(), ++count)
            ReadValues(*rows, place, findings);
    } catch (const dao::Error& error) {
        if (EndsCheck(error))
            throw;
        findings.Add(
            QStringLiteral("unreadable tables"),
            QStringLiteral("The table %1 cannot be read to its end: %2").arg(place.Table, error.Description()));
    }
    return count;
}

/// The messages of the station as the check meets them.
class MessageCheck
{
public:
    MessageCheck(const QString& folder, const clsCategory& root, Findings& findings)
        : Folder_(folder), Root_(root), Findings_(findings)
    {
    }

    void Check(const dao::Recordset& rows)
    {
        const qint32 reference = rows.Collect(QStringLiteral("Reference")).toInt();
        const qint32 category = rows.Collect(QStringLiteral("Category")).toInt();
        ++InFolder_[category];
        if (!Root_.FindCategory(category)) {
            Findings_.Add(
                QStringLiteral("messages in no folder"),
                QStringLiteral("Message %1 stands in folder %2, which does not exist. \"tolva move\" takes it to "
                               "one that does.")
                    .arg(reference)
                    .arg(category));
        }
        CheckMail(rows, reference);
    }
    const QMap<qint32, int>& InFolder() const { return InFolder_; }

private:
    void CheckMail(const dao::Recordset& rows, qint32 reference)
    {
        try {
            if (rows[MailColumn].Octets().isEmpty())
                Findings_.Add(QStringLiteral("messages without a text"),
                              QStringLiteral("Message %1 holds no mail.").arg(reference));
        } catch (const dao::Error& error) {
            // Text of other software in place of octets reads all the same.
            if (error.Number() == dao::errTypeMismatch)
                return;
            if (EndsCheck(error))
                throw;
            const QString kind = QStringLiteral("damaged messages");
            // Looking through the backups takes its time.
            const QString advice = Findings_.TellsNext(kind)
                                       ? RowRecovery::Advice(Folder_, RowRecovery::Kind::Message, reference)
                                       : QString();
            Findings_.Add(
                kind,
                QStringLiteral("Message %1 cannot be read: %2 %3").arg(reference).arg(error.Description(), advice));
        }
    }

    const QString& Folder_;
    const clsCategory& Root_;
    Findings& Findings_;
    QMap<qint32, int> InFolder_;
};

/// False when the user ended it.
bool CheckMessages(dao::Database& database, MessageCheck& check, Findings& findings)
{
    const auto progress = UserInterface::Current().Progress(QStringLiteral("Checking"));
    try {
        const auto rows = database.OpenRecordset(MessagesName, dao::dbOpenTable);
        const int total = rows->RecordCount();
        for (int done = 1; !rows->AtEOF(); rows->MoveNext(), ++done) {
            ReadValues(*rows, {MessagesName, QString()}, findings);
            check.Check(*rows);
            if (!progress->Advance(done, total))
                return false;
        }
    } catch (const dao::Error& error) {
        if (EndsCheck(error))
            throw;
        findings.Add(QStringLiteral("unreadable tables"),
                     QStringLiteral("The table Messages cannot be read to its end: %1").arg(error.Description()));
    }
    return true;
}

/// What a copy, a compaction and a restore go by: the station is not sound unless they find it so. False when the user
/// ended it.
bool CheckPages(const QString& file, Findings& findings)
{
    const auto progress = UserInterface::Current().Progress(QStringLiteral("Comparing pages"));
    dao::FileReport report;
    try {
        report = dao::DBEngine::ExamineDatabase(
            file, [&](qint64 done, qint64 total) { return progress->Advance(done, total); });
    } catch (const dao::Error& error) {
        if (error.Number() != dao::errCancelled)
            throw;
        return false;
    }
    if (report.Verdict == dao::FileReport::State::Repairable) {
        for (const QString& fault : std::as_const(report.Faults)) {
            findings.Add(
                QStringLiteral("indexes to repair"),
                QStringLiteral("An index of %1 does not match its table. No row is lost, and \"tolva compact\" "
                               "repairs it. (%2)")
                    .arg(file, fault));
        }
    } else if (!report.IsStructureSound || (findings.IsEmpty() && !report.Faults.isEmpty())) {
        // Single values that are damaged were told of when they were read.
        for (const QString& fault : std::as_const(report.Faults))
            findings.Add(QStringLiteral("damaged pages"), QStringLiteral("%1 is damaged: %2").arg(file, fault));
    }
    return true;
}

void LoadFolders(dao::Database& database, clsCategory& root, Findings& findings)
{
    try {
        root.LoadCategories(database, QStringLiteral("Categories"), QStringLiteral("MessageCategories"));
    } catch (const dao::Error& error) {
        if (EndsCheck(error))
            throw;
        findings.Add(QStringLiteral("unreadable tables"),
                     QStringLiteral("The folders cannot be read: %1").arg(error.Description()));
    }
}

QList<StationCheck::FolderCount> FolderCounts(const MessageCheck& check, const clsCategory& root)
{
    const QHash<qint32, QString> paths = FolderPaths(root);
    QList<StationCheck::FolderCount> counts;
    for (auto it = check.InFolder().cbegin(); it != check.InFolder().cend(); ++it)
        counts.append({FolderPath(paths, it.key()), it.value()});
    return counts;
}

/// None where a table cannot be read, which is told already.
WinnerCounts::Disagreements FindDisagreements(dao::Database& database)
{
    try {
        return WinnerCounts::Find(database);
    } catch (const dao::Error& error) {
        if (EndsCheck(error))
            throw;
        return {};
    }
}

/// What disagreed before and still does: in between somebody may have been awarding a prize.
void TellDisagreements(const WinnerCounts::Disagreements& before, const WinnerCounts::Disagreements& after,
                       Findings& findings)
{
    for (const auto& [row, disagreement] : after) {
        if (before.count(row) != 0)
            findings.Add(disagreement.first, disagreement.second);
    }
}

/// False when the user ended it.
bool CheckStationFile(const QString& folder, Findings& findings, StationCheck::Report& report)
{
    const QString file = StationPlace::FileIn(folder);
    const auto database = dao::DBEngine::OpenDatabase(file, 0, true);
    for (const TableShape& shape : {DescriptionTableShape(), SettingsTableShape(), MessagesTableShape(),
                                    MessageCategoriesTableShape(), PrizesTableShape(), PrizeWinnersTableShape()}) {
        CheckShape(*database, shape, findings);
        if (shape.Name != MessagesName)
            CheckTable(*database, {shape.Name, folder}, findings);
    }
    clsCategory root;
    LoadFolders(*database, root, findings);
    const WinnerCounts::Disagreements disagreements = FindDisagreements(*database);
    MessageCheck check(folder, root, findings);
    if (!CheckMessages(*database, check, findings))
        return false;
    if (!disagreements.empty())
        TellDisagreements(disagreements, FindDisagreements(*database), findings);
    report.Folders = FolderCounts(check, root);
    report.IsRead = true;
    return CheckPages(file, findings);
}

/// False when the user ended it.
bool CheckDirectory(const QString& file, Findings& findings)
{
    if (!FileHelper::FileExists(file)) {
        findings.Add(QStringLiteral("missing parts"), QStringLiteral("There is no directory in %1.").arg(file));
        return true;
    }
    const auto database = dao::DBEngine::OpenDatabase(file, 0, true);
    QStringList names;
    for (int i = 0; i < database->TableDefs().Count(); ++i)
        names.append(database->TableDefs().Item(i).Name());
    for (const QString& name : names)
        CheckTable(*database, {name, QString()}, findings);
    return CheckPages(file, findings);
}

/// Runs a check of one file. A file that cannot be opened for its content is a finding as well.
template <typename Check>
void OfFile(const QString& file, Findings& findings, Check&& check)
{
    try {
        check();
    } catch (const dao::Error& error) {
        const Failure failure = FailureOf(file, file, error.Number(), error.Description());
        if (failure.Code() != exitData)
            throw failure;
        findings.Add(QStringLiteral("damaged files"),
                     QStringLiteral("%1 is damaged, or no database at all: %2").arg(file, error.Description()));
    }
}
} // namespace

int StationCheck::Report::Messages() const
{
    int total = 0;
    for (const FolderCount& folder : Folders)
        total += folder.Messages;
    return total;
}

StationCheck::Report StationCheck::Run(const QString& folder, const std::function<void(const QString&)>& tell)
{
    Report report;
    Findings findings(tell);
    const QString file = StationPlace::FileIn(folder);
    OfFile(file, findings, [&] { report.IsWhole = CheckStationFile(folder, findings, report); });
    if (!report.IsWhole)
        return report;
    const QString directory = StationPlace::DirectoryFileIn(folder);
    OfFile(directory, findings, [&] { report.IsWhole = CheckDirectory(directory, findings); });
    report.Summary = findings.Summary();
    return report;
}
