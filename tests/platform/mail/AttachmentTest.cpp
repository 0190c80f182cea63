// SPDX-License-Identifier: Apache-2.0
#include "MailSupport.h"

using cdo::Attachment;
using cdo::Message;
using mailTest::Plain;
using mailTest::Sent;

namespace
{

/// A mail with a text and one part with these header lines.
Message* WithPart(const QByteArray& fields, const QByteArray& content = "content")
{
    return new Message(Sent("Content-Type: multipart/mixed; boundary=b\n\n--b\n\ntext\n--b\n") +
                       QByteArray(fields).replace("\n", "\r\n") + "\r\n" + content + "\r\n--b--\r\n");
}

std::string NameOf(const QByteArray& fields)
{
    const std::unique_ptr<Message> message(WithPart(fields));
    return message->Attachments().isEmpty() ? "(none)" : Plain(message->Attachments().at(0).FileName);
}

} // namespace

TEST(MailAttachments, NameComesFromTheDispositionOrElseFromTheType)
{
    EXPECT_EQ(NameOf("Content-Type: image/png; name=a.png\nContent-Disposition: attachment; filename=b.png\n"),
              "b.png");
    EXPECT_EQ(NameOf("Content-Type: image/png; name=\"a b.png\"\n"), "a b.png");
    EXPECT_EQ(NameOf("Content-Type: image/png; name=a.png\nContent-Disposition: attachment\n"), "a.png");
    EXPECT_EQ(NameOf("Content-Type: image/png\n"), "");
}

TEST(MailAttachments, NamesAreDecodedInEveryWayTheyAreWritten)
{
    EXPECT_EQ(
        NameOf("Content-Type: image/png\nContent-Disposition: attachment; filename*=utf-8''Gr%C3%BC%C3%9Fe.png\n"),
        "Grüße.png");
    EXPECT_EQ(NameOf("Content-Type: image/png\nContent-Disposition: attachment;\n filename*0*=iso-8859-1'de'Gr%FC;\n"
                     " filename*1*=%DFe;\n filename*2=.png\n"),
              "Grüße.png");
    EXPECT_EQ(NameOf("Content-Type: image/png; name=\"=?utf-8?B?R3LDvMOfZS5wbmc=?=\"\n"), "Grüße.png");
    EXPECT_EQ(
        NameOf("Content-Type: image/png\nContent-Disposition: attachment; filename==?iso-8859-1?Q?Gr=FC=DFe.png?=\n"),
        "Grüße.png");
    EXPECT_EQ(NameOf("Content-Type: image/png; name=\"=?utf-8?B?R3LDvMOfZQ==?=\n =?utf-8?B?LnBuZw==?=\"\n"),
              "Grüße.png");
    EXPECT_EQ(NameOf("Content-Type: image/png; name=Gr\xC3\xBC\xC3\x9F.png\n"), "Grüß.png");
    EXPECT_EQ(NameOf("Content-Type: image/png; name=\"Gr\xFC\xDF.png\"\n"), "Grüß.png");
}

TEST(MailAttachments, TypeSizeAndContentAreTheDecodedOnes)
{
    const std::unique_ptr<Message> message(
        WithPart("Content-Type: IMAGE/PNG\nContent-ID: <a@b>\nContent-Transfer-Encoding: base64\n", "AAEC\r\n/w=="));
    const QList<Attachment> files = message->Attachments();
    ASSERT_EQ(files.size(), 1);
    EXPECT_EQ(Plain(files[0].ContentType), "image/png");
    EXPECT_EQ(Plain(files[0].ContentID), "a@b");
    EXPECT_EQ(files[0].Size, 4);
    EXPECT_FALSE(files[0].IsInline);
    EXPECT_EQ(message->AttachmentContent(0), QByteArray("\0\1\2\xFF", 4));
    EXPECT_TRUE(message->AttachmentContent(1).isEmpty());
    EXPECT_TRUE(message->AttachmentContent(-1).isEmpty());
}

TEST(MailAttachments, ImageThatTheHtmlShowsIsInline)
{
    const Message message(
        Sent("Content-Type: multipart/related; boundary=b\n\n--b\nContent-Type: text/html\n\n"
             "<img src=\"cid:a%2Bb@c\"><img src='CID:plain@c'>\n--b\nContent-Type: image/png\n"
             "Content-ID: <a+b@c>\n\nA\n--b\nContent-Type: image/gif\nContent-ID: <plain@c>\n\nB\n"
             "--b\nContent-Type: image/gif\nContent-ID: <other@c>\n\nC\n--b\nContent-Type: image/gif\n"
             "Content-Disposition: inline\n\nD\n--b--\n"));
    const QList<Attachment> files = message.Attachments();
    ASSERT_EQ(files.size(), 4);
    EXPECT_TRUE(files[0].IsInline);
    EXPECT_TRUE(files[1].IsInline);
    EXPECT_FALSE(files[2].IsInline);
    EXPECT_TRUE(files[3].IsInline);
}

