// SPDX-License-Identifier: Apache-2.0
#include "platform/directory/DirectoryTables.h"

#include "platform/files/FileSystem.h"
#include "platform/records/DBEngine.h"

#include <QFileInfo>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace
{
enum class Uniqueness
{
    Primary,
    Unique,
    Repeats
};

struct FieldPlan
{
    QString Name;
    dao::DataTypeEnum Type;
    int Attributes = 0;
    bool AllowZeroLength = false;
};

struct IndexPlan
{
    QString Name;
    QStringList Fields;
    Uniqueness Kind;
};

struct TablePlan
{
    QString Name;
    QList<FieldPlan> Fields;
    QList<IndexPlan> Indexes;
};

QList<TablePlan> Plans()
{
    const FieldPlan counter{QStringLiteral("Reference"), dao::dbLong, dao::dbAutoIncrField};
    const IndexPlan main{QStringLiteral("Main"), {QStringLiteral("Reference")}, Uniqueness::Primary};
    return {
        {QStringLiteral("Contacts"),
         {counter,
          {QStringLiteral("Name"), dao::dbText},
          {QStringLiteral("Mobile"), dao::dbText},
          {QStringLiteral("Telephone"), dao::dbText},
          {QStringLiteral("Email"), dao::dbText},
          {QStringLiteral("SecondEmail"), dao::dbText},
          {QStringLiteral("Other"), dao::dbMemo}},
         {main,
          {QStringLiteral("Email"), {QStringLiteral("Email")}, Uniqueness::Repeats},
          {QStringLiteral("SecondEmail"), {QStringLiteral("SecondEmail")}, Uniqueness::Repeats}}},
        {QStringLiteral("Users"),
         {counter, {QStringLiteral("Name"), dao::dbText}, {QStringLiteral("Rights"), dao::dbLong}},
         {main, {QStringLiteral("Name"), {QStringLiteral("Name")}, Uniqueness::Unique}}},
        // A stored empty text is a value, not the lack of one.
        {QStringLiteral("Preferences"),
         {{QStringLiteral("UserReference"), dao::dbLong},
          {QStringLiteral("Name"), dao::dbText},
          {QStringLiteral("Value"), dao::dbMemo, 0, true}},
         {{QStringLiteral("Main"), {QStringLiteral("UserReference"), QStringLiteral("Name")}, Uniqueness::Unique}}},
        {QStringLiteral("UserLog"),
         {counter,
          {QStringLiteral("When"), dao::dbDate},
          {QStringLiteral("UserReference"), dao::dbLong},
          {QStringLiteral("ClassNumber"), dao::dbLong},
          {QStringLiteral("Kind"), dao::dbLong},
          {QStringLiteral("Title"), dao::dbText},
          {QStringLiteral("Text"), dao::dbMemo},
          {QStringLiteral("Code"), dao::dbLong},
          {QStringLiteral("EventReference"), dao::dbLong}},
         {main, {QStringLiteral("When"), {QStringLiteral("When"), QStringLiteral("Reference")}, Uniqueness::Repeats}}},
        {QStringLiteral("Sending"),
         {{QStringLiteral("Message"), dao::dbLong},
          {QStringLiteral("Identity"), dao::dbText},
          {QStringLiteral("State"), dao::dbLong},
          {QStringLiteral("When"), dao::dbDate},
          {QStringLiteral("FirstTry"), dao::dbDate},
          {QStringLiteral("Until"), dao::dbDate},
          {QStringLiteral("Attempts"), dao::dbLong},
          {QStringLiteral("Claim"), dao::dbText},
          {QStringLiteral("Computer"), dao::dbText},
          {QStringLiteral("Process"), dao::dbLong},
          {QStringLiteral("Taken"), dao::dbMemo},
          {QStringLiteral("Words"), dao::dbMemo}},
         {{QStringLiteral("Main"), {QStringLiteral("Message")}, Uniqueness::Primary},
          {QStringLiteral("State"), {QStringLiteral("State")}, Uniqueness::Repeats},
          {QStringLiteral("When"), {QStringLiteral("When")}, Uniqueness::Repeats}}},
    };
}

/// Tables that are made when they are first written: a directory that can only be read opens without them.
QList<TablePlan> LaterPlans()
{
    return {
        {QStringLiteral("Answering"),
         {{QStringLiteral("Entry"), dao::dbText},
          {QStringLiteral("Message"), dao::dbLong},
          {QStringLiteral("Name"), dao::dbText},
          {QStringLiteral("Seconds"), dao::dbLong}},
         {{QStringLiteral("Main"), {QStringLiteral("Entry")}, Uniqueness::Primary}}},
        {QStringLiteral("Answers"),
         {{QStringLiteral("Message"), dao::dbLong},
          {QStringLiteral("Arrived"), dao::dbDate},
          {QStringLiteral("Answer"), dao::dbLong},
          {QStringLiteral("Name"), dao::dbText},
          {QStringLiteral("When"), dao::dbDate}},
         {{QStringLiteral("Main"), {QStringLiteral("Message"), QStringLiteral("Answer")}, Uniqueness::Primary},
          {QStringLiteral("Answer"), {QStringLiteral("Answer")}, Uniqueness::Repeats},
          {QStringLiteral("When"), {QStringLiteral("When")}, Uniqueness::Repeats}}},
        {QStringLiteral("AutomaticAnswers"),
         {{QStringLiteral("Number"), dao::dbText}, {QStringLiteral("When"), dao::dbDate}},
         {{QStringLiteral("Main"), {QStringLiteral("Number")}, Uniqueness::Primary},
          {QStringLiteral("When"), {QStringLiteral("When")}, Uniqueness::Repeats}}},
    };
}

template <typename Object>
bool Holds(const dao::Collection<Object>& collection, const QString& name)
{
    for (int i = 0; i < collection.Count(); ++i) {
        if (collection.Item(i).Name().compare(name, Qt::CaseInsensitive) == 0)
            return true;
    }
    return false;
}

bool HoldsAll(const dao::Collection<dao::TableDef>& tables, const TablePlan& plan)
{
    if (!Holds(tables, plan.Name))
        return false;
    dao::TableDef& table = tables.Item(plan.Name);
    return std::all_of(plan.Fields.begin(), plan.Fields.end(),
                       [&](const FieldPlan& field) { return Holds(table.Fields(), field.Name); }) &&
           std::all_of(plan.Indexes.begin(), plan.Indexes.end(),
                       [&](const IndexPlan& index) { return Holds(table.Indexes(), index.Name); });
}

std::unique_ptr<dao::Field> MakeField(const dao::TableDef& table, const FieldPlan& plan)
{
    std::unique_ptr<dao::Field> field = table.CreateField(plan.Name, plan.Type);
    field->SetAttributes(plan.Attributes);
    field->SetAllowZeroLength(plan.AllowZeroLength);
    return field;
}

std::unique_ptr<dao::Index> MakeIndex(const dao::TableDef& table, const IndexPlan& plan)
{
    std::unique_ptr<dao::Index> index = table.CreateIndex(plan.Name);
    index->SetPrimary(plan.Kind == Uniqueness::Primary);
    index->SetUnique(plan.Kind != Uniqueness::Repeats);
    for (const QString& name : plan.Fields)
        index->Fields().Append(index->CreateField(name));
    return index;
}

/// Runs an addition. Its failure is none when another computer has made the same addition meanwhile.
template <typename Addition, typename Check>
void AddUnlessThere(Check isThere, Addition add)
{
    if (isThere())
        return;
    try {
        add();
    } catch (const dao::Error&) {
        if (!isThere())
            throw;
    }
}

void AddTable(dao::Database& database, const TablePlan& plan)
{
    std::unique_ptr<dao::TableDef> table = database.CreateTableDef(plan.Name);
    for (const FieldPlan& field : plan.Fields)
        table->Fields().Append(MakeField(*table, field));
    for (const IndexPlan& index : plan.Indexes)
        table->Indexes().Append(MakeIndex(*table, index));
    database.TableDefs().Append(std::move(table));
}

void AddMissingParts(dao::Database& database, const TablePlan& plan)
{
    // Asked for anew at each step: a change by another computer replaces the definitions.
    const auto table = [&]() -> dao::TableDef& { return database.TableDefs().Item(plan.Name); };
    for (const FieldPlan& field : plan.Fields) {
        AddUnlessThere([&] { return Holds(table().Fields(), field.Name); },
                       [&] { table().Fields().Append(MakeField(table(), field)); });
    }
    for (const IndexPlan& index : plan.Indexes) {
        AddUnlessThere([&] { return Holds(table().Indexes(), index.Name); },
                       [&] { table().Indexes().Append(MakeIndex(table(), index)); });
    }
}

void Complete(dao::Database& database, const TablePlan& plan)
{
    AddUnlessThere([&] { return Holds(database.TableDefs(), plan.Name); }, [&] { AddTable(database, plan); });
    AddMissingParts(database, plan);
}
} // namespace

