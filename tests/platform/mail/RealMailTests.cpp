#include "MailSupport.h"

#include <QTimeZone>

using cdo::Message;
using mailTest::Plain;
using mailTest::RealMail;

// Every mail that stands in the data folder, and what single ones of them hold.

namespace
{

class RealMails : public testing::TestWithParam<std::string>
{
protected:
    QByteArray Octets_ = RealMail(GetParam().c_str());
};

std::vector<std::string> Names()
{
    std::vector<std::string> names;
    for (const QString& name : mailTest::RealMailNames())
        names.push_back(Plain(name));
    return names;
}

std::string TestName(const testing::TestParamInfo<std::string>& info)
{
    std::string name = info.param;
    std::replace_if(
        name.begin(), name.end(), [](char c) { return !isalnum(static_cast<unsigned char>(c)); }, '_');
    return name;
}

QStringList FileNames(const Message& message)
{
    QStringList names;
    for (const cdo::Attachment& file : message.Attachments())
        names.append(file.FileName);
    return names;
}

QByteArray CommonStart(const QByteArray& a, const QByteArray& b)
{
    const auto end = std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first;
    return a.left(end - a.begin());
}

QByteArray CommonEnd(const QByteArray& a, const QByteArray& b)
{
    const auto end = std::mismatch(a.rbegin(), a.rend(), b.rbegin(), b.rend()).first;
    return a.right(end - a.rbegin());
}

/// Where the octets of the HTML part stand, told from the mail's own text.
std::pair<qsizetype, qsizetype> HtmlPlace(const QByteArray& octets)
{
    const QByteArray lineBreak = octets.contains("\r\n") ? "\r\n" : "\n";
    const qsizetype type = octets.toLower().indexOf("content-type: text/html");
    const qsizetype begin = octets.indexOf(lineBreak + lineBreak, type) + 2 * lineBreak.size();
    const qsizetype end = octets.indexOf(lineBreak + "--", begin);
    return {begin, end < 0 ? octets.size() : end};
}

} // namespace

TEST_P(RealMails, ReadWithoutAFaultAndStayAsTheyWere)
{
    const Message message(Octets_);
    mailTest::ReadEverything(message);
    EXPECT_EQ(message.Octets(), Octets_);
    EXPECT_EQ(message.Octets().constData(), Octets_.constData());
    EXPECT_FALSE(message.From().isEmpty());
    EXPECT_FALSE(message.Sender().isEmpty());
    EXPECT_TRUE(!message.TextBody().isEmpty() || !message.HTMLBody().isEmpty() || !message.Attachments().isEmpty());
}

TEST_P(RealMails, NewSubjectChangesTheSubjectLineAlone)
{
    Message message(Octets_);
    const QString text = message.TextBody();
    const QStringList files = FileNames(message);
    message.SetSubject(QStringLiteral("changed"));
    const QByteArray lineBreak = Octets_.contains("\r\n") ? "\r\n" : "\n";
    const QByteArray line = "Subject: changed" + lineBreak;
    const qsizetype at = message.Octets().indexOf(line);
    ASSERT_GE(at, 0);
    const QByteArray behind = message.Octets().mid(at + line.size());
    EXPECT_TRUE(Octets_.startsWith(message.Octets().left(at)));
    EXPECT_TRUE(Octets_.endsWith(behind));
    const QByteArray removed = Octets_.mid(at, Octets_.size() - at - behind.size());
    EXPECT_TRUE(removed.isEmpty() || removed.startsWith("Subject:")) << removed.constData();
    EXPECT_EQ(Plain(message.TextBody()), Plain(text));
    EXPECT_EQ(FileNames(message), files);
}

TEST_P(RealMails, NewHtmlIsReadBackExactlyAndTheRestStays)
{
    Message message(Octets_);
    const QString text = message.TextBody();
    const QStringList files = FileNames(message);
    const QString html = message.HTMLBody() + QStringLiteral("<b>x</b>");
    const bool hadHtml = !message.HTMLBody().isEmpty();
    message.SetHTMLBody(html);
    EXPECT_EQ(Plain(message.HTMLBody()), Plain(html));
    EXPECT_EQ(Plain(message.TextBody()), Plain(text));
    EXPECT_EQ(FileNames(message), files);
    if (!hadHtml)
        return;
    const auto [begin, end] = HtmlPlace(Octets_);
    EXPECT_GE(CommonStart(Octets_, message.Octets()).size(), begin);
    EXPECT_GE(CommonEnd(Octets_, message.Octets()).size(), Octets_.size() - end);
}

