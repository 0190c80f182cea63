// SPDX-License-Identifier: Apache-2.0
#include "MailSupport.h"

#include <QTimeZone>

using cdo::Message;
using mailTest::Plain;
using mailTest::Sent;

namespace
{

QDateTime Utc(int year, int month, int day, int hour, int minute, int second)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute, second), QTimeZone::utc());
}

QDateTime SentOn(const char* value)
{
    return Message(QByteArray("Date: ") + value + "\n\n").SentOn();
}

} // namespace

TEST(MailHeaderReading, EmptyMailHasNothingAndOctetsStayEmpty)
{
    for (const QByteArray& octets : {QByteArray(), QByteArray("")}) {
        const Message message(octets);
        mailTest::ReadEverything(message);
        EXPECT_TRUE(message.Octets().isEmpty());
        EXPECT_TRUE(message.From().isEmpty());
        EXPECT_TRUE(message.Sender().isEmpty());
        EXPECT_TRUE(message.TextBody().isEmpty());
        EXPECT_TRUE(message.Attachments().isEmpty());
        EXPECT_FALSE(message.SentOn().isValid());
        EXPECT_FALSE(message.ReceivedTime().isValid());
    }
}

TEST(MailHeaderReading, OctetsOfAnUnchangedMailShareTheStorageTheyCameIn)
{
    const QByteArray octets = mailTest::MailFile("forwarded-signed-mail");
    const Message message(octets);
    mailTest::ReadEverything(message);
    EXPECT_EQ(message.Octets().constData(), octets.constData());
}

TEST(MailHeaderReading, FieldNamesIgnoreCaseAndBlanksBeforeTheColon)
{
    const Message message(Sent("SUBJECT : shouted\nfrom:a@example.com\ncC:\tc@example.com\n\n"));
    EXPECT_EQ(Plain(message.Subject()), "shouted");
    EXPECT_EQ(Plain(message.From()), "a@example.com");
    EXPECT_EQ(Plain(message.CC()), "c@example.com");
    EXPECT_EQ(Plain(message.Header("SuBjEcT")), "shouted");
    EXPECT_TRUE(message.Header("Absent").isEmpty());
}

TEST(MailHeaderReading, FoldedValueIsOneLine)
{
    EXPECT_EQ(Plain(Message(Sent("Subject: one\n two\n\tthree\n\nbody")).Subject()), "one two three");
}

TEST(MailHeaderReading, FirstOfTwoFieldsCounts)
{
    const Message message(Sent("From: first@example.com\nFrom: second@example.com\nSubject: a\nSubject: b\n\n"));
    EXPECT_EQ(Plain(message.From()), "first@example.com");
    EXPECT_EQ(Plain(message.Sender()), "first@example.com");
    EXPECT_EQ(Plain(message.Subject()), "a");
}

TEST(MailHeaderReading, EncodedWordsAreDecodedInEachCharacterSet)
{
    EXPECT_EQ(Plain(Message("Subject: =?utf-8?B?R3LDvMOfZQ==?= =?iso-8859-1?Q?_aus_K=F6ln?=\n\n").Subject()),
              "Grüße aus Köln");
    EXPECT_EQ(Plain(Message("Subject: =?koi8-r?B?8NLJ18XU?=\n\n").Subject()), "Привет");
    EXPECT_EQ(Plain(Message("Subject: =?windows-1251?Q?=CF=F0=E8=E2=E5=F2?=\n\n").Subject()), "Привет");
    EXPECT_EQ(Plain(Message("Subject: =?iso-2022-jp?B?GyRCJF4bKEI=?=\n\n").Subject()), "ま");
}

TEST(MailHeaderReading, CharacterSplitBetweenEncodedWordsIsPutTogether)
{
    EXPECT_EQ(Plain(Message("Subject: =?utf-8?Q?Gr=C3?=\n =?utf-8?Q?=BC=C3=9Fe?=\n\n").Subject()), "Grüße");
}

TEST(MailHeaderReading, Base64WordsThatArePaddedEachAreAllRead)
{
    EXPECT_EQ(
        Plain(Message("Subject: =?utf-8?B?R3LDvMOfZQ==?= =?UTF-8?B?QQ==?=\n =?utf-8?b?Qg==?= tail\n\n").Subject()),
        "GrüßeAB tail");
    EXPECT_EQ(
        Plain(
            Message("From: =?utf-8?B?SsO2cmcg?= =?utf-8?B?TcO8bGxlcg==?= =?utf-8?B?IQ==?= <j@example.com>\n\n").From()),
        "Jörg Müller! <j@example.com>");
}

TEST(MailHeaderReading, UnknownCharacterSetOfAnEncodedWordIsRead)
{
    EXPECT_EQ(Plain(Message("Subject: =?x-unheard-of?Q?Caf=C3=A9?=\n\n").Subject()), "Café");
}

