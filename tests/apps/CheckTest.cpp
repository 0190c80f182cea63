// SPDX-License-Identifier: Apache-2.0

// tolva check, and what the other commands say to a damaged station.

#include "CommandLineTest.h"
#include "platform/records/DBEngine.h"

class CheckTest : public CommandLineTest
{
protected:
    QString File() const { return Station() + QStringLiteral("/Tolva.mdb"); }
    void Damage(qsizetype position, qsizetype length) const
    {
        QFile file(File());
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.seek(position));
        ASSERT_EQ(file.write(QByteArray(length, '\x5A')), length);
    }
};

TEST_F(CheckTest, ASoundStationIsCountedFolderByFolder)
{
    FileMail(Mail("a"));
    FileMail(Mail("b"));
    EXPECT_EQ(Expect("check"),
              "       2  Inbox\n       2  messages in all\nThe format is sqlite.\nThe station is sound.\n");
}

TEST_F(CheckTest, AFileOfAnotherKindIsNoStation)
{
    Write(QStringLiteral("station/Tolva.mdb"), QByteArray(20000, 'x'));
    EXPECT_EQ(OnStation("list").Code, 65);
    EXPECT_EQ(OnStation("file", {}, Mail("x")).Code, 65);
    const Outcome check = OnStation("check");
    EXPECT_EQ(check.Code, 65);
    EXPECT_TRUE(check.LastLine().startsWith("The station is not sound: ")) << check.Output.constData();
}

TEST_F(CheckTest, OverwrittenPagesAreFoundAndNeverCalledSound)
{
    for (int i = 0; i < 20; ++i)
        FileMail(Mail(QByteArray::number(i), QByteArray(5000, 'm')));
    const qsizetype size = QFileInfo(File()).size();
    Damage(size / 2 / 4096 * 4096, size / 4);
    const Outcome check = OnStation("check");
    EXPECT_EQ(check.Code, 65);
    EXPECT_FALSE(check.Problems.isEmpty());
    EXPECT_FALSE(check.Output.contains("is sound"));
}

TEST_F(CheckTest, AFileCutInTheMiddleIsFound)
{
    for (int i = 0; i < 20; ++i)
        FileMail(Mail(QByteArray::number(i), QByteArray(5000, 'm')));
    ASSERT_TRUE(QFile::resize(File(), QFileInfo(File()).size() / 2));
    EXPECT_EQ(OnStation("check").Code, 65);
}

TEST_F(CheckTest, AMessageInNoFolderIsNamedAndMovedToOneThatExists)
{
    const QString reference = FileMail(Mail("stray"));
    dao::DBEngine::OpenDatabase(File())->Execute(QStringLiteral("UPDATE [Messages] SET [Category]=999"));
    const Outcome check = OnStation("check");
    EXPECT_EQ(check.Code, 65);
    EXPECT_TRUE(check.Problems.contains("Message 1 stands in folder 999, which does not exist."))
        << check.Problems.constData();
    Expect("move", {reference, QStringLiteral("Inbox")});
    EXPECT_EQ(OnStation("check").Code, 0);
}

TEST_F(CheckTest, AMissingDirectoryIsFound)
{
    ASSERT_TRUE(QFile::remove(Station() + QStringLiteral("/Directory/Directory.mdb")));
    EXPECT_EQ(OnStation("check").Code, 65);
    EXPECT_EQ(OnStation("list").Code, 67);
}

TEST_F(CheckTest, CheckingWritesNothing)
{
    FileMail(Mail("a"));
    const QByteArray before = Read(File());
    Expect("check");
    EXPECT_EQ(Read(File()), before);
}

TEST_F(CheckTest, PrizesAndWinnersThatDisagreeAreNamedWithTheWayToPutThemRight)
{
    for (const char* title : {"Mug", "Tickets"})
        Expect("prize", {QStringLiteral("add"), QStringLiteral("--title"), QString::fromLatin1(title)});
    {
        const auto database = dao::DBEngine::OpenDatabase(File());
        const auto rows = database->OpenRecordset(QStringLiteral("PrizeWinners"), dao::dbOpenTable);
        for (const int prize : {1, 1, 9}) {
            rows->AddNew();
            rows->SetCollect(QStringLiteral("PrizeReference"), prize);
            rows->Update();
        }
        database->Execute(QStringLiteral("UPDATE [Prizes] SET [NumberWinners]=1 WHERE [Reference]=2"));
    }
    const Outcome check = OnStation("check");
    EXPECT_EQ(check.Code, 65);
    const auto line = [](const char* words) { return QByteArray("tolva: ") + words + '\n'; };
    EXPECT_EQ(
        check.Problems,
        line("Prize 1 (\"Mug\") has 1 unit, but 2 winners. \"tolva prize remove-winner\" takes a winner back; if "
             "there are more units, \"tolva prize edit\" says so with --supplied.") +
            line("Prize 1 (\"Mug\") counts 0 winners, but 2 are stored. \"tolva prize recount\" puts the count "
                 "right.") +
            line("Prize 2 (\"Tickets\") counts 1 winner, but 0 are stored. \"tolva prize recount\" puts the count "
                 "right.") +
            line("Winner 3 is of prize 9, which does not exist. \"tolva prize remove-winner\" takes it away."));
    EXPECT_TRUE(check.Output.contains("The station is not sound: prizes with a wrong count of winners: 2; prizes with "
                                      "more winners than units: 1; winners of no prize: 1."))
        << check.Output.constData();
    Expect("prize", {QStringLiteral("remove-winner"), QStringLiteral("3")});
    const Outcome recount = OnStation("prize", {QStringLiteral("recount"), QStringLiteral("1")});
    EXPECT_EQ(recount.Code, 0);
    EXPECT_EQ(recount.Output, "\"Mug\": 2 winners, 0 of 1 left\n");
    EXPECT_TRUE(recount.Problems.contains("has 1 unit, but 2 winners")) << recount.Problems.constData();
    EXPECT_EQ(Expect("prize", {QStringLiteral("recount"), QStringLiteral("2")}),
              "\"Tickets\": 0 winners, 1 of 1 left\n");
    Expect("prize", {QStringLiteral("remove-winner"), QStringLiteral("2")});
    EXPECT_EQ(OnStation("check").Code, 0);
}
