// SPDX-License-Identifier: Apache-2.0

// tolva pending.

#include "CommandLineTest.h"
#include "platform/records/DBEngine.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>

namespace
{
constexpr int Outbox = 2;
constexpr int SendPending = 2;
constexpr double LongAgo = 36526;   // 2000
constexpr double LongAhead = 73051; // 2100
} // namespace

class PendingTest : public CommandLineTest
{
protected:
    void SetUp() override
    {
        CommandLineTest::SetUp();
        ASSERT_TRUE(QDir().mkpath(Out()));
    }
    QString Out(const QString& name = QString()) const
    {
        return name.isEmpty() ? Path(QStringLiteral("out")) : Path(QStringLiteral("out/") + name);
    }
    QStringList OutFiles() const { return QDir(Out()).entryList(QDir::Files | QDir::Hidden, QDir::Name); }

    /// Sets columns of a message's row, as a program that writes messages does.
    void Set(const QString& reference, const QString& columns) const
    {
        const auto database = dao::DBEngine::OpenDatabase(Station() + QStringLiteral("/Tolva.mdb"));
        database->Execute(QStringLiteral("UPDATE [Messages] SET %1 WHERE [Reference]=%2").arg(columns, reference));
        database->Close();
    }
    void MakePending(const QString& reference, double sendAfter = 0) const
    {
        Set(reference, QStringLiteral("[Category]=%1, [Flags]=%2, [SendAfter]=%3, [Sent]=0")
                           .arg(Outbox)
                           .arg(SendPending)
                           .arg(sendAfter));
    }
    /// A mail that waits to be sent; its number.
    QString Pending(const QByteArray& subject, double sendAfter = 0) const
    {
        const QString reference = FileMail(Mail(subject));
        MakePending(reference, sendAfter);
        return reference;
    }
    /// A text message that waits to be sent; its number.
    QString PendingText(const QString& to, const QByteArray& text) const
    {
        const QString reference = FileMail(text, {QStringLiteral("--sms"), QStringLiteral("--from"),
                                                  QStringLiteral("Harbour"), QStringLiteral("--to"), to});
        MakePending(reference);
        return reference;
    }
    QJsonObject Message(const QString& reference) const
    {
        for (const QJsonObject& message : Messages()) {
            if (QString::number(message.value(QStringLiteral("reference")).toInt()) == reference)
                return message;
        }
        ADD_FAILURE() << "no message " << reference.toStdString();
        return {};
    }
    bool IsPending(const QString& reference) const
    {
        return Message(reference).value(QStringLiteral("flags")).toArray().contains(QStringLiteral("sendPending"));
    }
    QString FolderOf(const QString& reference) const
    {
        return Message(reference).value(QStringLiteral("category")).toString();
    }
    Outcome Export(const QStringList& words = {}) const
    {
        return OnStation("pending", QStringList{QStringLiteral("--export"), Out()} + words);
    }
};

TEST_F(PendingTest, ListsWhatWaitsInTheOutboxAndIsDue)
{
    FileMail(Mail("in the inbox"));
    const QString now = Pending("to be sent now");
    const QString past = Pending("to be sent since 2000", LongAgo);
    Pending("to be sent in 2100", LongAhead);
    const QString unmarked = Pending("being written");
    Set(unmarked, QStringLiteral("[Flags]=0"));
    const QString elsewhere = Pending("put aside");
    Set(elsewhere, QStringLiteral("[Category]=6"));
    const QByteArray list = Expect("pending");
    EXPECT_TRUE(list.contains("to be sent now")) << list.constData();
    EXPECT_TRUE(list.contains("to be sent since 2000"));
    EXPECT_TRUE(list.contains(" studio@harbour"));
    EXPECT_EQ(list.count('\n'), 2) << list.constData();

    const QList<QByteArray> lines = OnStation("pending", {QStringLiteral("--json")}).Lines();
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines.at(0).contains("\"category\":\"Outbox\"")) << lines.at(0).constData();
    EXPECT_TRUE(lines.at(0).contains("\"flags\":[\"sendPending\"]"));
    EXPECT_TRUE(lines.at(0).contains("\"reference\":" + now.toUtf8() + ","));
    EXPECT_TRUE(lines.at(1).contains("\"reference\":" + past.toUtf8() + ","));
}

TEST_F(PendingTest, NothingPendingIsNoFailure)
{
    FileMail(Mail("in the inbox"));
    const Outcome listed = OnStation("pending");
    EXPECT_EQ(listed.Code, 0);
    EXPECT_EQ(listed.Output, "");
    EXPECT_EQ(listed.Problems, "tolva: No messages.\n");
    EXPECT_EQ(Expect("pending", {QStringLiteral("--json")}), "");
    EXPECT_EQ(Expect("pending", {QStringLiteral("--export"), Out()}), "");
}

