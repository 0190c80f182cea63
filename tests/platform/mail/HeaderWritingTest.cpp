// SPDX-License-Identifier: Apache-2.0
#include "MailSupport.h"

#include <QTimeZone>

using cdo::Message;
using mailTest::Plain;
using mailTest::Sent;

TEST(MailHeaderWriting, SubjectIsReplacedInItsPlaceAndNothingElseChanges)
{
    Message message(Sent("From: a@example.com\nSubject: old\n folded\nX-Odd :  kept \nSubject: second\n\nbody \xFF\n"));
    message.SetSubject(QStringLiteral("new"));
    EXPECT_EQ(message.Octets(),
              Sent("From: a@example.com\nSubject: new\nX-Odd :  kept \nSubject: second\n\nbody \xFF\n"));
    EXPECT_EQ(Plain(message.Subject()), "new");
}

TEST(MailHeaderWriting, NewFieldGoesToTheEndOfTheHeader)
{
    Message message(Sent("From: a@example.com\n\nbody"));
    message.SetTo(QStringLiteral("b@example.com"));
    EXPECT_EQ(message.Octets(), Sent("From: a@example.com\nTo: b@example.com\n\nbody"));
}

TEST(MailHeaderWriting, LineEndsAreThoseOfTheMail)
{
    Message message("From: a@example.com\n\nbody");
    message.SetSubject(QStringLiteral("x"));
    EXPECT_EQ(message.Octets(), QByteArray("From: a@example.com\nSubject: x\n\nbody"));
}

TEST(MailHeaderWriting, EmptyTextRemovesEveryFieldOfTheName)
{
    Message message(Sent("Bcc: a@example.com\nFrom: b@example.com\nBCC: c@example.com\n d@example.com\n\nbody"));
    message.SetBCC(QString());
    EXPECT_EQ(message.Octets(), Sent("From: b@example.com\n\nbody"));
    message.SetBCC(QStringLiteral("  \r\n "));
    EXPECT_EQ(message.Octets(), Sent("From: b@example.com\n\nbody"));
}

TEST(MailHeaderWriting, SettingWhatIsThereChangesNothing)
{
    const QByteArray octets = Sent("Subject: =?iso-8859-1?Q?Gr=FC=DFe?=\nFrom:a@example.com\n\nbody");
    Message message(octets);
    message.SetSubject(QStringLiteral("Grüße"));
    message.SetFrom(QStringLiteral("a@example.com"));
    EXPECT_EQ(message.Octets(), octets);
}

TEST(MailHeaderWriting, TextOutsideAsciiIsEncodedFoldedAndReadBack)
{
    const QString text =
        QStringLiteral("Grüße an alle Hörer in Köln, “Prost” und まみむめもまみむめもまみむめもまみむめも 🎉");
    Message message("From: a@example.com\r\n\r\nbody");
    message.SetSubject(text);
    EXPECT_EQ(Plain(message.Subject()), Plain(text));
    for (const QByteArray& line : message.Octets().split('\n')) {
        EXPECT_LE(line.size(), 79) << line.constData();
        for (const char c : line)
            EXPECT_LT(static_cast<uchar>(c), 0x80) << line.constData();
    }
    EXPECT_EQ(Plain(Message(message.Octets()).Subject()), Plain(text));
}

TEST(MailHeaderWriting, OddTextReadsBackAsItWasSet)
{
    for (const char* text :
         {"=?utf-8?Q?not_decoded?=", "two  blanks", "100% =? ?=", "a=?utf-8?B?YQ==?=b", "…", "\"x\""}) {
        Message message;
        message.SetSubject(QString::fromUtf8(text));
        EXPECT_EQ(Plain(message.Subject()), text) << message.Octets().constData();
    }
}

TEST(MailHeaderWriting, LongAsciiTextIsFoldedAndReadBack)
{
    const QString text = QStringLiteral("word ").repeated(100).trimmed();
    Message message;
    message.SetSubject(text);
    EXPECT_EQ(Plain(message.Subject()), Plain(text));
    for (const QByteArray& line : message.Octets().split('\n'))
        EXPECT_LE(line.size(), 79) << line.constData();
}