TEST(MailHeaderReading, RawEightBitTextIsUtf8OrElseWindows1252)
{
    EXPECT_EQ(Plain(Message("Subject: Gr\xC3\xBC\xC3\x9F"
                            "e\n\n")
                        .Subject()),
              "Grüße");
    EXPECT_EQ(Plain(Message("Subject: Gr\xFC\xDF"
                            "e \x93quoted\x94 \x80 5\n\n")
                        .Subject()),
              "Grüße “quoted” € 5");
    EXPECT_EQ(Plain(Message("From: J\xF6rg <j@example.com>\n\n").From()), "Jörg <j@example.com>");
}

TEST(MailHeaderReading, NulInAValueIsABlankAndNothingBehindItIsLost)
{
    EXPECT_EQ(Plain(Message(QByteArrayLiteral("Subject: be\0fore\nTo: b@example.com\n\n")).Subject()), "be fore");
    EXPECT_EQ(Plain(Message(QByteArrayLiteral("Subject: be\0fore\nTo: b@example.com\n\n")).To()), "b@example.com");
}

TEST(MailHeaderReading, EncodedLineBreakStaysOnTheLine)
{
    EXPECT_EQ(Plain(Message("Subject: =?utf-8?Q?a=0D=0ABcc:_x@example.com?=\n\n").Subject()), "a  Bcc: x@example.com");
}

TEST(MailHeaderReading, AddressesStandAsTheHeaderHasThem)
{
    EXPECT_EQ(Plain(Message("To: <a@example.com>, \"B, C\" <b@example.com>\n\n").To()),
              "<a@example.com>, \"B, C\" <b@example.com>");
    EXPECT_EQ(Plain(Message("To: undisclosed-recipients:;\n\n").To()), "undisclosed-recipients:;");
    EXPECT_EQ(Plain(Message("From: 07700900123\n\n").From()), "07700900123");
    EXPECT_EQ(Plain(Message("From: MyBank\n\n").From()), "MyBank");
}

TEST(MailHeaderReading, EncodedNameCannotPassForAnAddress)
{
    EXPECT_EQ(Plain(Message("From: =?utf-8?Q?Doe=2C_J=C3=B6rg?= <j@example.com>\n\n").From()),
              "\"Doe, Jörg\" <j@example.com>");
    EXPECT_EQ(Plain(Message("From: =?utf-8?Q?bank=40example.com=2C?= <evil@example.org>\n\n").From()),
              "\"bank@example.com,\" <evil@example.org>");
}

TEST(MailHeaderReading, SenderIsItsHeaderOrElseTheFirstFromMailbox)
{
    EXPECT_EQ(Plain(Message("From: a@example.com\nSender: Desk <d@example.com>\n\n").Sender()), "Desk <d@example.com>");
    EXPECT_EQ(Plain(Message("From: Ann <a@example.com>, b@example.com\n\n").Sender()), "Ann <a@example.com>");
    EXPECT_EQ(Plain(Message("From: Team: a@example.com, b@example.com;\n\n").Sender()), "a@example.com");
    EXPECT_EQ(Plain(Message("From: 07700900123\n\n").Sender()), "07700900123");
    EXPECT_EQ(Plain(Message("Subject: nobody\n\n").Sender()), "");
}

TEST(MailHeaderReading, DateIsUniversalTime)
{
    EXPECT_EQ(SentOn("Fri, 21 Nov 1997 09:55:06 -0600"), Utc(1997, 11, 21, 15, 55, 6));
    EXPECT_EQ(SentOn("Mon, 2 May 2005 16:07:05 +0100 (BST)").timeSpec(), Qt::UTC);
    EXPECT_EQ(SentOn("Mon,\n  2 May 2005\n 16:07 GMT"), Utc(2005, 5, 2, 16, 7, 0));
}

TEST(MailHeaderReading, ObsoleteDatesAreRead)
{
    EXPECT_EQ(SentOn("21 Nov 97 09:55:06 GMT"), Utc(1997, 11, 21, 9, 55, 6));
    EXPECT_EQ(SentOn("Thu, 13 Feb 03 09:55:06 EST"), Utc(2003, 2, 13, 14, 55, 6));
    EXPECT_EQ(SentOn("Thu, 13 Feb 2003 09:55:06 PDT"), Utc(2003, 2, 13, 16, 55, 6));
}

TEST(MailHeaderReading, TextThatIsNoDateIsInvalid)
{
    for (const char* value : {"", "bad time", "yesterday", "Pn, 29 paX 2007 21:13:00 +0100", "32 Foo 2007",
                              "Mon, 30 Jun 3609 15:33:50 +0600", "Sat, 31 Feb 2009 12:00:00 +0000"})
        EXPECT_FALSE(SentOn(value).isValid()) << value << ": " << qPrintable(SentOn(value).toString(Qt::ISODate));
}

