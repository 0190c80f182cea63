// SPDX-License-Identifier: Apache-2.0
#include "platform/records/RecordsFixture.h"

#include <QDir>
#include <QFile>
#include <QProcess>

#include <array>
#include <map>
#include <random>
#include <set>

using namespace dao;

namespace
{

class SeveralProcesses : public RecordsFixture
{
protected:
    SeveralProcesses()
    {
        std::vector<std::unique_ptr<Field>> fields;
        fields.push_back(MakeField(QStringLiteral("Reference"), dbLong, 0, dbAutoIncrField));
        fields.push_back(MakeField(QStringLiteral("Name"), dbText));
        fields.push_back(MakeField(QStringLiteral("Memo"), dbMemo));
        AddTable(Db(), QStringLiteral("T"), std::move(fields));
        AddIndex(Db(), QStringLiteral("T"), QStringLiteral("Main"), {QStringLiteral("Reference")}, true, true);
        AddIndex(Db(), QStringLiteral("T"), QStringLiteral("Names"), {QStringLiteral("Name")});
    }

    void Start(QProcess& process, const QString& name, int rows) const
    {
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(QStringLiteral(TOLVA_STORE_WRITER),
                      {QStringLiteral("add"), FileName(), name, QString::number(rows)});
        ASSERT_TRUE(process.waitForStarted());
    }

    /// Takes what a process acknowledged; a line that the kill cut off counts for nothing.
    void Take(QProcess& process)
    {
        const QList<QByteArray> lines = process.readAllStandardOutput().split('\n');
        for (qsizetype i = 0; i + 1 < lines.size(); ++i) {
            const qsizetype blank = lines.at(i).indexOf(' ');
            const int reference = lines.at(i).left(blank).toInt();
            EXPECT_GT(reference, 0) << "a writer failed: " << lines.at(i).constData();
            EXPECT_TRUE(Acknowledged_.emplace(reference, QString::fromLatin1(lines.at(i).mid(blank + 1))).second)
                << "number " << reference << " was given twice";
        }
    }

    void ExpectAllThere()
    {
        const auto rows = OpenTable(QStringLiteral("T"), QStringLiteral("Main"));
        for (const auto& [reference, name] : Acknowledged_) {
            rows->Seek(SeekComparison::Equal, {reference});
            ASSERT_FALSE(rows->NoMatch()) << reference;
            EXPECT_EQ(rows->Collect(QStringLiteral("Name")).toString(), name);
        }
        // A compaction looks at every page.
        const QString target = Path(QStringLiteral("Checked.mdb"));
        DBEngine::CompactDatabase(FileName(), target);
        QFile::remove(target);
    }

    static unsigned Seed()
    {
        const QByteArray given = qgetenv("TOLVA_TEST_SEED");
        return given.isEmpty() ? std::random_device()() : given.toUInt();
    }