TEST_P(RealMails, CutAnywhereTheyStillRead)
{
    const qsizetype step = qMax<qsizetype>(1, Octets_.size() / 150);
    for (qsizetype length = 0; length < Octets_.size(); length += step) {
        const QByteArray cut = Octets_.left(length);
        Message message(cut);
        mailTest::ReadEverything(message);
        ASSERT_EQ(message.Octets(), cut);
        message.SetHTMLBody(QStringLiteral("<b>x</b>"));
        ASSERT_EQ(Plain(message.HTMLBody()), "<b>x</b>") << length;
    }
}

TEST_P(RealMails, FileIsAddedAndTheOthersStay)
{
    Message message(Octets_);
    const QString text = message.TextBody();
    QStringList files = FileNames(message);
    message.AddAttachment(QStringLiteral("neu.txt"), "text/plain", "new");
    EXPECT_EQ(FileNames(message), files << QStringLiteral("neu.txt"));
    EXPECT_EQ(Plain(message.TextBody()), Plain(text));
}

INSTANTIATE_TEST_SUITE_P(Each, RealMails, testing::ValuesIn(Names()), TestName);

TEST(RealMailContent, FolderHoldsTheMails)
{
    EXPECT_GE(Names().size(), 45U);
}

TEST(RealMailContent, PlainMail)
{
    for (const char* name : {"plain_emails-basic_email", "plain_emails-basic_email_lf"}) {
        const Message message(RealMail(name));
        EXPECT_EQ(Plain(message.From()), "Mikel Lindsaar <test@lindsaar.net>");
        EXPECT_EQ(Plain(message.To()), "Mikel Lindsaar <raasdnil@gmail.com>");
        EXPECT_EQ(Plain(message.Subject()), "Testing 123");
        EXPECT_EQ(Plain(message.MessageID()), "<6B7EC235-5B17-4CA8-B2B8-39290DEB43A3@test.lindsaar.net>");
        EXPECT_EQ(Plain(message.TextBody()), "Plain email.\n\nHope it works well!\n\nMikel\n");
        EXPECT_EQ(message.SentOn(), QDateTime(QDate(2008, 11, 22), QTime(4, 4, 59), Qt::UTC));
        EXPECT_EQ(message.ReceivedTime(), QDateTime(QDate(2008, 11, 22), QTime(4, 5, 5), Qt::UTC));
    }
}

TEST(RealMailContent, KoreanInBase64)
{
    const Message message(RealMail("plain_emails-raw_email"));
    EXPECT_EQ(Plain(message.Subject()), "NOTE: 한국말로 하는 것");
    EXPECT_EQ(Plain(message.TextBody()), "대부분의 마찬가지로, 우리는 하나님을 믿습니다.\n\n제 이름은 Jamis입니다.");
    EXPECT_EQ(Plain(Message(RealMail("multi_charset-ks_c_5601-1987")).TextBody()), "스티해\n");
}

TEST(RealMailContent, JapaneseInThreeSets)
{
    const Message utf8(RealMail("multi_charset-japanese"));
    EXPECT_EQ(Plain(utf8.Subject()), "まみむめも");
    EXPECT_EQ(Plain(utf8.To()), "みける <raasdnil@gmail.com>");
    EXPECT_TRUE(utf8.TextBody().startsWith(QStringLiteral("かきくえこ\n\n-- \n")));
    EXPECT_EQ(Plain(Message(RealMail("multi_charset-japanese_iso_2022")).TextBody()), "すみません。\n\n");
    EXPECT_TRUE(Message(RealMail("multi_charset-japanese_shift_jis"))
                    .TextBody()
                    .startsWith(QStringLiteral("あいうえお\n\nこのメール")));
}

