// SPDX-License-Identifier: Apache-2.0
#include "MailSupport.h"

#include <gmime/gmime.h>

using cdo::Message;
using mailTest::Plain;
using mailTest::Sent;

namespace
{

const auto Html = QStringLiteral("<p>Grüße</p>\n");

std::string Outline(GMimeObject* object)
{
    if (!GMIME_IS_MULTIPART(object)) {
        GMimeContentType* type = g_mime_object_get_content_type(object);
        return g_mime_content_type_get_media_subtype(type);
    }
    std::string text = g_mime_content_type_get_media_subtype(g_mime_object_get_content_type(object));
    text += "[";
    for (int i = 0; i < g_mime_multipart_get_count(GMIME_MULTIPART(object)); ++i)
        text += (i > 0 ? " " : "") + Outline(g_mime_multipart_get_part(GMIME_MULTIPART(object), i));
    return text + "]";
}

/// The structure as GMime alone sees it, such as "mixed[alternative[plain html] png]".
std::string Outline(const Message& message)
{
    message.Subject(); // initialises GMime
    const QByteArray octets = message.Octets();
    GMimeStream* stream = g_mime_stream_mem_new_with_buffer(octets.constData(), octets.size());
    GMimeParser* parser = g_mime_parser_new_with_stream(stream);
    GMimeMessage* parsed = g_mime_parser_construct_message(parser, nullptr);
    const std::string text = parsed == nullptr ? "unreadable" : Outline(g_mime_message_get_mime_part(parsed));
    if (parsed != nullptr)
        g_object_unref(parsed);
    g_object_unref(parser);
    g_object_unref(stream);
    return text;
}

void ExpectWellFormed(const Message& message)
{
    const QByteArray octets = message.Octets();
    EXPECT_EQ(Plain(message.Header("MIME-Version")), "1.0");
    for (const QByteArray& line : octets.split('\n')) {
        EXPECT_TRUE(line.isEmpty() || line.endsWith('\r')) << line.constData();
        EXPECT_LE(line.size(), 79) << line.constData();
        EXPECT_TRUE(std::all_of(line.begin(), line.end(), [](char c) { return static_cast<uchar>(c) < 0x80; }))
            << line.constData();
    }
}

} // namespace

TEST(MailBodyAdding, SmsBuiltFromNothingIsTextAndHtml)
{
    Message message;
    message.SetFrom(QStringLiteral("07700900123"));
    message.SetTo(QStringLiteral("60300"));
    message.SetTextBody(QStringLiteral("Hi <3 & co\nGrüße"));
    message.SetHTMLBody(QStringLiteral("Hi &lt;3 &amp; co\nGrüße"));
    EXPECT_EQ(Outline(message), "alternative[plain html]");
    ExpectWellFormed(message);
    EXPECT_EQ(Plain(message.From()), "07700900123");
    EXPECT_EQ(Plain(message.TextBody()), "Hi <3 & co\nGrüße");
    EXPECT_EQ(Plain(message.HTMLBody()), "Hi &lt;3 &amp; co\nGrüße");
}

TEST(MailBodyAdding, OrderOfSettingDoesNotMatter)
{
    Message message;
    message.SetHTMLBody(Html);
    EXPECT_EQ(Outline(message), "html");
    message.SetTextBody(QStringLiteral("text"));
    EXPECT_EQ(Outline(message), "alternative[plain html]");
    message.SetSubject(QStringLiteral("Grüße"));
    ExpectWellFormed(message);
    EXPECT_EQ(Plain(message.TextBody()), "text");
    EXPECT_EQ(Plain(message.HTMLBody()), Plain(Html));
}

TEST(MailBodyAdding, MailBuiltFromNothingIsWhole)
{
    Message message;
    message.AddAttachment(QStringLiteral("Grüße.png"), "image/png", QByteArrayLiteral("\0\1\2"));
    message.SetTextBody(QStringLiteral("line\n").repeated(3) + QStringLiteral("x").repeated(200));
    message.SetHTMLBody(Html);
    message.AddAttachment(QStringLiteral("b.bin"), "not a type\r\nBcc: x", "second");
    message.SetSentOn(QDateTime(QDate(2026, 1, 2), QTime(3, 4, 5), Qt::UTC));
    EXPECT_EQ(Outline(message), "mixed[alternative[plain html] png octet-stream]");
    ExpectWellFormed(message);
    EXPECT_EQ(Plain(message.HTMLBody()), Plain(Html));
    EXPECT_EQ(message.TextBody().size(), 215);
    ASSERT_EQ(message.Attachments().size(), 2);
    EXPECT_EQ(Plain(message.Attachments().at(0).FileName), "Grüße.png");
    EXPECT_FALSE(message.Attachments().at(0).IsInline);
    EXPECT_EQ(message.AttachmentContent(0), QByteArrayLiteral("\0\1\2"));
    EXPECT_EQ(message.AttachmentContent(1), "second");
    EXPECT_TRUE(message.BCC().isEmpty());
    EXPECT_EQ(message.SentOn(), QDateTime(QDate(2026, 1, 2), QTime(3, 4, 5), Qt::UTC));
}

