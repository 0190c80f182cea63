// SPDX-License-Identifier: Apache-2.0
#include "MailSupport.h"

using cdo::Message;
using mailTest::Plain;
using mailTest::Sent;

namespace
{

/// A mail whose HTML part has these header lines and content, between octets that must stay.
QByteArray Around(const QByteArray& fields, const QByteArray& content)
{
    return Sent("Subject: =?utf-8?Q?odd_?=  spaced\nContent-Type: multipart/alternative; boundary=\"b b\"\n\npre\n--b "
                "b\n\ntext "
                "\xFF\n--b b\n") +
           fields + "\r\n" + content + "\r\n--b b--  \r\nepilogue \xFE\n";
}

/// What stands between when the HTML is set; empty when anything else changed.
QByteArray ContentAfterSetting(const QByteArray& fields, const QByteArray& content, const QString& html)
{
    Message message(Around(fields, content));
    message.SetHTMLBody(html);
    const QByteArray before = Around(fields, "\1").split('\1').at(0);
    const QByteArray behind = Around(fields, "\1").split('\1').at(1);
    const QByteArray octets = message.Octets();
    EXPECT_TRUE(octets.startsWith(before)) << octets.constData();
    EXPECT_TRUE(octets.endsWith(behind)) << octets.constData();
    return octets.mid(before.size(), octets.size() - before.size() - behind.size());
}

QString HtmlAfterSetting(const QByteArray& fields, const QByteArray& content, const QString& html)
{
    Message message(Around(fields, content));
    message.SetHTMLBody(html);
    EXPECT_EQ(Plain(message.HTMLBody()), Plain(Message(message.Octets()).HTMLBody()));
    return message.HTMLBody();
}

QByteArray HtmlFields(const char* characterSet, const char* encoding)
{
    return QByteArray("Content-Type: text/html; charset=") + characterSet +
           "\r\nContent-Transfer-Encoding: " + encoding + "\r\n";
}

} // namespace

TEST(MailBodyWriting, HtmlKeepsItsSetAndEncodingAndEverythingAroundStays)
{
    const QString html = QStringLiteral("<p>Grüße</p>\nzwei");
    EXPECT_EQ(ContentAfterSetting(HtmlFields("iso-8859-1", "8bit"), "old", html), "<p>Gr\xFC\xDF"
                                                                                  "e</p>\r\nzwei");
    EXPECT_EQ(ContentAfterSetting(HtmlFields("iso-8859-1", "binary"), "old", html), "<p>Gr\xFC\xDF"
                                                                                    "e</p>\r\nzwei");
    EXPECT_EQ(ContentAfterSetting(HtmlFields("utf-8", "quoted-printable"), "old", html),
              "<p>Gr=C3=BC=C3=9Fe</p>\r\nzwei");
    EXPECT_EQ(ContentAfterSetting(HtmlFields("utf-8", "base64"), "b2xk", html), "PHA+R3LDvMOfZTwvcD4NCnp3ZWk=");
    EXPECT_EQ(ContentAfterSetting(HtmlFields("us-ascii", "7bit"), "old", html), "<p>Gr&#252;&#223;e</p>\r\nzwei");
    EXPECT_EQ(ContentAfterSetting(HtmlFields("utf-8", "7bit"), "old", html), "<p>Gr&#252;&#223;e</p>\r\nzwei");
    EXPECT_EQ(ContentAfterSetting("Content-Type: text/html\r\n", "old", html), "<p>Gr&#252;&#223;e</p>\r\nzwei");
}

TEST(MailBodyWriting, CharactersThatTheSetLacksBecomeReferences)
{
    EXPECT_EQ(ContentAfterSetting(HtmlFields("iso-8859-1", "8bit"), "old", QStringLiteral("5 € für “🎉”")),
              "5 &#8364; f\xFCr &#8220;&#127881;&#8221;");
    EXPECT_EQ(ContentAfterSetting(HtmlFields("windows-1252", "8bit"), "old", QStringLiteral("5 € für ま")),
              "5 \x80 f\xFCr &#12414;");
    EXPECT_EQ(ContentAfterSetting(HtmlFields("iso-2022-jp", "7bit"), "\x1B$B$^\x1B(B", QStringLiteral("まé")),
              "\x1B$B$^\x1B(B&#233;");
    EXPECT_EQ(ContentAfterSetting(HtmlFields("koi8-r", "quoted-printable"), "old", QStringLiteral("Пé")), "=F0&#233;");
}

