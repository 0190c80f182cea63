// SPDX-License-Identifier: Apache-2.0

// A Jet file after every crash: the calls that its changes make are recorded, and the folder is made again as it may
// look when the process or the power goes between any two of them.

#include "platform/records/engines/jet/JetFixture.h"
#include "platform/records/engines/jet/RecordingFileSystem.h"

#include <QDir>

#include <iostream>

using namespace dao;

namespace
{

class JetCrash : public testing::Test
{
protected:
    JetCrash()
    {
        bool isSet = false;
        const int wanted = qEnvironmentVariableIntValue("TOLVA_TEST_SEED", &isSet);
        Seed_ = isSet ? static_cast<unsigned>(wanted) : std::random_device()();
        std::cerr << "seed " << Seed_ << '\n';
        Random_.seed(Seed_);
        const int states = qEnvironmentVariableIntValue("TOLVA_CRASH_STATES", &isSet);
        States_ = isSet ? states : 500;
    }

    int Below(int limit) { return static_cast<int>(Random_() % static_cast<unsigned>(limit)); }
    QString Path(const QString& name) const { return Folder_.filePath(name); }

    void MakeDatabase()
    {
        Database_ = DBEngine::CreateDatabase(Path(QStringLiteral("Test.mdb")), QString(), QStringLiteral("jet"));
        std::vector<std::unique_ptr<Field>> fields;
        fields.push_back(MakeField(QStringLiteral("Ref"), dbLong, 0, dbAutoIncrField));
        fields.push_back(MakeField(QStringLiteral("Name"), dbText, 200));
        fields.push_back(MakeField(QStringLiteral("Body"), dbMemo));
        AddTable(*Database_, QStringLiteral("T"), std::move(fields));
        AddIndex(*Database_, QStringLiteral("T"), QStringLiteral("Main"), {QStringLiteral("Ref")}, true, true);
        AddIndex(*Database_, QStringLiteral("T"), QStringLiteral("Name"), {QStringLiteral("Name")});
        for (int i = 0; i < 60; ++i)
            AddRow();
        Database_.reset();
    }
    void AddRow()
    {
        const auto rows = Database_->OpenRecordset(QStringLiteral("T"), dbOpenTable);
        rows->AddNew();
        Fill(*rows);
        rows->Update();
    }
    void Fill(Recordset& rows)
    {
        rows.SetCollect(QStringLiteral("Name"), QString(1 + Below(180), QChar(u'a' + Below(26))));
        rows.SetCollect(QStringLiteral("Body"),
                        QString(Below(4) == 0 ? Below(20000) : Below(300), QChar(u'a' + Below(26))));
    }
    bool FindRow(Recordset& rows)
    {
        rows.SetIndex(QStringLiteral("Main"));
        rows.Seek(SeekComparison::GreaterOrEqual, {Below(120)});
        return !rows.NoMatch();
    }
    void ChangeSomething()
    {
        const auto rows = Database_->OpenRecordset(QStringLiteral("T"), dbOpenTable);
        switch (Below(6)) {
        case 0:
            if (FindRow(*rows))
                rows->Delete();
            return;
        case 1:
        case 2:
            if (FindRow(*rows)) {
                rows->Edit();
                Fill(*rows);
                rows->Update();
            }
            return;
        case 3:
            Database_->Execute(
                QStringLiteral("DELETE FROM T WHERE Ref BETWEEN %1 AND %2").arg(Below(60)).arg(Below(60)));
            return;
        case 4: {
            DBEngine::BeginTrans();
            for (int i = Below(6); i >= 0; --i)
                AddRow();
            DBEngine::CommitTrans();
            return;
        }
        default:
            AddRow();
        }
    }

    QStringList Rows(const QString& file)
    {
        const auto database = DBEngine::OpenDatabase(file);
        return AllRows(*database, QStringLiteral("T")) +
               AllRows(*database, QStringLiteral("T"), QStringLiteral("Name"));
    }

    /// Opens what a crash left, and expects the state of one of two moments, and a sound file.
    void ExpectOneOf(const RecordingFileSystem::Files& files, const QStringList& before, const QStringList& behind,
                     const std::string& told)
    {
        SCOPED_TRACE(told + " seed " + std::to_string(Seed_));
        const QTemporaryDir crashed;
        for (auto file = files.cbegin(); file != files.cend(); ++file)
            SetOctets(crashed.filePath(file.key()), *file);
        const QString name = crashed.filePath(QStringLiteral("Test.mdb"));
        const QStringList rows = Rows(name);
        EXPECT_TRUE(rows == before || rows == behind)
            << rows.size() << " rows, neither " << before.size() << " nor " << behind.size();
        const FileReport report = DBEngine::ExamineDatabase(name);
        EXPECT_EQ(report.Verdict, FileReport::State::Sound) << qPrintable(report.Faults.join(u'\n'));
        EXPECT_EQ(QDir(crashed.path()).entryList({QStringLiteral("*-of-another")}).size(), 0);
    }

    unsigned Seed_ = 0;
    int States_ = 0;
    std::mt19937 Random_;
    QTemporaryDir Folder_;
    std::unique_ptr<Database> Database_;
};

} // namespace

TEST_F(JetCrash, LeavesWhatWasBeforeOrBehindAChangeAndLosesNothingThatReturned)
{
    MakeDatabase();
    struct Moment
    {
        std::size_t Calls;
        QStringList Rows;
    };
    std::vector<Moment> moments{{0, Rows(Path(QStringLiteral("Test.mdb")))}};
    std::vector<RecordingFileSystem::Files> kills;
    const auto recorded = std::make_unique<RecordingFileSystem>(Folder_.path());
    {
        Database_ = DBEngine::OpenDatabase(Path(QStringLiteral("Test.mdb")));
        const auto reader = DBEngine::OpenDatabase(Path(QStringLiteral("Test.mdb")));
        for (int change = 0; change < 40; ++change) {
            ChangeSomething();
            const std::size_t calls = recorded->CallCount();
            moments.push_back({calls, AllRows(*reader, QStringLiteral("T")) +
                                          AllRows(*reader, QStringLiteral("T"), QStringLiteral("Name"))});
        }
        Database_.reset();
    }
    FileSystem::SetCurrent(nullptr);
    const std::size_t calls = recorded->CallCount();
    ASSERT_GT(calls, 200U);
    for (int state = 0; state < States_ && !HasFailure(); ++state) {
        // Every call in turn with the process killed there, then places at random with the power gone.
        const bool isKill = static_cast<std::size_t>(state) < std::min<std::size_t>(calls, States_ / 2U);
        const std::size_t at =
            isKill ? calls * static_cast<std::size_t>(state) / std::min<std::size_t>(calls, States_ / 2U)
                   : Random_() % (calls + 1);
        std::size_t last = 0;
        while (last + 1 < moments.size() && moments[last + 1].Calls <= at)
            ++last;
        const QStringList& behind = moments[std::min(last + 1, moments.size() - 1)].Rows;
        ExpectOneOf(isKill ? recorded->AfterKill(at) : recorded->AfterPowerLoss(at, Random_), moments[last].Rows,
                    behind, (isKill ? "killed at call " : "without power at call ") + std::to_string(at));
    }
}