TEST(MailHeaderWriting, LineBreaksAndControlsBecomeBlanksSoThatNoFieldCanBeAdded)
{
    Message message("From: a@example.com\r\n\r\nbody");
    message.SetSubject(QStringLiteral("x\r\nBcc: evil@example.org\r\n\r\n<script>"));
    message.SetTo(QString(QStringLiteral("b@example.com\nX: y\0z")).append(QChar(u'\0')));
    message.SetHeader("X-Note", QStringLiteral("a\rb\vc"));
    EXPECT_TRUE(message.BCC().isEmpty());
    EXPECT_EQ(Plain(message.Subject()), "x  Bcc: evil@example.org    <script>");
    EXPECT_EQ(Plain(message.Header("X-Note")), "a b c");
    EXPECT_EQ(Plain(message.Header("X")), "");
    EXPECT_EQ(Plain(message.TextBody()), "body");
}

TEST(MailHeaderWriting, NameThatIsNoneIsRefused)
{
    Message message("From: a@example.com\r\n\r\nbody");
    const QByteArray octets = message.Octets();
    for (const QByteArray& name :
         {QByteArray(), QByteArray("A:B"), QByteArray("A B"), QByteArray("A\r\nB"), QByteArray("\xC3\xA9")})
        message.SetHeader(name, QStringLiteral("x"));
    EXPECT_EQ(message.Octets(), octets);
}

TEST(MailHeaderWriting, PhoneNumbersAndSenderNamesComeBackAsSet)
{
    for (const char* name : {"07700900123", "+447700900123", "MyBank", "60300", "Café", "Tom & Co", "a@example.com",
                             "Ann Other <a@example.com>", "\"Doe, Jane\" <j@example.com>", "Jörg <j@example.com>",
                             "\"Müller, Jörg\" <j@example.com>, b@example.com"}) {
        Message message;
        message.SetFrom(QString::fromUtf8(name));
        EXPECT_EQ(Plain(message.From()), name) << message.Octets().constData();
        EXPECT_EQ(Plain(Message(message.Octets()).From()), name);
    }
}

TEST(MailHeaderWriting, AllAddressFieldsAreSet)
{
    Message message;
    message.SetFrom(QStringLiteral("a@example.com"));
    message.SetTo(QStringLiteral("b@example.com, c@example.com"));
    message.SetCC(QStringLiteral("d@example.com"));
    message.SetBCC(QStringLiteral("e@example.com"));
    message.SetReplyTo(QStringLiteral("f@example.com"));
    EXPECT_EQ(message.Octets(), Sent("From: a@example.com\nTo: b@example.com, c@example.com\nCc: d@example.com\n"
                                     "Bcc: e@example.com\nReply-To: f@example.com\n\n"));
}

TEST(MailHeaderWriting, SentOnIsWrittenInUniversalTimeAndReadBack)
{
    Message message;
    const QDateTime time(QDate(2026, 11, 1), QTime(12, 30, 5), QTimeZone("Europe/Paris"));
    message.SetSentOn(time);
    EXPECT_EQ(message.SentOn(), time.toUTC());
    EXPECT_EQ(message.Octets(), Sent("Date: Sun, 01 Nov 2026 11:30:05 +0000\n\n"));
    message.SetSentOn(QDateTime());
    EXPECT_FALSE(message.SentOn().isValid());
    EXPECT_FALSE(message.Octets().contains("Date"));
}

TEST(MailHeaderWriting, MissingEmptyLineIsAddedAndTheTextStaysText)
{
    Message message("Subject: a\nHello there");
    message.SetSubject(QStringLiteral("b"));
    EXPECT_EQ(message.Octets(), QByteArray("Subject: b\n\nHello there"));
    Message bare("no header at all");
    bare.SetSubject(QStringLiteral("b"));
    EXPECT_EQ(Plain(bare.Subject()), "b");
    EXPECT_EQ(Plain(bare.TextBody()), "no header at all");
    Message cut("From: a@example.com");
    cut.SetSubject(QStringLiteral("b"));
    EXPECT_EQ(cut.Octets(), QByteArray("From: a@example.com\r\nSubject: b\r\n\r\n"));
}

TEST(MailHeaderWriting, MailboxLineStaysInFront)
{
    Message message("From joe Fri Feb 19 08:41:30 2010\nFrom: a@example.com\n\nbody");
    message.SetFrom(QStringLiteral("b@example.com"));
    EXPECT_EQ(message.Octets(), QByteArray("From joe Fri Feb 19 08:41:30 2010\nFrom: b@example.com\n\nbody"));
}
