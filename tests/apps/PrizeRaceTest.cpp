// SPDX-License-Identifier: Apache-2.0

// Two computers at one prize, one of them held up between any two of its steps, or killed there or at any moment.

#include "CommandLineTest.h"
#include "platform/directory/EmbeddedDirectory.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QRandomGenerator>
#include <QThread>

#include <csignal>

namespace
{
class PrizeRaceTest : public CommandLineTest
{
protected:
    void SetUp() override
    {
        CommandLineTest::SetUp();
        EmbeddedDirectory directory;
        directory.Open(Station() + QStringLiteral("/Directory"));
        for (const char* name : {"Slow", "Quick"}) {
            clsKVContact contact;
            contact.Name = QString::fromLatin1(name);
            directory.SaveContact(contact);
        }
    }
    QString AddPrize(int units) const
    {
        return QString::fromLatin1(
                   Expect("prize", {QStringLiteral("add"), QStringLiteral("--title"), QStringLiteral("Mug"),
                                    QStringLiteral("--supplied"), QString::number(units)}))
            .trimmed();
    }
    static QStringList Award(const QString& prize, const QString& name)
    {
        return {QStringLiteral("award"), prize, QStringLiteral("--name"), name, QStringLiteral("--yes")};
    }
    int Counted(const QString& prize) const
    {
        const QByteArray json = Expect("prize", {QStringLiteral("show"), prize, QStringLiteral("--json")});
        return QJsonDocument::fromJson(json).object().value(QStringLiteral("winners")).toInt();
    }
    /// The numbers of the winners that are stored.
    QStringList Stored(const QString& prize) const
    {
        QStringList winners;
        const Outcome outcome = OnStation("prize", {QStringLiteral("winners"), prize, QStringLiteral("--json")});
        for (const QByteArray& line : outcome.Lines()) {
            const QJsonObject winner = QJsonDocument::fromJson(line).object();
            winners.append(QString::number(winner.value(QStringLiteral("reference")).toInt()));
        }
        return winners;
    }
    /// Starts "prize FOLDER WORDS..." so that it stops in front of that lock.
    void StartSlow(QProcess& process, const QStringList& words, int stopAt) const
    {
        Prepare(process, QStringList{QStringLiteral("prize"), Station()} + words);
        QProcessEnvironment environment = process.processEnvironment();
        environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(STOPPING_LOCKS));
        environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0"));
        environment.insert(QStringLiteral("STOP_AT"), QString::number(stopAt));
        process.setProcessEnvironment(environment);
        process.start();
        ASSERT_TRUE(process.waitForStarted());
    }
    /// Waits until the process has stopped; false when it came to its end instead.
    static bool WaitForStop(QProcess& process)
    {
        const QString status = QStringLiteral("/proc/%1/stat").arg(process.processId());
        for (const QDeadlineTimer deadline(30000); !deadline.hasExpired();) {
            QFile file(status);
            const QByteArray line = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
            if (line.mid(line.lastIndexOf(')') + 2, 1) == "T")
                return true;
            if (process.waitForFinished(1))
                return false;
        }
        ADD_FAILURE() << "the award neither stopped nor ended";
        return false;
    }
    /// Holds a command, of which slow gives the words for a prize, up in front of each of its looks at the station in
    /// turn, while another one is run from beginning to end, and calls check(slow, quick, prize) after each.
    template <typename Slow, typename Quick, typename Check>
    void HoldUpEverywhere(int units, Slow&& slow, Quick&& quick, Check&& check)
    {
        for (int stopAt = 1; stopAt < 500; ++stopAt) {
            const QString prize = AddPrize(units);
            QProcess held;
            StartSlow(held, slow(prize), stopAt);
            if (!WaitForStop(held)) {
                EXPECT_GT(stopAt, 5) << "the command was never held up";
                return;
            }
            const Outcome between = OnStation("prize", quick(prize));
            ASSERT_EQ(::kill(static_cast<pid_t>(held.processId()), SIGCONT), 0);
            ASSERT_TRUE(held.waitForFinished(60000));
            check(Outcome{held.exitCode(), held.readAllStandardOutput(), held.readAllStandardError()}, between, prize);
            if (HasFailure()) {
                ADD_FAILURE() << "held up at " << stopAt;
                return;
            }
        }
        FAIL() << "the command never came to its end";
    }
    /// Awards, of which the second comes from beginning to end while the first is held up.
    template <typename Check>
    void AwardTwiceEverywhere(int units, Check&& check)
    {
        HoldUpEverywhere(
            units, [](const QString& prize) { return Award(prize, QStringLiteral("Slow")); },
            [](const QString& prize) { return Award(prize, QStringLiteral("Quick")); }, std::forward<Check>(check));
    }
    /// That a prize counts these winners, of whom as many are stored, and that the station is sound.
    void ExpectWinners(const QString& prize, int number) const
    {
        EXPECT_EQ(Stored(prize).size(), number);
        EXPECT_EQ(Counted(prize), number);
    }
    static quint32 NumberOf(const char* variable, quint32 otherwise)
    {
        bool isSet = false;
        const uint number = qEnvironmentVariable(variable).toUInt(&isSet);
        return isSet ? number : otherwise;
    }
    QJsonObject Prize(const QString& prize) const
    {
        return QJsonDocument::fromJson(Expect("prize", {QStringLiteral("show"), prize, QStringLiteral("--json")}))
            .object();
    }
    /// Kills a command in front of each of its looks at the station in turn, each time on a prize of its own of which
    /// prepare gives the words of the command, and calls check(prize, what tolva check says) after each. How often the
    /// station was not sound then.
    template <typename Command, typename Check>
    int KillEverywhere(int units, Command&& command, Check&& check)
    {
        int unsound = 0;
        for (int stopAt = 1; stopAt < 500; ++stopAt) {
            const QString prize = AddPrize(units);
            QProcess killed;
            StartSlow(killed, command(prize), stopAt);
            if (!WaitForStop(killed)) {
                EXPECT_EQ(killed.exitCode(), 0);
                EXPECT_GT(stopAt, 3) << "the command was never killed";
                return unsound;
            }
            EXPECT_EQ(killed.readAllStandardOutput(), "") << "it acknowledged what it goes on with";
            killed.kill();
            EXPECT_TRUE(killed.waitForFinished(60000));
            const Outcome found = OnStation("check");
            unsound += found.Code == 0 ? 0 : 1;
            check(prize, found);
            if (found.Code != 0) {
                const Outcome after = OnStation("check");
                EXPECT_EQ(after.Code, 0) << after.Problems.constData();
            }
            if (HasFailure()) {
                ADD_FAILURE() << "killed at " << stopAt;
                return unsound;
            }
        }
        ADD_FAILURE() << "the command never came to its end";
        return unsound;
    }
};
} // namespace