TEST(MailAttachments, ContentIsFoundByItsIdWithOrWithoutBrackets)
{
    const std::unique_ptr<Message> message(WithPart("Content-Type: Image/Png\nContent-ID: <a+b@c>\n", "octets"));
    QString type;
    EXPECT_EQ(message->ContentByID(QStringLiteral("a+b@c"), &type), "octets");
    EXPECT_EQ(Plain(type), "image/png");
    EXPECT_EQ(message->ContentByID(QStringLiteral("<a+b@c>")), "octets");
    EXPECT_EQ(message->ContentByID(QStringLiteral("a%2Bb@c")), "octets");
    EXPECT_TRUE(message->ContentByID(QStringLiteral("other@c")).isNull());
    EXPECT_TRUE(message->ContentByID(QString()).isNull());
    const std::unique_ptr<Message> empty(WithPart("Content-ID: <a@b>\nContent-Type: image/png\n", ""));
    EXPECT_FALSE(empty->ContentByID(QStringLiteral("a@b")).isNull());
}

TEST(MailAttachments, EnclosedMessageIsOneFileWithItsExactOctets)
{
    const QByteArray enclosed =
        "Subject: inner\r\nContent-Type: multipart/mixed; boundary=i\n\r\npre\r\n--i\r\n\r\ntext\r\n"
        "--i\r\nContent-Type: image/png; name=x.png\r\n\r\nX\r\n--i--\nepilogue\r\n";
    const std::unique_ptr<Message> message(WithPart("Content-Type: message/rfc822; name=f.eml\n", enclosed));
    ASSERT_EQ(message->Attachments().size(), 1);
    EXPECT_EQ(Plain(message->Attachments().at(0).ContentType), "message/rfc822");
    EXPECT_EQ(Plain(message->Attachments().at(0).FileName), "f.eml");
    EXPECT_EQ(message->AttachmentContent(0), enclosed);
    EXPECT_EQ(message->Attachments().at(0).Size, enclosed.size());
    EXPECT_EQ(Plain(message->TextBody()), "text");
}

TEST(MailAttachments, EnclosedMessageThatIsTheWholeMailIsAFileToo)
{
    const Message message(Sent("Content-Type: message/rfc822\n\nSubject: inner\n\ninner text\n"));
    ASSERT_EQ(message.Attachments().size(), 1);
    EXPECT_EQ(message.AttachmentContent(0), Sent("Subject: inner\n\ninner text\n"));
    EXPECT_TRUE(message.TextBody().isEmpty());
}

TEST(MailAttachments, DigestPartsAreMessagesWithoutSayingSo)
{
    const Message message(Sent("Content-Type: multipart/digest; boundary=b\n\n--b\n\nSubject: one\n\n1\n--b\n\n"
                               "Subject: two\n\n2\n--b--\n"));
    ASSERT_EQ(message.Attachments().size(), 2);
    EXPECT_EQ(message.AttachmentContent(0), Sent("Subject: one\n\n1"));
    EXPECT_EQ(message.AttachmentContent(1), Sent("Subject: two\n\n2"));
}

TEST(MailAttachments, MailThatIsOnlyAFileHasItAsAttachment)
{
    const Message message(
        Sent("Content-Type: application/pdf; name=a.pdf\nContent-Transfer-Encoding: base64\n\nQUJD\n"));
    ASSERT_EQ(message.Attachments().size(), 1);
    EXPECT_EQ(message.AttachmentContent(0), "ABC");
    EXPECT_TRUE(message.TextBody().isEmpty());
}

TEST(MailAttachments, NestedPartsAreListedInTheOrderOfTheMail)
{
    const Message message(
        Sent("Content-Type: multipart/mixed; boundary=a\n\n--a\nContent-Type: image/png; name=1\n\n1\n"
             "--a\nContent-Type: multipart/mixed; boundary=b\n\n--b\nContent-Type: image/png; name=2\n\n"
             "2\n--b\nContent-Type: image/png; name=3\n\n3\n--b--\n\n--a\n"
             "Content-Type: image/png; name=4\n\n4\n--a--\n"));
    std::string names;
    for (const Attachment& file : message.Attachments())
        names += Plain(file.FileName);
    EXPECT_EQ(names, "1234");
}