TEST(MailBodyAdding, HtmlStandsBesideTheTextWhoseOctetsStay)
{
    Message message(
        Sent("From: a@example.com\nContent-Type: text/plain;\n charset=iso-8859-1\nX-Last: 1\n\nGr\xFC\xDF\n"));
    message.SetHTMLBody(Html);
    EXPECT_EQ(Outline(message), "alternative[plain html]");
    EXPECT_EQ(Plain(message.TextBody()), "Grüß\n");
    EXPECT_EQ(Plain(message.HTMLBody()), Plain(Html));
    EXPECT_TRUE(
        message.Octets().startsWith("From: a@example.com\r\nMIME-Version: 1.0\r\nContent-Type: multipart/alternative;"))
        << message.Octets().constData();
    EXPECT_TRUE(message.Octets().contains("\r\nX-Last: 1\r\n\r\n--=_"));
    EXPECT_TRUE(message.Octets().contains("Content-Type: text/plain;\r\n charset=iso-8859-1\r\n\r\nGr\xFC\xDF\r\n"));
}

TEST(MailBodyAdding, FilesStayOutsideTheAlternative)
{
    const QByteArray octets =
        Sent("Content-Type: multipart/mixed; boundary=b\n\npre\n--b\nContent-Type: text/plain\n\ntext\n"
             "--b\nContent-Type: image/png; name=a.png\n\nX\n--b--\nepilogue\n");
    Message message(octets);
    message.SetHTMLBody(Html);
    EXPECT_EQ(Outline(message), "mixed[alternative[plain html] png]");
    EXPECT_EQ(Plain(message.TextBody()), "text");
    EXPECT_EQ(message.AttachmentContent(0), "X");
    EXPECT_TRUE(message.Octets().startsWith(octets.left(octets.indexOf("Content-Type: text/plain"))));
    EXPECT_TRUE(message.Octets().endsWith(octets.mid(octets.indexOf("\r\n--b\r\nContent-Type: image"))));
}

TEST(MailBodyAdding, PartWithoutAnyHeaderIsWrappedToo)
{
    Message message(
        Sent("Content-Type: multipart/mixed; boundary=b\n\n--b\n\ntext\n--b\nContent-Type: image/png\n\nX\n--b--\n"));
    message.SetHTMLBody(Html);
    EXPECT_EQ(Outline(message), "mixed[alternative[plain html] png]");
    EXPECT_EQ(Plain(message.TextBody()), "text");
    EXPECT_EQ(Plain(message.HTMLBody()), Plain(Html));
}

TEST(MailBodyAdding, AlternativeThatIsThereTakesTheNewBody)
{
    Message message(Sent("Content-Type: multipart/alternative; boundary=b\n\n--b\n\ntext\n--b\n"
                         "Content-Type: text/enriched\n\nrich\n--b--\n"));
    message.SetHTMLBody(QStringLiteral("<p>\n--b\n"));
    EXPECT_EQ(Outline(message), "alternative[plain html enriched]");
    EXPECT_EQ(Plain(message.HTMLBody()), "<p>\n--b\n");
    Message other(
        Sent("Content-Type: multipart/alternative; boundary=b\n\n--b\nContent-Type: text/html\n\n<p>\n--b--\n"));
    other.SetTextBody(QStringLiteral("text"));
    EXPECT_EQ(Outline(other), "alternative[plain html]");
}

TEST(MailBodyAdding, SignedPartIsNotReachedInto)
{
    const QByteArray signedPart = Sent("--s\nContent-Type: text/plain\n\nsigned text\n--s\n"
                                       "Content-Type: application/pgp-signature\n\nSIG\n--s--\n");
    Message message(Sent("From: a@example.com\nContent-Type: multipart/signed; boundary=s; micalg=x\n\n") + signedPart);
    message.SetHTMLBody(Html);
    EXPECT_EQ(Outline(message), "alternative[signed[plain pgp-signature] html]");
    EXPECT_TRUE(message.Octets().contains(signedPart));
    EXPECT_EQ(Plain(message.TextBody()), "signed text");
    EXPECT_EQ(Plain(message.HTMLBody()), Plain(Html));

    Message inner(
        Sent("Content-Type: multipart/mixed; boundary=m\n\n--m\nContent-Type: multipart/signed; boundary=s\n\n") +
        signedPart + Sent("\n--m\nContent-Type: image/png\n\nX\n--m--\n"));
    inner.SetHTMLBody(Html);
    EXPECT_EQ(Outline(inner), "mixed[alternative[signed[plain pgp-signature] html] png]");
    EXPECT_TRUE(inner.Octets().contains(signedPart));
}

