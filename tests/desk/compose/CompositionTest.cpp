// SPDX-License-Identifier: Apache-2.0
#include "compose/Composition.h"

#include "compose/Addresses.h"
#include "support/FixedClock.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace
{
const Writer Studio = {QStringLiteral("Harbour FM"), QStringLiteral("studio@harbourfm.example.org"),
                       QStringLiteral("07700 900001")};

QByteArray Read(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

cMessagePtr MessageOf(const QByteArray& octets)
{
    auto message = std::make_shared<cMessage>();
    message->SetCDOMessage(std::make_shared<cdo::Message>(octets));
    message->SetCategory(tmcInbox);
    return message;
}

cMessagePtr Sample(const char* name)
{
    return MessageOf(Read(QStringLiteral(TOLVA_SAMPLES "/mail/") + QString::fromLatin1(name)));
}

QStringList AllMails()
{
    QStringList paths;
    for (const QString& folder : {QStringLiteral(TOLVA_SAMPLES "/mail"), QStringLiteral(TOLVA_TEST_DATA "/mail"),
                                  QStringLiteral(TOLVA_TEST_DATA "/mail/finds")}) {
        const QDir directory(folder);
        for (const QString& name : directory.entryList(QDir::Files))
            paths.append(directory.filePath(name));
    }
    return paths;
}

cMessagePtr Filed(const Composition& composition, Composing::Filing filing)
{
    auto message = std::make_shared<cMessage>();
    Composing::Write(composition, Studio, filing, Date(2026, 11, 21, 14, 5, 9), *message);
    return message;
}
} // namespace

TEST(CompositionTest, AReplyGoesToTheSenderAndQuotesTheText)
{
    const cMessagePtr original =
        MessageOf("From: \"Tregenza, Loveday\" <loveday@example.org>\r\n"
                  "To: studio@harbourfm.example.org\r\nSubject: Lighthouse\r\n"
                  "Message-ID: <1@example.org>\r\nDate: Fri, 20 Nov 2026 08:00:00 +0000\r\n\r\n"
                  "Hello,\r\n> so you said\r\n\r\nThanks\r\n\r\n");
    const Composition reply = Composing::Reply(*original, Studio);
    EXPECT_EQ(reply.To, QStringLiteral("\"Tregenza, Loveday\" <loveday@example.org>"));
    EXPECT_EQ(reply.CC, QString());
    EXPECT_EQ(reply.Subject, QStringLiteral("RE: Lighthouse"));
    EXPECT_EQ(reply.Body, QStringLiteral("\n\nOn 20 November 2026 at 08:00, Tregenza, Loveday wrote:\n"
                                         "> Hello,\n>> so you said\n>\n> Thanks\n"));
    EXPECT_EQ(reply.InReplyTo, QStringLiteral("<1@example.org>"));
    EXPECT_EQ(reply.References, QStringLiteral("<1@example.org>"));
    EXPECT_TRUE(reply.Files.isEmpty());
}

TEST(CompositionTest, ReplyToIsObeyed)
{
    const cMessagePtr original =
        MessageOf("From: a@example.org\r\nReply-To: List <list@example.org>\r\nSubject: x\r\n\r\nx");
    EXPECT_EQ(Composing::Reply(*original, Studio).To, QStringLiteral("List <list@example.org>"));
}

TEST(CompositionTest, AnAnswerToAnOwnMessageGoesToThoseWhoHadIt)
{
    const cMessagePtr own =
        MessageOf("From: Harbour FM <STUDIO@harbourfm.example.org>\r\nTo: ann@example.org\r\n\r\nx");
    EXPECT_EQ(Composing::Reply(*own, Studio).To, QStringLiteral("ann@example.org"));
    const cMessagePtr sent = MessageOf("From: somebody@example.org\r\nTo: ann@example.org\r\n\r\nx");
    sent->SetCategory(tmcSent);
    EXPECT_EQ(Composing::Reply(*sent, Studio).To, QStringLiteral("ann@example.org"));
}

TEST(CompositionTest, AReplyToAllLeavesOutTheWriterAndNamesNobodyTwice)
{
    const cMessagePtr original =
        MessageOf("From: Ann <ann@example.org>\r\nTo: Studio <Studio@HarbourFM.example.org>, Bob <bob@example.org>\r\n"
                  "Cc: ANN@example.org, bob@EXAMPLE.org, Cat <cat@example.org>\r\nSubject: x\r\n\r\nx");
    const Composition reply = Composing::ReplyToAll(*original, Studio);
    EXPECT_EQ(reply.To, QStringLiteral("Ann <ann@example.org>"));
    EXPECT_EQ(reply.CC, QStringLiteral("Bob <bob@example.org>, Cat <cat@example.org>"));
}

TEST(CompositionTest, PrefixesOfTheSubjectDoNotPileUp)
{
    EXPECT_EQ(Composing::ReplySubject(QStringLiteral("Re: RE:re[2]: Choir")), QStringLiteral("RE: Choir"));
    EXPECT_EQ(Composing::ReplySubject(QStringLiteral("Reunion: when?")), QStringLiteral("RE: Reunion: when?"));
    EXPECT_EQ(Composing::ReplySubject(QString()), QStringLiteral("RE: "));
    EXPECT_EQ(Composing::ForwardSubject(QStringLiteral("Fwd: FW: fw: Choir")), QStringLiteral("FW: Choir"));
    EXPECT_EQ(Composing::ForwardSubject(QStringLiteral("RE: Choir")), QStringLiteral("FW: RE: Choir"));
}

TEST(CompositionTest, AReplyCarriesTheThreadOn)
{
    const cMessagePtr original = Sample("thread-09-choir.eml");
    const Composition reply = Composing::Reply(*original, Studio);
    EXPECT_EQ(reply.InReplyTo, original->CDOMessage()->MessageID());
    EXPECT_TRUE(reply.References.endsWith(original->CDOMessage()->MessageID()));
    const cMessagePtr filed = Filed(reply, Composing::Filing::Outgoing);
    EXPECT_EQ(filed->CDOMessage()->Header("In-Reply-To"), reply.InReplyTo);
    EXPECT_EQ(filed->CDOMessage()->Header("References"), reply.References);
}

TEST(CompositionTest, AVeryLongThreadKeepsItsBeginningAndItsNewestMembers)
{
    QByteArray references;
    for (int i = 0; i < 500; ++i)
        references += " <" + QByteArray::number(i) + "@example.org>";
    const cMessagePtr original =
        MessageOf("From: a@b.org\r\nMessage-ID: <own@example.org>\r\nReferences:" + references + "\r\n\r\nx");
    const QStringList kept = Composing::Reply(*original, Studio).References.split(u' ');
    EXPECT_EQ(kept.size(), 20);
    EXPECT_EQ(kept.first(), QStringLiteral("<0@example.org>"));
    EXPECT_EQ(kept.last(), QStringLiteral("<own@example.org>"));
}

TEST(CompositionTest, WhateverEndsALineTheNextOneIsMarkedAsQuoted)
{
    for (const char* lineEnd : {"\n", "\r\n", "\r", "\v", "\f", "\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9"}) {
        EXPECT_EQ(Composing::Quoted(QStringLiteral("one%1two%1%1> three%1").arg(QString::fromUtf8(lineEnd))),
                  QStringLiteral("> one\n> two\n>\n>> three"))
            << lineEnd;
    }
}

TEST(CompositionTest, AMailInHtmlAloneIsQuotedAsWords)
{
    const Composition reply = Composing::Reply(*Sample("hamper-09-html-only.eml"), Studio);
    EXPECT_TRUE(
        reply.Body.contains(QStringLiteral("\n> 1968! We have the ship\u2019s bell behind the bar, and it is ")));
    EXPECT_TRUE(reply.Body.contains(QStringLiteral("\n>\n> Sandra <The Crab Pot, Lower Quay>\n")));
    EXPECT_FALSE(reply.Body.contains(QStringLiteral("</")));
}

TEST(CompositionTest, NothingOfHostileHtmlComesAlong)
{
    const cMessagePtr hostile = MessageOf("From: a@b.org\r\nSubject: x\r\nContent-Type: text/html\r\n\r\n"
                                          "<p>Words</p><script>alert('run')</script><style>p{}</style>"
                                          "<img src=\"http://tracker.example/p.gif\" onerror=\"x()\">");
    for (const Composition& composition :
         {Composing::Reply(*hostile, Studio), Composing::Forward(*hostile), Composing::Copy(*hostile)}) {
        const QByteArray octets = Filed(composition, Composing::Filing::Outgoing)->CDOMessage()->Octets();
        EXPECT_TRUE(octets.contains("Words"));
        for (const char* remnant : {"tracker", "alert", "script", "onerror", "text/html"})
            EXPECT_FALSE(octets.contains(remnant)) << remnant;
    }
}

TEST(CompositionTest, AForwardHasTheHeaderTheTextAndEveryFileOctetByOctet)
{
    const cMessagePtr original = Sample("press-02-players-pdf.eml");
    const Composition forward = Composing::Forward(*original);
    EXPECT_EQ(forward.To, QString());
    EXPECT_TRUE(forward.Subject.startsWith(QStringLiteral("FW: ")));
    EXPECT_TRUE(forward.Body.contains(QStringLiteral("\nFrom: ") + original->CDOMessage()->From()));
    EXPECT_TRUE(forward.Body.contains(QStringLiteral("\nSubject: ") + original->CDOMessage()->Subject()));
    const QList<cdo::Attachment> files = original->CDOMessage()->Attachments();
    ASSERT_FALSE(files.isEmpty());
    const cMessagePtr filed = Filed(forward, Composing::Filing::Outgoing);
    ASSERT_EQ(filed->CDOMessage()->Attachments().size(), files.size());
    for (int i = 0; i < files.size(); ++i) {
        EXPECT_EQ(filed->CDOMessage()->AttachmentContent(i), original->CDOMessage()->AttachmentContent(i));
        EXPECT_EQ(filed->CDOMessage()->Attachments().at(i).FileName, files.at(i).FileName);
        EXPECT_EQ(filed->CDOMessage()->Attachments().at(i).ContentType, files.at(i).ContentType);
    }
}

TEST(CompositionTest, EveryMailCanBeAnsweredForwardedAndCopied)
{
    const QStringList mails = AllMails();
    ASSERT_GT(mails.size(), 100);
    for (const QString& path : mails) {
        SCOPED_TRACE(path.toStdString());
        const cMessagePtr original = MessageOf(Read(path));
        const Composition reply = Composing::ReplyToAll(*original, Studio);
        EXPECT_EQ(Filed(reply, Composing::Filing::Outgoing)->CDOMessage()->TextBody(), reply.Body);
        const Composition forward = Composing::Forward(*original);
        const cMessagePtr filed = Filed(forward, Composing::Filing::Outgoing);
        EXPECT_EQ(filed->CDOMessage()->TextBody(), forward.Body);
        ASSERT_EQ(filed->CDOMessage()->Attachments().size(), forward.Files.size());
        for (int i = 0; i < forward.Files.size(); ++i)
            EXPECT_EQ(filed->CDOMessage()->AttachmentContent(i), forward.Files.at(i).Content) << i;
    }
}

TEST(CompositionTest, ADraftComesBackAsItWasLeft)
{
    Composition composition;
    composition.To = QStringLiteral("Ann <ann@example.org>, bob");
    composition.CC = QStringLiteral("c@example.org");
    composition.Subject = QString::fromUtf8("Grüße 🎈 שלום");
    composition.Body = QString::fromUtf8("Zeile eins\n\nFrom here – “on”\n.\n\tש\n");
    composition.Files = {{QStringLiteral("übersicht.txt"), "text/plain", "a\r\nb\0c"},
                         {QStringLiteral("bild.png"), "image/png", QByteArray("\x89PNG\r\n\x1a\n\0\0", 10)}};
    composition.InReplyTo = QStringLiteral("<1@example.org>");
    composition.References = QStringLiteral("<0@example.org> <1@example.org>");
    const cMessagePtr draft = Filed(composition, Composing::Filing::Draft);
    EXPECT_EQ(draft->Category(), tmcDrafts);
    EXPECT_EQ(draft->Flags(), mfRead);
    EXPECT_EQ(Composing::Continue(*draft), composition);
}

TEST(CompositionTest, AnOutgoingMessageIsPendingInTheOutboxWithItsDate)
{
    const FixedClock clock;
    Composition composition;
    composition.To = QStringLiteral("ann@example.org; bob@example.org");
    composition.Subject = QStringLiteral("Hello");
    composition.Body = QStringLiteral("Text");
    const cMessagePtr message = Filed(composition, Composing::Filing::Outgoing);
    EXPECT_EQ(message->Category(), tmcOutbox);
    EXPECT_EQ(message->Flags(), mfRead | mfSendPending);
    EXPECT_EQ(message->MessageType(), emtEmail);
    EXPECT_EQ(message->SentString(), QStringLiteral("21/11/2026 14:05:09"));
    const cdo::Message& mail = *message->CDOMessage();
    EXPECT_EQ(mail.From(), QStringLiteral("Harbour FM <studio@harbourfm.example.org>"));
    EXPECT_EQ(mail.To(), QStringLiteral("ann@example.org, bob@example.org"));
    EXPECT_EQ(mail.SentOn(), QDateTime(QDate(2026, 11, 21), QTime(14, 5, 9), Qt::UTC));
    EXPECT_TRUE(mail.MessageID().endsWith(QStringLiteral("@harbourfm.example.org>"))) << mail.MessageID().toStdString();
    EXPECT_NE(mail.MessageID(), Filed(composition, Composing::Filing::Outgoing)->CDOMessage()->MessageID());
}

TEST(CompositionTest, WithoutAnAddressTheStationsNameIsTheSender)
{
    Writer writer = Studio;
    writer.EmailAddress.clear();
    cMessage message;
    Composing::Write(Composition(), writer, Composing::Filing::Outgoing, Date(2026, 11, 21), message);
    EXPECT_EQ(message.CDOMessage()->From(), QStringLiteral("Harbour FM"));
    EXPECT_TRUE(message.CDOMessage()->MessageID().endsWith(QStringLiteral("@tolva.invalid>")));
}

TEST(CompositionTest, NoFieldCanAddAHeader)
{
    const QString evil = QStringLiteral("a@example.org\r\nBcc: spy@example.org\nX-Evil: 1\r\n\r\nbody");
    Composition composition;
    composition.To = composition.CC = composition.Subject = composition.InReplyTo = composition.References = evil;
    composition.Files = {{evil, "text/plain\r\nX-Evil: 1", "x"}};
    const cMessagePtr message = Filed(composition, Composing::Filing::Outgoing);
    EXPECT_EQ(message->CDOMessage()->Header("X-Evil"), QString());
    EXPECT_EQ(message->CDOMessage()->BCC(), QString());
    const QByteArray octets = message->CDOMessage()->Octets();
    EXPECT_FALSE(octets.contains("\nX-Evil")) << octets.constData();
    EXPECT_FALSE(octets.contains("\nBcc")) << octets.constData();
    EXPECT_NE(Composing::WhyNotSendable(composition), QString());
}

TEST(CompositionTest, ATextMessageIsAnsweredWithATextMessage)
{
    const cMessagePtr sms = MessageOf("From: 07700 900123\r\nTo: 07700 900001\r\nSubject: hi\r\n\r\nhi");
    sms->SetMessageType(emtSMS);
    Composition reply = Composing::Reply(*sms, Studio);
    EXPECT_EQ(reply.Type, emtSMS);
    EXPECT_EQ(reply.To, QStringLiteral("07700 900123"));
    EXPECT_EQ(reply.Subject, QString());
    EXPECT_EQ(reply.Body, QString());
    EXPECT_EQ(Composing::WhyNotSendable(reply), QStringLiteral("The text message is empty."));
    reply.Body = QStringLiteral("Thank you <3\nBye");
    EXPECT_EQ(Composing::WhyNotSendable(reply), QString());
    const cMessagePtr filed = Filed(reply, Composing::Filing::Outgoing);
    EXPECT_EQ(filed->MessageType(), emtSMS);
    EXPECT_EQ(filed->Category(), tmcOutbox);
    EXPECT_EQ(filed->CDOMessage()->From(), QStringLiteral("07700 900001"));
    EXPECT_EQ(filed->CDOMessage()->To(), QStringLiteral("07700 900123"));
    EXPECT_EQ(filed->CDOMessage()->Subject(), QStringLiteral("Thank you <3 Bye"));
    EXPECT_EQ(filed->CDOMessage()->TextBody(), QStringLiteral("Thank you <3\nBye"));
    EXPECT_EQ(filed->SentString(), QStringLiteral("21/11/2026 14:05:09"));
}

TEST(CompositionTest, ForwardingATextMessageMakesAnEMail)
{
    const cMessagePtr sms = MessageOf("From: 07700 900123\r\nSubject: hi there\r\n\r\nhi there");
    sms->SetMessageType(emtSMS);
    const Composition forward = Composing::Forward(*sms);
    EXPECT_EQ(forward.Type, emtEmail);
    EXPECT_EQ(forward.Subject, QStringLiteral("FW: hi there"));
    EXPECT_TRUE(forward.Body.contains(QStringLiteral("From: 07700 900123")));
    EXPECT_TRUE(forward.Body.contains(QStringLiteral("> hi there")));
}

TEST(CompositionTest, WhatACompositionDoesNotHoldStaysInTheRecord)
{
    cMessage message;
    message.SetPersonalToContact(5);
    message.SetPriority(-1);
    message.SetSendAfter(Date(2026, 12, 1));
    message.SetReceived(Date(2026, 11, 1));
    Composing::Write(Composition(), Studio, Composing::Filing::Draft, Date(2026, 11, 21), message);
    EXPECT_EQ(message.PersonalToContact(), 5);
    EXPECT_EQ(message.Priority(), -1) << "low";
    EXPECT_EQ(message.SendAfter(), Date(2026, 12, 1));
    EXPECT_EQ(message.Received(), Date(2026, 11, 1));
}