TEST_F(PrizeRaceTest, TheLastUnitIsAwardedOnceAndTheOtherIsToldSo)
{
    AwardTwiceEverywhere(1, [&](const Outcome& slow, const Outcome& quick, const QString& prize) {
        const bool isSlowFirst = slow.Code == 0;
        const Outcome& first = isSlowFirst ? slow : quick;
        const Outcome& second = isSlowFirst ? quick : slow;
        EXPECT_EQ(first.Code, 0) << first.Problems.constData();
        EXPECT_TRUE(first.Output.contains("\"Mug\", 0 of 1 left")) << first.Output.constData();
        EXPECT_EQ(second.Code, 73) << second.Problems.constData();
        EXPECT_EQ(second.Output, "");
        EXPECT_TRUE(second.Problems.contains("\"Mug\" has already been fully allocated: all 1 are won."))
            << second.Problems.constData();
        ExpectWinners(prize, 1);
    });
}

TEST_F(PrizeRaceTest, WithUnitsLeftEachWinnerIsStoredAndCounted)
{
    // More than enough, so that nothing but the award itself counts a winner.
    AwardTwiceEverywhere(10, [&](const Outcome& slow, const Outcome& quick, const QString& prize) {
        EXPECT_EQ(slow.Code, 0) << slow.Problems.constData();
        EXPECT_EQ(quick.Code, 0) << quick.Problems.constData();
        ExpectWinners(prize, 2);
    });
}

TEST_F(PrizeRaceTest, AnEditKeepsTheAwardThatIsMadeMeanwhile)
{
    HoldUpEverywhere(
        10,
        [](const QString& prize) {
            return QStringList{QStringLiteral("edit"), prize, QStringLiteral("--notes"), QStringLiteral("Blue")};
        },
        [](const QString& prize) { return Award(prize, QStringLiteral("Quick")); },
        [&](const Outcome& slow, const Outcome& quick, const QString& prize) {
            EXPECT_EQ(slow.Code, 0) << slow.Problems.constData();
            EXPECT_EQ(quick.Code, 0) << quick.Problems.constData();
            ExpectWinners(prize, 1);
            EXPECT_EQ(Prize(prize).value(QStringLiteral("notes")).toString(), QStringLiteral("Blue"));
        });
}

TEST_F(PrizeRaceTest, AnAwardKeepsTheEditThatIsMadeMeanwhile)
{
    HoldUpEverywhere(
        10, [](const QString& prize) { return Award(prize, QStringLiteral("Slow")); },
        [](const QString& prize) {
            return QStringList{QStringLiteral("edit"), prize, QStringLiteral("--notes"), QStringLiteral("Blue")};
        },
        [&](const Outcome& slow, const Outcome& quick, const QString& prize) {
            EXPECT_EQ(slow.Code, 0) << slow.Problems.constData();
            EXPECT_EQ(quick.Code, 0) << quick.Problems.constData();
            ExpectWinners(prize, 1);
            EXPECT_EQ(Prize(prize).value(QStringLiteral("notes")).toString(), QStringLiteral("Blue"));
        });
}

