// SPDX-License-Identifier: Apache-2.0

// tolva file --sms, and files of text messages.

#include "CommandLineTest.h"

#include <QJsonDocument>

class TextMessageTest : public CommandLineTest
{
protected:
    QJsonObject Shown(const QString& reference) const
    {
        return QJsonDocument::fromJson(Expect("show", {reference, QStringLiteral("--json")})).object();
    }
    QStringList From(const QString& number) const
    {
        return {QStringLiteral("--sms"), QStringLiteral("--from"), number};
    }
};

TEST_F(TextMessageTest, ATextOnStandardInputIsFiledWithItsNumber)
{
    const QString reference =
        FileMail("Can you play <b>the shanty</b> & more? \xF0\x9F\x8E\xB6\n",
                 From(QStringLiteral("+44 7700 900123")) << QStringLiteral("--to") << QStringLiteral("07700 900001"));
    const QJsonObject message = Messages().value(0);
    EXPECT_EQ(message.value(QStringLiteral("type")).toString(), QStringLiteral("sms"));
    EXPECT_EQ(message.value(QStringLiteral("from")).toString(), QStringLiteral("+44 7700 900123"));
    EXPECT_EQ(message.value(QStringLiteral("to")).toString(), QStringLiteral("07700 900001"));
    EXPECT_EQ(Shown(reference).value(QStringLiteral("text")).toString().trimmed(),
              QString::fromUtf8("Can you play <b>the shanty</b> & more? \xF0\x9F\x8E\xB6"));
    EXPECT_TRUE(Shown(reference)
                    .value(QStringLiteral("html"))
                    .toString()
                    .contains(QStringLiteral("&lt;b&gt;the shanty&lt;/b&gt; &amp; more")));
}

TEST_F(TextMessageTest, WithoutARecipientItGoesToTheStationsNumber)
{
    Expect("setting", {QStringLiteral("Station.SMSPhoneNumber"), QStringLiteral("07700 900001")});
    FileMail("Hello", From(QStringLiteral("07700 900123")));
    EXPECT_EQ(Messages().value(0).value(QStringLiteral("to")).toString(), QStringLiteral("07700 900001"));
}

TEST_F(TextMessageTest, TheSenderReadsTheSameInListAndShow)
{
    for (const char* sender : {"+44 7700 900123", "0044 7700 900123", "00800", "Weather Ship", "Pete <80058>"}) {
        const QString reference = FileMail("Hello", From(QString::fromLatin1(sender)));
        const QByteArray listed =
            Expect("list", {QStringLiteral("--where"), QStringLiteral("[Reference]=") + reference});
        const QByteArray shown = Expect("show", {reference});
        EXPECT_TRUE(listed.contains(sender)) << listed.constData();
        EXPECT_TRUE(shown.contains(QByteArray("From:        ") + sender + '\n')) << shown.constData();
        const QJsonObject row =
            Messages({QStringLiteral("--where"), QStringLiteral("[Reference]=") + reference}).value(0);
        EXPECT_EQ(row.value(QStringLiteral("from")), Shown(reference).value(QStringLiteral("from"))) << sender;
    }
}

TEST_F(TextMessageTest, ShortCodesAndSendersNamesAreKept)
{
    FileMail("Your code", From(QStringLiteral("85058")));
    FileMail("Weather", From(QStringLiteral("MetOffice")));
    EXPECT_EQ(Messages({QStringLiteral("--find"), QStringLiteral("85058")}).size(), 1);
    EXPECT_EQ(Messages({QStringLiteral("--find"), QStringLiteral("MetOffice")}).size(), 1);
}

TEST_F(TextMessageTest, SpellingsOfOneNumberMeet)
{
    for (const QString& number :
         {QStringLiteral("+447700900123"), QStringLiteral("07700 900123"), QStringLiteral("00447700900123")})
        FileMail("Hello", From(number));
    EXPECT_EQ(Messages({QStringLiteral("--find"), QStringLiteral("7700900123")}).size(), 3);
}

TEST_F(TextMessageTest, AnEmptyTextIsFiledForItTellsWhoSentIt)
{
    FileMail("", From(QStringLiteral("07700 900123")));
    ASSERT_EQ(Messages().size(), 1);
    EXPECT_EQ(Messages().first().value(QStringLiteral("from")).toString(), QStringLiteral("07700 900123"));
}

TEST_F(TextMessageTest, ATextThatIsNotUtf8IsReadAsLatin1)
{
    EXPECT_EQ(Shown(FileMail("caf\xE9", From(QStringLiteral("07700 900123"))))
                  .value(QStringLiteral("text"))
                  .toString()
                  .trimmed(),
              QString::fromUtf8("caf\xC3\xA9"));
}

TEST_F(TextMessageTest, AFileBringsNumberAndDateWithIt)
{
    const QString path = Write(QStringLiteral("one.sms"), "From: 07700 900321\nTo: 07700 900001\n"
                                                          "Received: 2026-11-20 08:33:20\n\nLine one\nLine two\n");
    Expect("file", {path});
    const QJsonObject message = Messages().value(0);
    EXPECT_EQ(message.value(QStringLiteral("from")).toString(), QStringLiteral("07700 900321"));
    EXPECT_EQ(message.value(QStringLiteral("sent")).toString(), QStringLiteral("2026-11-20T08:33:20Z"));
    EXPECT_EQ(message.value(QStringLiteral("received")).toString(), QStringLiteral("2026-11-20T08:33:20Z"));
}

TEST_F(TextMessageTest, FilesThatAreNoTextMessagesAreNamed)
{
    const QString nobody = Write(QStringLiteral("nobody.sms"), "To: 1\n\nText\n");
    const QString dateless = Write(QStringLiteral("dateless.sms"), "From: 1\nReceived: yesterday\n\nText\n");
    const QString letter = Write(QStringLiteral("letter.sms"), "Dear all\nthis is no text message\n");
    const Outcome outcome = OnStation("file", {nobody, dateless, letter});
    EXPECT_EQ(outcome.Code, 65);
    EXPECT_EQ(outcome.LastLine(), "filed 0, failed 3");
    EXPECT_TRUE(outcome.Problems.contains("nobody.sms is not a text message: it has no From line"));
    EXPECT_TRUE(outcome.Problems.contains("dateless.sms has a Received line that is no date: \"yesterday\""));
    EXPECT_TRUE(outcome.Problems.contains("letter.sms is not a text message"));
}