TEST(MailBodyWriting, SetOfTheContentCountsWhenTheDeclaredOneIsWrong)
{
    EXPECT_EQ(ContentAfterSetting(HtmlFields("us-ascii", "8bit"), "Gr\xC3\xBC\xC3\x9F", QStringLiteral("Grüße €")),
              "Gr\xC3\xBC\xC3\x9F"
              "e \xE2\x82\xAC");
    EXPECT_EQ(ContentAfterSetting(HtmlFields("iso-8859-1", "8bit"), "\x93x\x94", QStringLiteral("“y”")), "\x93y\x94");
}

TEST(MailBodyWriting, HtmlIsReadBackExactlyInEveryEncoding)
{
    const QString html = QStringLiteral("<p>a = b</p>  \n\n.\nFrom here\n=20 \n") +
                         QStringLiteral("long ").repeated(60) + QStringLiteral("é\n\ttail ");
    for (const char* encoding : {"7bit", "8bit", "binary", "base64", "quoted-printable"}) {
        for (const char* set : {"utf-8", "iso-8859-1", "windows-1251", "us-ascii", "shift_jis", "utf-16le", "utf-7"}) {
            const QString readBack = HtmlAfterSetting(HtmlFields(set, encoding), "", html);
            EXPECT_EQ(Plain(QString(readBack).replace(QStringLiteral("&#233;"), QStringLiteral("é"))), Plain(html))
                << encoding << " " << set;
        }
    }
}

TEST(MailBodyWriting, SetThatCannotBeWrittenInPlaceBecomesUtf8)
{
    Message message(Around(HtmlFields("utf-16be; x=y", "8bit"), QByteArrayLiteral("\0<\0p\0>")));
    message.SetHTMLBody(QStringLiteral("<p>ま\nline</p>"));
    EXPECT_EQ(Plain(message.HTMLBody()), "<p>ま\nline</p>");
    EXPECT_TRUE(message.Octets().contains("Content-Type: text/html; charset=utf-8; x=y\r\n"))
        << message.Octets().data();
    EXPECT_TRUE(
        message.Octets().contains("Content-Transfer-Encoding: quoted-printable\r\n\r\n<p>=E3=81=BE\r\nline</p>"));
}

TEST(MailBodyWriting, UuencodedHtmlIsReplaced)
{
    EXPECT_EQ(Plain(HtmlAfterSetting(HtmlFields("utf-8", "x-uuencode"), "begin 644 a\r\n#86)C\r\n`\r\nend",
                                     QStringLiteral("<p>é</p>"))),
              "<p>é</p>");
}

TEST(MailBodyWriting, LineThatLooksLikeABoundaryDoesNotBecomeOne)
{
    const QString html = QStringLiteral("<p>\n--b b\n--b b--\n--b bc\n--b b  ");
    EXPECT_EQ(ContentAfterSetting(HtmlFields("utf-8", "8bit"), "old", html),
              "<p>\r\n&#45;-b b\r\n&#45;-b b--\r\n--b bc\r\n&#45;-b b  ");
    EXPECT_EQ(Plain(HtmlAfterSetting(HtmlFields("utf-8", "quoted-printable"), "old", html)), Plain(html));
    EXPECT_EQ(Plain(HtmlAfterSetting(HtmlFields("utf-8", "base64"), "old", html)), Plain(html));
}

TEST(MailBodyWriting, SettingWhatIsThereChangesNothing)
{
    const QByteArray octets = Around(HtmlFields("iso-8859-1", "quoted-printable"), "a=20=\r\nb=FC\r\nc");
    Message message(octets);
    message.SetHTMLBody(QStringLiteral("a bü\nc"));
    message.SetHTMLBody(QStringLiteral("a bü\r\nc"));
    message.SetTextBody(message.TextBody());
    EXPECT_EQ(message.Octets().constData(), octets.constData());
}

