// SPDX-License-Identifier: Apache-2.0
#include "MailSupport.h"

using cdo::Message;
using mailTest::Plain;
using mailTest::Sent;

namespace
{

QString TextIn(const char* characterSet, const QByteArray& octets)
{
    return Message(QByteArray("Content-Type: text/plain; charset=") + characterSet + "\n\n" + octets).TextBody();
}

} // namespace

TEST(MailBodyReading, PlainTextHasPlainLineEnds)
{
    const Message message(Sent("Subject: a\n\nline 1\nline 2\n"));
    EXPECT_EQ(Plain(message.TextBody()), "line 1\nline 2\n");
    EXPECT_TRUE(message.HTMLBody().isEmpty());
}

TEST(MailBodyReading, HtmlOnlyMailHasNoText)
{
    const Message message(Sent("Content-Type: text/html; charset=utf-8\n\n<p>x</p>\n"));
    EXPECT_EQ(Plain(message.HTMLBody()), "<p>x</p>\n");
    EXPECT_TRUE(message.TextBody().isEmpty());
    EXPECT_TRUE(message.Attachments().isEmpty());
}

TEST(MailBodyReading, TransferEncodingsAreUndone)
{
    const auto text = [](const char* encoding, const char* content) {
        return Plain(Message(QByteArray("Content-Type: text/plain; charset=utf-8\nContent-Transfer-Encoding: ") +
                             encoding + "\n\n" + content)
                         .TextBody());
    };
    EXPECT_EQ(text("quoted-printable", "Gr=C3=BC=\n=C3=9Fe=20\n"), "Grüße \n");
    EXPECT_EQ(text("Base64", "R3LDvMOfZQ0K\nQQ==\n"), "Grüße\nA");
    EXPECT_EQ(text("8bit", "Grüße\n"), "Grüße\n");
    EXPECT_EQ(text("x-uuencode", "begin 644 a.txt\n#86)C\n`\nend\n"), "abc");
    EXPECT_EQ(text("nonsense", "as it stands"), "as it stands");
    EXPECT_EQ(text("base64", "QUI=\nQ0Q=\nRQ==\n"), "ABCDE") << "encoded in pieces";
    EXPECT_EQ(text("base64", "Q U*J\n D"), "ABC") << "with what does not belong there";
}

TEST(MailBodyReading, EachCharacterSetIsRead)
{
    EXPECT_EQ(Plain(TextIn("iso-2022-jp", "\x1B$B$^$_\x1B(B")), "まみ");
    EXPECT_EQ(Plain(TextIn("Shift_JIS", "\x82\xDC\x87\x40")), "ま①");
    EXPECT_EQ(Plain(TextIn("euc-jp", "\xA4\xDE")), "ま");
    EXPECT_EQ(Plain(TextIn("ks_c_5601-1987", "\xC7\xD1")), "한");
    EXPECT_EQ(Plain(TextIn("gb2312", "\xC4\xE3")), "你");
    EXPECT_EQ(Plain(TextIn("big5", "\xA7\x41")), "你");
    EXPECT_EQ(Plain(TextIn("koi8-r", "\xF0\xD2\xC9")), "При");
    EXPECT_EQ(Plain(TextIn("windows-1250", "\x9C")), "ś");
    EXPECT_EQ(Plain(TextIn("windows-1251", "\xCF\xF0")), "Пр");
    EXPECT_EQ(Plain(TextIn("\"windows-1252\"", "\x80")), "€");
    EXPECT_EQ(Plain(TextIn("windows-1257", "\xE0")), "ą");
    EXPECT_EQ(Plain(TextIn("ISO-8859-15", "\xA4")), "€");
    EXPECT_EQ(Plain(TextIn("utf-16be", QByteArray("\x30\x7E\x00\x41", 4))), "まA");
    EXPECT_EQ(Plain(TextIn("utf-7", "+MH4-")), "ま");
}

TEST(MailBodyReading, UnnamedOrUnknownOrWrongSetIsUtf8OrElseWindows1252)
{
    for (const char* name : {"us-ascii", "x-unknown", "iso-8859-1", "utf-8", "\"\"", "windows-1252", "utf-8//IGNORE"}) {
        EXPECT_EQ(Plain(TextIn(name, "Gr\xC3\xBC\xC3\x9F")), "Grüß") << name;
        EXPECT_EQ(Plain(TextIn(name, "Gr\xFC\xDF \x93x\x94")), "Grüß “x”") << name;
    }
    EXPECT_EQ(Plain(Message("Subject: a\n\nGr\xFC\xDF").TextBody()), "Grüß");
    EXPECT_EQ(Plain(Message("Subject: a\n\nGr\xC3\xBC").TextBody()), "Grü");
    EXPECT_EQ(Plain(TextIn("iso-2022-jp", "Gr\xC3\xBC")), "Grü");
}

