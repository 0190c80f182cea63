// SPDX-License-Identifier: Apache-2.0
#include "MailSupport.h"

#include <QElapsedTimer>

#include <thread>

using cdo::Message;
using mailTest::Plain;

namespace
{

constexpr qsizetype Megabyte = 1024 * 1024;

QByteArray NestedMultiparts(int levels)
{
    QByteArray octets;
    for (int i = 0; i < levels; ++i) {
        const QByteArray boundary = "b" + QByteArray::number(i);
        octets += "Content-Type: multipart/mixed; boundary=" + boundary + "\n\n--" + boundary + "\n";
    }
    return octets + "\ndeepest";
}

} // namespace

TEST(HostileMail, TenThousandNestedMultipartsDoNotOverflowTheStack)
{
    const QByteArray octets = NestedMultiparts(10000);
    Message message(octets);
    mailTest::ReadEverything(message);
    EXPECT_EQ(message.Octets(), octets);
    message.SetHTMLBody(QStringLiteral("<b>x</b>"));
    EXPECT_EQ(Plain(message.HTMLBody()), "<b>x</b>");
}

TEST(HostileMail, FiftyNestedMultipartsAreStillWalked)
{
    EXPECT_EQ(Plain(Message(NestedMultiparts(50)).TextBody()), "deepest");
}

TEST(HostileMail, TenThousandNestedMessagesDoNotOverflowTheStack)
{
    const QByteArray octets = QByteArray("Content-Type: message/rfc822\n\n").repeated(10000) + "text";
    mailTest::ReadEverything(Message(octets));
    const QByteArray inside = "Content-Type: multipart/mixed; boundary=b\n\n--b\n" + octets + "\n--b--\n";
    const Message message(inside);
    ASSERT_EQ(message.Attachments().size(), 1);
    EXPECT_EQ(message.AttachmentContent(0), octets.mid(QByteArrayView("Content-Type: message/rfc822\n\n").size()));
}

TEST(HostileMail, HundredThousandHeadersAreRead)
{
    QByteArray octets;
    for (int i = 0; i < 100000; ++i)
        octets += "X-" + QByteArray::number(i) + ": a\n";
    octets += "Content-Type: multipart/mixed; boundary=b\nSubject: last\n\n--b\n\ntext\n--b--\n";
    const Message message(octets);
    EXPECT_EQ(Plain(message.Subject()), "last");
    EXPECT_EQ(Plain(message.TextBody()), "text");
}

TEST(HostileMail, HeaderLineOfAMegabyteIsRead)
{
    const QByteArray name(Megabyte, 'x');
    EXPECT_EQ(Message("Subject: " + name + "\n\nbody").Subject().size(), Megabyte);
    EXPECT_EQ(Plain(Message(name + ": 1\nSubject: a\n\nbody").Subject()), "a");
    EXPECT_EQ(Message("To: " + QByteArray("a@example.com, ").repeated(Megabyte / 15) + "\n\n").To().count(u'@'),
              Megabyte / 15);
    mailTest::ReadEverything(Message("Subject: " + QByteArray("=?utf-8?B?QQ==?= ").repeated(Megabyte / 17) + "\n\n"));
    mailTest::ReadEverything(Message("Subject: " + QByteArray("=?").repeated(Megabyte / 2) + "\n\n"));
    mailTest::ReadEverything(
        Message("Received: " + QByteArray(20000, ';') + "\nDate: " + QByteArray(20000, '(') + "\n\n"));
}

TEST(HostileMail, AddressesNestedWithoutEndAreRead)
{
    for (const char* piece : {"(", "<", "\"", "a:", "=?utf-8?Q?", "@", ",", ";", "["}) {
        const QByteArray value = "=?utf-8?Q?x?= " + QByteArray(piece).repeated(20000);
        mailTest::ReadEverything(Message("From: " + value + "\nSender: " + value + "\n\n"));
        mailTest::ReadEverything(Message("From: " + QByteArray(piece).repeated(20000) + "\n\n"));
    }
}

TEST(HostileMail, LongHeaderWithoutAnEndIsRead)
{
    const QByteArray octets = "Subject: a\n" + QByteArray("X: y\n").repeated(500000);
    mailTest::ReadEverything(Message(octets));
    mailTest::ReadEverything(Message(QByteArray(2 * Megabyte, ' ')));
    mailTest::ReadEverything(Message(QByteArray(2 * Megabyte, '\0')));
    mailTest::ReadEverything(Message(QByteArray(2 * Megabyte, '\n')));
    mailTest::ReadEverything(Message(QByteArray("From \n").repeated(200000)));
}

TEST(HostileMail, TextOfUnreadableOctetsIsRead)
{
    for (const char* set : {"utf-8", "shift_jis", "iso-2022-jp", "utf-16", "utf-7", "gb18030", "windows-1252"}) {
        const Message message(QByteArray("Content-Type: text/plain; charset=") + set + "\n\n" +
                              QByteArray(Megabyte, '\xFF'));
        EXPECT_FALSE(message.TextBody().isEmpty()) << set;
    }
}

TEST(HostileMail, HundredThousandPartsAreRead)
{
    const QByteArray octets = "Content-Type: multipart/mixed; boundary=b\n\n" +
                              QByteArray("--b\nContent-Type: image/png\n\nX\n").repeated(100000);
    EXPECT_EQ(Message(octets).Attachments().size(), 100000);
}

TEST(HostileMail, SeveralThreadsMayReadTheirOwnMails)
{
    const QByteArray octets = mailTest::MailFile("html-in-latin1");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([octets] {
            for (int turn = 0; turn < 50; ++turn)
                mailTest::ReadEverything(Message(octets));
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}