namespace DirectoryTables
{

std::unique_ptr<dao::Database> OpenFile(const QString& fileName)
{
    if (!QFileInfo::exists(fileName)) {
        // One that stands elsewhere may be used through a link; none is made there.
        const QString folder = QFileInfo(fileName).path();
        if (FileSystem::Current().KindOf(folder) == FileKind::Link)
            throw dao::Error(dao::errNotAValidPath,
                             QStringLiteral("'%1' is a link, and no directory is made through one.").arg(folder));
        try {
            return dao::DBEngine::CreateDatabase(fileName, QString());
        } catch (const dao::Error&) {
            // Another computer may have made it in this moment.
            if (!QFileInfo::exists(fileName))
                throw;
        }
    }
    return dao::DBEngine::OpenDatabase(fileName);
}

void AddMissing(dao::Database& database)
{
    const QList<TablePlan> plans = Plans();
    // One look at all of them where nothing is missing, as nearly always.
    const dao::Collection<dao::TableDef>& tables = database.TableDefs();
    if (std::all_of(plans.begin(), plans.end(), [&](const TablePlan& plan) { return HoldsAll(tables, plan); }))
        return;
    for (const TablePlan& plan : plans)
        Complete(database, plan);
}

void AddLater(dao::Database& database, const QString& table)
{
    for (const TablePlan& plan : LaterPlans()) {
        if (plan.Name == table && !HoldsAll(database.TableDefs(), plan))
            Complete(database, plan);
    }
}

std::unique_ptr<dao::Recordset> OpenIfThere(dao::Database& database, const QString& select)
{
    try {
        return database.OpenRecordset(select, dao::dbOpenSnapshot);
    } catch (const dao::Error& error) {
        if (error.Number() == dao::errTableNotFound || error.Number() == dao::errServerTableNotFound)
            return nullptr;
        throw;
    }
}

std::unique_ptr<dao::Recordset> OpenTable(dao::Database& database, const QString& table, const QString& index)
{
    std::unique_ptr<dao::Recordset> rows = database.OpenRecordset(table, dao::dbOpenTable);
    rows->SetIndex(index);
    return rows;
}

qint32 BeginSave(dao::Recordset& rows, qint32 reference, const QString& description)
{
    if (reference == 0) {
        rows.AddNew();
        return rows.Collect(QStringLiteral("Reference")).toInt();
    }
    rows.Seek(dao::SeekComparison::Equal, {reference});
    if (rows.NoMatch())
        throw dao::Error(dao::errRecordDeleted, description);
    rows.Edit();
    return reference;
}

void DeleteRow(dao::Database& database, const QString& table, qint32 reference)
{
    const auto rows = OpenTable(database, table, QStringLiteral("Main"));
    rows->Seek(dao::SeekComparison::Equal, {reference});
    if (rows->NoMatch())
        return;
    try {
        rows->Delete();
    } catch (const dao::Error& error) {
        // Gone is gone, whoever did it.
        if (error.Number() != dao::errRecordDeleted)
            throw;
    }
}

namespace
{
constexpr double millisecondsADay = 86'400'000.0;
const QDateTime dayZero(QDate(1899, 12, 30), QTime(0, 0), Qt::UTC);
} // namespace

double DayNumber(const QDateTime& moment)
{
    return static_cast<double>(dayZero.msecsTo(moment.toUTC())) / millisecondsADay;
}

QDateTime Moment(double dayNumber)
{
    return dayZero.addMSecs(std::llround(dayNumber * millisecondsADay));
}

} // namespace DirectoryTables