TEST(MailBodyAdding, EncryptedMailStaysWholeBesideTheNewBody)
{
    const QByteArray parts = Sent("--e\nContent-Type: application/pgp-encrypted\n\nVersion: 1\n--e\n"
                                  "Content-Type: application/octet-stream\n\nX\n--e--\n");
    Message message(Sent("Content-Type: multipart/encrypted; boundary=e\n\n") + parts);
    message.SetHTMLBody(Html);
    EXPECT_EQ(Outline(message), "mixed[html encrypted[pgp-encrypted octet-stream]]");
    EXPECT_TRUE(message.Octets().contains(parts));
}

TEST(MailBodyAdding, MailThatIsOnlyAFileKeepsItBesideTheNewBody)
{
    Message message(Sent("Subject: s\nMIME-Version: 1.0\nContent-Type: application/pdf; name=a.pdf\n"
                         "Content-Transfer-Encoding: base64\nContent-Disposition: attachment\n\nQUJD\n"));
    message.SetTextBody(QStringLiteral("text"));
    EXPECT_EQ(Outline(message), "mixed[plain pdf]");
    EXPECT_EQ(message.AttachmentContent(0), "ABC");
    EXPECT_EQ(Plain(message.TextBody()), "text");
    message.SetHTMLBody(Html);
    EXPECT_EQ(Outline(message), "mixed[alternative[plain html] pdf]");
}

TEST(MailBodyAdding, FileIsAddedBehindTheOthers)
{
    Message message(Sent("Content-Type: multipart/alternative; boundary=b\n\n--b\n\ntext\n--b\nContent-Type: "
                         "text/html\n\n<p>\n--b--\n"));
    message.AddAttachment(QStringLiteral("a.txt"), "text/plain", "one");
    message.AddAttachment(QStringLiteral("b.txt"), "Text/Plain; charset=x", "two");
    EXPECT_EQ(Outline(message), "mixed[alternative[plain html] plain plain]");
    EXPECT_EQ(message.AttachmentContent(0), "one");
    EXPECT_EQ(message.AttachmentContent(1), "two");
    EXPECT_EQ(Plain(message.TextBody()), "text");
}

TEST(MailBodyAdding, FileIsAddedToAMailThatWasCutOff)
{
    Message message(Sent("Content-Type: multipart/mixed; boundary=b\n\n--b\n\ntext"));
    message.AddAttachment(QStringLiteral("a.txt"), "text/plain", "one");
    EXPECT_EQ(Plain(message.TextBody()), "text");
    EXPECT_EQ(message.AttachmentContent(0), "one");
}

TEST(MailBodyAdding, EnclosedMessageIsAddedAsItIs)
{
    const QByteArray enclosed = Sent("Content-Type: multipart/mixed; boundary=b\n\n--b\n\ninner\n--b--\n");
    Message message(Sent("Content-Type: multipart/mixed; boundary=b\n\n--b\n\ntext\n--b--\n"));
    message.AddAttachment(QStringLiteral("f.eml"), "message/rfc822", enclosed);
    EXPECT_EQ(Plain(message.TextBody()), "text");
    ASSERT_EQ(message.Attachments().size(), 1);
    EXPECT_EQ(Plain(message.Attachments().at(0).ContentType), "message/rfc822");
    EXPECT_EQ(message.AttachmentContent(0), enclosed);
}

TEST(MailBodyAdding, FileNameCannotAddAField)
{
    Message message;
    message.AddAttachment(QStringLiteral("a\r\nBcc: x@example.com\r\n\r\n.png"), "image/png\r\nX: y", "X");
    ASSERT_EQ(message.Attachments().size(), 1);
    EXPECT_EQ(Plain(message.Attachments().at(0).FileName), "a  Bcc: x@example.com    .png");
    EXPECT_EQ(message.AttachmentContent(0), "X");
    EXPECT_TRUE(message.BCC().isEmpty());
}

TEST(MailBodyAdding, MailWithLineFeedsGetsLineFeeds)
{
    Message message("Subject: a\n\ntext\n");
    message.SetHTMLBody(Html);
    message.AddAttachment(QStringLiteral("a.txt"), "text/plain", "one");
    EXPECT_FALSE(message.Octets().contains('\r'));
    EXPECT_EQ(Outline(message), "mixed[alternative[plain html] plain]");
}

