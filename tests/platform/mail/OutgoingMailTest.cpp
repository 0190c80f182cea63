// SPDX-License-Identifier: Apache-2.0
#include "platform/mail/OutgoingMail.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{
const cdo::OutgoingSender Sender = {QStringLiteral("Harbour \"FM\""), QStringLiteral("studio@harbour.example"),
                                    QDateTime(QDate(2026, 11, 21), QTime(14, 5, 9), Qt::UTC),
                                    QStringLiteral("<id@harbour.example>")};

cdo::OutgoingMail Outgoing(const QByteArray& octets)
{
    return cdo::MakeOutgoing(cdo::Message(octets), Sender);
}

const QByteArray Complete = "From: studio@harbour.example\nTo: ann@a.example\nDate: Sat, 21 Nov 2026 14:05:09 +0000\n"
                            "Message-ID: <1@harbour.example>\n";

bool IsSevenBit(const QByteArray& octets)
{
    return std::all_of(octets.begin(), octets.end(), [](char c) { return static_cast<uchar>(c) < 0x80; });
}

qsizetype LongestLine(const QByteArray& octets)
{
    qsizetype longest = 0;
    for (const QByteArray& line : octets.split('\n'))
        longest = qMax(longest, line.size());
    return longest;
}
} // namespace

TEST(OutgoingMailTest, WhatIsRightStaysAsItIs)
{
    const QByteArray octets = Complete + "X-Own: 1\nSubject: x\n\nHello.\n";
    EXPECT_EQ(Outgoing(octets).Octets, octets);
    EXPECT_EQ(Outgoing(QByteArray(octets).replace("\n", "\r\n")).Octets, octets);
    EXPECT_EQ(Outgoing(octets).Problem, QString());
}

TEST(OutgoingMailTest, WhatIsMissingIsAdded)
{
    EXPECT_EQ(Outgoing("To: ann@a.example\n\nHello.").Octets,
              "From: \"Harbour \\\"FM\\\"\" <studio@harbour.example>\nDate: Sat, 21 Nov 2026 14:05:09 +0000\n"
              "Message-ID: <id@harbour.example>\nTo: ann@a.example\n\nHello.\n");
}

TEST(OutgoingMailTest, AMailIsFromTheSenderWhateverItsHeaderSays)
{
    const QByteArray octets =
        Outgoing("From: Ann <ann@a.example>\nSender: x@y.example\nTo: ann@a.example\nReturn-Path: <z@z.example>\n\n.")
            .Octets;
    EXPECT_TRUE(octets.contains("From: \"Harbour \\\"FM\\\"\" <studio@harbour.example>\n"));
    EXPECT_EQ(octets.count("From:"), 1);
    EXPECT_FALSE(octets.contains("Sender:"));
    EXPECT_FALSE(octets.contains("Return-Path"));
    EXPECT_TRUE(Outgoing("From: The studio <STUDIO@harbour.example>\nTo: ann@a.example\n\n.")
                    .Octets.contains("From: The studio <STUDIO@harbour.example>\n"));
}

TEST(OutgoingMailTest, RecipientsAreThoseOfAllFieldsEachOnce)
{
    const cdo::OutgoingMail mail =
        Outgoing("To: \"Tregenza, Ann\" <ann@a.example>, Friends: bob@b.example, ANN@A.example;\nCc: \n "
                 "=?utf-8?q?J=C3=BCrgen?= <j@c.example>\nBcc: d@d.example\nBCC: e@e.example\nTo: f@f.example\n\n.");
    EXPECT_EQ(mail.Recipients, (QStringList{QStringLiteral("ann@a.example"), QStringLiteral("bob@b.example"),
                                            QStringLiteral("j@c.example"), QStringLiteral("d@d.example"),
                                            QStringLiteral("e@e.example"), QStringLiteral("f@f.example")}));
    EXPECT_FALSE(mail.Octets.toLower().contains("bcc"));
    EXPECT_FALSE(mail.Octets.contains("d@d.example"));
}

TEST(OutgoingMailTest, WhatDividesAddressesDoesNotDivideNamesAndRemarks)
{
    const cdo::OutgoingMail mail = Outgoing("To: \"a, \\\" b: c\" <one@a.example>, (x, y: (z) \\) ) two@a.example,, "
                                            "Nobody:;, Us: three@a.example;, <four@[192.0.2.1]>\n\n.");
    EXPECT_EQ(mail.Problem, QString());
    EXPECT_EQ(mail.Recipients, (QStringList{QStringLiteral("one@a.example"), QStringLiteral("two@a.example"),
                                            QStringLiteral("three@a.example"), QStringLiteral("four@[192.0.2.1]")}));
}

TEST(OutgoingMailTest, ADomainOutsideAsciiIsWrittenAsServersWriteIt)
{
    EXPECT_EQ(Outgoing("To: ann@m\u00fcller.example\n\n.").Recipients.value(0),
              QStringLiteral("ann@xn--mller-kva.example"));
}

