// SPDX-License-Identifier: Apache-2.0

// Highlight words as a message is saved.

#include "core/support/StationTest.h"

class HighlightSavingTest : public StationTest
{
protected:
    void SetUp() override { OpenStation(); }
    void SetWords(const QString& words)
    {
        Station->SetDatabaseSetting(QStringLiteral("Messages.HighlightWords"), words, QString());
        Station->ReadDatabaseSettings();
    }
    cMessagePtr SaveHTML(const QString& html, enMsgType type = emtEmail)
    {
        const cMessagePtr message = MakeMessage(QStringLiteral("s"));
        message->SetMessageType(type);
        message->CDOMessage()->SetHTMLBody(html);
        EXPECT_TRUE(Station->SaveMessage(message));
        return Station->GetMessage(message->Reference());
    }
    const QString Start = QStringLiteral("<font face = \"Tahoma\" size = \"3\" color = \"#FF00\"><b>");
    const QString End = QStringLiteral("</b></font>");
};

TEST_F(HighlightSavingTest, TheMarksAreStoredInTheMessage)
{
    SetWords(QStringLiteral("prize|song"));
    const cMessagePtr message = SaveHTML(QStringLiteral("<p>A Prize for a song</p>"));
    EXPECT_TRUE(message->HasHighlightWords());
    EXPECT_EQ(message->CDOMessage()->HTMLBody(), QStringLiteral("<p>A ") + Start + QStringLiteral("Prize") + End +
                                                     QStringLiteral(" for a ") + Start + QStringLiteral("song") + End +
                                                     QStringLiteral("</p>"));
}

TEST_F(HighlightSavingTest, AMessageSavedAgainIsMarkedAgain)
{
    SetWords(QStringLiteral("prize"));
    const cMessagePtr message = SaveHTML(QStringLiteral("a prize"));
    ASSERT_TRUE(Station->SaveMessage(message));
    EXPECT_EQ(Station->GetMessage(message->Reference())->CDOMessage()->HTMLBody(),
              QStringLiteral("a ") + Start + Start + QStringLiteral("prize") + End + End);
}

TEST_F(HighlightSavingTest, WithoutAHitTheMailKeepsItsOctets)
{
    SetWords(QStringLiteral("prize"));
    const QByteArray octets = "Subject: s\r\nContent-Type: text/html; charset=iso-8859-1\r\n\r\n<p>caf\xe9</p>\r\n";
    auto message = std::make_shared<cMessage>();
    message->SetCDOMessage(std::make_shared<cdo::Message>(octets));
    ASSERT_TRUE(Station->SaveMessage(message));
    EXPECT_EQ(Station->GetMessage(message->Reference())->CDOMessage()->Octets(), octets);
    EXPECT_FALSE(message->HasHighlightWords());
}

TEST_F(HighlightSavingTest, AMailWithoutHTMLIsNotMarked)
{
    SetWords(QStringLiteral("again"));
    const qint32 reference = SaveNew(QStringLiteral("s"));
    const cMessagePtr message = Station->GetMessage(reference);
    EXPECT_FALSE(message->HasHighlightWords());
    EXPECT_EQ(message->CDOMessage()->HTMLBody(), QString());
}

TEST_F(HighlightSavingTest, AnSMSIsTestedAndNeverChanged)
{
    SetWords(QStringLiteral("prize"));
    const cMessagePtr message = SaveHTML(QStringLiteral("a prize"), emtSMS);
    EXPECT_TRUE(message->HasHighlightWords());
    EXPECT_EQ(message->CDOMessage()->HTMLBody(), QStringLiteral("a prize"));
}

TEST_F(HighlightSavingTest, WithoutWordsTheFlagStaysAsItWas)
{
    const cMessagePtr message = MakeMessage(QStringLiteral("s"));
    message->SetHasHighlightWords(true);
    ASSERT_TRUE(Station->SaveMessage(message));
    EXPECT_TRUE(Station->GetMessage(message->Reference())->HasHighlightWords());
}

TEST_F(HighlightSavingTest, AnEmptyEntryOfTheListIsSearchedForToo)
{
    SetWords(QStringLiteral("|"));
    const cMessagePtr message = SaveHTML(QStringLiteral("a prize"), emtSMS);
    EXPECT_TRUE(message->HasHighlightWords());
}
