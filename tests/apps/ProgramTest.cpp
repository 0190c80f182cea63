// SPDX-License-Identifier: Apache-2.0

// The program as a whole: its help, what it does not understand, and the making of a station.

#include "CommandLineTest.h"

#include <QDir>

class ProgramTest : public CommandLineTest
{
};

TEST_F(ProgramTest, HelpNamesEveryCommandAndEachHasAPageOfItsOwn)
{
    const Outcome help = Run({QStringLiteral("--help")});
    EXPECT_EQ(help.Code, 0);
    EXPECT_EQ(help.Problems, "");
    for (const char* name :
         {"init", "file", "list", "show", "export", "move", "copy", "delete", "mark", "folders", "setting", "check"}) {
        EXPECT_TRUE(help.Output.contains(QByteArray("\n  ") + name + ' ')) << name;
        const Outcome page = Run({QString::fromLatin1(name), QStringLiteral("--help")});
        EXPECT_EQ(page.Code, 0) << name;
        EXPECT_EQ(page.Problems, "") << name;
        EXPECT_TRUE(page.Output.contains(QByteArray("Usage:\n  tolva ") + name + " FOLDER")) << name;
        EXPECT_TRUE(page.Output.contains(QByteArray("Example:\n  tolva ") + name)) << name;
        EXPECT_TRUE(page.Output.contains("--user")) << name;
    }
}

TEST_F(ProgramTest, HelpPagesFitATerminalOfAHundredAndTwentyColumns)
{
    for (const char* name :
         {"init", "file", "list", "show", "export", "move", "copy", "delete", "mark", "folders", "setting", "check"}) {
        for (const QByteArray& line : Run({QString::fromLatin1(name), QStringLiteral("--help")}).Lines())
            EXPECT_LE(line.size(), 120) << name << ": " << line.constData();
    }
}

TEST_F(ProgramTest, VersionIsOneLine)
{
    const Outcome version = Run({QStringLiteral("--version")});
    EXPECT_EQ(version.Code, 0);
    EXPECT_EQ(version.Lines().size(), 1);
    EXPECT_TRUE(version.Output.startsWith("tolva "));
}

TEST_F(ProgramTest, WhatIsNotUnderstoodIsAUsageErrorWithNothingOnStandardOutput)
{
    const QString station = Station();
    const QList<QStringList> wrong = {
        {},
        {QStringLiteral("frobnicate")},
        {QStringLiteral("list")},
        {QStringLiteral("list"), QString()},
        {QStringLiteral("list"), station, QStringLiteral("more")},
        {QStringLiteral("list"), station, QStringLiteral("--frob")},
        {QStringLiteral("list"), station, QStringLiteral("--sort"), QStringLiteral("size")},
        {QStringLiteral("list"), station, QStringLiteral("--category")},
        {QStringLiteral("list"), station, QStringLiteral("--where"), QStringLiteral("[Subject")},
        {QStringLiteral("list"), station, QStringLiteral("--where"), QStringLiteral("[NoSuchField]=1")},
        {QStringLiteral("show"), station},
        {QStringLiteral("show"), station, QStringLiteral("one")},
        {QStringLiteral("show"), station, QStringLiteral("-1")},
        {QStringLiteral("show"), station, QStringLiteral("99999999999")},
        {QStringLiteral("show"), station, QStringLiteral("1"), QStringLiteral("--raw"), QStringLiteral("--json")},
        {QStringLiteral("mark"), station, QStringLiteral("1")},
        {QStringLiteral("mark"), station, QStringLiteral("1"), QStringLiteral("answered")},
        {QStringLiteral("mark"), station, QStringLiteral("1"), QStringLiteral("x"), QStringLiteral("read")},
        {QStringLiteral("file"), station, QStringLiteral("--sms")},
        {QStringLiteral("file"), station, QStringLiteral("--from"), QStringLiteral("07700900123")},
        {QStringLiteral("file"), station, QStringLiteral("--sms"), QStringLiteral("--from"), QStringLiteral("1"),
         QStringLiteral("x.eml")},
        {QStringLiteral("folders"), station, QStringLiteral("remove"), QStringLiteral("x")},
        {QStringLiteral("folders"), station, QStringLiteral("add"), QStringLiteral("a/b")},
        {QStringLiteral("folders"), station, QStringLiteral("add"), QStringLiteral("  ")},
        {QStringLiteral("folders"), station, QStringLiteral("--parent"), QStringLiteral("Inbox")},
        {QStringLiteral("setting"), station},
        {QStringLiteral("init"), Path(QStringLiteral("new"))},
        {QStringLiteral("init"), Path(QStringLiteral("new")), QStringLiteral("--name"), QStringLiteral("X")},
        {QStringLiteral("init"), Path(QStringLiteral("new")), QStringLiteral("--name"), QStringLiteral(" "),
         QStringLiteral("--phone"), QStringLiteral("1")},
    };
    for (const QStringList& words : wrong) {
        const Outcome outcome = Run(words);
        EXPECT_EQ(outcome.Code, 64) << words.join(u' ').toStdString();
        EXPECT_EQ(outcome.Output, "") << words.join(u' ').toStdString();
        EXPECT_TRUE(outcome.Problems.startsWith("tolva: ")) << words.join(u' ').toStdString();
    }
    EXPECT_FALSE(QDir(Path(QStringLiteral("new"))).exists());
}

