// SPDX-License-Identifier: Apache-2.0
#include "MailSupport.h"

#include <QTimeZone>

using cdo::Message;
using mailTest::MailFile;
using mailTest::Plain;

// Every mail file among the data, and what single ones of them hold.

namespace
{

class MailFiles : public testing::TestWithParam<std::string>
{
protected:
    QByteArray Octets_ = MailFile(GetParam().c_str());
};

std::vector<std::string> Names()
{
    std::vector<std::string> names;
    for (const QString& name : mailTest::MailFileNames())
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

TEST_P(MailFiles, ReadWithoutAFaultAndStayAsTheyWere)
{
    const Message message(Octets_);
    mailTest::ReadEverything(message);
    EXPECT_EQ(message.Octets(), Octets_);
    EXPECT_EQ(message.Octets().constData(), Octets_.constData());
    EXPECT_FALSE(message.From().isEmpty());
    EXPECT_FALSE(message.Sender().isEmpty());
    EXPECT_TRUE(!message.TextBody().isEmpty() || !message.HTMLBody().isEmpty() || !message.Attachments().isEmpty());
}

TEST_P(MailFiles, NewSubjectChangesTheSubjectLineAlone)
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

TEST_P(MailFiles, NewHtmlIsReadBackExactlyAndTheRestStays)
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

TEST_P(MailFiles, CutAnywhereTheyStillRead)
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

TEST_P(MailFiles, FileIsAddedAndTheOthersStay)
{
    Message message(Octets_);
    const QString text = message.TextBody();
    QStringList files = FileNames(message);
    message.AddAttachment(QStringLiteral("neu.txt"), "text/plain", "new");
    EXPECT_EQ(FileNames(message), files << QStringLiteral("neu.txt"));
    EXPECT_EQ(Plain(message.TextBody()), Plain(text));
}

INSTANTIATE_TEST_SUITE_P(Each, MailFiles, testing::ValuesIn(Names()), TestName);

TEST(MailFileContent, FolderHoldsTheMails)
{
    EXPECT_GE(Names().size(), 45U);
}

TEST(MailFileContent, PlainMail)
{
    for (const char* name : {"plain-mail", "plain-mail-in-lf-lines"}) {
        const Message message(MailFile(name));
        EXPECT_EQ(Plain(message.From()), "Morwenna Pascoe <morwenna@example.org>");
        EXPECT_EQ(Plain(message.To()), "Loveday Tregenza <loveday@example.com>");
        EXPECT_EQ(Plain(message.Subject()), "Tide at noon");
        EXPECT_EQ(Plain(message.MessageID()), "<6B7EC2-5B17@mail.example.org>");
        EXPECT_EQ(Plain(message.TextBody()), "High water at noon.\n\nBring boots!\n\nMorwenna\n");
        EXPECT_EQ(message.SentOn(), QDateTime(QDate(2026, 11, 12), QTime(4, 4, 59), Qt::UTC));
        EXPECT_EQ(message.ReceivedTime(), QDateTime(QDate(2026, 11, 12), QTime(4, 5, 5), Qt::UTC));
    }
}

TEST(MailFileContent, KoreanInBase64AndInEightBits)
{
    const Message message(MailFile("korean-in-euc-kr-base64"));
    EXPECT_EQ(Plain(message.Subject()), "SONG: 등대의 노래");
    EXPECT_EQ(Plain(message.TextBody()), "바다는 언제나 우리를 기다립니다.\n\n제 이름은 Morwenna입니다.");
    EXPECT_EQ(Plain(Message(MailFile("korean-in-ks-c-5601-8bit")).TextBody()), "등대지기\n");
}

TEST(MailFileContent, JapaneseInThreeSets)
{
    const Message utf8(MailFile("japanese-in-utf8-base64"));
    EXPECT_EQ(Plain(utf8.Subject()), "潮の時間");
    EXPECT_EQ(Plain(utf8.To()), "さち <sachi@example.com>");
    EXPECT_TRUE(utf8.TextBody().startsWith(QStringLiteral("なみのおと\n\n-- \n")));
    EXPECT_EQ(Plain(Message(MailFile("japanese-in-iso-2022-jp")).TextBody()), "おはよう。\n\n");
    EXPECT_TRUE(
        Message(MailFile("japanese-in-shift-jis")).TextBody().startsWith(QStringLiteral("かもめ\n\nとぶ港から")));
}

TEST(MailFileContent, FileNamesInEveryWriting)
{
    const auto names = [](const char* mail) { return Plain(FileNames(Message(MailFile(mail))).join(u'|')); };
    EXPECT_EQ(names("file-name-differs-from-type-name"), "crossings.csv");
    EXPECT_EQ(names("file-name-in-raw-utf8"), "crêpes.txt");
    EXPECT_EQ(names("whole-mail-is-a-file"), "logs.gz");
    EXPECT_EQ(names("file-name-as-bare-encoded-word"), "Tide table.pdf");
    EXPECT_EQ(names("file-name-in-two-writings"), "Fährpläne für März.jpg");
    EXPECT_EQ(names("file-name-unquoted-with-blanks"), "Rota for the week.txt");
    EXPECT_EQ(names("file-name-as-quoted-encoded-word"), "みなと.txt");
    EXPECT_EQ(names("file-name-in-continuations"), "みなとのラジオみなとのラジオみなとのラジオみなとのラジオ.txt");
    EXPECT_EQ(names("files-in-nested-parts"), "jingle.sh|rota.pdf|smime.p7s");
    EXPECT_EQ(names("signed-mail-with-a-cut-picture"), "half.png|smime.p7s");
    EXPECT_EQ(names("detached-signature"), "signature.asc");
    EXPECT_EQ(names("boundary-begins-like-its-outer-one"), "CREST.png");
}

TEST(MailFileContent, FileContents)
{
    const Message message(MailFile("files-in-nested-parts"));
    EXPECT_EQ(message.AttachmentContent(0), "echo \"ding, dong\"\r\n");
    EXPECT_EQ(message.AttachmentContent(1), "no pages here");
    EXPECT_TRUE(message.Attachments().at(1).IsInline);
    EXPECT_FALSE(message.Attachments().at(0).IsInline);
    const Message pdf(MailFile("pdf-behind-envelope-line"));
    EXPECT_TRUE(pdf.AttachmentContent(0).startsWith("%PDF-1.4"));
    const Message image(MailFile("inline-picture-with-location"));
    QString type;
    EXPECT_EQ(image.ContentByID(QStringLiteral("beacon-1"), &type).size(), 211);
    EXPECT_EQ(Plain(type), "image/jpeg");
}

TEST(MailFileContent, EnclosedMessageIsOneFileThatReadsAsAMail)
{
    const Message message(MailFile("enclosed-mail-with-envelope-line"));
    ASSERT_EQ(FileNames(message), QStringList(QStringLiteral("Berths.eml")));
    EXPECT_EQ(Plain(message.TextBody()), "The list is enclosed.\n");
    const Message enclosed(message.AttachmentContent(0));
    EXPECT_EQ(Plain(enclosed.Subject()), "The berth plan");
    EXPECT_EQ(Plain(enclosed.From()), "Kerensa Trelawny <kerensa@example.org>");
    EXPECT_TRUE(enclosed.TextBody().startsWith(QStringLiteral("Here is the plan of the berths for")));
    EXPECT_EQ(FileNames(enclosed), QStringList(QStringLiteral("berths.pdf")));
}

TEST(MailFileContent, InlineImageAndEnclosedMessageBesideHtml)
{
    const Message message(MailFile("inline-picture-and-enclosed-mail-beside-html"));
    EXPECT_TRUE(message.TextBody().isEmpty());
    EXPECT_TRUE(message.HTMLBody().contains(QStringLiteral("<img src=\"cid:card-77f3@harbour.example.org\"")));
    ASSERT_EQ(FileNames(message), QStringList({QStringLiteral("card.png"), QStringLiteral("Answer.eml")}));
    EXPECT_TRUE(message.Attachments().at(0).IsInline);
    EXPECT_TRUE(message.ContentByID(QStringLiteral("card-77f3@harbour.example.org")).startsWith("\x89PNG"));
}

TEST(MailFileContent, BouncedMailWithAPartOfNoType)
{
    const Message message(MailFile("bounce-with-untyped-part"));
    EXPECT_TRUE(message.TextBody().contains(QStringLiteral("THIS IS ONLY A NOTE")));
    ASSERT_EQ(message.Attachments().size(), 2);
    EXPECT_EQ(Plain(message.Attachments().at(0).ContentType), "message/delivery-status");
    const Message returned(message.AttachmentContent(1));
    EXPECT_EQ(Plain(returned.Subject()), "À bientôt ?");
    EXPECT_TRUE(returned.TextBody().startsWith(QStringLiteral("Bonjour,\nla marée")));
}

TEST(MailFileContent, HtmlInLatin1)
{
    const Message message(MailFile("html-in-latin1"));
    EXPECT_EQ(Plain(message.To()), "André Guégan <andre@example.com>");
    EXPECT_EQ(Plain(message.Subject()), "André Guégan comes to the quiz");
    EXPECT_TRUE(message.HTMLBody().contains(QStringLiteral("<p>André Guégan comes")));
    EXPECT_TRUE(message.TextBody().startsWith(QStringLiteral("André Guégan comes")));
}

TEST(MailFileContent, BoundariesThatBreakTheRules)
{
    for (const char* name : {"boundary-with-illegal-characters", "boundary-with-illegal-characters-quoted"}) {
        const Message message(MailFile(name));
        EXPECT_EQ(Plain(message.TextBody()), "Morning\nThe rope is frayed\n\nDo look.\n\nM.\n");
        EXPECT_TRUE(message.HTMLBody().contains(QStringLiteral("<B>The rope \nis frayed</B>")));
    }
    const Message similar(MailFile("boundary-begins-like-its-outer-one"));
    EXPECT_EQ(Plain(similar.TextBody()), "Low water\n");
    EXPECT_TRUE(similar.HTMLBody().contains(QStringLiteral("<p>Low water</p>")));
}

TEST(MailFileContent, RawUtf8WithoutOrWithTheWrongSet)
{
    for (const char* name : {"raw-utf8-without-type", "raw-utf8-declared-as-ascii", "raw-utf8-of-unknown-set"}) {
        EXPECT_TRUE(
            Message(MailFile(name)).TextBody().contains(QStringLiteral("Expédié du ferry par un téléavertisseur.")))
            << name;
    }
    for (const char* name : {"raw-emoji-in-subject", "raw-emoji-in-subject-in-lf-lines"})
        EXPECT_EQ(Plain(Message(MailFile(name)).Subject()), "Berths ⚓ and a party 🎈 on the quay");
}

TEST(MailFileContent, BrokenHeaders)
{
    const Message incorrect(MailFile("blank-in-a-header-name"));
    EXPECT_EQ(Plain(incorrect.Subject()), "Your hull is full of worms.");
    EXPECT_EQ(Plain(incorrect.From()), "\"ann onymous\" <ann@example.net>");
    EXPECT_TRUE(incorrect.TextBody().startsWith(QStringLiteral("You have on board: \n")));
    const Message twoFrom(MailFile("two-from-headers"));
    EXPECT_EQ(Plain(twoFrom.From()), "Tamsin Bray <tamsin@example.org>");
    EXPECT_EQ(Plain(twoFrom.Sender()), "Tamsin Bray <tamsin@example.org>");
    EXPECT_EQ(Plain(Message(MailFile("addresses-without-comma")).From()), "studio@example.org desk@example.org");
    EXPECT_EQ(Plain(Message(MailFile("two-subjects-and-a-binary-part")).Subject()), "The first subject");
    EXPECT_EQ(Plain(Message(MailFile("encoded-words-between-plain-words")).Subject()),
              "Re: Song: \"波\" then \"波\" again");
    EXPECT_EQ(Plain(Message(MailFile("at-sign-in-display-name")).To()),
              "first@example.com, Loveday@Quay <loveday@example.com>, last@example.com");
}

TEST(MailFileContent, DatesThatAreNone)
{
    const Message badTime(MailFile("date-in-the-year-3609"));
    EXPECT_FALSE(badTime.SentOn().isValid());
    EXPECT_EQ(badTime.ReceivedTime(), QDateTime(QDate(2026, 11, 12), QTime(9, 34, 0), Qt::UTC));
    EXPECT_EQ(Plain(badTime.From()), "Парусa <offers@example.net>");
    EXPECT_FALSE(Message(MailFile("date-of-nonsense")).SentOn().isValid());
    EXPECT_EQ(Message(MailFile("comment-behind-date")).SentOn(),
              QDateTime(QDate(2026, 11, 14), QTime(17, 4, 30), Qt::UTC));
}

TEST(MailFileContent, LineEndsWrittenIntoQuotedPrintable)
{
    EXPECT_TRUE(Message(MailFile("line-ends-in-quoted-printable"))
                    .TextBody()
                    .startsWith(QStringLiteral("Tide sheet by fax from ''.\n~~~~~~~~~")));
}
