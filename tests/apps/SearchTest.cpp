// SPDX-License-Identifier: Apache-2.0

// tolva search and tolva index.

#include "CommandLineTest.h"
#include "common/Enumerations.h"
#include "messages/search/IndexConnection.h"
#include "platform/records/DBEngine.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>

#include <array>
#include <csignal>

namespace
{
class SearchTest : public CommandLineTest
{
protected:
    /// The references that "search --json" prints.
    QList<int> Found(const QStringList& words) const
    {
        const Outcome outcome = OnStation("search", words + QStringList{QStringLiteral("--json")});
        EXPECT_EQ(outcome.Code, 0) << outcome.Problems.constData();
        QList<int> references;
        for (const QByteArray& line : outcome.Lines())
            references.append(QJsonDocument::fromJson(line).object().value(QStringLiteral("reference")).toInt());
        return references;
    }
    QDir Cache() const { return QDir(Path(QStringLiteral("cache/Tolva/Search"))); }
};
} // namespace

TEST_F(SearchTest, AWordOfABodyIsFoundWithoutAnythingBeingPreparedForIt)
{
    const int wanted = FileMail(Mail("Hello", "Who remembers the lighthouse?\r\n")).toInt();
    FileMail(Mail("Hello", "Nobody.\r\n"));
    EXPECT_EQ(Found({QStringLiteral("LIGHTHOUSE")}), QList<int>{wanted});
    EXPECT_EQ(Found({QStringLiteral("hello"), QStringLiteral("lighthouse?")}), QList<int>{wanted});
    const QByteArray table = Expect("search", {QStringLiteral("lighthouse")});
    EXPECT_TRUE(table.contains("Hello") && table.contains("Inbox")) << table.constData();
    EXPECT_EQ(Cache().entryList({QStringLiteral("*.index")}, QDir::Files).size(), 1);
}

TEST_F(SearchTest, WhatIsFiledMovedAndErasedIsFollowed)
{
    const QString first = FileMail(Mail("One", "ferry\r\n"));
    EXPECT_EQ(Found({QStringLiteral("ferry")}).size(), 1);
    const QString second = FileMail(Mail("Two", "ferry\r\n"));
    EXPECT_EQ(Found({QStringLiteral("ferry")}).size(), 2);
    Expect("move", {first, QStringLiteral("Saved")});
    EXPECT_EQ(Found({QStringLiteral("ferry"), QStringLiteral("in:saved")}), QList<int>{first.toInt()});
    EXPECT_EQ(OnStation("delete", {second, QStringLiteral("--permanently")}).Code, 0);
    EXPECT_EQ(Found({QStringLiteral("ferry")}), QList<int>{first.toInt()});
}

TEST_F(SearchTest, WhatOneProgramReadTheNextOneDoesNotReadAgain)
{
    for (int i = 0; i < 5; ++i)
        FileMail(Mail("Hello", "ferry\r\n"));
    const auto index = [this] {
        QProcess process;
        Prepare(process, {QStringLiteral("index"), Station()});
        // As users start it: with numbers of its own for what Qt hashes.
        QProcessEnvironment environment = process.processEnvironment();
        environment.remove(QStringLiteral("QT_HASH_SEED"));
        process.setProcessEnvironment(environment);
        process.start();
        ASSERT_TRUE(process.waitForFinished());
        ASSERT_EQ(process.exitCode(), 0) << process.readAllStandardError().constData();
    };
    const auto changes = [this] {
        const QString name = Cache().filePath(Cache().entryList({QStringLiteral("*.index")}, QDir::Files).first());
        return IndexConnection(name).Number("SELECT sum(changes) FROM shards");
    };
    index();
    const qint64 before = changes();
    FileMail(Mail("Hello", "ferry\r\n"));
    index();
    EXPECT_EQ(changes(), before + 1) << "the new one alone";
}