TEST(OutgoingMailTest, WhatIsNoAddressIsNamed)
{
    EXPECT_EQ(Outgoing("Subject: x\n\n.").Problem, QStringLiteral("It has no recipient."));
    EXPECT_EQ(Outgoing("To: ann@a.example, 07700 900123\n\n.").Problem,
              QStringLiteral("\"07700 900123\" is no mail address."));
    // A program is started with them.
    EXPECT_FALSE(Outgoing("To: <-oQ/tmp@a.example>\n\n.").Problem.isEmpty());
    EXPECT_FALSE(Outgoing("To: ann@\n\n.").Problem.isEmpty());
    EXPECT_EQ(Outgoing("To: ann@a.example, =?utf-8?q?J=C3=BCrgen?=\n\n.").Problem,
              QStringLiteral("\"J\u00fcrgen\" is no mail address."));
    EXPECT_EQ(Outgoing("To: ann@a.example bob@b.example\n\n.").Recipients.size(), 0);
}

TEST(OutgoingMailTest, EightBitTextIsEncodedAndReadsTheSame)
{
    const QByteArray octets = Complete + "Subject: Gr\u00fc\u00dfe\nContent-Type: text/plain; charset=utf-8\n"
                                         "Content-Transfer-Encoding: 8bit\n\n\u00dcber \u65e5\u672c\n";
    const cdo::OutgoingMail mail = Outgoing(octets);
    EXPECT_TRUE(IsSevenBit(mail.Octets)) << mail.Octets.constData();
    EXPECT_EQ(cdo::Message(mail.Octets).TextBody(), cdo::Message(octets).TextBody());
    EXPECT_EQ(cdo::Message(mail.Octets).Subject(), QStringLiteral("Gr\u00fc\u00dfe"));
    EXPECT_TRUE(mail.Octets.contains("Message-ID: <1@harbour.example>\n"));
}

TEST(OutgoingMailTest, LongLinesAreEncodedAndReadTheSame)
{
    const QByteArray octets =
        Complete + "Subject: " + QByteArray("word ").repeated(400) + "\n\n" + QByteArray(5000, 'x') + "\nend\n";
    const cdo::OutgoingMail mail = Outgoing(octets);
    EXPECT_EQ(mail.Problem, QString());
    EXPECT_LE(LongestLine(mail.Octets), 998);
    EXPECT_EQ(cdo::Message(mail.Octets).TextBody(), cdo::Message(octets).TextBody());
    EXPECT_EQ(cdo::Message(mail.Octets).Subject(), cdo::Message(octets).Subject());
}

TEST(OutgoingMailTest, AttachmentsAndASignedPartComeThroughOctetByOctet)
{
    const QByteArray signedPart = "Content-Type: multipart/signed; boundary=s; protocol=\"application/pgp-signature\"\n"
                                  "\n--s\nContent-Type: text/plain\n\nSigned text.\n--s\nContent-Type: "
                                  "application/pgp-signature\n\nSIGNATURE\n--s--\n";
    const QByteArray octets = Complete +
                              "MIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=b\n\n--b\n"
                              "Content-Type: text/plain; charset=utf-8\nContent-Transfer-Encoding: 8bit\n"
                              "\n\u00dcber\n--b\n" +
                              signedPart +
                              "--b\nContent-Type: application/octet-stream\nContent-Disposition: attachment; "
                              "filename=f\nContent-Transfer-Encoding: base64\n\nAP8KAA==\n--b--\n";
    const cdo::OutgoingMail mail = Outgoing(octets);
    EXPECT_TRUE(IsSevenBit(mail.Octets));
    EXPECT_TRUE(mail.Octets.contains(signedPart)) << mail.Octets.constData();
    const cdo::Message read(mail.Octets);
    const auto last = static_cast<int>(read.Attachments().size()) - 1;
    EXPECT_EQ(read.AttachmentContent(last), QByteArray("\x00\xff\n\x00", 4));
}

TEST(OutgoingMailTest, AnAttachmentInOneLongLineComesThrough)
{
    const QByteArray file = QByteArray("\x00\xff\n.\n", 5).repeated(1000);
    const cdo::OutgoingMail mail =
        Outgoing(Complete +
                 "MIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=b\n\n--b\n\nHello.\n--b\n"
                 "Content-Type: application/octet-stream\nContent-Disposition: attachment; filename=f\n"
                 "Content-Transfer-Encoding: base64\n\n" +
                 file.toBase64() + "\n--b--\n");
    EXPECT_EQ(mail.Problem, QString());
    EXPECT_LE(LongestLine(mail.Octets), 998);
    const cdo::Message read(mail.Octets);
    ASSERT_EQ(read.Attachments().size(), 1);
    EXPECT_EQ(read.AttachmentContent(0), file);
}

TEST(OutgoingMailTest, HostileHeadersAddNoRecipientAndNoField)
{
    const cdo::OutgoingMail mail =
        Outgoing("To: \"a\\\"b, c@c.example\" <ann@a.example>\nSubject: x\rBcc: d@d.example\n\n.");
    EXPECT_EQ(mail.Recipients, QStringList{QStringLiteral("ann@a.example")});
}
