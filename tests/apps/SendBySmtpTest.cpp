// SPDX-License-Identifier: Apache-2.0

// tolva send with the real msmtp, which hands mails to a mail server.

#include "SendTest.h"
#include "platform/mail/Message.h"
#include "support/MailServer.h"

#include <QStandardPaths>

class SendBySmtpTest : public SendTest
{
protected:
    void SetUp() override
    {
        if (QStandardPaths::findExecutable(QStringLiteral("msmtp")).isEmpty())
            GTEST_SKIP() << "msmtp is not installed";
        SendTest::SetUp();
        const QString settings = Write(QStringLiteral("msmtprc"), "account default\nhost 127.0.0.1\nport " +
                                                                      QByteArray::number(Server.Port()) +
                                                                      "\ntls off\nauth off\ntimeout 20\n");
        ASSERT_TRUE(QFile::setPermissions(settings, QFile::ReadOwner | QFile::WriteOwner));
        Program_ = QStringLiteral("msmtp -C \"%1\"").arg(settings);
    }
    Outcome SendBySmtp(const QStringList& words = {}) const
    {
        return OnStation("send", QStringList{QStringLiteral("--sendmail"), Program_} + words);
    }

    MailServer Server;
    QString Program_;
};

TEST_F(SendBySmtpTest, TheServerGetsEnvelopeAndMailAndNoBlindCopy)
{
    const QString reference =
        Waiting("From: Harbour FM <studio@harbour.example>\r\nTo: Ann <ann@listeners.example>\r\nCc: "
                "bob@listeners.example\r\nBcc: boss@harbour.example\r\nSubject: =?utf-8?q?Gr=C3=BC=C3=9Fe?=\r\nDate: "
                "Sat, 21 Nov 2026 14:05:09 +0000\r\nMessage-ID: <1@harbour.example>\r\nIn-Reply-To: "
                "<0@listeners.example>\r\nReferences: <0@listeners.example>\r\n\r\nHello.\r\n.\r\nBehind a dot.\r\n");
    const Outcome sent = SendBySmtp();
    EXPECT_EQ(sent.Code, 0) << sent.Problems.constData();
    ASSERT_EQ(Server.Accepted().size(), 1);
    const MailServer::Mail mail = Server.Accepted().first();
    EXPECT_EQ(mail.Sender, "studio@harbour.example");
    EXPECT_EQ(mail.Recipients,
              (QList<QByteArray>{"ann@listeners.example", "bob@listeners.example", "boss@harbour.example"}));
    EXPECT_FALSE(mail.Octets.contains("boss"));
    EXPECT_TRUE(
        mail.Octets.contains("\r\nIn-Reply-To: <0@listeners.example>\r\nReferences: <0@listeners.example>\r\n"));
    EXPECT_TRUE(mail.Octets.contains("Message-ID: <1@harbour.example>\r\n"));
    EXPECT_TRUE(mail.Octets.endsWith("\r\n\r\nHello.\r\n.\r\nBehind a dot.\r\n")) << mail.Octets.constData();
    EXPECT_EQ(FolderOf(reference), QStringLiteral("Sent"));
}

TEST_F(SendBySmtpTest, EightBitsLongLinesAndAttachmentsArriveAsTheyWereWritten)
{
    const QByteArray text = QByteArray("\u00fcber \u65e5\u672c ") + QByteArray(3000, 'x');
    const QByteArray file = QByteArray("\x00\xff\r\n.\r\n\x80", 8).repeated(500);
    Waiting("From: studio@harbour.example\r\nTo: ann@listeners.example\r\nSubject: x\r\nMIME-Version: 1.0\r\n"
            "Content-Type: multipart/mixed; boundary=b\r\n\r\n--b\r\nContent-Type: text/plain; "
            "charset=utf-8\r\nContent-Transfer-Encoding: 8bit\r\n\r\n" +
            text +
            "\r\n--b\r\nContent-Type: application/octet-stream\r\nContent-Disposition: attachment; "
            "filename=f.bin\r\nContent-Transfer-Encoding: base64\r\n\r\n" +
            file.toBase64() + "\r\n--b--\r\n");
    const Outcome sent = SendBySmtp();
    EXPECT_EQ(sent.Code, 0) << sent.Problems.constData();
    ASSERT_EQ(Server.Accepted().size(), 1);
    const QByteArray octets = Server.Accepted().first().Octets;
    for (const QByteArray& line : octets.split('\n'))
        ASSERT_LE(line.size(), 999);
    EXPECT_TRUE(std::all_of(octets.begin(), octets.end(), [](char c) { return static_cast<uchar>(c) < 0x80; }));
    const cdo::Message mail(octets);
    EXPECT_EQ(mail.TextBody().trimmed(), QString::fromUtf8(text));
    ASSERT_EQ(mail.Attachments().size(), 1);
    EXPECT_EQ(mail.AttachmentContent(0), file);
}

