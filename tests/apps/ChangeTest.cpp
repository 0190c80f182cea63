// SPDX-License-Identifier: Apache-2.0

// tolva move, copy, delete and mark.

#include "CommandLineTest.h"
#include "platform/directory/clsKVUser.h"

#include <QJsonArray>

class ChangeTest : public CommandLineTest
{
protected:
    qsizetype Count(const QString& folder) const { return Messages({QStringLiteral("--category"), folder}).size(); }
    bool IsRead(const QString& reference) const
    {
        for (const QJsonObject& message : Messages()) {
            if (QString::number(message.value(QStringLiteral("reference")).toInt()) == reference)
                return message.value(QStringLiteral("flags")).toArray().contains(QStringLiteral("read"));
        }
        ADD_FAILURE() << "no message " << reference.toStdString();
        return false;
    }
};

TEST_F(ChangeTest, AMessageMovesAndStaysTheSame)
{
    const QString reference = FileMail(Mail("A card"));
    EXPECT_EQ(Expect("move", {reference, QStringLiteral("Saved")}), "");
    EXPECT_EQ(Count(QStringLiteral("Inbox")), 0);
    EXPECT_EQ(Count(QStringLiteral("Saved")), 1);
    EXPECT_EQ(Expect("show", {reference, QStringLiteral("--raw")}), Mail("A card"));
}

TEST_F(ChangeTest, ACopyIsASecondMessageWithTheSameMail)
{
    const QString reference = FileMail(Mail("A card"));
    Expect("copy", {reference, QStringLiteral("Saved")});
    const QList<QJsonObject> copies = Messages({QStringLiteral("--category"), QStringLiteral("Saved")});
    ASSERT_EQ(copies.size(), 1);
    EXPECT_EQ(Count(QStringLiteral("Inbox")), 1);
    const QString copy = QString::number(copies.first().value(QStringLiteral("reference")).toInt());
    EXPECT_NE(copy, reference);
    EXPECT_EQ(Expect("show", {copy, QStringLiteral("--raw")}), Mail("A card"));
}

TEST_F(ChangeTest, OtherComputersLearnOfMovesAndDeletions)
{
    const QString reference = FileMail(Mail("A card"));
    const auto stamp = [this] { return Expect("setting", {QStringLiteral("Messages.LastChanged")}); };
    const QByteArray filed = stamp();
    Expect("move", {reference, QStringLiteral("Saved")});
    const QByteArray moved = stamp();
    EXPECT_NE(moved, filed);
    Expect("delete", {reference});
    const QByteArray deleted = stamp();
    EXPECT_NE(deleted, moved);
    Expect("delete", {reference, QStringLiteral("--permanently")});
    EXPECT_NE(stamp(), deleted);
}

TEST_F(ChangeTest, DeletingMovesToDeletedItemsWhereTheMessageStays)
{
    const QString reference = FileMail(Mail("A card"));
    Expect("delete", {reference});
    EXPECT_EQ(Count(QStringLiteral("Deleted Items")), 1);
    const Outcome again = OnStation("delete", {reference});
    EXPECT_EQ(again.Code, 0);
    EXPECT_EQ(again.Problems, "tolva: Message 1 is in Deleted Items already; --permanently erases it.\n");
    EXPECT_EQ(Count(QStringLiteral("Deleted Items")), 1);
    Expect("delete", {reference, QStringLiteral("--permanently")});
    EXPECT_TRUE(Messages().isEmpty());
}

TEST_F(ChangeTest, DeletingPermanentlyErasesAtOnce)
{
    Expect("delete", {FileMail(Mail("A card")), QStringLiteral("--permanently")});
    EXPECT_TRUE(Messages().isEmpty());
}

TEST_F(ChangeTest, MessagesAreMarkedReadAndUnread)
{
    const QString first = FileMail(Mail("first"));
    const QString second = FileMail(Mail("second"));
    const QString third = FileMail(Mail("third"));
    Expect("mark", {first, second, QStringLiteral("read")});
    EXPECT_TRUE(IsRead(first));
    EXPECT_TRUE(IsRead(second));
    EXPECT_FALSE(IsRead(third));
    Expect("mark", {second, third, QStringLiteral("unread")});
    EXPECT_TRUE(IsRead(first));
    EXPECT_FALSE(IsRead(second));
    EXPECT_FALSE(IsRead(third));
    EXPECT_EQ(Expect("show", {first, QStringLiteral("--raw")}), Mail("first"));
}

TEST_F(ChangeTest, MarkingEndsAtTheFirstMessageThatIsNotThere)
{
    const QString first = FileMail(Mail("first"));
    const QString last = FileMail(Mail("last"));
    const Outcome outcome = OnStation("mark", {first, QStringLiteral("42"), last, QStringLiteral("read")});
    EXPECT_EQ(outcome.Code, 65);
    EXPECT_TRUE(outcome.Problems.contains("There is no message 42"));
    EXPECT_TRUE(IsRead(first));
    EXPECT_FALSE(IsRead(last));
}

TEST_F(ChangeTest, ChangesOfAMessageThatIsNotThereAreRefused)
{
    for (const char* command : {"move", "copy"})
        EXPECT_EQ(OnStation(command, {QStringLiteral("42"), QStringLiteral("Saved")}).Code, 65) << command;
    EXPECT_EQ(OnStation("delete", {QStringLiteral("42")}).Code, 65);
    EXPECT_EQ(OnStation("delete", {QStringLiteral("42"), QStringLiteral("--permanently")}).Code, 65);
}

TEST_F(ChangeTest, ChangesIntoAFolderThatIsNotThereAreRefused)
{
    const QString reference = FileMail(Mail("A card"));
    for (const char* command : {"move", "copy"})
        EXPECT_EQ(OnStation(command, {reference, QStringLiteral("Nowhere")}).Code, 65) << command;
    EXPECT_EQ(Count(QStringLiteral("Inbox")), 1);
}

TEST_F(ChangeTest, WithoutTheRightNothingChanges)
{
    const QString reference = FileMail(Mail("A card"));
    AddUser(QStringLiteral("Work Experience"), 0);
    const QStringList user = {QStringLiteral("--user"), QStringLiteral("Work Experience")};
    const Outcome moved = OnStation("move", QStringList{reference, QStringLiteral("Saved")} + user);
    EXPECT_EQ(moved.Code, 77);
    EXPECT_TRUE(moved.Problems.contains("Work Experience has no right to move this message here."))
        << moved.Problems.constData();
    EXPECT_EQ(OnStation("delete", QStringList{reference} + user).Code, 77);
    EXPECT_EQ(OnStation("folders", QStringList{QStringLiteral("add"), QStringLiteral("X")} + user).Code, 77);
    EXPECT_EQ(OnStation("setting", QStringList{QStringLiteral("Station.Name"), QStringLiteral("X")} + user).Code, 77);
    EXPECT_EQ(Count(QStringLiteral("Inbox")), 1);
    EXPECT_EQ(Expect("setting", {QStringLiteral("Station.Name")}), "Harbour FM\n");
}