    std::map<int, QString> Acknowledged_;
};

TEST_P(SeveralProcesses, AddRowsAtOnceWithoutSharingANumber)
{
    QProcess first;
    QProcess second;
    Start(first, QStringLiteral("first"), 60);
    Start(second, QStringLiteral("second"), 60);
    for (QProcess* process : {&first, &second}) {
        ASSERT_TRUE(process->waitForFinished(60000));
        EXPECT_EQ(process->exitCode(), 0);
        Take(*process);
    }
    EXPECT_EQ(Acknowledged_.size(), 120U);
    ExpectAllThere();
    EXPECT_EQ(OpenTable(QStringLiteral("T"))->RecordCount(), 120);
}

TEST_P(SeveralProcesses, KilledAtAnyMomentLoseNothingThatWasAcknowledged)
{
    const unsigned seed = Seed();
    SCOPED_TRACE(testing::Message() << "seed (TOLVA_TEST_SEED): " << seed);
    std::mt19937 random(seed);
    for (int round = 0; round < 12; ++round) {
        QProcess victim;
        QProcess survivor;
        Start(victim, QStringLiteral("victim%1").arg(round), 0);
        Start(survivor, QStringLiteral("survivor%1").arg(round), 10);
        // The moment is counted from the victim's first row, and differs by some of its writes.
        ASSERT_TRUE(victim.waitForReadyRead(30000));
        victim.waitForFinished(static_cast<int>(random() % 40));
        victim.kill();
        ASSERT_TRUE(victim.waitForFinished(30000));
        ASSERT_TRUE(survivor.waitForFinished(60000));
        EXPECT_EQ(survivor.exitCode(), 0);
        Take(victim);
        Take(survivor);
    }
    EXPECT_GE(Acknowledged_.size(), 130U);
    ExpectAllThere();
}

TEST_P(SeveralProcesses, ThreeThatWriteKilledBesideThreeThatReadLoseAndShowNothingHalf)
{
    bool isSet = false;
    const int wanted = qEnvironmentVariableIntValue("TOLVA_KILL_ROUNDS", &isSet);
    const unsigned seed = Seed();
    std::mt19937 random(seed);
    for (int round = 0; round < (isSet ? wanted : 30); ++round) {
        SCOPED_TRACE(testing::Message() << "seed (TOLVA_TEST_SEED): " << seed << " round " << round);
        std::array<QProcess, 3> writers;
        std::array<QProcess, 3> readers;
        for (std::size_t i = 0; i < writers.size(); ++i)
            Start(writers[i], QStringLiteral("writer%1-%2").arg(round).arg(i), 0);
        for (QProcess& reader : readers) {
            reader.start(QStringLiteral(TOLVA_STORE_WRITER), {QStringLiteral("read"), FileName()});
            ASSERT_TRUE(reader.waitForStarted());
        }
        ASSERT_TRUE(writers[random() % 3].waitForReadyRead(30000));
        writers[0].waitForFinished(static_cast<int>(random() % 40));
        for (QProcess& writer : writers) {
            writer.kill();
            ASSERT_TRUE(writer.waitForFinished(30000));
            Take(writer);
        }
        for (QProcess& reader : readers) {
            EXPECT_EQ(reader.state(), QProcess::Running) << reader.readAllStandardError().constData();
            reader.kill();
            ASSERT_TRUE(reader.waitForFinished(30000));
            EXPECT_FALSE(reader.readAllStandardOutput().contains("torn"));
        }
        if (round % 10 == 9) {
            ASSERT_EQ(DBEngine::ExamineDatabase(FileName()).Verdict, FileReport::State::Sound);
        }
    }
    EXPECT_GT(Acknowledged_.size(), 20U);
    ExpectAllThere();
}

TEST_P(SeveralProcesses, KilledInNestedTransactionsLeaveThemWholeOrNotAtAll)
{
    TableDef& table = Db().TableDefs().Item(QStringLiteral("T"));
    table.Fields().Append(MakeField(QStringLiteral("Number"), dbLong));
    DBEngine::BeginTrans();
    for (int i = 0; i < 9; ++i) {
        const auto rows = OpenTable(QStringLiteral("T"));
        rows->AddNew();
        rows->SetCollect(QStringLiteral("Number"), 0);
        rows->SetCollect(QStringLiteral("Memo"), QString(5000, QLatin1Char('m')));
        rows->Update();
    }
    DBEngine::CommitTrans();
    const unsigned seed = Seed();
    SCOPED_TRACE(testing::Message() << "seed (TOLVA_TEST_SEED): " << seed);
    std::mt19937 random(seed);
    for (int round = 0; round < 12; ++round) {
        QProcess mover;
        mover.start(QStringLiteral(TOLVA_STORE_WRITER), {QStringLiteral("move"), FileName()});
        ASSERT_TRUE(mover.waitForReadyRead(30000));
        mover.waitForFinished(static_cast<int>(random() % 30));
        mover.kill();
        ASSERT_TRUE(mover.waitForFinished(30000));
        const QList<QByteArray> lines = mover.readAllStandardOutput().split('\n');
        const int said = lines.value(lines.size() - 2).toInt();
        std::set<int> numbers;
        const auto rows = OpenTable(QStringLiteral("T"));
        for (; !rows->AtEOF(); rows->MoveNext())
            numbers.insert(rows->Collect(QStringLiteral("Number")).toInt());
        ASSERT_EQ(numbers.size(), 1U);
        EXPECT_GE(*numbers.begin(), said);
        EXPECT_LE(*numbers.begin(), said + 1);
    }
    ExpectAllThere();
}

TEST_P(SeveralProcesses, OfTwoThatCreateTheSameFileAtOnceOneIsRefused)
{
    for (int round = 0; round < 10; ++round) {
        const QString name = Path(QStringLiteral("New%1.mdb").arg(round));
        QProcess first;
        QProcess second;
        for (QProcess* process : {&first, &second}) {
            process->start(QStringLiteral(TOLVA_STORE_WRITER), {QStringLiteral("create"), name});
            ASSERT_TRUE(process->waitForStarted());
        }
        for (QProcess* process : {&first, &second})
            process->write("\n");
        int made = 0;
        for (QProcess* process : {&first, &second}) {
            ASSERT_TRUE(process->waitForFinished(30000));
            made += process->exitCode() == 0;
            if (process->exitCode() != 0) {
                EXPECT_EQ(process->readAllStandardOutput().toInt(), errCannotOpen);
            }
        }
        EXPECT_EQ(made, 1);
        EXPECT_EQ(DBEngine::OpenDatabase(name)->TableDefs().Count(), 1);
    }
    EXPECT_EQ(QDir(Path(QString())).entryList({QStringLiteral("~*")}).size(), 0);
}

INSTANTIATE_FOR_FILE_ENGINES(SeveralProcesses);

} // namespace