TEST_F(SendBySmtpTest, ARefusalOfOneOfTwoRecipientsSendsToNeitherAndNamesIt)
{
    Server.AnswerTo("RCPT TO:<bob", "550 5.1.1 no such mailbox");
    const QString reference = WaitingMail("An answer", "ann@listeners.example, bob@listeners.example");
    const Outcome refused = SendBySmtp();
    EXPECT_EQ(refused.Code, 65);
    EXPECT_TRUE(refused.Problems.contains("bob@listeners.example not accepted")) << refused.Problems.constData();
    EXPECT_TRUE(refused.Problems.contains("550 5.1.1 no such mailbox"));
    EXPECT_EQ(StateOf(reference), QStringLiteral("refused"));
    EXPECT_TRUE(Server.Accepted().isEmpty());
}

TEST_F(SendBySmtpTest, APassingRefusalOfTheServerIsTriedAgain)
{
    for (const char* at : {"RCPT TO:<ann", "MAIL", "DATA", "."}) {
        Server.AnswerTo(at, "451 4.7.1 try again later");
        const QString reference = WaitingMail(QByteArray("refused at ") + at[0]);
        const Outcome putOff = SendBySmtp({QStringLiteral("--message"), reference});
        EXPECT_EQ(putOff.Code, 75) << at << putOff.Problems.constData();
        EXPECT_TRUE(putOff.Problems.contains("try again later")) << at << putOff.Problems.constData();
        EXPECT_EQ(StateOf(reference), QStringLiteral("notYet")) << at;
        Server.AnswerTo(at, nullptr);
        EXPECT_EQ(SendBySmtp({QStringLiteral("--message"), reference}).Code, 0) << at;
    }
    EXPECT_EQ(Server.Accepted().size(), 4);
}

TEST_F(SendBySmtpTest, ABusyServerIsTriedAgain)
{
    Server.AnswerTo("CONNECT", "421 4.3.2 too many connections");
    const QString reference = WaitingMail();
    EXPECT_EQ(SendBySmtp().Code, 75);
    EXPECT_EQ(StateOf(reference), QStringLiteral("notYet"));
}

TEST_F(SendBySmtpTest, ALastingRefusalOfTheMailIsTold)
{
    Server.AnswerTo(".", "554 5.7.1 looks like spam");
    const QString reference = WaitingMail();
    const Outcome refused = SendBySmtp();
    EXPECT_EQ(refused.Code, 65);
    EXPECT_TRUE(refused.Problems.contains("554 5.7.1 looks like spam")) << refused.Problems.constData();
    EXPECT_EQ(StateOf(reference), QStringLiteral("refused"));
}

TEST_F(SendBySmtpTest, AConnectionThatBreaksBehindTheMailLeavesItUnclear)
{
    Server.AnswerTo(".", "");
    const QString reference = WaitingMail();
    const Outcome unclear = SendBySmtp();
    EXPECT_EQ(unclear.Code, 65);
    EXPECT_TRUE(unclear.Problems.contains("may have gone out or not")) << unclear.Problems.constData();
    EXPECT_EQ(StateOf(reference), QStringLiteral("unclear"));
    Server.AnswerTo(".", nullptr);
    EXPECT_EQ(SendBySmtp().Code, 0);
    EXPECT_TRUE(Server.Accepted().isEmpty()) << "never by itself";
}

TEST_F(SendBySmtpTest, AServerThatIsNotThereIsTriedAgain)
{
    const QString settings =
        Write(QStringLiteral("nobody"), "account default\nhost 127.0.0.1\nport 1\ntls off\nauth off\n");
    ASSERT_TRUE(QFile::setPermissions(settings, QFile::ReadOwner | QFile::WriteOwner));
    const QString reference = WaitingMail();
    const Outcome putOff =
        OnStation("send", {QStringLiteral("--sendmail"), QStringLiteral("msmtp -C \"%1\"").arg(settings)});
    EXPECT_EQ(putOff.Code, 75) << putOff.Problems.constData();
    EXPECT_EQ(StateOf(reference), QStringLiteral("notYet"));
}
