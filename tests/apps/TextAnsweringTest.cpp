// SPDX-License-Identifier: Apache-2.0

// tolva file --answer: who asks by text message for the song that plays gets it, once.

#include "SendTest.h"

#include <QDateTime>

#include <sqlite3.h>

#include <csignal>
#include <memory>
#include <vector>

namespace
{
const QString Ann = QStringLiteral("+44 7700 900123");
const QByteArray Playing = "CurrentSongFullName=\"Pete Quill - The Shanty\"\r\n";
constexpr int MostStops = 200;

class TextAnsweringTest : public SendTest
{
protected:
    void SetUp() override
    {
        SendTest::SetUp();
        Expect("setting", {QStringLiteral("Station.SMSPhoneNumber"), QStringLiteral("07700 900001")});
        Expect("setting", {QStringLiteral("Station.Country"), QStringLiteral("GB")});
        SetSong(Playing);
        ASSERT_TRUE(QDir().mkpath(Path(QStringLiteral("spool"))));
    }
    void SetSong(const QByteArray& file) const { Write(QStringLiteral("station/Tolva.oar"), file); }
    static QStringList Words(const QString& from = Ann)
    {
        return {QStringLiteral("--sms"), QStringLiteral("--answer"), QStringLiteral("--from"), from};
    }
    Outcome Text(const QByteArray& words, const QString& from = Ann) const
    {
        return OnStation("file", Words(from) << QStringLiteral("--verbose"), words);
    }
    /// Puts a text into the spool as a gateway that received it so many seconds ago.
    QString Spool(const QString& name, const QByteArray& words, const QByteArray& from = "+447700900123",
                  int secondsAgo = 0) const
    {
        const QString time =
            QDateTime::currentDateTime().addSecs(-secondsAgo).toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
        return Write(QStringLiteral("spool/%1.sms").arg(name),
                     "From: " + from + "\nReceived: " + time.toLatin1() + "\n\n" + words + "\n");
    }
    QStringList TakeWords() const
    {
        return {QStringLiteral("--take"), QStringLiteral("--answer"), Path(QStringLiteral("spool"))};
    }
    QList<QJsonObject> In(const char* folder) const
    {
        return Messages({QStringLiteral("--category"), QLatin1String(folder)});
    }
    QString TextOf(const QJsonObject& message) const
    {
        const QString reference = QString::number(message.value(QStringLiteral("reference")).toInt());
        return QJsonDocument::fromJson(Expect("show", {reference, QStringLiteral("--json")}))
            .object()
            .value(QStringLiteral("text"))
            .toString()
            .trimmed();
    }
    /// Starts a run that stops in front of that lock of any of the station's files; 0 for one that is not held up.
    void Start(QProcess& process, const QStringList& words, const QByteArray& input, int stopAt) const
    {
        Prepare(process, QStringList{QStringLiteral("file"), Station()} + words);
        QProcessEnvironment environment = process.processEnvironment();
        if (stopAt > 0) {
            environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(STOPPING_LOCKS));
            environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0"));
            environment.insert(QStringLiteral("STOP_AT"), QString::number(stopAt));
            environment.insert(QStringLiteral("STOP_IN"), QStringLiteral(".mdb"));
        }
        process.setProcessEnvironment(environment);
        process.start();
        process.write(input);
        process.closeWriteChannel();
        ASSERT_TRUE(process.waitForStarted());
    }
    int ClaimedNumbers() const
    {
        const auto directory = dao::DBEngine::OpenDatabase(Station() + QStringLiteral("/Directory/Directory.mdb"));
        return directory->OpenRecordset(QStringLiteral("AutomaticAnswers"), dao::dbOpenSnapshot)->RecordCount();
    }
    static void GoOn(QProcess& process)
    {
        ASSERT_EQ(::kill(static_cast<pid_t>(process.processId()), SIGCONT), 0);
        ASSERT_TRUE(process.waitForFinished(60000));
    }
};

/// A number for each round, so that none waits for another's five minutes.
QString NumberOf(int round)
{
    return QStringLiteral("+44 7700 900%1").arg(round + 100, 3, 10, QLatin1Char('0'));
}
} // namespace