TEST(MailHeaderReading, ReceivedTimeIsTheTopmostOneThatReads)
{
    const Message message(Sent("Received: by broken.example.com; no date at all\n"
                               "Received: from a.example.com by b.example.com (comment; with semicolon)\n"
                               " for <x@example.com>; Mon, 9 Jun 2008 12:24:02 -0700 (PDT; really)\n"
                               "Received: by older.example.com; Mon, 9 Jun 2008 10:00:00 +0000\n\n"));
    EXPECT_EQ(message.ReceivedTime(), Utc(2008, 6, 9, 19, 24, 2));
    EXPECT_FALSE(Message("Subject: never received\n\n").ReceivedTime().isValid());
}

TEST(MailHeaderReading, PriorityComesFromWhicheverHeaderSaysIt)
{
    const QString name = QStringLiteral("urn:schemas:httpmail:priority");
    EXPECT_EQ(Message("Importance: High\n\n").Field(name), QVariant(1));
    EXPECT_EQ(Message("Importance: low\nX-Priority: 1\n\n").Field(name), QVariant(-1));
    EXPECT_EQ(Message("X-Priority: 1 (Highest)\n\n").Field(name), QVariant(1));
    EXPECT_EQ(Message("X-Priority: 5\n\n").Field(name), QVariant(-1));
    EXPECT_EQ(Message("X-Priority: 3\n\n").Field(name), QVariant(0));
    EXPECT_EQ(Message("Priority: urgent\n\n").Field(name), QVariant(1));
    EXPECT_EQ(Message("Priority: non-urgent\n\n").Field(name), QVariant(-1));
    EXPECT_EQ(Message("Subject: plain\n\n").Field(name), QVariant(0));
}

TEST(MailHeaderReading, FieldsAreKeptByNameAndUnknownOnesAreInvalid)
{
    Message message;
    EXPECT_FALSE(message.Field(QStringLiteral("urn:schemas:httpmail:priority Field")).isValid());
    message.SetField(QStringLiteral("X:Y"), 5);
    EXPECT_EQ(message.Field(QStringLiteral("x:y")), QVariant(5));
    EXPECT_TRUE(message.Octets().isEmpty());
    message.SetOctets("Subject: other\n\n");
    EXPECT_FALSE(message.Field(QStringLiteral("x:y")).isValid());
}

TEST(MailHeaderReading, ConfigurationSaysThatDatesAreUniversalTime)
{
    const Message message;
    EXPECT_NE(message.ConfigurationField(QStringLiteral("urn:schemas:calendar:timezoneid")).toInt(), 0);
    EXPECT_FALSE(message.ConfigurationField(QStringLiteral("something else")).isValid());
}

TEST(MailHeaderReading, MailboxLineInFrontIsNoHeader)
{
    const QByteArray octets = "From joe@example.com Fri Feb 19 08:41:30 2010\nFrom: a@example.com\n\nbody\n";
    const Message message(octets);
    EXPECT_EQ(Plain(message.From()), "a@example.com");
    EXPECT_EQ(Plain(message.TextBody()), "body\n");
    EXPECT_EQ(message.Octets(), octets);
}

TEST(MailHeaderReading, LinesThatAreNoFieldsArePassedOver)
{
    const Message message(Sent("Subject: a\nquite Delivered-To: x\n folded junk\nnonsense\nTo: b@example.com\n\nbody"));
    EXPECT_EQ(Plain(message.Subject()), "a");
    EXPECT_EQ(Plain(message.To()), "b@example.com");
    EXPECT_EQ(Plain(message.TextBody()), "body");
}

TEST(MailHeaderReading, TextWithoutAnyHeaderIsBody)
{
    EXPECT_EQ(Plain(Message("just a text\nof two lines\n").TextBody()), "just a text\nof two lines\n");
    EXPECT_EQ(Plain(Message("\nSubject: not a header\n").TextBody()), "Subject: not a header\n");
    EXPECT_EQ(Plain(Message("\nSubject: not a header\n").Subject()), "");
}

TEST(MailHeaderReading, MissingEmptyLineEndsTheHeaderBeforeTheFirstOtherLine)
{
    const Message message("Subject: a\nTo: b@example.com\nHello there\nNote: well\n");
    EXPECT_EQ(Plain(message.To()), "b@example.com");
    EXPECT_EQ(Plain(message.TextBody()), "Hello there\nNote: well\n");
    EXPECT_EQ(Plain(message.Header("Note")), "");
    EXPECT_EQ(Plain(Message("Subject: only a header").Subject()), "only a header");
}
