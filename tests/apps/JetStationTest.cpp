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
    const QByteArray before = Read(File());
    EXPECT_EQ(Expect("list"), list);
    EXPECT_EQ(Expect("show", {QStringLiteral("2")}), shown);
    EXPECT_EQ(Expect("check"), check);
    EXPECT_EQ(Read(File()), before) << "looking changes nothing";
}

TEST_F(JetStationTest, ItsWordsAreFound)
{
    FileMail(Mail("First of them", "Hello from the harbour.\r\n"));
    FileMail(Mail("Second of them", QByteArray("A long letter.\r\n").repeated(5000)));
    const QStringList words{QStringLiteral("harbour"), QStringLiteral("--json")};
    const QByteArray found = Expect("search", words);
    ASSERT_TRUE(found.contains("First of them")) << found.constData();
    MakeJet();
    const QByteArray before = Read(File());
    EXPECT_EQ(Expect("search", words), found);
    EXPECT_EQ(Expect("index"), "2 of 2 messages are in the index\n");
    EXPECT_EQ(Read(File()), before) << "searching changes nothing";
}

TEST_F(JetStationTest, SaysInWordsThatItCannotBeChanged)
{
    const QString number = FileMail(Mail("Only one"));
    MakeJet();
    const QByteArray before = Read(File());
    const QString mail = Write(QStringLiteral("another.eml"), Mail("Another"));
    for (const QStringList& words : {QStringList{QStringLiteral("file"), Station(), mail},
                                     QStringList{QStringLiteral("delete"), Station(), number},
                                     QStringList{QStringLiteral("compact"), Station(), QStringLiteral("--yes")},
                                     QStringList{QStringLiteral("mark"), Station(), number, QStringLiteral("read")}}) {
        const Outcome outcome = Run(words);
        EXPECT_EQ(outcome.Code, 77) << words.first().toStdString();
        EXPECT_TRUE(outcome.Problems.contains("can be read and not be changed")) << outcome.Problems.constData();
    }
    EXPECT_EQ(Read(File()), before);
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
    EXPECT_FALSE(root.exists());
    Expect("convert");
    Expect("list");
    EXPECT_TRUE(root.exists()) << "the day's backup, once it can be noted";
}

TEST_F(JetStationTest, IsBackedUpWhenSomebodyAsks)
{
    FileMail(Mail("Only one"));
    MakeJet();
    ASSERT_TRUE(QDir(Station() + QStringLiteral("/Backups")).removeRecursively());
    const QByteArray said = Expect("backup");
    EXPECT_TRUE(said.contains("1 message")) << said.constData();
    EXPECT_EQ(Read(QString::fromUtf8(said.split('\n').first()) + QStringLiteral("/Tolva.mdb")), Read(File()));
}
