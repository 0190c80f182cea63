// SPDX-License-Identifier: Apache-2.0

// tolva list.

#include "CommandLineTest.h"

#include <QJsonArray>

class ListTest : public CommandLineTest
{
protected:
    qsizetype Found(const QString& text) const { return Messages({QStringLiteral("--find"), text}).size(); }
};

TEST_F(ListTest, AnEmptyFolderListsNothingAndIsNoError)
{
    const Outcome outcome = OnStation("list", {QStringLiteral("--category"), QStringLiteral("Drafts")});
    EXPECT_EQ(outcome.Code, 65) << "the fixed folder is called Draft Messages";
    const Outcome empty = OnStation("list", {QStringLiteral("--category"), QStringLiteral("Draft Messages")});
    EXPECT_EQ(empty.Code, 0);
    EXPECT_EQ(empty.Output, "");
    EXPECT_EQ(empty.Problems, "tolva: No messages.\n");
    EXPECT_EQ(Expect("list", {QStringLiteral("--json")}), "");
}

TEST_F(ListTest, ALineShowsNumberFlagsDateSenderAndSubject)
{
    FileMail(Mail("A card"));
    EXPECT_EQ(Expect("list", {QStringLiteral("--category"), QStringLiteral("Inbox")}),
              "     1 N---- 2026-11-20 08:00 Loveday Tregenza A card\n");
    EXPECT_EQ(Expect("list"), "     1 N---- 2026-11-20 08:00 Loveday Tregenza A card               Inbox\n");
}

TEST_F(ListTest, JsonHasAllItsMembersInEveryLine)
{
    FileMail(Mail("=?utf-8?q?Caf=C3=A9_=22quoted=22_\\?="));
    FileMail("Hello", {QStringLiteral("--sms"), QStringLiteral("--from"), QStringLiteral("07700900123")});
    const QList<QJsonObject> messages = Messages();
    ASSERT_EQ(messages.size(), 2);
    for (const QJsonObject& message : messages) {
        EXPECT_EQ(message.keys(),
                  (QStringList{QStringLiteral("category"), QStringLiteral("flags"), QStringLiteral("from"),
                               QStringLiteral("highlighted"), QStringLiteral("received"), QStringLiteral("reference"),
                               QStringLiteral("sent"), QStringLiteral("subject"), QStringLiteral("to"),
                               QStringLiteral("type")}));
    }
    const QJsonObject mail = Messages({QStringLiteral("--find"), QStringLiteral("loveday")}).value(0);
    EXPECT_EQ(mail.value(QStringLiteral("subject")).toString(), QString::fromUtf8("Caf\xC3\xA9 \"quoted\" \\"));
    EXPECT_EQ(mail.value(QStringLiteral("sent")).toString(), QStringLiteral("2026-11-20T08:00:00Z"));
    EXPECT_EQ(mail.value(QStringLiteral("flags")).toArray(), QJsonArray());
    EXPECT_EQ(mail.value(QStringLiteral("category")).toString(), QStringLiteral("Inbox"));
}

TEST_F(ListTest, EveryOddMailMakesALineOfValidJson)
{
    OnStation("file", {QStringLiteral(TOLVA_TEST_DATA "/mail")});
    EXPECT_GE(Messages().size(), 50);
}

TEST_F(ListTest, TextToFindStandsForItself)
{
    const QList<QByteArray> subjects = {"50% off",     "what?", "list [draft]", "a#b",
                                        "say \"hi\"",  "it's",  "star*fish",    "under_score",
                                        "back\\slash", "a]b[c", "#1/1/2026#",   "semi;colon--"};
    QByteArray mbox;
    for (const QByteArray& subject : subjects)
        mbox += "From a@example.org Fri Nov 20 08:00:00 2026\n" + Mail(subject) + '\n';
    Expect("file", {Write(QStringLiteral("subjects"), mbox)});
    for (const QByteArray& subject : subjects) {
        const QList<QJsonObject> found = Messages({QStringLiteral("--find"), QString::fromUtf8(subject)});
        ASSERT_EQ(found.size(), 1) << subject.constData();
        EXPECT_EQ(found.first().value(QStringLiteral("subject")).toString(), QString::fromUtf8(subject));
    }
    EXPECT_EQ(Found(QStringLiteral("?")), 1);
    EXPECT_EQ(Found(QStringLiteral("*")), 1);
    EXPECT_EQ(Found(QStringLiteral("%")), 1);
    EXPECT_EQ(Found(QStringLiteral("_")), 1);
    EXPECT_EQ(Found(QStringLiteral("[")), 2);
}