TEST(RealMailContent, FileNamesInEveryWriting)
{
    const auto names = [](const char* mail) { return Plain(FileNames(Message(RealMail(mail))).join(u'|')); };
    EXPECT_EQ(names("attachment_emails-attachment_content_disposition"), "api.rb");
    EXPECT_EQ(names("attachment_emails-attachment_nonascii_filename"), "ciële.txt");
    EXPECT_EQ(names("attachment_emails-attachment_only_email"), "blah.gz");
    EXPECT_EQ(names("attachment_emails-attachment_with_base64_encoded_name"), "This is a test.pdf");
    EXPECT_EQ(names("attachment_emails-attachment_with_quoted_filename"), "Eelanalüüsi päring.jpg");
    EXPECT_EQ(names("attachment_emails-attachment_with_unquoted_name"), "This is a test.txt");
    EXPECT_EQ(names("multi_charset-japanese_attachment"), "てすと.txt");
    EXPECT_EQ(names("multi_charset-japanese_attachment_long_name"),
              "かきくけこかきくけこかきくけこかきくけこかきくけこ.txt");
    EXPECT_EQ(names("mime_emails-raw_email7"), "test.rb|test.pdf|smime.p7s");
    EXPECT_EQ(names("mime_emails-raw_email_with_nested_attachment"), "truncated.png|smime.p7s");
    EXPECT_EQ(names("mime_emails-sig_only_email"), "signature.asc");
    EXPECT_EQ(names("mime_emails-email_with_similar_boundaries"), "LOGO.png");
}

TEST(RealMailContent, FileContents)
{
    const Message message(RealMail("mime_emails-raw_email7"));
    EXPECT_EQ(message.AttachmentContent(0), "puts \"testing, testing\"\r\n");
    EXPECT_EQ(message.AttachmentContent(1), "blah blah blah");
    EXPECT_TRUE(message.Attachments().at(1).IsInline);
    EXPECT_FALSE(message.Attachments().at(0).IsInline);
    const Message pdf(RealMail("attachment_emails-attachment_pdf"));
    EXPECT_TRUE(pdf.AttachmentContent(0).startsWith("%PDF-1.4"));
    const Message image(RealMail("attachment_emails-attachment_content_location"));
    QString type;
    EXPECT_EQ(image.ContentByID(QStringLiteral("qbFGyPQAS8"), &type).size(), 227);
    EXPECT_EQ(Plain(type), "image/jpeg");
}

TEST(RealMailContent, EnclosedMessageIsOneFileThatReadsAsAMail)
{
    const Message message(RealMail("attachment_emails-attachment_message_rfc822"));
    ASSERT_EQ(FileNames(message), QStringList(QStringLiteral("ForwardedMessage.eml")));
    EXPECT_EQ(Plain(message.TextBody()), "This is the first part.\n");
    const Message enclosed(message.AttachmentContent(0));
    EXPECT_EQ(Plain(enclosed.Subject()), "Another PDF");
    EXPECT_EQ(Plain(enclosed.From()), "Test Tester <xxxx@xxxx.com>");
    EXPECT_TRUE(enclosed.TextBody().startsWith(QStringLiteral("Just attaching another PDF")));
    EXPECT_EQ(FileNames(enclosed), QStringList(QStringLiteral("broken.pdf")));
}

TEST(RealMailContent, InlineImageAndEnclosedMessageBesideHtml)
{
    const Message message(RealMail("attachment_emails-attachment_message_rfc822_inline_image"));
    EXPECT_TRUE(message.TextBody().isEmpty());
    EXPECT_TRUE(message.HTMLBody().startsWith(QStringLiteral("<html><body><img src=\"cid:emedfeb92f-a786-")));
    ASSERT_EQ(FileNames(message), QStringList({QStringLiteral("img.png"), QStringLiteral("Testmail.eml")}));
    EXPECT_TRUE(message.Attachments().at(0).IsInline);
    EXPECT_TRUE(
        message.ContentByID(QStringLiteral("emedfeb92f-a786-4718-a446-98db8afb53fb@kronos")).startsWith("\x89PNG"));
}

TEST(RealMailContent, BouncedMail)
{
    const Message message(RealMail("mime_emails-raw_email_with_mimepart_without_content_type"));
    EXPECT_TRUE(message.TextBody().contains(QStringLiteral("THIS IS A WARNING MESSAGE ONLY")));
    ASSERT_EQ(message.Attachments().size(), 2);
    EXPECT_EQ(Plain(message.Attachments().at(0).ContentType), "message/delivery-status");
    const Message returned(message.AttachmentContent(1));
    EXPECT_EQ(Plain(returned.Subject()), "Est-ce toi ?");
    EXPECT_TRUE(returned.TextBody().startsWith(QStringLiteral("Salut,\n")));
}

TEST(RealMailContent, HtmlInLatin1)
{
    const Message message(RealMail("mime_emails-raw_email_encoded_stack_level_too_deep"));
    EXPECT_EQ(Plain(message.To()), "Nicolas Fouché <a.b@gmail.com>");
    EXPECT_EQ(Plain(message.Subject()), "Nicolas Fouché has accepted your invitation to Gmail");
    EXPECT_TRUE(message.HTMLBody().contains(QStringLiteral("<p>Nicolas Fouché has accepted")));
    EXPECT_TRUE(message.TextBody().startsWith(QStringLiteral("Nicolas Fouché has accepted")));
}

