// Two computers that award the last unit of a prize, one of them held up between any two of its steps, or killed there.

#include "CommandLineTest.h"
#include "platform/directory/EmbeddedDirectory.h"

#include <QDeadlineTimer>
#include <QJsonDocument>
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
    /// Holds an award up in front of each of its looks at the station in turn, while another one is made from beginning
    /// to end, and calls check(slow, quick, prize) after each.
    template <typename Check>
    void HoldUpEverywhere(int units, Check&& check)
    {
        for (int stopAt = 1; stopAt < 500; ++stopAt) {
            const QString prize = AddPrize(units);
            QProcess slow;
            StartSlow(slow, Award(prize, QStringLiteral("Slow")), stopAt);
            if (!WaitForStop(slow)) {
                EXPECT_GT(stopAt, 10) << "the award was never held up";
                return;
            }
            const Outcome quick = OnStation("prize", Award(prize, QStringLiteral("Quick")));
            ASSERT_EQ(::kill(static_cast<pid_t>(slow.processId()), SIGCONT), 0);
            ASSERT_TRUE(slow.waitForFinished(60000));
            check(Outcome{slow.exitCode(), slow.readAllStandardOutput(), slow.readAllStandardError()}, quick, prize);
            if (HasFailure()) {
                ADD_FAILURE() << "held up at " << stopAt;
                return;
            }
        }
        FAIL() << "the award never came to its end";
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
            const Outcome after = OnStation("check");
            EXPECT_EQ(after.Code, 0) << after.Problems.constData();
            if (HasFailure()) {
                ADD_FAILURE() << "killed at " << stopAt;
                return unsound;
            }
        }
        ADD_FAILURE() << "the command never came to its end";
        return unsound;
    }
    static QByteArray Line(const QString& words, const QString& number)
    {
        return QStringLiteral("tolva: %1\n").arg(words.arg(number)).toUtf8();
    }
};
} // namespace

TEST_F(PrizeRaceTest, TheLastUnitIsAwardedOnceOrBothAwardsStandAndThatIsSaid)
{
    int bothStood = 0;
    HoldUpEverywhere(1, [&](const Outcome& slow, const Outcome& quick, const QString& prize) {
        const QStringList winners = Stored(prize);
        int acknowledged = 0;
        int said = 0;
        for (const Outcome& outcome : {slow, quick}) {
            EXPECT_TRUE(outcome.Code == 0 || outcome.Code == 65 || outcome.Code == 73) << outcome.Problems.constData();
            EXPECT_EQ(outcome.Code == 65, outcome.Problems.contains("has 1 unit, but 2 winners"));
            EXPECT_EQ(outcome.Code == 65, outcome.Problems.contains("it is taken back with: tolva prize "));
            EXPECT_EQ(outcome.Code == 73, outcome.Problems.contains("has already been fully allocated"))
                << outcome.Problems.constData();
            acknowledged += outcome.Output.contains("\"Mug\"") ? 1 : 0;
            said += outcome.Code == 65 ? 1 : 0;
        }
        EXPECT_EQ(winners.size(), acknowledged);
        EXPECT_GE(acknowledged, 1);
        EXPECT_EQ(said > 0, winners.size() == 2);
        if (winners.size() == 2) {
            ++bothStood;
            EXPECT_EQ(Expect("prize", {QStringLiteral("remove-winner"), winners.last()}), "");
        }
        EXPECT_EQ(Counted(prize), 1);
        EXPECT_EQ(OnStation("prize", Award(prize, QStringLiteral("Quick"))).Code, 73);
    });
    EXPECT_GT(bothStood, 0);
}

TEST_F(PrizeRaceTest, WithUnitsForBothEachWinnerIsCounted)
{
    HoldUpEverywhere(2, [&](const Outcome& slow, const Outcome& quick, const QString& prize) {
        EXPECT_EQ(slow.Code, 0) << slow.Problems.constData();
        EXPECT_EQ(quick.Code, 0) << quick.Problems.constData();
        EXPECT_EQ(Stored(prize).size(), 2);
        EXPECT_EQ(Counted(prize), 2);
    });
}

TEST_F(PrizeRaceTest, AnAwardThatIsKilledIsDoneOrNotOrFoundAndItsUnitIsNotAwardedAgain)
{
    const int unsound = KillEverywhere(
        1, [](const QString& prize) { return Award(prize, QStringLiteral("Slow")); },
        [&](const QString& prize, const Outcome& found) {
            const qsizetype stored = Stored(prize).size();
            if (found.Code != 0) {
                EXPECT_EQ(found.Problems, Line(QStringLiteral("Prize %1 (\"Mug\") counts 0 winners, but 1 is stored. "
                                                              "\"tolva prize recount\" puts the count right."),
                                               prize));
                EXPECT_EQ(stored, 1);
            }
            EXPECT_EQ(OnStation("prize", Award(prize, QStringLiteral("Quick"))).Code, stored == 0 ? 0 : 73);
            EXPECT_EQ(Stored(prize).size(), 1);
            EXPECT_EQ(Counted(prize), 1);
        });
    EXPECT_GT(unsound, 0);
}

TEST_F(PrizeRaceTest, AWinnerWhoseTakingBackIsKilledIsThereOrNotOrFoundAndARecountGivesTheUnitBack)
{
    const int unsound = KillEverywhere(
        1,
        [&](const QString& prize) {
            EXPECT_EQ(OnStation("prize", Award(prize, QStringLiteral("Quick"))).Code, 0);
            return QStringList{QStringLiteral("remove-winner"), Stored(prize).value(0), QStringLiteral("--yes")};
        },
        [&](const QString& prize, const Outcome& found) {
            const qsizetype stored = Stored(prize).size();
            if (found.Code != 0) {
                EXPECT_EQ(found.Problems, Line(QStringLiteral("Prize %1 (\"Mug\") counts 1 winner, but 0 are stored. "
                                                              "\"tolva prize recount\" puts the count right."),
                                               prize));
                EXPECT_EQ(Expect("prize", {QStringLiteral("recount"), prize}), "\"Mug\": 0 winners, 1 of 1 left\n");
            }
            EXPECT_EQ(Counted(prize), stored);
            EXPECT_EQ(OnStation("prize", Award(prize, QStringLiteral("Slow"))).Code, stored == 0 ? 0 : 73);
        });
    EXPECT_GT(unsound, 0);
}

TEST_F(PrizeRaceTest, APrizeWhoseDeletionIsKilledIsThereWithItsWinnerOrTheWinnerIsFound)
{
    QString winner;
    const int unsound = KillEverywhere(
        1,
        [&](const QString& prize) {
            EXPECT_EQ(OnStation("prize", Award(prize, QStringLiteral("Quick"))).Code, 0);
            winner = Stored(prize).value(0);
            return QStringList{QStringLiteral("delete"), prize, QStringLiteral("--yes")};
        },
        [&](const QString& prize, const Outcome& found) {
            const bool isThere = OnStation("prize", {QStringLiteral("show"), prize}).Code == 0;
            if (found.Code != 0) {
                EXPECT_FALSE(isThere);
                EXPECT_EQ(found.Problems, Line(QStringLiteral("Winner %1 is of prize ") + prize +
                                                   QStringLiteral(", which does not exist. \"tolva prize "
                                                                  "remove-winner\" takes it away."),
                                               winner));
                Expect("prize", {QStringLiteral("remove-winner"), winner});
            }
            EXPECT_EQ(OnStation("prize", {QStringLiteral("remove-winner"), winner}).Code, isThere ? 0 : 65);
        });
    EXPECT_GT(unsound, 0);
}
