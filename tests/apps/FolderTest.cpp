// SPDX-License-Identifier: Apache-2.0

// tolva folders, and how folders are named on the command line.

#include "CommandLineTest.h"

#include <QJsonDocument>

class FolderTest : public CommandLineTest
{
protected:
    QString Add(const QString& name, const QStringList& words = {}) const
    {
        return QString::fromLatin1(Expect("folders", QStringList{QStringLiteral("add"), name} + words)).trimmed();
    }
    QStringList Paths() const
    {
        QStringList paths;
        for (const QByteArray& line : OnStation("folders", {QStringLiteral("--json")}).Lines()) {
            const QJsonDocument document = QJsonDocument::fromJson(line);
            EXPECT_FALSE(document.isNull()) << line.constData();
            paths.append(document.object().value(QStringLiteral("path")).toString());
        }
        return paths;
    }
};

TEST_F(FolderTest, AFreshStationHasTheFixedFolders)
{
    QStringList paths = Paths();
    paths.sort();
    EXPECT_EQ(paths, (QStringList{QStringLiteral("Auto-Messages"), QStringLiteral("Deleted Items"),
                                  QStringLiteral("Draft Messages"), QStringLiteral("Inbox"), QStringLiteral("Outbox"),
                                  QStringLiteral("Saved"), QStringLiteral("Sent")}));
}

TEST_F(FolderTest, FoldersAreAddedBelowOthersRenamedAndDeleted)
{
    const QString parent = Add(QStringLiteral("Competitions"));
    const QString child = Add(QStringLiteral("Hamper"), {QStringLiteral("--parent"), parent});
    EXPECT_TRUE(Paths().contains(QStringLiteral("Competitions/Hamper")));
    Expect("folders", {QStringLiteral("rename"), child, QStringLiteral("November Hamper")});
    EXPECT_TRUE(Paths().contains(QStringLiteral("Competitions/November Hamper")));
    EXPECT_EQ(OnStation("folders", {QStringLiteral("delete"), parent}).Code, 65) << "it holds a folder";
    Expect("folders", {QStringLiteral("delete"), QStringLiteral("Competitions/November Hamper")});
    Expect("folders", {QStringLiteral("delete"), parent});
    EXPECT_EQ(Paths().size(), 7);
}

TEST_F(FolderTest, AFolderWithMessagesIsNotDeleted)
{
    const QString folder = Add(QStringLiteral("Requests"));
    FileMail(Mail("x"), {QStringLiteral("--category"), folder});
    const Outcome outcome = OnStation("folders", {QStringLiteral("delete"), folder});
    EXPECT_EQ(outcome.Code, 65);
    EXPECT_TRUE(outcome.Problems.contains("holds 1 message")) << outcome.Problems.constData();
    EXPECT_TRUE(Paths().contains(QStringLiteral("Requests")));
}

TEST_F(FolderTest, CountsAreOfAllAndOfUnreadMessages)
{
    const QString first = FileMail(Mail("a"));
    FileMail(Mail("b"));
    Expect("mark", {first, QStringLiteral("read")});
    EXPECT_TRUE(Expect("folders").contains("\n    1       1       2  Inbox\n")) << Expect("folders").constData();
}

TEST_F(FolderTest, FixedFoldersStay)
{
    EXPECT_EQ(OnStation("folders", {QStringLiteral("rename"), QStringLiteral("Inbox"), QStringLiteral("X")}).Code, 65);
    EXPECT_EQ(OnStation("folders", {QStringLiteral("delete"), QStringLiteral("Sent")}).Code, 65);
}

TEST_F(FolderTest, TwoFoldersOfOneNameAtOnePlaceAreRefused)
{
    const QString first = Add(QStringLiteral("Requests"));
    const QString second = Add(QStringLiteral("Traffic"));
    EXPECT_EQ(OnStation("folders", {QStringLiteral("add"), QStringLiteral("requests")}).Code, 73);
    EXPECT_EQ(OnStation("folders", {QStringLiteral("rename"), second, QStringLiteral("REQUESTS")}).Code, 73);
    Expect("folders", {QStringLiteral("rename"), first, QStringLiteral("REQUESTS")});
}

TEST_F(FolderTest, ANameThatSeveralFoldersHaveIsRefusedWithTheCandidates)
{
    const QString players = Add(QStringLiteral("Players"));
    const QString choir = Add(QStringLiteral("Choir"));
    const QString one = Add(QStringLiteral("Tickets"), {QStringLiteral("--parent"), players});
    const QString two = Add(QStringLiteral("Tickets"), {QStringLiteral("--parent"), choir});
    const Outcome outcome = OnStation("file", {QStringLiteral("--category"), QStringLiteral("Tickets")}, Mail("x"));
    EXPECT_EQ(outcome.Code, 65);
    EXPECT_TRUE(outcome.Problems.contains((one + QStringLiteral(" (Players/Tickets)")).toUtf8()));
    EXPECT_TRUE(outcome.Problems.contains((two + QStringLiteral(" (Choir/Tickets)")).toUtf8()));
    EXPECT_TRUE(Messages().isEmpty());
    FileMail(Mail("x"), {QStringLiteral("--category"), QStringLiteral("choir/tickets")});
    FileMail(Mail("x"), {QStringLiteral("--category"), one});
    EXPECT_EQ(Messages().size(), 2);
}

TEST_F(FolderTest, UnknownFoldersAndParentsAreRefused)
{
    EXPECT_EQ(OnStation("folders", {QStringLiteral("delete"), QStringLiteral("Nowhere")}).Code, 65);
    EXPECT_EQ(OnStation("folders", {QStringLiteral("add"), QStringLiteral("X"), QStringLiteral("--parent"),
                                    QStringLiteral("Nowhere")})
                  .Code,
              65);
}