TEST_F(SearchTest, ProgramsThatMakeOneIndexAtOnceMakeItWhole)
{
    constexpr int Mails = 700;
    constexpr int Programs = 3;
    QByteArray mbox;
    for (int i = 0; i < Mails; ++i)
        mbox += "From a@example.org Fri Nov 20 08:00:00 2026\n" + Mail("Hello", "ferry\n") + '\n';
    Expect("file", {Write(QStringLiteral("mbox"), mbox)});
    std::array<QProcess, Programs> programs;
    for (QProcess& program : programs) {
        Prepare(program, {QStringLiteral("index"), Station()});
        program.start();
    }
    for (QProcess& program : programs) {
        ASSERT_TRUE(program.waitForFinished(120'000));
        EXPECT_EQ(program.exitCode(), 0) << program.readAllStandardError().constData();
        EXPECT_EQ(program.readAllStandardOutput(), "700 of 700 messages are in the index\n");
    }
    EXPECT_EQ(Cache().entryList({QStringLiteral("*.index")}, QDir::Files).size(), 1);
    const QList<int> found = Found({QStringLiteral("ferry"), QStringLiteral("--limit"), QStringLiteral("1000")});
    EXPECT_EQ(found.size(), Mails);
    EXPECT_EQ(QSet<int>(found.begin(), found.end()).size(), Mails) << "nobody twice";
}

TEST_F(SearchTest, BuildingThatIsEndedByCtrlCSaysSoAndTheNextRunDoesTheRest)
{
    constexpr int Mails = 3000;
    QByteArray mbox;
    for (int i = 0; i < Mails; ++i)
        mbox +=
            "From a@example.org Fri Nov 20 08:00:00 2026\n" + Mail("Hello", QByteArray("ferry\n").repeated(500)) + '\n';
    Expect("file", {Write(QStringLiteral("mbox"), mbox)});
    QProcess program;
    Prepare(program, {QStringLiteral("index"), Station()});
    program.start();
    // More than an index without messages writes.
    constexpr qint64 OctetsOfSteps = 200 * 1000;
    const auto hasBegun = [this] {
        const QFileInfoList logs = Cache().entryInfoList({QStringLiteral("*-wal")}, QDir::Files);
        return !logs.isEmpty() && logs.first().size() > OctetsOfSteps;
    };
    while (!hasBegun() && program.state() != QProcess::NotRunning)
        program.waitForFinished(5);
    ASSERT_EQ(::kill(static_cast<pid_t>(program.processId()), SIGINT), 0);
    ASSERT_TRUE(program.waitForFinished());
    EXPECT_EQ(program.exitCode(), 130);
    EXPECT_TRUE(program.readAllStandardError().contains("Ended early by Ctrl-C; the next run does the rest."));
    const int before = program.readAllStandardOutput().split(' ').first().toInt();
    EXPECT_LT(before, Mails);
    EXPECT_EQ(Expect("index"), "3000 of 3000 messages are in the index\n");
}

TEST_F(SearchTest, TheStationIsLeftAsItIs)
{
    FileMail(Mail("Hello", "ferry\r\n"));
    const QDir folder(Station());
    const auto content = [&] {
        QByteArray all;
        for (const QFileInfo& file : folder.entryInfoList(QDir::Files | QDir::Hidden, QDir::Name))
            all += file.fileName().toUtf8() + '\n' + Read(file.absoluteFilePath());
        return all;
    };
    // Whoever closes a station notes the second in it; so all of this is to happen within one.
    const auto second = [] { return QDateTime::currentSecsSinceEpoch(); };
    for (int attempts = 20; attempts > 0; --attempts) {
        const qint64 begin = second();
        Expect("list");
        const QByteArray before = content();
        Expect("index");
        EXPECT_EQ(Found({QStringLiteral("ferry")}).size(), 1);
        const QByteArray after = content();
        if (second() == begin) {
            EXPECT_TRUE(after == before) << "the index stands beside it, and nothing of it within";
            return;
        }
    }
    FAIL() << "The commands never came to their end within a second.";
}

TEST_F(SearchTest, TheLimitIsSaidAndMustBeANumber)
{
    for (int i = 0; i < 3; ++i)
        FileMail(Mail("Hello", "ferry\r\n"));
    const Outcome limited =
        OnStation("search", {QStringLiteral("ferry"), QStringLiteral("--limit"), QStringLiteral("2")});
    EXPECT_EQ(limited.Lines().size(), 2);
    EXPECT_TRUE(limited.Problems.contains("The first 2 of 3 messages")) << limited.Problems.constData();
    for (const char* wrong : {"0", "-1", "many", ""}) {
        EXPECT_EQ(
            OnStation("search", {QStringLiteral("ferry"), QStringLiteral("--limit"), QString::fromLatin1(wrong)}).Code,
            64)
            << wrong;
    }
    EXPECT_EQ(OnStation("search", {QStringLiteral("...")}).Code, 64) << "no word in it";
    EXPECT_EQ(OnStation("search", {QStringLiteral("zeppelin")}).Problems, "tolva: No messages.\n");
}

TEST_F(SearchTest, IndexSaysWhatIsInIt)
{
    for (int i = 0; i < 3; ++i)
        FileMail(Mail("Hello", "ferry\r\n"));
    EXPECT_EQ(Expect("index"), "3 of 3 messages are in the index\n");
    const QJsonObject said = QJsonDocument::fromJson(Expect("index", {QStringLiteral("--json")})).object();
    EXPECT_EQ(said.value(QStringLiteral("indexed")).toInt(), 3);
    EXPECT_TRUE(said.value(QStringLiteral("whole")).toBool());
}

TEST_F(SearchTest, WhatSoftwareChangesThatMovesNoStampIsSeenByTheNextIndexOrChange)
{
    const int quiet = FileMail(Mail("One", "ferry\r\n")).toInt();
    EXPECT_EQ(Found({QStringLiteral("ferry"), QStringLiteral("in:inbox")}), QList<int>{quiet});
    const auto move = [&](int category) {
        const auto database = dao::DBEngine::OpenDatabase(Path(QStringLiteral("station/Tolva.mdb")));
        return database->Execute(QStringLiteral("UPDATE [Messages] SET [Category]=%1").arg(category));
    };
    ASSERT_EQ(move(tmcSaved), 1);
    Expect("index");
    EXPECT_EQ(Found({QStringLiteral("ferry"), QStringLiteral("in:saved")}), QList<int>{quiet});
    ASSERT_EQ(move(tmcSent), 1);
    FileMail(Mail("Two", "harbour\r\n"));
    EXPECT_EQ(Found({QStringLiteral("ferry"), QStringLiteral("in:sent")}), QList<int>{quiet});
}

TEST_F(SearchTest, ADamagedIndexIsMadeAnewWithoutAWord)
{
    const int wanted = FileMail(Mail("Hello", "lighthouse\r\n")).toInt();
    Expect("index");
    const QString name = Cache().filePath(Cache().entryList({QStringLiteral("*.index")}, QDir::Files).first());
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    for (qint64 place = 4096; place + 100 < file.size(); place += 4096) {
        file.seek(place);
        file.write(QByteArray(100, 'x'));
    }
    file.close();
    EXPECT_EQ(Found({QStringLiteral("lighthouse")}), QList<int>{wanted});
}

TEST_F(SearchTest, ASettingOfTheMachineSwitchesItOffAndTakesWhatWasThereAway)
{
    FileMail(Mail("Hello", "lighthouse\r\n"));
    Expect("index");
    Write(QStringLiteral("Tolva.ini"), "[SOFTWARE\\Kelvarin\\Utils\\Databases]\nKeepSearchIndex=0\n");
    const Outcome off = OnStation("search", {QStringLiteral("lighthouse")});
    EXPECT_EQ(off.Code, 69);
    EXPECT_TRUE(off.Problems.contains("KeepSearchIndex")) << off.Problems.constData();
    EXPECT_TRUE(Cache().entryList(QDir::Files).isEmpty());
}

TEST_F(SearchTest, ACacheFolderThatCannotBeWrittenIsSaid)
{
    FileMail(Mail("Hello", "lighthouse\r\n"));
    Write(QStringLiteral("cache/Tolva"), "a file stands in the way");
    const Outcome outcome = OnStation("search", {QStringLiteral("lighthouse")});
    EXPECT_EQ(outcome.Code, 73);
    EXPECT_TRUE(outcome.Problems.contains("cannot be made")) << outcome.Problems.constData();
}
