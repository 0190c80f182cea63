// SPDX-License-Identifier: Apache-2.0
#include "CommandLineTest.h"
#include "platform/records/DBEngine.h"
#include "platform/records/engines/EngineRegistry.h"
#include "platform/records/engines/jet/DatabaseBuilder.h"

namespace
{

/// A station whose file is one of older software.
class JetStationTest : public CommandLineTest
{
protected:
    QString File() const { return Station() + QStringLiteral("/Tolva.mdb"); }

    void MakeJet() const
    {
        const QString jet = Path(QStringLiteral("Jet.mdb"));
        Write(QStringLiteral("Jet.mdb"), {});
        {
            const auto store =
                dao::engine::EngineRegistry::Instance().Named(QStringLiteral("sqlite")).Open(File(), QString(), true);
            dao::jet::WriteWholeStore(*store, jet);
        }
        ASSERT_TRUE(QFile::remove(File()));
        ASSERT_TRUE(QFile::rename(jet, File()));
    }
};

} // namespace

TEST_F(JetStationTest, IsListedShownAndCheckedAsItWas)
{
    FileMail(Mail("First of them", "Hello from the harbour.\r\n"));
    FileMail(Mail("Second of them", QByteArray("A long letter.\r\n").repeated(5000)));
    const QByteArray list = Expect("list");
    const QByteArray shown = Expect("show", {QStringLiteral("2")});
    const QByteArray check = Expect("check");
    MakeJet();
    EXPECT_EQ(Expect("list"), list);
    EXPECT_EQ(Expect("show", {QStringLiteral("2")}), shown);
    EXPECT_EQ(Expect("check"), QByteArray(check).replace("format is sqlite", "format is jet"));
    EXPECT_TRUE(check.contains("The format is sqlite.")) << check.constData();
}

TEST_F(JetStationTest, IsWorkedInLikeAnyOther)
{
    const QString number = FileMail(Mail("Only one"));
    MakeJet();
    EXPECT_EQ(FileMail(Mail("\xCE\x9A\xCE\xB1\xCE\xBB\xCE\xB7\xCE\xBC\xCE\xAD\xCF\x81\xCE\xB1")), QStringLiteral("2"));
    EXPECT_EQ(FileMail(Mail("Third", QByteArray("A long letter.\r\n").repeated(20000))), QStringLiteral("3"));
    Expect("delete", {number});
    Expect("mark", {QStringLiteral("3"), QStringLiteral("read")});
    const QByteArray list = Expect("list");
    EXPECT_TRUE(list.contains("Third")) << list.constData();
    EXPECT_TRUE(Expect("check").contains("The station is sound."));
    const QByteArray backup = Expect("backup");
    EXPECT_TRUE(backup.contains("message")) << backup.constData();
    EXPECT_EQ(FileMail(Mail("Fourth")), QStringLiteral("4"));
    Expect("compact", {QStringLiteral("--yes")});
    EXPECT_TRUE(Expect("list").contains("Fourth"));
    Expect("restore", {QStringLiteral("--yes")});
    EXPECT_FALSE(Expect("list").contains("Fourth"));
    EXPECT_EQ(FileMail(Mail("Fifth")), QStringLiteral("5")) << "a number that was given is given again";
    EXPECT_TRUE(Expect("check").contains("The station is sound."));
    EXPECT_TRUE(Read(File()).mid(4).startsWith("Standard Jet DB"));
}

TEST_F(JetStationTest, ItsWordsAreFound)
{
    FileMail(Mail("First of them", "Hello from the harbour.\r\n"));
    FileMail(Mail("Second of them", QByteArray("A long letter.\r\n").repeated(5000)));
    const QStringList words{QStringLiteral("harbour"), QStringLiteral("--json")};
    const QByteArray found = Expect("search", words);
    ASSERT_TRUE(found.contains("First of them")) << found.constData();
    MakeJet();
    EXPECT_EQ(Expect("search", words), found);
    EXPECT_EQ(Expect("index"), "2 of 2 messages are in the index\n");
}

TEST_F(JetStationTest, SaysInWordsThatItCannotBeChangedWhileAnOfficeProgramHasItOpen)
{
    const QString number = FileMail(Mail("Only one"));
    MakeJet();
    const QByteArray before = Read(File());
    const QString mail = Write(QStringLiteral("another.eml"), Mail("Another"));
    Write(QStringLiteral("station/Tolva.ldb"), QByteArray(64, ' '));
    for (const QStringList& words : {QStringList{QStringLiteral("file"), Station(), mail},
                                     QStringList{QStringLiteral("delete"), Station(), number},
                                     QStringList{QStringLiteral("compact"), Station(), QStringLiteral("--yes")},
                                     QStringList{QStringLiteral("mark"), Station(), number, QStringLiteral("read")}}) {
        const Outcome outcome = Run(words);
        EXPECT_EQ(outcome.Code, 77) << words.first().toStdString();
        EXPECT_TRUE(outcome.Problems.contains("can be read and not be changed")) << outcome.Problems.constData();
    }
    EXPECT_EQ(Read(File()), before);
    EXPECT_TRUE(Expect("list").contains("Only one"));
}

