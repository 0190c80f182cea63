// SPDX-License-Identifier: Apache-2.0
#include "messages/cMessage.h"

#include "support/FixedClock.h"

#include <gtest/gtest.h>

namespace
{
/// Counts MessageEdited and keeps its last argument.
class EditedSpy
{
public:
    explicit EditedSpy(const cMessage& message)
    {
        QObject::connect(&message, &cMessage::MessageEdited, [this](bool edited) {
            ++Count;
            Last = edited;
        });
    }
    int Count = 0;
    bool Last = false;
};

cMessage& Clean(cMessage& message)
{
    message.SetEdited(false);
    return message;
}

std::shared_ptr<cdo::Message> MailOf(const char* text)
{
    return std::make_shared<cdo::Message>(QByteArray(text));
}
} // namespace

TEST(cMessageTest, ANewMessageIsAnUnsavedDraft)
{
    const cMessage message;
    EXPECT_EQ(message.Reference(), 0);
    EXPECT_EQ(message.Category(), tmcDrafts);
    EXPECT_FALSE(message.Edited());
    ASSERT_NE(message.CDOMessage(), nullptr);
    EXPECT_EQ(message.PersonalToContact(), 0);
    EXPECT_EQ(message.SourceIndex(), 0);
    EXPECT_FALSE(message.HasHighlightWords());
    EXPECT_TRUE(message.Received().IsNone());
    EXPECT_TRUE(message.Sent().IsNone());
    EXPECT_TRUE(message.SendAfter().IsNone());
    EXPECT_EQ(message.Flags(), 0);
    EXPECT_EQ(message.MultiPartMessage(), 0);
    EXPECT_EQ(message.Priority(), 0);
    EXPECT_EQ(message.MessageType(), emtEmail);
}

TEST(cMessageTest, EverySetterMarks)
{
    cMessage message;
    const Date date(46347.5);
    Clean(message).SetReference(0);
    EXPECT_TRUE(message.Edited());
    Clean(message).SetCategory(tmcDrafts);
    EXPECT_TRUE(message.Edited());
    Clean(message).SetHasHighlightWords(false);
    EXPECT_TRUE(message.Edited());
    Clean(message).SetReceived(date);
    EXPECT_TRUE(message.Edited());
    Clean(message).SetSent(date);
    EXPECT_TRUE(message.Edited());
    Clean(message).SetSendAfter(date);
    EXPECT_TRUE(message.Edited());
    Clean(message).SetFlags(0);
    EXPECT_TRUE(message.Edited());
    Clean(message).SetMultiPartMessage(0);
    EXPECT_TRUE(message.Edited());
    Clean(message).SetPriority(0);
    EXPECT_TRUE(message.Edited());
    Clean(message).SetMessageType(emtEmail);
    EXPECT_TRUE(message.Edited());
}

TEST(cMessageTest, EditedRaisesItsEventEveryTime)
{
    cMessage message;
    EditedSpy spy(message);
    message.SetEdited(false);
    message.SetEdited(false);
    EXPECT_EQ(spy.Count, 2);
    EXPECT_FALSE(spy.Last);
    message.SetReference(0);
    EXPECT_EQ(spy.Count, 3);
    EXPECT_TRUE(spy.Last);
}

TEST(cMessageTest, PersonalToContactAndSourceIndexMarkOnlyWhenTheyDiffer)
{
    cMessage message;
    EditedSpy spy(message);
    message.SetPersonalToContact(0);
    message.SetSourceIndex(0);
    EXPECT_EQ(spy.Count, 0);
    message.SetPersonalToContact(4);
    message.SetSourceIndex(2);
    EXPECT_EQ(spy.Count, 2);
}

TEST(cMessageTest, TextThatIsNoDateIsIgnored)
{
    cMessage message;
    message.SetReceivedString(QStringLiteral("21/11/2026 14:05:09"));
    EXPECT_EQ(message.ReceivedString(), QStringLiteral("21/11/2026 14:05:09"));
    Clean(message).SetReceivedString(QStringLiteral("next Tuesday"));
    EXPECT_EQ(message.ReceivedString(), QStringLiteral("21/11/2026 14:05:09"));
    EXPECT_FALSE(message.Edited());
    message.SetSentString(QStringLiteral("?"));
    message.SetSendAfterString(QString());
    EXPECT_FALSE(message.Edited());
}