TEST_F(PendingTest, ExportWritesEachMailOctetByOctetUnderItsNumber)
{
    const QByteArray mail = Mail("8-bit \xE9", QByteArray("text \0 nul\n", 11));
    const QString first = FileMail(mail);
    MakePending(first);
    const QString second = Pending("../../second");
    const QByteArray printed = Expect("pending", {QStringLiteral("--export"), Out()});
    EXPECT_EQ(printed, Out(first).toUtf8() + ".eml\n" + Out(second).toUtf8() + ".eml\n");
    EXPECT_EQ(OutFiles(), (QStringList{first + QStringLiteral(".eml"), second + QStringLiteral(".eml")}));
    EXPECT_EQ(Read(Out(first + QStringLiteral(".eml"))), mail);
    EXPECT_TRUE(IsPending(first)) << "exporting changes nothing in the station";
}

TEST_F(PendingTest, ATextMessageIsItsNumbersAndItsText)
{
    const QString one = PendingText(QStringLiteral("07700 900123"), "You won!\nRing us. \xE2\x98\x8E");
    const QString two = PendingText(QStringLiteral("Pete <+44 7700 900124>; 60777"), "Hello");
    Expect("pending", {QStringLiteral("--export"), Out()});
    EXPECT_EQ(Read(Out(one + QStringLiteral(".sms"))), "To: 07700900123\n\nYou won!\nRing us. \xE2\x98\x8E\n");
    EXPECT_EQ(Read(Out(two + QStringLiteral(".sms"))), "To: +447700900124\nTo: 60777\n\nHello\n");
}

TEST_F(PendingTest, ATextMessageWithoutAProperNumberIsNotHandedOut)
{
    const QStringList bad = {QStringLiteral("HARBOUR"), QStringLiteral("-unicode"),
                             QStringLiteral("07700 900123, $(id)"), QStringLiteral("+")};
    for (const QString& to : bad) {
        const QString reference = FileMail("Hello", {QStringLiteral("--sms"), QStringLiteral("--from"),
                                                     QStringLiteral("60777"), QStringLiteral("--to=") + to});
        MakePending(reference);
        const Outcome outcome = Export();
        EXPECT_EQ(outcome.Code, 65) << to.toStdString();
        EXPECT_EQ(outcome.Problems, "tolva: Message " + reference.toUtf8() + " has no telephone number to go to.\n");
        Set(reference, QStringLiteral("[Flags]=0"));
    }
    EXPECT_EQ(OutFiles(), QStringList());
}

TEST_F(PendingTest, TheTypeChoosesMailsOrTextMessages)
{
    const QString mail = Pending("a mail");
    const QString text = PendingText(QStringLiteral("60777"), "a text");
    EXPECT_EQ(Export({QStringLiteral("--type"), QStringLiteral("sms")}).Code, 0);
    EXPECT_EQ(OutFiles(), QStringList{text + QStringLiteral(".sms")});
    EXPECT_EQ(Expect("pending", {QStringLiteral("--type"), QStringLiteral("email")}).count('\n'), 1);
    EXPECT_EQ(OnStation("pending", {QStringLiteral("--type"), QStringLiteral("fax")}).Code, 64);
}

TEST_F(PendingTest, AFileThatHoldsSomethingElseIsReplacedOnlyWhenAskedFor)
{
    const QString first = Pending("first");
    const QString second = Pending("second");
    const QString path = Write(QStringLiteral("out/") + first + QStringLiteral(".eml"), "precious");
    const Outcome outcome = Export();
    EXPECT_EQ(outcome.Code, 73);
    EXPECT_TRUE(outcome.Problems.contains("exists and holds something else")) << outcome.Problems.constData();
    EXPECT_EQ(Read(path), "precious");
    EXPECT_EQ(outcome.Output, Out(second).toUtf8() + ".eml\n") << "the others are exported";
    EXPECT_EQ(Export({QStringLiteral("--force")}).Code, 0);
    EXPECT_EQ(Read(path), Mail("first"));
}

TEST_F(PendingTest, ASecondExportFindsTheFilesOfTheFirst)
{
    const QString reference = Pending("a card");
    const QByteArray first = Expect("pending", {QStringLiteral("--export"), Out()});
    EXPECT_EQ(Expect("pending", {QStringLiteral("--export"), Out()}), first);
    EXPECT_EQ(OutFiles().size(), 1);
}

TEST_F(PendingTest, AMessageWhoseSendingWasInterruptedIsHeldBackAloud)
{
    const QString interrupted = Pending("interrupted");
    const QString other = Pending("other");
    Write(QStringLiteral("out/") + interrupted + QStringLiteral(".sending"), Mail("interrupted"));
    const Outcome outcome = Export();
    EXPECT_EQ(outcome.Code, 73);
    EXPECT_EQ(outcome.Output, Out(other).toUtf8() + ".eml\n");
    EXPECT_TRUE(outcome.Problems.startsWith("tolva: Message " + interrupted.toUtf8() +
                                            " was being sent when the sending was interrupted, so it may have gone "
                                            "out; it is held back."))
        << outcome.Problems.constData();
    EXPECT_EQ(Export({QStringLiteral("--force")}).Code, 73) << "not even with --force";
    EXPECT_FALSE(OutFiles().contains(interrupted + QStringLiteral(".eml")));
}