TEST_F(TextAnsweringTest, WhoAsksGetsTheSongByAnAutomaticMessageThatGoesOutLikeAnyOther)
{
    const Outcome filed = Text("song?\n");
    EXPECT_EQ(filed.Code, 0);
    EXPECT_EQ(filed.Problems, "");
    EXPECT_EQ(filed.Lines().value(1), "answered The text message from +44 7700 900123 with 2");
    EXPECT_EQ(filed.LastLine(), "filed 1, failed 0, answered 1");
    EXPECT_EQ(In("Inbox").size(), 1);
    const QList<QJsonObject> waiting = In("Outbox");
    ASSERT_EQ(waiting.size(), 1);
    const QJsonObject& answer = waiting.first();
    EXPECT_EQ(answer.value(QStringLiteral("type")).toString(), QStringLiteral("sms"));
    EXPECT_EQ(answer.value(QStringLiteral("to")).toString(), Ann);
    EXPECT_EQ(answer.value(QStringLiteral("from")).toString(), QStringLiteral("07700 900001"));
    EXPECT_EQ(answer.value(QStringLiteral("flags")).toArray(),
              (QJsonArray{QStringLiteral("read"), QStringLiteral("sendPending"), QStringLiteral("automatic")}));
    EXPECT_TRUE(TextOf(answer).startsWith(QStringLiteral("Playing on Harbour FM at ")));
    EXPECT_TRUE(TextOf(answer).endsWith(QStringLiteral(": Pete Quill - The Shanty")));

    const Outcome sent =
        OnStation("send", {QStringLiteral("--type"), QStringLiteral("sms"), QStringLiteral("--sms"), Program()});
    EXPECT_EQ(sent.Code, 0) << sent.Problems.constData();
    ASSERT_EQ(Taken().size(), 1);
    EXPECT_TRUE(Taken().first().startsWith("ARGUMENTS +447700900123\nPlaying on")) << Taken().first().constData();
    EXPECT_EQ(In("Sent").size(), 1);
    EXPECT_EQ(In("Sent").first().value(QStringLiteral("flags")).toArray(),
              (QJsonArray{QStringLiteral("read"), QStringLiteral("automatic")}));
}

TEST_F(TextAnsweringTest, WithoutTheOptionNobodyIsAnswered)
{
    EXPECT_EQ(Expect("file", {QStringLiteral("--sms"), QStringLiteral("--from"), Ann}, "SONG"), "filed 1, failed 0\n");
    Spool(QStringLiteral("1"), "SONG");
    EXPECT_EQ(Expect("file", {QStringLiteral("--take"), Path(QStringLiteral("spool"))}),
              "filed 1, failed 0, passed over 0\n");
    EXPECT_TRUE(In("Outbox").isEmpty());
}

TEST_F(TextAnsweringTest, ATextThatAsksAndIsNotAnsweredSaysWhy)
{
    const QByteArray beginning = "did not answer The text message from ";
    EXPECT_EQ(Text("SONG", QStringLiteral("01632 960123")).Lines().value(1),
              beginning + "01632 960123: its sender is no mobile number");
    EXPECT_EQ(Text("SONG", QStringLiteral("VODAFONE")).Lines().value(1),
              beginning + "VODAFONE: its sender is no mobile number");
    EXPECT_EQ(Text("SONG", QStringLiteral("07700900001")).Lines().value(1),
              beginning + "07700900001: it comes from a number of the station");
    EXPECT_EQ(Text("Buy").Lines().value(1).left(8), "answered");
    const Outcome again = Text("SONG");
    EXPECT_EQ(again.Lines().value(1),
              beginning + "+44 7700 900123: its number was answered within the last five minutes");
    EXPECT_EQ(again.LastLine(), "filed 1, failed 0, answered 0");
    const Outcome other = Text("What is this song?");
    EXPECT_EQ(other.Lines().size(), 2) << other.Output.constData();
    EXPECT_EQ(In("Outbox").size(), 1);
    EXPECT_EQ(In("Inbox").size(), 6);
}

TEST_F(TextAnsweringTest, OfASpoolThatHadToWaitOnlyTheRecentTextsAreAnswered)
{
    Spool(QStringLiteral("1"), "SONG", "+447700900101", 7200);
    Spool(QStringLiteral("2"), "SONG", "+447700900102", 310);
    Spool(QStringLiteral("3"), "SONG", "+447700900103", 60);
    Spool(QStringLiteral("4"), "SONG", "+447700900104");
    Spool(QStringLiteral("5"), "SONG", "+447700900104", 30);
    Spool(QStringLiteral("6"), "Hello", "+447700900106");
    Write(QStringLiteral("spool/7.eml"), Mail("SONG", "SONG\r\n"));
    const Outcome taken = OnStation("file", TakeWords() << QStringLiteral("--verbose"));
    EXPECT_EQ(taken.Code, 0) << taken.Problems.constData();
    EXPECT_EQ(taken.LastLine(), "filed 7, failed 0, passed over 0, answered 2") << taken.Output.constData();
    EXPECT_EQ(taken.Output.count(": it did not come within the last five minutes\n"), 2) << taken.Output.constData();
    EXPECT_TRUE(QDir(Path(QStringLiteral("spool"))).entryList(QDir::Files).isEmpty());
    EXPECT_EQ(In("Outbox").size(), 2);
}