TEST_F(JetStationTest, IsMadeInTheFormatThatIsAskedFor)
{
    const QString folder = Path(QStringLiteral("asked"));
    const auto make = [&](const QString& format) {
        return Run({QStringLiteral("init"), folder, QStringLiteral("--name"), QStringLiteral("Asked"),
                    QStringLiteral("--phone"), QStringLiteral("1"), QStringLiteral("--format"), format});
    };
    const Outcome refused = make(QStringLiteral("paper"));
    EXPECT_NE(refused.Code, 0);
    EXPECT_TRUE(refused.Problems.contains("jet")) << refused.Problems.constData();
    const Outcome made = make(QStringLiteral("jet"));
    EXPECT_EQ(made.Code, 0) << made.Problems.constData();
    EXPECT_TRUE(Read(folder + QStringLiteral("/Tolva.mdb")).mid(4).startsWith("Standard Jet DB"));
    EXPECT_EQ(Run({QStringLiteral("check"), folder}).Code, 0);
}

TEST_F(JetStationTest, IsConvertedToWorkInIt)
{
    FileMail(Mail("First of them"));
    FileMail(Mail("Second of them", QByteArray("A long letter.\r\n").repeated(5000)));
    const QByteArray list = Expect("list");
    const QByteArray shown = Expect("show", {QStringLiteral("2")});
    MakeJet();
    const QByteArray before = Read(File());
    const QByteArray said = Expect("convert");
    EXPECT_TRUE(said.contains("after: 2 messages")) << said.constData();
    EXPECT_EQ(Expect("list"), list);
    EXPECT_EQ(Expect("show", {QStringLiteral("2")}), shown);
    EXPECT_EQ(Read(Station() + QStringLiteral("/Tolva-0001.BAK")), before);
    EXPECT_EQ(FileMail(Mail("Third")), QStringLiteral("3"));
    const Outcome again = OnStation("convert");
    EXPECT_EQ(again.Code, 69);
    EXPECT_TRUE(again.Problems.contains("has that format already")) << again.Problems.constData();
    EXPECT_EQ(OnStation("convert", {QStringLiteral("--to"), QStringLiteral("paper")}).Code, 65);
    const QByteArray there = Expect("list");
    Expect("convert", {QStringLiteral("--to"), QStringLiteral("jet")});
    EXPECT_TRUE(Read(File()).mid(4).startsWith("Standard Jet DB"));
    EXPECT_EQ(Expect("list"), there);
    EXPECT_EQ(FileMail(Mail("Fourth")), QStringLiteral("4"));
}

TEST_F(JetStationTest, IsNotConvertedWhileAnOfficeProgramHasItOpen)
{
    FileMail(Mail("Only one"));
    MakeJet();
    const QByteArray before = Read(File());
    const QString users = Write(QStringLiteral("station/Tolva.ldb"), QByteArray(64, ' '));
    const Outcome outcome = OnStation("convert");
    EXPECT_EQ(outcome.Code, 69);
    EXPECT_TRUE(outcome.Problems.contains("Tolva.ldb")) << outcome.Problems.constData();
    EXPECT_EQ(Read(File()), before);
    EXPECT_EQ(QDir(Station()).entryList(QDir::Files),
              QStringList({QStringLiteral("Tolva.ldb"), QStringLiteral("Tolva.mdb")}));
    ASSERT_TRUE(QFile::remove(users));
    Expect("convert");
}

TEST_F(JetStationTest, IsNotBackedUpAnewByEveryCommand)
{
    FileMail(Mail("Only one"));
    {
        const auto database = dao::DBEngine::OpenDatabase(File());
        database->Execute(QStringLiteral("DELETE FROM Settings WHERE Item LIKE '*LastBackup'"));
    }
    const QDir root(Station() + QStringLiteral("/Backups"));
    ASSERT_TRUE(QDir(root).removeRecursively());
    MakeJet();
    Expect("list");
    Expect("list");
    EXPECT_EQ(root.entryList(QDir::Dirs | QDir::NoDotAndDotDot).size(), 1) << "the day's backup, and that it was made";
}

TEST_F(JetStationTest, IsBackedUpWhenSomebodyAsks)
{
    FileMail(Mail("Only one"));
    MakeJet();
    ASSERT_TRUE(QDir(Station() + QStringLiteral("/Backups")).removeRecursively());
    const QByteArray said = Expect("backup");
    EXPECT_TRUE(said.contains("1 message")) << said.constData();
    const QByteArray backup = Read(QString::fromUtf8(said.split('\n').first()) + QStringLiteral("/Tolva.mdb"));
    EXPECT_TRUE(backup.mid(4).startsWith("Standard Jet DB"));
}
