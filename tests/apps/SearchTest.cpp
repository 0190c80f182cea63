// SPDX-License-Identifier: Apache-2.0

// tolva search and tolva index.

#include "CommandLineTest.h"
#include "common/Enumerations.h"
#include "messages/search/IndexConnection.h"
#include "platform/records/DBEngine.h"

#include <QJsonArray>
#include <QJsonDocument>

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