TEST_F(TextAnsweringTest, ATextThatDoesNotSayWhenItCameCameWhenItsFileWasWritten)
{
    const auto spool = [this](const QString& name, const QByteArray& from, int secondsAgo) {
        QFile file(Write(QStringLiteral("spool/") + name, "From: " + from + "\n\nSONG\n"));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addSecs(-secondsAgo), QFile::FileModificationTime));
    };
    spool(QStringLiteral("1.sms"), "+447700900101", 7200);
    spool(QStringLiteral("2.sms"), "+447700900102", 60);
    const QDateTime written = QFileInfo(Path(QStringLiteral("spool/1.sms"))).lastModified();
    QProcess process;
    Prepare(process, QStringList{QStringLiteral("file"), Station()} + TakeWords());
    QProcessEnvironment environment = process.processEnvironment();
    environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(FAILING_CALLS));
    environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0"));
    environment.insert(QStringLiteral("FAIL_NAMES"), QStringLiteral(".sms"));
    environment.insert(QStringLiteral("FAIL_FROM"), QStringLiteral("1"));
    process.setProcessEnvironment(environment);
    process.start();
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.readAllStandardOutput(), "filed 2, failed 0, passed over 0, answered 1\n");
    EXPECT_TRUE(process.readAllStandardError().contains("1.sms is in the station, but the file cannot be removed"));
    // What could not be removed is the same text still, however often it is met, and no newer one.
    const Outcome again = OnStation("file", TakeWords() << QStringLiteral("--verbose"));
    EXPECT_EQ(again.LastLine(), "filed 0, failed 0, passed over 2, answered 0") << again.Output.constData();
    EXPECT_TRUE(again.Output.contains("1.sms: it did not come within the last five minutes"))
        << again.Output.constData();
    QStringList received;
    for (const QJsonObject& message : In("Inbox"))
        received.append(message.value(QStringLiteral("received")).toString());
    EXPECT_TRUE(received.contains(written.toUTC().toString(Qt::ISODate))) << qPrintable(received.join(u' '));
}

TEST_F(TextAnsweringTest, WithoutASongTheAnswerSaysSoAndTheStationsTemplateSpeaksForIt)
{
    ASSERT_TRUE(QFile::remove(Path(QStringLiteral("station/Tolva.oar"))));
    EXPECT_EQ(Text("SONG").LastLine(), "filed 1, failed 0, answered 1");
    EXPECT_TRUE(TextOf(In("Outbox").first()).startsWith(QStringLiteral("Sorry, Harbour FM cannot tell")));
    SetSong("Jo \x1B[2J\x07Tide\n");
    Write(QStringLiteral("station/HTMLDocs/Automatic-Song.txt"), "<ZRT_SONG> it is");
    EXPECT_EQ(Text("SONG", NumberOf(1)).LastLine(), "filed 1, failed 0, answered 1");
    EXPECT_EQ(TextOf(In("Outbox").first()), QStringLiteral("Jo [2J Tide it is"));
}

TEST_F(TextAnsweringTest, ATextWhoseAnswerFailsIsFiledAndDoesNotComeAgain)
{
    Write(QStringLiteral("station/HTMLDocs/Automatic-Song.txt"), QByteArray(300000, 'a'));
    Spool(QStringLiteral("1"), "SONG");
    const Outcome taken = OnStation("file", TakeWords());
    EXPECT_EQ(taken.Code, 0);
    EXPECT_EQ(taken.LastLine(), "filed 1, failed 0, passed over 0, answered 0");
    EXPECT_EQ(taken.Problems.count('\n'), 1) << taken.Problems.constData();
    EXPECT_TRUE(taken.Problems.contains("1.sms was filed, but not answered: ")) << taken.Problems.constData();
    EXPECT_TRUE(QDir(Path(QStringLiteral("spool"))).entryList(QDir::Files).isEmpty());
    EXPECT_EQ(Messages().size(), 1);
}