TEST(MailBodyWriting, EmptyHtmlOnMailWithoutHtmlChangesNothing)
{
    for (const QByteArray& octets : {QByteArray(), Sent("Subject: a\n\ntext"), Sent("Content-Type: image/png\n\nX")}) {
        Message message(octets);
        message.SetHTMLBody(QString());
        message.SetTextBody(message.TextBody());
        EXPECT_EQ(message.Octets(), octets);
    }
}

TEST(MailBodyWriting, EmptyHtmlEmptiesThePart)
{
    EXPECT_EQ(ContentAfterSetting(HtmlFields("utf-8", "base64"), "b2xk", QString()), "");
    EXPECT_EQ(Plain(HtmlAfterSetting(HtmlFields("utf-8", "8bit"), "old", QString())), "");
}

TEST(MailBodyWriting, LineEndsOfTheMailAreKept)
{
    Message message("Content-Type: text/html; charset=utf-8\n\nold\n");
    message.SetHTMLBody(QStringLiteral("a\nb\n"));
    EXPECT_EQ(message.Octets(), QByteArray("Content-Type: text/html; charset=utf-8\n\na\nb\n"));
}

TEST(MailBodyWriting, TextKeepsItsSetWhenThatHoldsIt)
{
    Message message(
        Sent("Content-Type: text/plain; charset=iso-8859-1\nContent-Transfer-Encoding: 8bit\nX-Kept:  1 \n\nold\n"));
    message.SetTextBody(QStringLiteral("neu für alle\n"));
    EXPECT_EQ(message.Octets(), Sent("Content-Type: text/plain; charset=iso-8859-1\nContent-Transfer-Encoding: 8bit\n"
                                     "X-Kept:  1 \n\nneu f\xFCr alle\n"));
}

TEST(MailBodyWriting, TextThatTheSetLacksMakesThePartUtf8AndIsNeverAReference)
{
    Message message(
        Sent("Content-Type: text/plain; charset=iso-8859-1\nContent-Transfer-Encoding: 8bit\nX-Kept:  1 \n\nold\n"));
    message.SetTextBody(QStringLiteral("5 €\n"));
    EXPECT_EQ(message.Octets(), Sent("Content-Type: text/plain; charset=utf-8\n"
                                     "Content-Transfer-Encoding: quoted-printable\nX-Kept:  1 \n\n5 =E2=82=AC\n"));
    EXPECT_EQ(Plain(message.TextBody()), "5 €\n");
}

TEST(MailBodyWriting, TextLineThatLooksLikeABoundaryIsReadBackExactly)
{
    Message message(
        Sent("Content-Type: multipart/mixed; boundary=b\n\n--b\n\nold\n--b\nContent-Type: image/png\n\nX\n--b--\n"));
    message.SetTextBody(QStringLiteral("one\n--b\ntwo\n--b--"));
    EXPECT_EQ(Plain(message.TextBody()), "one\n--b\ntwo\n--b--");
    EXPECT_EQ(message.AttachmentContent(0), "X");
}

TEST(MailBodyWriting, NulInTextIsReplaced)
{
    Message message(Sent("Subject: a\n\nold"));
    message.SetTextBody(QStringLiteral("a") + QChar(u'\0') + QStringLiteral("b") + QChar(0xD800));
    EXPECT_EQ(Plain(message.TextBody()), "a\uFFFDb?");
}

TEST(MailBodyWriting, ReferencesForWhatTheSetLacksAreNoReasonToChangeMore)
{
    const QByteArray head = Sent("Content-Type: multipart/mixed; boundary=b\n\n--b\n"
                                 "Content-Type: text/html; charset=iso-8859-1\n\n");
    Message message(head + Sent("<p>Gr\xFC\xDF\n--b--\n"));
    message.SetHTMLBody(QStringLiteral("<p>Grüß 5€\n--b\n"));
    EXPECT_TRUE(message.Octets().startsWith(head));
    EXPECT_TRUE(message.Octets().contains("Gr\xFC\xDF 5&#8364;\r\n&#45;-b"));
    EXPECT_TRUE(message.Attachments().isEmpty());
}