TEST(MailBodyAdding, TextWithoutAnyHeaderBecomesAPart)
{
    Message message("just text");
    message.SetHTMLBody(Html);
    EXPECT_EQ(Plain(message.TextBody()), "just text");
    EXPECT_EQ(Plain(message.HTMLBody()), Plain(Html));
}

TEST(MailBodyAdding, RepeatedContentFieldsStayUnderAnotherName)
{
    Message message(Sent("Content-Type: text/plain; charset=utf-8\nContent-Language: de\n"
                         "Content-Type: text/html\nContent-Language: fr\n\ntext\n"));
    message.SetHTMLBody(Html);
    EXPECT_EQ(Outline(message), "alternative[plain html]");
    EXPECT_EQ(Plain(message.TextBody()), "text\n");
    EXPECT_TRUE(message.Octets().contains("\r\nContent-Type: text/plain; charset=utf-8\r\nContent-Language: de\r\n"
                                          "X-Original-Content-Type: text/html\r\n"
                                          "X-Original-Content-Language: fr\r\n\r\ntext\r\n"))
        << message.Octets().constData();
}

TEST(MailBodyAdding, BrokenMultipartStaysTheTextThatItWasShownAs)
{
    const QByteArray content = Sent("broken\n--c\nContent-Type: text/html\n\nGr\xFC\xDF"
                                    "e\n--c--\n");
    Message message(Sent("Content-Type: multipart/mixed\nContent-Type: multipart/mixed; boundary=c\n\n") + content);
    const QString text = message.TextBody();
    EXPECT_TRUE(text.startsWith(QStringLiteral("broken\n--c\n")) && text.contains(QStringLiteral("Grüße")));
    message.SetHTMLBody(Html);
    EXPECT_EQ(Plain(message.TextBody()), Plain(text));
    EXPECT_EQ(Plain(message.HTMLBody()), Plain(Html));
    EXPECT_TRUE(message.Attachments().isEmpty());
    EXPECT_TRUE(message.Octets().contains(content));
    EXPECT_TRUE(message.Octets().contains("boundary=c\r\n"));
}

TEST(MailBodyAdding, TypeThatIsReadOtherwiseInsideAMultipartIsDeclaredAsItWasRead)
{
    const QByteArray declared = QByteArrayLiteral("Content-Type: text/plain; charset=iso-2022-j\0p\r\n");
    Message message(declared + "\r\n\x1B$B$9\x1B(B\r\n");
    const QString text = message.TextBody();
    message.SetHTMLBody(Html);
    EXPECT_EQ(Plain(message.TextBody()), Plain(text));
    EXPECT_EQ(Plain(message.HTMLBody()), Plain(Html));
    EXPECT_TRUE(message.Octets().contains("\r\n\r\n\x1B$B$9\x1B(B\r\n"));
}

TEST(MailBodyAdding, EmptyFileAndFieldsAboutNoContentAreNotPushedAside)
{
    Message file(Sent("Content-Type: text/plain\nContent-Disposition: attachment; filename=empty.txt\n\n"));
    file.SetHTMLBody(Html);
    ASSERT_EQ(file.Attachments().size(), 1);
    EXPECT_EQ(Plain(file.Attachments().at(0).FileName), "empty.txt");
    Message described(Sent("Content-Type: text/plain\nContent-Description: nothing\n\n"));
    described.AddAttachment(QStringLiteral("a.txt"), "text/plain", "one");
    EXPECT_TRUE(described.Octets().contains("Content-Description: nothing\r\n"));
    EXPECT_EQ(described.Attachments().size(), 1);
}

TEST(MailBodyAdding, MailWhosePartsWouldReadOtherwiseIsEnclosedWhole)
{
    // The part ends within its own header, so that whatever stands beside it becomes its text.
    const QByteArray octets =
        mailTest::ReadFile(mailTest::DataFolder() + QStringLiteral("finds/part-cut-off-in-its-header"));
    Message message(octets);
    const QString text = message.TextBody();
    const QString subject = message.Subject();
    message.SetHTMLBody(Html);
    EXPECT_EQ(Plain(message.TextBody()), Plain(text));
    EXPECT_EQ(Plain(message.HTMLBody()), Plain(Html));
    EXPECT_EQ(Plain(message.Subject()), Plain(subject));
    ASSERT_FALSE(message.Attachments().isEmpty());
    const auto last = static_cast<int>(message.Attachments().size()) - 1;
    EXPECT_EQ(Plain(message.Attachments().at(last).ContentType), "message/rfc822");
    EXPECT_EQ(message.AttachmentContent(last), octets);
}