TEST(RealMailContent, BoundariesThatBreakTheRules)
{
    for (const char* name :
         {"mime_emails-raw_email_with_illegal_boundary", "mime_emails-raw_email_with_quoted_illegal_boundary"}) {
        const Message message(RealMail(name));
        EXPECT_EQ(Plain(message.TextBody()), "Hello\nThis is an outlook test\n\nSo there.\n\nMe.\n");
        EXPECT_TRUE(message.HTMLBody().contains(QStringLiteral("<STRONG>This is an outlook \ntest</STRONG>")));
    }
    const Message similar(RealMail("mime_emails-email_with_similar_boundaries"));
    EXPECT_EQ(Plain(similar.TextBody()), "Test\n");
    EXPECT_TRUE(similar.HTMLBody().contains(QStringLiteral("<p>Test</p>")));
}

TEST(RealMailContent, RawUtf8WithoutOrWithTheWrongSet)
{
    for (const char* name : {"plain_emails-raw_email5", "plain_emails-raw_email6", "plain_emails-raw_email10"})
        EXPECT_TRUE(Message(RealMail(name))
                        .TextBody()
                        .contains(QStringLiteral("Envoyé par le service de messagerie texte de Bell Mobilité.")))
            << name;
    EXPECT_EQ(Plain(Message(RealMail("attachment_emails-attachment_pdf_non_ascii")).Subject()),
              "Another PDF with 🎉 Unicode chars in it 🍿");
}

TEST(RealMailContent, BrokenHeaders)
{
    const Message incorrect(RealMail("plain_emails-raw_email_incorrect_header"));
    EXPECT_EQ(Plain(incorrect.Subject()), "Stop adware/spyware once and for all.");
    EXPECT_EQ(Plain(incorrect.From()), "\"xxx xxx\" <xxx@xxx.xxx>");
    EXPECT_TRUE(incorrect.TextBody().startsWith(QStringLiteral("You are infected with: \n")));
    const Message twoFrom(RealMail("mime_emails-two_from_in_message"));
    EXPECT_EQ(Plain(twoFrom.From()), "Tester 1 <tester1@test.com>");
    EXPECT_EQ(Plain(twoFrom.Sender()), "Tester 1 <tester1@test.com>");
    EXPECT_EQ(Plain(Message(RealMail("plain_emails-raw_email_multiple_from")).From()),
              "tim@powerupdev.com concierge@powerupdev.com");
    EXPECT_EQ(Plain(Message(RealMail("mime_emails-raw_email_with_binary_encoded")).Subject()), "Testing outlook");
    EXPECT_EQ(Plain(Message(RealMail("plain_emails-raw_email_with_partially_quoted_subject")).Subject()),
              "Re: Test: \"漢字\" mid \"漢字\" tail");
    EXPECT_EQ(Plain(Message(RealMail("plain_emails-raw_email_with_at_display_name")).To()),
              "smith@gmail.com, Mikel@Lindsaar <raasdnil@gmail.com>, tom@gmail.com");
}

TEST(RealMailContent, DatesThatAreNone)
{
    const Message badTime(RealMail("plain_emails-raw_email_bad_time"));
    EXPECT_FALSE(badTime.SentOn().isValid());
    EXPECT_EQ(badTime.ReceivedTime(), QDateTime(QDate(2008, 6, 30), QTime(9, 34, 0), Qt::UTC));
    EXPECT_EQ(Plain(badTime.From()), "Атиковa <yusuf75thu@auracom.net>");
    EXPECT_FALSE(Message(RealMail("plain_emails-raw_email_with_bad_date")).SentOn().isValid());
    EXPECT_EQ(Message(RealMail("plain_emails-raw_email_string_in_date_field")).SentOn(),
              QDateTime(QDate(2008, 9, 20), QTime(17, 4, 30), Qt::UTC));
}

TEST(RealMailContent, LineEndsWrittenIntoQuotedPrintable)
{
    EXPECT_TRUE(Message(RealMail("plain_emails-raw_email_quoted_with_0d0a"))
                    .TextBody()
                    .startsWith(QStringLiteral("A fax has arrived from remote ID ''.\n---------")));
}
