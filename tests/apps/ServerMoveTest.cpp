// SPDX-License-Identifier: Apache-2.0

// A station moves to a server and back, whole or not at all, also where it is killed on the way.

#include "ServerStation.h"
#include "platform/records/DBEngine.h"

#include <QDir>
#include <QFile>

namespace
{

/// A station in files, which moves.
class MovingStationTest : public ServerStationTest
{
protected:
    void SetUp() override { CommandLineTest::SetUp(); }
    Outcome Move() const
    {
        return OnStation("convert", {QStringLiteral("--to"), QStringLiteral("server"), QStringLiteral("--connect"),
                                     Connect(), QStringLiteral("--yes")});
    }
};

TEST_F(MovingStationTest, HoldsOnTheServerWhatItHeldInItsFiles)
{
    FileMail(Mail("First of them", "Hello from the harbour.\r\n"));
    const QString second = FileMail(Mail("Second of them", QByteArray("A long \xe9 letter.\r\n").repeated(5000)));
    Expect("contacts", {QStringLiteral("add"), QStringLiteral("Loveday Tregenza")});
    AddUser(QStringLiteral("Morwenna"), 1);
    const QByteArray list = Expect("list");
    const QByteArray mail = Expect("show", {second, QStringLiteral("--raw")});
    const QByteArray contacts = Expect("contacts");
    const QByteArray users = Expect("users");
    const Outcome moved = Move();
    EXPECT_EQ(moved.Code, 0) << moved.Problems.constData();
    EXPECT_TRUE(moved.Output.contains("after: 2 messages")) << moved.Output.constData();
    EXPECT_TRUE(Read(File()).startsWith("Tolva station on a server"));
    EXPECT_TRUE(Read(Station() + QStringLiteral("/Directory/Directory.mdb")).startsWith("Tolva station on a server"));
    EXPECT_TRUE(QFile::exists(Station() + QStringLiteral("/Tolva-0001.BAK")));
    EXPECT_EQ(Expect("list"), list);
    EXPECT_EQ(Expect("show", {second, QStringLiteral("--raw")}), mail);
    EXPECT_EQ(Expect("contacts"), contacts);
    EXPECT_EQ(Expect("users"), users);
    EXPECT_GT(FileMail(Mail("After the move")).toInt(), second.toInt());
}

TEST_F(MovingStationTest, StaysInItsFilesWhereTheServerRefuses)
{
    FileMail(Mail("Kept"));
    const QByteArray list = Expect("list");
    const QByteArray before = Read(File());
    const QString reader = Schema_.Name + QStringLiteral("_reader");
    TestServer::Shared().Execute(QStringLiteral("CREATE ROLE %1 LOGIN").arg(reader));
    const Outcome refused =
        OnStation("convert", {QStringLiteral("--to"), QStringLiteral("server"), QStringLiteral("--connect"),
                              Connect(reader), QStringLiteral("--yes")});
    EXPECT_EQ(refused.Code, 69) << refused.Problems.constData();
    EXPECT_TRUE(refused.Problems.contains("right is missing")) << refused.Problems.constData();
    EXPECT_EQ(Read(File()), before);
    EXPECT_EQ(Expect("list"), list);
    TestServer::Shared().Execute(QStringLiteral("DROP ROLE %1").arg(reader));
    EXPECT_EQ(Move().Code, 0);
    EXPECT_EQ(Expect("list"), list);
    EXPECT_EQ(Move().Code, 0);
    EXPECT_EQ(Expect("list"), list) << "a second move changes nothing";
}

TEST_F(MovingStationTest, NeverTakesThePlaceOfAnotherStation)
{
    FileMail(Mail("Of the other"));
    ASSERT_EQ(Move().Code, 0);
    const QByteArray other = Expect("list");
    const QString second = Path(QStringLiteral("second"));
    ASSERT_EQ(Run({QStringLiteral("init"), second, QStringLiteral("--name"), QStringLiteral("Hill FM"),
                   QStringLiteral("--phone"), QStringLiteral("01632 960101")})
                  .Code,
              0);
    const Outcome refused = Run({QStringLiteral("convert"), second, QStringLiteral("--to"), QStringLiteral("server"),
                                 QStringLiteral("--connect"), Connect(), QStringLiteral("--yes")});
    EXPECT_NE(refused.Code, 0);
    EXPECT_TRUE(refused.Problems.contains("already")) << refused.Problems.constData();
    EXPECT_EQ(Expect("list"), other);
}

TEST_F(MovingStationTest, ComesBackIntoFilesWithEverythingItHolds)
{
    FileMail(Mail("Before the move"));
    Expect("contacts", {QStringLiteral("add"), QStringLiteral("Loveday Tregenza")});
    ASSERT_EQ(Move().Code, 0);
    const QString last = FileMail(Mail("On the server", QByteArray("A long \xe9 letter.\r\n").repeated(20000)));
    const QByteArray list = Expect("list");
    const QByteArray mail = Expect("show", {last, QStringLiteral("--raw")});
    const QByteArray contacts = Expect("contacts");
    const QString joined = Path(QStringLiteral("joined"));
    ASSERT_EQ(Run({QStringLiteral("init"), joined, QStringLiteral("--connect"), Connect()}).Code, 0);
    const auto open = dao::DBEngine::OpenDatabase(QString(), 0, false, Connect());
    for (const QString& format : {QStringLiteral("sqlite"), QStringLiteral("jet")}) {
        const Outcome back = OnStation("convert", {QStringLiteral("--to"), format, QStringLiteral("--yes")});
        EXPECT_EQ(back.Code, 0) << back.Problems.constData();
        EXPECT_TRUE(back.Output.contains("after: 2 messages")) << back.Output.constData();
        if (format == QStringLiteral("sqlite")) {
            EXPECT_TRUE(back.Output.contains("Left on the server, closed: schema '" + Schema_.Name.toUtf8() + "'"))
                << back.Output.constData();
        }
        EXPECT_TRUE(back.Output.contains("/Tolva-000")) << back.Output.constData();
        EXPECT_FALSE(dao::DBEngine::IsLinked(File()));
        EXPECT_FALSE(dao::DBEngine::IsLinked(DirectoryFile()));
        EXPECT_EQ(Expect("list"), list);
        EXPECT_EQ(Expect("show", {last, QStringLiteral("--raw")}), mail);
        EXPECT_EQ(Expect("contacts"), contacts);
    }
    // No number is given a second time.
    EXPECT_GT(FileMail(Mail("In the file")).toInt(), last.toInt());
    // Nobody goes on in what was left: who has it open opens it anew, and who opens it is told.
    try {
        open->Execute(QStringLiteral("DELETE FROM [Messages]"));
        ADD_FAILURE() << "the station that was moved away is still changed";
    } catch (const dao::Error& error) {
        EXPECT_EQ(error.Number(), dao::errFileReplaced);
    }
    open->Close();
    const Outcome elsewhere = Run({QStringLiteral("list"), joined});
    EXPECT_EQ(elsewhere.Code, 69);
    EXPECT_TRUE(elsewhere.Problems.contains("was moved away")) << elsewhere.Problems.constData();
}

TEST_F(MovingStationTest, IsWholeAndTakenUpWhereverAMoveIsKilled)
{
    FileMail(Mail("First of them"));
    FileMail(Mail("Second of them"));
    const QByteArray list = Expect("list");
    const QByteArray users = Expect("users");
    bool isOnServer = false;
    int kills = 0;
    for (int call = 1;; call += call < 3 ? 1 : 5) {
        const TestServer::Schema schema = TestServer::Shared().NewSchema();
        const QString connect = TestServer::Shared().Connect(schema.Name);
        // There and back, each killed in front of the same call.
        int ended = 0;
        for (int way = 0; way < 2; ++way) {
            const QStringList to = way == 0
                                       ? QStringList{QStringLiteral("server"), QStringLiteral("--connect"), connect}
                                       : QStringList{QStringLiteral("sqlite")};
            const bool isKilled = !RunKilled(
                QStringList{QStringLiteral("convert"), Station(), QStringLiteral("--yes"), QStringLiteral("--to")} + to,
                call);
            kills += isKilled ? 1 : 0;
            ended += isKilled ? 0 : 1;
            if (isKilled) {
                const Outcome met = OnStation("list");
                EXPECT_TRUE(met.Code == 0 ? met.Output == list : met.Problems.contains("tolva convert"))
                    << call << met.Output.constData() << met.Problems.constData();
                const Outcome again =
                    OnStation("convert", QStringList{QStringLiteral("--yes"), QStringLiteral("--to")} + to);
                // What was behind the last step already needs nothing more.
                EXPECT_TRUE(again.Code == 0 || again.Problems.contains("has that format already"))
                    << call << again.Problems.constData();
            }
            isOnServer = way == 0;
            ASSERT_EQ(dao::DBEngine::IsLinked(File()), isOnServer) << call;
            ASSERT_EQ(dao::DBEngine::IsLinked(DirectoryFile()), isOnServer) << call;
            ASSERT_EQ(Expect("list"), list) << call;
            ASSERT_EQ(Expect("users"), users) << call;
        }
        if (ended == 2)
            break;
    }
    EXPECT_GT(kills, 6);
    // Nothing of the killed ones is left.
    const QStringList working{QStringLiteral("~*"), QStringLiteral("*-claim")};
    EXPECT_EQ(QDir(Station()).entryList(working, QDir::Files | QDir::Hidden), QStringList());
}

TEST_F(ServerStationTest, IsWholeWhereverARestoreIsKilled)
{
    FileMail(Mail("Kept"));
    const QByteArray kept = Expect("list");
    Expect("backup");
    const QStringList restore{QStringLiteral("restore"), Station(), QStringLiteral("--yes")};
    bool isKilled = true;
    for (int call = 1; isKilled; call += 11) {
        FileMail(Mail("Filed later"));
        const QByteArray later = Expect("list");
        isKilled = !RunKilled(restore, call);
        const QByteArray list = Expect("list");
        EXPECT_TRUE(list == kept || (isKilled && list == later)) << call << list.constData();
        Expect("restore", {QStringLiteral("--yes")});
        ASSERT_EQ(Expect("list"), kept) << call;
    }
    EXPECT_TRUE(IsOnServer());
}

} // namespace