TEST_F(PendingTest, AMessageThatWasHandedOverWaitsForItsMarkInSilence)
{
    const QString reference = Pending("sent");
    Write(QStringLiteral("out/") + reference + QStringLiteral(".sent"), Mail("sent"));
    EXPECT_EQ(Expect("pending", {QStringLiteral("--export"), Out()}), "");
}

TEST_F(PendingTest, WhereThereIsNoFolderNothingIsExported)
{
    Pending("a card");
    const Outcome outcome = OnStation("pending", {QStringLiteral("--export"), Path(QStringLiteral("nowhere"))});
    EXPECT_EQ(outcome.Code, 73);
    EXPECT_TRUE(outcome.Problems.contains("There is no folder")) << outcome.Problems.constData();
}

TEST_F(PendingTest, SentClearsTheMarkSetsTheDateAndMovesToSent)
{
    const QString first = Pending("first");
    const QString second = Pending("second");
    const QString third = Pending("third");
    Set(second, QStringLiteral("[Sent]=40000, [Flags]=3"));
    EXPECT_EQ(Expect("pending", {QStringLiteral("sent"), first, second}), "");
    EXPECT_FALSE(IsPending(first));
    EXPECT_EQ(FolderOf(first), QStringLiteral("Sent"));
    const QDateTime sent = QDateTime::fromString(Message(first).value(QStringLiteral("sent")).toString(), Qt::ISODate);
    EXPECT_LT(qAbs(sent.secsTo(QDateTime::currentDateTimeUtc())), 120) << sent.toString().toStdString();
    EXPECT_EQ(Message(second).value(QStringLiteral("sent")).toString(), QStringLiteral("2009-07-06T00:00:00Z"));
    EXPECT_EQ(Message(second).value(QStringLiteral("flags")).toArray(), (QJsonArray{QStringLiteral("read")}));
    EXPECT_TRUE(IsPending(third));
    EXPECT_EQ(Expect("show", {first, QStringLiteral("--raw")}), Mail("first"));
    EXPECT_EQ(Expect("pending").count('\n'), 1);
}

TEST_F(PendingTest, MarkingTwiceSaysSoAndChangesNothing)
{
    const QString reference = Pending("a card");
    Expect("pending", {QStringLiteral("sent"), reference});
    const QJsonObject before = Message(reference);
    const Outcome again = OnStation("pending", {QStringLiteral("sent"), reference});
    EXPECT_EQ(again.Code, 0);
    EXPECT_EQ(again.Problems, "tolva: Message " + reference.toUtf8() + " is marked as sent already.\n");
    EXPECT_EQ(Message(reference), before);
}

TEST_F(PendingTest, WhatIsNotPendingIsRefused)
{
    const QString inbox = FileMail(Mail("in the inbox"));
    const QString withdrawn = Pending("withdrawn");
    Set(withdrawn, QStringLiteral("[Flags]=0"));
    const QString moved = Pending("moved");
    Set(moved, QStringLiteral("[Category]=6"));
    const auto refusal = [this](const QString& reference) {
        const Outcome outcome = OnStation("pending", {QStringLiteral("sent"), reference});
        EXPECT_EQ(outcome.Code, 65);
        return outcome.Problems;
    };
    EXPECT_EQ(refusal(inbox), "tolva: Message " + inbox.toUtf8() +
                                  " is not waiting to be sent: it is in Inbox and not marked to be sent.\n");
    EXPECT_EQ(refusal(withdrawn), "tolva: Message " + withdrawn.toUtf8() +
                                      " is not waiting to be sent: it is in Outbox and not marked to be sent.\n");
    EXPECT_EQ(refusal(moved),
              "tolva: Message " + moved.toUtf8() + " is not waiting to be sent: it is in Draft Messages.\n");
    EXPECT_TRUE(refusal(QStringLiteral("4711")).contains("There is no message 4711"));
    EXPECT_EQ(FolderOf(inbox), QStringLiteral("Inbox"));
}

TEST_F(PendingTest, MarkingNeedsTheRightToEditMessages)
{
    const QString reference = Pending("a card");
    AddUser(QStringLiteral("Work Experience"), 16);
    const Outcome outcome = OnStation(
        "pending", {QStringLiteral("sent"), reference, QStringLiteral("--user"), QStringLiteral("Work Experience")});
    EXPECT_EQ(outcome.Code, 77);
    EXPECT_TRUE(outcome.Problems.contains("has no right to mark messages as sent")) << outcome.Problems.constData();
    EXPECT_TRUE(IsPending(reference));
}

TEST_F(PendingTest, ACommandLineThatIsNotUnderstoodChangesNothing)
{
    const QString reference = Pending("a card");
    for (const QStringList& words :
         {QStringList{QStringLiteral("sent")}, QStringList{QStringLiteral("send"), reference},
          QStringList{QStringLiteral("sent"), QStringLiteral("x")},
          QStringList{QStringLiteral("sent"), reference, QStringLiteral("x")}})
        EXPECT_EQ(OnStation("pending", words).Code, 64) << words.join(u' ').toStdString();
    EXPECT_TRUE(IsPending(reference));
}