TEST_F(TextAnsweringTest, AStationThatIsLockedBehindTheFilingFailsTheAnswerAlone)
{
    QProcess held;
    for (int stopAt = 1; stopAt < MostStops; ++stopAt) {
        Start(held, Words(), "SONG", stopAt);
        ASSERT_TRUE(HasStopped(held)) << "it came to its end before its text was seen filed";
        if (!Messages().isEmpty())
            break;
        held.kill();
        ASSERT_TRUE(held.waitForFinished());
    }
    ASSERT_EQ(Messages().size(), 1);
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open((Station() + QStringLiteral("/Tolva.mdb")).toUtf8().constData(), &other), SQLITE_OK);
    // Lets others read: the answer is to fail where it is stored, behind the claim of its number.
    ASSERT_EQ(sqlite3_exec(other, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);
    GoOn(held);
    sqlite3_exec(other, "ROLLBACK", nullptr, nullptr, nullptr);
    sqlite3_close(other);
    EXPECT_EQ(held.exitCode(), 0);
    EXPECT_EQ(held.readAllStandardOutput(), "filed 1, failed 0, answered 0\n");
    const QByteArray problems = held.readAllStandardError();
    EXPECT_TRUE(problems.contains("was filed, but no answer to it could be stored")) << problems.constData();
    EXPECT_EQ(problems.count('\n'), 1) << problems.constData();
    EXPECT_EQ(Messages().size(), 1);
    EXPECT_EQ(ClaimedNumbers(), 0) << "what failed counts for no answer";
    EXPECT_EQ(Text("SONG").LastLine(), "filed 1, failed 0, answered 1");
    EXPECT_EQ(ClaimedNumbers(), 1);
}

TEST_F(TextAnsweringTest, OfManyTextsOfOneNumberAtOnceOneIsAnswered)
{
    constexpr int Programs = 6;
    std::vector<std::unique_ptr<QProcess>> programs;
    for (int i = 0; i < Programs; ++i) {
        programs.push_back(std::make_unique<QProcess>());
        Start(*programs.back(), Words(), "SONG", 0);
    }
    for (const auto& program : programs) {
        ASSERT_TRUE(program->waitForFinished(60000));
        EXPECT_EQ(program->exitCode(), 0) << program->readAllStandardError().constData();
    }
    EXPECT_EQ(In("Inbox").size(), Programs);
    EXPECT_EQ(In("Outbox").size(), 1);
}

TEST_F(TextAnsweringTest, AnotherTextBetweenAnyTwoStepsOfTheFirstMakesNoSecondAnswer)
{
    // The table is there, so that every round takes the same steps.
    ASSERT_EQ(Text("SONG", NumberOf(0)).LastLine(), "filed 1, failed 0, answered 1");
    for (int stopAt = 1; stopAt < MostStops; ++stopAt) {
        QProcess held;
        Start(held, Words(NumberOf(stopAt)), "SONG", stopAt);
        const bool hasStopped = HasStopped(held);
        EXPECT_EQ(Text("BUY", NumberOf(stopAt)).Code, 0) << stopAt;
        if (hasStopped)
            GoOn(held);
        EXPECT_EQ(held.exitCode(), 0) << stopAt << held.readAllStandardError().constData();
        EXPECT_EQ(In("Outbox").size(), stopAt + 1) << stopAt;
        if (HasFailure() || !hasStopped) {
            EXPECT_GT(stopAt, 10) << "the run was hardly held up";
            return;
        }
    }
    FAIL() << "the run never came to its end";
}

TEST_F(TextAnsweringTest, KilledAnywhereATextIsFiledOnceAndAnsweredAtMostOnce)
{
    ASSERT_EQ(Text("SONG", NumberOf(0)).LastLine(), "filed 1, failed 0, answered 1");
    int answeredLater = 0;
    int unanswered = 0;
    for (int stopAt = 1; stopAt < MostStops; ++stopAt) {
        // No text is like another: each round is to look at as many of them.
        Spool(QString::number(stopAt), "SONG " + QByteArray::number(stopAt), NumberOf(stopAt).toLatin1(), stopAt);
        const qsizetype before = In("Outbox").size();
        QProcess held;
        Start(held, TakeWords(), {}, stopAt);
        const bool hasStopped = HasStopped(held);
        if (hasStopped) {
            held.kill();
            ASSERT_TRUE(held.waitForFinished());
        }
        const bool wasFiled = In("Inbox").size() == stopAt + 1;
        const bool wasAnswered = In("Outbox").size() == before + 1;
        const Outcome again = OnStation("file", TakeWords() << QStringLiteral("--verbose"));
        EXPECT_EQ(again.Code, 0) << stopAt;
        EXPECT_EQ(In("Inbox").size(), stopAt + 1) << stopAt;
        const qsizetype answers = In("Outbox").size() - before;
        EXPECT_LE(answers, 1) << stopAt;
        answeredLater += wasFiled && !wasAnswered && answers == 1 ? 1 : 0;
        unanswered += answers == 0 ? 1 : 0;
        // Killed behind the claim of its number.
        EXPECT_TRUE(answers == 1 || again.Output.contains("was answered within")) << stopAt << again.Output.constData();
        if (HasFailure() || !hasStopped) {
            EXPECT_GT(answeredLater, 0) << "no run was killed between filing and answering";
            EXPECT_GT(unanswered, 0) << "no run was killed between the claim and the answer";
            return;
        }
    }
    FAIL() << "the run never came to its end";
}