TEST_F(PrizeRaceTest, OtherHoursKeepTheAwardThatIsMadeMeanwhile)
{
    HoldUpEverywhere(
        10,
        [](const QString& prize) {
            return QStringList{QStringLiteral("hours"), prize, QStringLiteral("--set"), QStringLiteral("0-24")};
        },
        [](const QString& prize) { return Award(prize, QStringLiteral("Quick")); },
        [&](const Outcome& slow, const Outcome& quick, const QString& prize) {
            EXPECT_EQ(slow.Code, 0) << slow.Problems.constData();
            EXPECT_EQ(quick.Code, 0) << quick.Problems.constData();
            ExpectWinners(prize, 1);
        });
}

TEST_F(PrizeRaceTest, AnAwardThatIsKilledIsDoneOrNot)
{
    const int unsound = KillEverywhere(
        1, [](const QString& prize) { return Award(prize, QStringLiteral("Slow")); },
        [&](const QString& prize, const Outcome&) {
            const int stored = static_cast<int>(Stored(prize).size());
            EXPECT_EQ(Counted(prize), stored);
            EXPECT_EQ(OnStation("prize", Award(prize, QStringLiteral("Quick"))).Code, stored == 0 ? 0 : 73);
            ExpectWinners(prize, 1);
        });
    EXPECT_EQ(unsound, 0);
}

TEST_F(PrizeRaceTest, AWinnerWhoseTakingBackIsKilledIsThereOrNotAndCountedSo)
{
    const int unsound = KillEverywhere(
        1,
        [&](const QString& prize) {
            EXPECT_EQ(OnStation("prize", Award(prize, QStringLiteral("Quick"))).Code, 0);
            return QStringList{QStringLiteral("remove-winner"), Stored(prize).value(0), QStringLiteral("--yes")};
        },
        [&](const QString& prize, const Outcome&) {
            const int stored = static_cast<int>(Stored(prize).size());
            EXPECT_EQ(Counted(prize), stored);
            EXPECT_EQ(OnStation("prize", Award(prize, QStringLiteral("Slow"))).Code, stored == 0 ? 0 : 73);
        });
    EXPECT_EQ(unsound, 0);
}

TEST_F(PrizeRaceTest, APrizeWhoseDeletionIsKilledIsThereWithItsWinnerOrBothAreGone)
{
    QString winner;
    const int unsound = KillEverywhere(
        1,
        [&](const QString& prize) {
            EXPECT_EQ(OnStation("prize", Award(prize, QStringLiteral("Quick"))).Code, 0);
            winner = Stored(prize).value(0);
            return QStringList{QStringLiteral("delete"), prize, QStringLiteral("--yes")};
        },
        [&](const QString& prize, const Outcome&) {
            const bool isThere = OnStation("prize", {QStringLiteral("show"), prize}).Code == 0;
            EXPECT_EQ(OnStation("prize", {QStringLiteral("remove-winner"), winner}).Code, isThere ? 0 : 65);
        });
    EXPECT_EQ(unsound, 0);
}

/// TOLVA_KILL_ROUNDS sets the number of rounds: a few here, hundreds in the nightly run.
TEST_F(PrizeRaceTest, AwardsThatAreKilledAtAnyMomentAreCountedAsTheyAreStored)
{
    const quint32 rounds = NumberOf("TOLVA_KILL_ROUNDS", 30);
    const quint32 seed = NumberOf("TOLVA_TEST_SEED", QRandomGenerator::global()->generate());
    QRandomGenerator random(seed);
    const QString prize = AddPrize(1000000);
    QElapsedTimer whole;
    whole.start();
    ASSERT_EQ(OnStation("prize", Award(prize, QStringLiteral("Slow"))).Code, 0);
    const auto longest = static_cast<quint32>(whole.nsecsElapsed() / 1000);
    int killed = 0;
    int acknowledged = 1;
    for (quint32 round = 1; round <= rounds; ++round) {
        SCOPED_TRACE(testing::Message() << "seed " << seed << ", round " << round);
        QProcess award;
        Prepare(award, QStringList{QStringLiteral("prize"), Station()} + Award(prize, QStringLiteral("Slow")));
        award.start();
        ASSERT_TRUE(award.waitForStarted());
        QThread::usleep(random.bounded(longest));
        award.kill();
        ASSERT_TRUE(award.waitForFinished(60000));
        killed += award.exitStatus() == QProcess::CrashExit ? 1 : 0;
        acknowledged += award.readAllStandardOutput().contains("\"Mug\"") ? 1 : 0;
        const qsizetype stored = Stored(prize).size();
        ASSERT_EQ(Counted(prize), stored);
        ASSERT_GE(stored, acknowledged);
    }
    EXPECT_EQ(OnStation("check").Code, 0);
    EXPECT_GT(killed, 0);
}
