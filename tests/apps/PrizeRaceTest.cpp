// Two computers that award the last unit of a prize, one of them held up between any two of its steps.

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
    /// Starts an award that stops in front of that lock.
    void StartSlow(QProcess& process, const QString& prize, int stopAt) const
    {
        Prepare(process, QStringList{QStringLiteral("prize"), Station()} + Award(prize, QStringLiteral("Slow")));
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
            StartSlow(slow, prize, stopAt);
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