TEST_F(ProgramTest, AStationIsMadeOnceAndLeftAloneTheSecondTime)
{
    const QByteArray before = Read(Station() + QStringLiteral("/Tolva.mdb"));
    const Outcome again = OnStation(
        "init", {QStringLiteral("--name"), QStringLiteral("Other"), QStringLiteral("--phone"), QStringLiteral("1")});
    EXPECT_EQ(again.Code, 73);
    EXPECT_EQ(again.Output, "");
    EXPECT_EQ(Read(Station() + QStringLiteral("/Tolva.mdb")), before);
    EXPECT_EQ(Expect("setting", {QStringLiteral("Station.Name")}), "Harbour FM\n");
    EXPECT_EQ(Expect("setting", {QStringLiteral("Station.PhoneNumber")}), "01632 960100\n");
}

TEST_F(ProgramTest, MakingAStationLeavesNothingElseInTheFolder)
{
    EXPECT_EQ(QDir(Station()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name),
              (QStringList{QStringLiteral("Directory"), QStringLiteral("Tolva.mdb")}));
}

TEST_F(ProgramTest, AStationIsNotMadeWhereAFileStandsInTheWay)
{
    const QString file = Write(QStringLiteral("taken"), "x");
    EXPECT_EQ(Run({QStringLiteral("init"), file, QStringLiteral("--name"), QStringLiteral("X"),
                   QStringLiteral("--phone"), QStringLiteral("1")})
                  .Code,
              73);
}

TEST_F(ProgramTest, EveryCommandSaysThatThereIsNoStationAndMakesNone)
{
    const QString nowhere = Path(QStringLiteral("nowhere"));
    const QList<QStringList> commands = {
        {QStringLiteral("file"), nowhere},
        {QStringLiteral("list"), nowhere},
        {QStringLiteral("show"), nowhere, QStringLiteral("1")},
        {QStringLiteral("export"), nowhere, QStringLiteral("1"), QStringLiteral("x.eml")},
        {QStringLiteral("move"), nowhere, QStringLiteral("1"), QStringLiteral("Saved")},
        {QStringLiteral("copy"), nowhere, QStringLiteral("1"), QStringLiteral("Saved")},
        {QStringLiteral("delete"), nowhere, QStringLiteral("1")},
        {QStringLiteral("mark"), nowhere, QStringLiteral("1"), QStringLiteral("read")},
        {QStringLiteral("folders"), nowhere},
        {QStringLiteral("setting"), nowhere, QStringLiteral("Station.Name")},
        {QStringLiteral("check"), nowhere},
    };
    for (const QStringList& words : commands) {
        const Outcome outcome = Run(words);
        EXPECT_EQ(outcome.Code, 66) << words.join(u' ').toStdString();
        EXPECT_TRUE(outcome.Problems.contains("There is no station in")) << outcome.Problems.constData();
    }
    EXPECT_FALSE(QDir(nowhere).exists());
}

TEST_F(ProgramTest, SomebodyWhoIsNoUserIsTurnedAway)
{
    const Outcome outcome = OnStation("list", {QStringLiteral("--user"), QStringLiteral("Nobody")});
    EXPECT_EQ(outcome.Code, 67);
    EXPECT_EQ(outcome.Output, "");
}

TEST_F(ProgramTest, OutputThatCannotBeWrittenIsAnError)
{
    QProcess process;
    Prepare(process, {QStringLiteral("folders"), Station()});
    process.setStandardOutputFile(QStringLiteral("/dev/full"));
    process.start();
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 74);
    EXPECT_TRUE(process.readAllStandardError().contains("could not be written"));
}
