// SPDX-License-Identifier: Apache-2.0
#include "platform/records/DBEngine.h"

#include <QCoreApplication>

#include <array>
#include <cstdio>

/// A process of its own, of which the tests start several at once and kill some:
/// storeWriter add <file> <name> <rows, 0 for without end>: adds rows to table T and says each reference once its
/// Update
///     returned.
/// storeWriter move <file>: moves all rows of table T together from number to number, in transactions inside others,
///     and says each number once it is committed.
/// storeWriter step <file>: opens the file, reads all of table T, says "ready", and adds a row for each line that comes
///     in, with that name; says its reference, or the number of the error, and goes on.
/// storeWriter read <file>: reads all of table T again and again, and ends with "torn" when a row is not as "add"
/// stored it. storeWriter create <file>: makes a new database once a line comes in. A failure is said as its number,
/// with exit code 1.
namespace
{

void Say(const QString& line)
{
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

void Add(const QString& fileName, const QString& name, int rows)
{
    const auto database = dao::DBEngine::OpenDatabase(fileName);
    const auto add = [&](int i) {
        const auto table = database->OpenRecordset(QStringLiteral("T"), dao::dbOpenTable);
        table->AddNew();
        const int reference = table->Collect(QStringLiteral("Reference")).toInt();
        table->SetCollect(QStringLiteral("Name"), QStringLiteral("%1 %2").arg(name).arg(i));
        table->SetCollect(QStringLiteral("Memo"), QString(i % 7 * 2000, QLatin1Char('m')));
        table->Update();
        Say(QStringLiteral("%1 %2 %3").arg(reference).arg(name).arg(i));
    };
    for (int i = 0; rows == 0 || i < rows; ++i) {
        try {
            add(i);
        } catch (const dao::Error& error) {
            // Among many on a slow machine the wait for the others may end before they do; whoever is told so tries
            // again.
            if (rows != 0 || error.Number() != dao::errLocked)
                throw;
        }
    }
}

void Move(const QString& fileName)
{
    const auto database = dao::DBEngine::OpenDatabase(fileName);
    const auto set = [&](int number, const QString& condition) {
        database->Execute(
            QStringLiteral("UPDATE [T] SET [Number]=%1 WHERE %2").arg(QString::number(number), condition));
    };
    for (int number = 1;; ++number) {
        dao::DBEngine::BeginTrans();
        set(number, QStringLiteral("[Reference] < 5"));
        dao::DBEngine::BeginTrans();
        set(number, QStringLiteral("[Reference] >= 5"));
        dao::DBEngine::CommitTrans();
        dao::DBEngine::CommitTrans();
        Say(QString::number(number));
    }
}

void Step(const QString& fileName)
{
    const auto database = dao::DBEngine::OpenDatabase(fileName);
    for (const auto rows = database->OpenRecordset(QStringLiteral("T"), dao::dbOpenTable); !rows->AtEOF();)
        rows->MoveNext();
    Say(QStringLiteral("ready"));
    for (std::array<char, 100> line{}; std::fgets(line.data(), static_cast<int>(line.size()), stdin);) {
        try {
            const auto table = database->OpenRecordset(QStringLiteral("T"), dao::dbOpenTable);
            table->AddNew();
            const int reference = table->Collect(QStringLiteral("Reference")).toInt();
            table->SetCollect(QStringLiteral("Name"), QString::fromLatin1(line.data()).trimmed());
            table->Update();
            Say(QString::number(reference));
        } catch (const dao::Error& error) {
            Say(QStringLiteral("error %1").arg(error.Number()));
        }
    }
}

/// False for a row that is not as it was added.
bool AreAllWhole(dao::Database& database)
{
    const auto rows = database.OpenRecordset(QStringLiteral("T"), dao::dbOpenTable);
    rows->SetIndex(QStringLiteral("Main"));
    for (; !rows->AtEOF(); rows->MoveNext()) {
        const int number = rows->Collect(QStringLiteral("Name")).toString().section(QLatin1Char(' '), -1).toInt();
        if (rows->Collect(QStringLiteral("Memo")).toString().size() != number % 7 * 2000)
            return false;
    }
    return true;
}

void Read(const QString& fileName)
{
    const auto database = dao::DBEngine::OpenDatabase(fileName);
    for (bool isWhole = true; isWhole;) {
        try {
            isWhole = AreAllWhole(*database);
            Say(isWhole ? QStringLiteral("read") : QStringLiteral("torn"));
        } catch (const dao::Error& error) {
            if (error.Number() != dao::errLocked) // as for who adds
                throw;
        }
    }
}

void Create(const QString& fileName)
{
    std::getchar();
    const auto database = dao::DBEngine::CreateDatabase(fileName, QString());
    auto table = database->CreateTableDef(QStringLiteral("T"));
    table->Fields().Append(std::make_unique<dao::Field>(QStringLiteral("Name"), dao::dbText, 0));
    database->TableDefs().Append(std::move(table));
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString command = arguments.value(1);
    const QString fileName = arguments.value(2);
    try {
        if (command == QLatin1String("add"))
            Add(fileName, arguments.value(3), arguments.value(4).toInt());
        else if (command == QLatin1String("move"))
            Move(fileName);
        else if (command == QLatin1String("step"))
            Step(fileName);
        else if (command == QLatin1String("read"))
            Read(fileName);
        else if (command == QLatin1String("create"))
            Create(fileName);
        else
            return 2;
    } catch (const dao::Error& error) {
        Say(QString::number(error.Number()));
        std::fprintf(stderr, "error %d: %s\n", error.Number(), error.what());
        return 1;
    }
    return 0;
}
