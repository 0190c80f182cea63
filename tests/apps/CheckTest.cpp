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
    EXPECT_EQ(Expect("check"), "       2  Inbox\n       2  messages in all\nThe station is sound.\n");
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