TEST(MailBodyReading, OctetsThatCannotBeReadAreShownAsReplaced)
{
    const QString cut = TextIn("utf-8", "まみむ\xE3\x81");
    EXPECT_EQ(Plain(cut.left(3)), "まみむ");
    EXPECT_EQ(Plain(cut.mid(3).remove(QChar(QChar::ReplacementCharacter))), "");
    EXPECT_GT(cut.size(), 3);
    EXPECT_EQ(Plain(TextIn("shift_jis", "\x82\xDC\xFF"
                                        "A")),
              "ま\uFFFDA");
    EXPECT_EQ(Plain(TextIn("iso-2022-jp", "\x1B$B$^\xFF\xFF\x1B(BA")).substr(0, 3), "ま");
}

TEST(MailBodyReading, NulIsShownAsReplacedAndNothingBehindItIsLost)
{
    EXPECT_EQ(Plain(Message(QByteArrayLiteral("Subject: a\n\nbe\0fore")).TextBody()), "be\uFFFDfore");
    EXPECT_EQ(Plain(TextIn("windows-1251", QByteArray("\xCF\0\xF0", 3))), "П\uFFFDр");
    const QByteArray octets =
        QByteArrayLiteral("Content-Type: multipart/mixed; boundary=b\n\n--b\n\nbe\0fore\n--b\n\nsecond\n--b--\n");
    EXPECT_EQ(Plain(Message(octets).TextBody()), "be\uFFFDfore");
    EXPECT_EQ(Message(octets).Octets(), octets);
}

TEST(MailBodyReading, AlternativeGivesBothBodies)
{
    const Message message(Sent("Content-Type: multipart/alternative; boundary=b\n\npreamble\n--b\n\ntext\n--b\n"
                               "Content-Type: text/html\n\n<p>html</p>\n--b--\nepilogue\n"));
    EXPECT_EQ(Plain(message.TextBody()), "text");
    EXPECT_EQ(Plain(message.HTMLBody()), "<p>html</p>");
    EXPECT_TRUE(message.Attachments().isEmpty());
}

TEST(MailBodyReading, FirstOfSeveralTextPartsCounts)
{
    const Message message(Sent("Content-Type: multipart/mixed; boundary=b\n\n--b\n\none\n--b\n\ntwo\n--b--\n"));
    EXPECT_EQ(Plain(message.TextBody()), "one");
    EXPECT_TRUE(message.Attachments().isEmpty());
}

TEST(MailBodyReading, TextFileIsNoBody)
{
    const Message message(Sent("Content-Type: multipart/mixed; boundary=b\n\n--b\n"
                               "Content-Type: text/plain; name=notes.txt\nContent-Disposition: attachment\n\nfile\n"
                               "--b\nContent-Type: text/plain\n\nbody\n--b--\n"));
    EXPECT_EQ(Plain(message.TextBody()), "body");
    ASSERT_EQ(message.Attachments().size(), 1);
    EXPECT_EQ(Plain(message.Attachments().at(0).FileName), "notes.txt");
}

TEST(MailBodyReading, NamedTextServesAsBodyWhenThereIsNoOther)
{
    const Message message(Sent("Content-Type: text/plain; name=message.txt\n\nbody"));
    EXPECT_EQ(Plain(message.TextBody()), "body");
    EXPECT_TRUE(message.Attachments().isEmpty());
}

TEST(MailBodyReading, MultipartWithoutBoundaryIsShownAsText)
{
    EXPECT_EQ(Plain(Message("Content-Type: multipart/mixed\n\n--b\n\ntext\n--b--\n").TextBody()),
              "--b\n\ntext\n--b--\n");
    EXPECT_EQ(Plain(Message("Content-Type: multipart/mixed; boundary=other\n\n--b\n\ntext\n").TextBody()),
              "--b\n\ntext\n");
    EXPECT_EQ(Plain(Message("Content-Type: multipart/mixed; boundary=b\n\n--b--\n").TextBody()), "--b--\n");
}

TEST(MailBodyReading, MissingLastBoundaryEndsThePartAtTheEnd)
{
    const Message message(Sent("Content-Type: multipart/mixed; boundary=b\n\n--b\n\ntext\nmore"));
    EXPECT_EQ(Plain(message.TextBody()), "text\nmore");
}

TEST(MailBodyReading, LineEndsOfBoundariesNeedNotBeThoseOfTheText)
{
    EXPECT_EQ(Plain(Message("Content-Type: multipart/mixed; boundary=b\n\n--b\n\ntext\r\n--b--").TextBody()), "text");
    EXPECT_EQ(Plain(Message("Content-Type: multipart/mixed; boundary=b\n\n--b\n\ntext\n--b--\r\n").TextBody()), "text");
    EXPECT_EQ(Plain(Message("Content-Type: multipart/mixed; boundary=b\n\n--b\n\nt\n--b--\r\n").TextBody()), "t");
    EXPECT_EQ(Plain(Message("Content-Type: multipart/mixed; boundary=b\n\n--b\n\n\n--b--\r\n").TextBody()), "");
    EXPECT_EQ(Plain(Message("Content-Type: multipart/mixed; boundary=b\n\n--b\n\n--b--\r\n").TextBody()), "");
}

TEST(MailBodyReading, TypeThatIsNoneIsText)
{
    for (const char* type : {"text", "nonsense", ";;;", "", "text/", "/plain"})
        EXPECT_EQ(Plain(Message(QByteArray("Content-Type: ") + type + "\n\nbody").TextBody()), "body") << type;
}