TEST_F(ListTest, MarksOfTheKeyboardFindWhatTelephonesWriteForThem)
{
    FileMail(Mail(QByteArray("I can’t \u201csleep\u201d – at\u00a0all")));
    for (const char* text : {"can't", "can’t", "CAN‘T", "\"sleep\"", "\" - AT ALL", "— at all"})
        EXPECT_EQ(Found(QString::fromUtf8(text)), 1) << text;
    for (const char* text : {"cant", "can-t", "sleep –", "at-all"})
        EXPECT_EQ(Found(QString::fromUtf8(text)), 0) << text;
}

TEST_F(ListTest, FindingLooksIntoAddressesAndIgnoresCase)
{
    FileMail(Mail("=?utf-8?q?=C3=9Cberflutung?="));
    EXPECT_EQ(Found(QString::fromUtf8("\xC3\xBC"
                                      "BERFLUTUNG")),
              1);
    EXPECT_EQ(Found(QStringLiteral("LOVEDAY@EXAMPLE")), 1);
    EXPECT_EQ(Found(QStringLiteral("studio@harbourfm")), 1);
    EXPECT_EQ(Found(QStringLiteral("brackle")), 0);
}

TEST_F(ListTest, ConditionsOfSqlAreTakenAndCombined)
{
    FileMail(Mail("one"));
    FileMail(Mail("two"), {QStringLiteral("--category"), QStringLiteral("Saved")});
    EXPECT_EQ(Messages({QStringLiteral("--where"), QStringLiteral("[Subject]='one' OR [Subject]='two'")}).size(), 2);
    EXPECT_EQ(Messages({QStringLiteral("--where"), QStringLiteral("[Subject]='one' OR [Subject]='two'"),
                        QStringLiteral("--category"), QStringLiteral("Saved")})
                  .size(),
              1);
    EXPECT_EQ(Messages({QStringLiteral("--where"), QStringLiteral("[Sent] >= #11/20/2026# AND [Sent] < #11/21/2026#")})
                  .size(),
              2);
    const Outcome wrong = OnStation("list", {QStringLiteral("--where"), QStringLiteral("[Subject] = = 'one'")});
    EXPECT_EQ(wrong.Code, 64);
    EXPECT_TRUE(wrong.Problems.startsWith("tolva: --where: ")) << wrong.Problems.constData();
}

TEST_F(ListTest, TheNewestStandsFirstByEitherDate)
{
    QByteArray early = Mail("early");
    early.replace("20 Nov 2026", "19 Nov 2026");
    early.prepend("Received: from mx; Sat, 21 Nov 2026 10:00:00 +0000\r\n");
    QByteArray late = Mail("late");
    late.prepend("Received: from mx; Fri, 20 Nov 2026 10:00:00 +0000\r\n");
    FileMail(early);
    FileMail(late);
    const auto first = [&](const QString& order) {
        return Messages({QStringLiteral("--sort"), order}).value(0).value(QStringLiteral("subject")).toString();
    };
    EXPECT_EQ(first(QStringLiteral("sent")), QStringLiteral("late"));
    EXPECT_EQ(first(QStringLiteral("received")), QStringLiteral("early"));
}

TEST_F(ListTest, NoMailSteersTheTerminal)
{
    QByteArray hostile = Mail("\x1B]0;owned\x07\x1B[2J\x1B[31mred\x9B"
                              "5m\xC2\x9B"
                              "6m\rback\x08\x08",
                              "body\x1B[2J\x07\r\n");
    hostile.replace("Loveday Tregenza", "Lo\x1B[1mve");
    FileMail(hostile);
    FileMail(Mail("=?utf-8?q?=1B=5D0=3Bowned=07_=E2=80=AErtl?="));
    for (const Outcome& outcome : {OnStation("list"), OnStation("list", {QStringLiteral("--json")}),
                                   OnStation("show", {QStringLiteral("1")}), OnStation("show", {QStringLiteral("2")}),
                                   OnStation("show", {QStringLiteral("1"), QStringLiteral("--json")})}) {
        EXPECT_EQ(outcome.Code, 0);
        EXPECT_FALSE(outcome.Output.contains('\x1B')) << outcome.Output.constData();
        EXPECT_FALSE(outcome.Output.contains('\x07')) << outcome.Output.constData();
        EXPECT_FALSE(outcome.Output.contains('\r')) << outcome.Output.constData();
    }
    for (const Outcome& outcome : {OnStation("list"), OnStation("show", {QStringLiteral("2")})}) {
        EXPECT_FALSE(outcome.Output.contains("\xC2\x9B")) << "the one-character form of ESC [";
        EXPECT_FALSE(outcome.Output.contains("\xE2\x80\xAE")) << "the override of direction";
    }
}

TEST_F(ListTest, NamesOfFilesAreMadeHarmlessInComplaintsToo)
{
    const QString path = Write(QStringLiteral("\x1B[31mred.eml"), "");
    const Outcome outcome = OnStation("file", {path});
    EXPECT_EQ(outcome.Code, 65);
    EXPECT_FALSE(outcome.Problems.contains('\x1B'));
}
