// tolva show.

#include "CommandLineTest.h"

#include <QJsonArray>
#include <QJsonDocument>

class ShowTest : public CommandLineTest
{
};

TEST_F(ShowTest, APlainMailIsShownWithItsFields)
{
    const QString reference = FileMail(Mail("A card", "Two lines\r\nof text.\r\n"));
    const QByteArray shown = Expect("show", {reference});
    EXPECT_TRUE(shown.startsWith("Message:     1\nFolder:      Inbox\nFlags:       unread\n")) << shown.constData();
    EXPECT_TRUE(shown.contains("From:        Loveday Tregenza <loveday@example.org>\n")) << shown.constData();
    EXPECT_TRUE(shown.contains("Sent:        Fri 20 Nov 2026 08:00:00\n")) << shown.constData();
    EXPECT_TRUE(shown.endsWith("\n\nTwo lines\nof text.\n")) << shown.constData();
}

TEST_F(ShowTest, ShowingLeavesTheMessageUnread)
{
    const QString reference = FileMail(Mail("A card"));
    Expect("show", {reference});
    EXPECT_EQ(Messages().value(0).value(QStringLiteral("flags")).toArray(), QJsonArray());
}

TEST_F(ShowTest, OfAWebPageTheWordsAreShownAndNoScript)
{
    const QString reference =
        FileMail("From: a@example.org\r\nSubject: page\r\nMIME-Version: 1.0\r\nContent-Type: text/html\r\n\r\n"
                 "<html><head><title>t</title><style>p{}</style></head><body><p>Fish &amp; chips</p>"
                 "<script>alert('x')</script><p>&pound;5</p></body></html>\r\n");
    const QByteArray shown = Expect("show", {reference});
    EXPECT_TRUE(shown.contains("[This message is a web page;")) << shown.constData();
    EXPECT_TRUE(shown.endsWith("Fish & chips\n\n\xC2\xA3"
                               "5\n"))
        << shown.constData();
    EXPECT_FALSE(shown.contains("alert"));
}

TEST_F(ShowTest, JsonHoldsBodiesAndAttachments)
{
    const QString reference =
        FileMail("From: a@example.org\r\nSubject: parts\r\nMessage-ID: <1@example.org>\r\nMIME-Version: 1.0\r\n"
                 "Content-Type: multipart/mixed; boundary=b\r\n\r\n--b\r\nContent-Type: text/plain\r\n\r\nhello\r\n"
                 "--b\r\nContent-Type: application/pdf; name=tides.pdf\r\nContent-Transfer-Encoding: "
                 "base64\r\n\r\nAAAA\r\n--b--\r\n");
    const QJsonObject message = QJsonDocument::fromJson(Expect("show", {reference, QStringLiteral("--json")})).object();
    EXPECT_EQ(message.value(QStringLiteral("text")).toString().trimmed(), QStringLiteral("hello"));
    const QJsonObject attachment = message.value(QStringLiteral("attachments")).toArray().at(0).toObject();
    EXPECT_EQ(attachment.value(QStringLiteral("name")).toString(), QStringLiteral("tides.pdf"));
    EXPECT_EQ(attachment.value(QStringLiteral("size")).toInt(), 3);
}

TEST_F(ShowTest, EveryOddMailShowsInAllForms)
{
    OnStation("file", {QStringLiteral(TOLVA_TEST_DATA "/mail")});
    const QList<QJsonObject> messages = Messages();
    ASSERT_GE(messages.size(), 50);
    for (const QJsonObject& message : messages) {
        const QString reference = QString::number(message.value(QStringLiteral("reference")).toInt());
        EXPECT_FALSE(Expect("show", {reference}).isEmpty());
        const QByteArray json = Expect("show", {reference, QStringLiteral("--json")});
        EXPECT_FALSE(QJsonDocument::fromJson(json).isNull()) << json.constData();
    }
}

TEST_F(ShowTest, AMessageThatIsNotThereIsNamed)
{
    const Outcome outcome = OnStation("show", {QStringLiteral("42")});
    EXPECT_EQ(outcome.Code, 65);
    EXPECT_EQ(outcome.Output, "");
    EXPECT_TRUE(outcome.Problems.startsWith("tolva: There is no message 42")) << outcome.Problems.constData();
}