TEST(cMessageTest, ADateOfNoneIsTheEmptyText)
{
    cMessage message;
    EXPECT_EQ(message.ReceivedString(), QString());
    message.SetSent(Date(-1));
    EXPECT_EQ(message.SentString(), QString());
    EXPECT_EQ(message.SendAfterString(), QString());
}

TEST(cMessageTest, SettingNoMailIsIgnored)
{
    cMessage message;
    const auto before = message.CDOMessage();
    message.SetCDOMessage(nullptr);
    EXPECT_EQ(message.CDOMessage(), before);
}

TEST(cMessageTest, TheMailsUniversalDatesBecomeLocalAndDoNotMark)
{
    cMessage message;
    EditedSpy spy(message);
    // Summer time in London: one hour ahead of universal time.
    message.SetCDOMessage(MailOf("Received: from a by b; Wed, 1 Jul 2026 12:00:10 +0000\r\n"
                                 "Date: Wed, 1 Jul 2026 14:00:00 +0200\r\nSubject: s\r\n\r\nbody\r\n"));
    EXPECT_EQ(message.ReceivedString(), QStringLiteral("01/07/2026 13:00:10"));
    EXPECT_EQ(message.SentString(), QStringLiteral("01/07/2026 13:00:00"));
    EXPECT_EQ(spy.Count, 0);
    EXPECT_FALSE(message.Edited());
}

TEST(cMessageTest, AMailWithoutDateTakesTheTimeItWasReceived)
{
    cMessage message;
    message.SetCDOMessage(MailOf("Received: from a by b; Sat, 21 Nov 2026 12:00:10 +0000\r\nSubject: s\r\n\r\n"));
    EXPECT_EQ(message.SentString(), QStringLiteral("21/11/2026 12:00:10"));
}

TEST(cMessageTest, AMailWithNoTimesLeavesTheDatesAsTheyWere)
{
    cMessage message;
    message.SetSent(Date(46347.5));
    message.SetCDOMessage(MailOf("Subject: s\r\n\r\n"));
    EXPECT_EQ(message.Sent().DayNumber(), 46347.5);
    EXPECT_TRUE(message.Received().IsNone());
}

TEST(cMessageTest, PriorityComesFromTheFieldOfTheLongName)
{
    cMessage message;
    const auto mail = MailOf("Subject: s\r\nX-Priority: 1\r\n\r\n");
    message.SetCDOMessage(mail);
    EXPECT_EQ(message.Priority(), 0);
    mail->SetField(QStringLiteral("urn:schemas:httpmail:priority Field"), 1);
    message.SetCDOMessage(mail);
    EXPECT_EQ(message.Priority(), 1);
    EXPECT_TRUE(message.Edited());
}

TEST(cMessageTest, ACopyHasAllButTheReferenceAndIsEdited)
{
    cMessage message;
    message.SetReference(12);
    message.SetCategory(tmcSaved);
    message.SetFlags(mfRead | mfAutomatic);
    message.SetMultiPartMessage(3);
    message.SetHasHighlightWords(true);
    message.SetMessageType(emtSMS);
    message.SetPersonalToContact(8);
    message.SetSourceIndex(2);
    message.SetPriority(1);
    message.SetReceived(Date(46347.25));
    message.SetSent(Date(46347.5));
    message.SetSendAfter(Date(46347.75));
    message.CDOMessage()->SetOctets("Subject: s\r\n\r\nbody \x80\r\n");
    message.SetEdited(false);

    const cMessagePtr copy = message.Copy();
    EXPECT_EQ(copy->Reference(), 0);
    EXPECT_TRUE(copy->Edited());
    EXPECT_EQ(copy->Category(), tmcSaved);
    EXPECT_EQ(copy->Flags(), mfRead | mfAutomatic);
    EXPECT_EQ(copy->MultiPartMessage(), 3);
    EXPECT_TRUE(copy->HasHighlightWords());
    EXPECT_EQ(copy->MessageType(), emtSMS);
    EXPECT_EQ(copy->PersonalToContact(), 8);
    EXPECT_EQ(copy->SourceIndex(), 2);
    EXPECT_EQ(copy->Priority(), 1);
    EXPECT_EQ(copy->Received().DayNumber(), 46347.25);
    EXPECT_EQ(copy->Sent().DayNumber(), 46347.5);
    EXPECT_EQ(copy->SendAfter().DayNumber(), 46347.75);
    EXPECT_EQ(copy->CDOMessage()->Octets(), message.CDOMessage()->Octets());
    EXPECT_NE(copy->CDOMessage(), message.CDOMessage());
}
