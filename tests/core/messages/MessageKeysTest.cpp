// SPDX-License-Identifier: Apache-2.0

// The keys of messages that stand already, written anew in the form of today.

#include "core/support/StationTest.h"
#include "platform/records/DBEngine.h"

namespace
{
class MessageKeysTest : public StationTest
{
protected:
    void SetUp() override { OpenStation(); }

    qint32 SaveText(const QString& from)
    {
        const cMessagePtr message = MakeMessage(QStringLiteral("text"), from);
        message->SetMessageType(emtSMS);
        EXPECT_TRUE(Station->SaveMessage(message));
        return message->Reference();
    }
    /// Puts keys into all rows as another version wrote them.
    void WriteOldKeys(const QString& key)
    {
        Other()->Execute(QStringLiteral("UPDATE [Messages] SET [FromKey]=\"%1\", [CcKey]=\"|old|\"").arg(key));
    }
    std::unique_ptr<dao::Database> Other() const { return dao::DBEngine::OpenDatabase(FileName()); }
    QStringList Keys(const QString& column = QStringLiteral("FromKey")) const
    {
        QStringList keys;
        const auto rows = Station->OpenMessageRows({column}, QString(), QStringLiteral("[Reference]"));
        for (; !rows->AtEOF(); rows->MoveNext())
            keys.append(rows->Collect(column).toString());
        return keys;
    }
};
} // namespace

TEST_F(MessageKeysTest, WrongKeysAreWrittenAsASaveWouldWriteThem)
{
    SaveText(QStringLiteral("+49 171 1234567"));
    SaveText(QStringLiteral("07700 900123"));
    SaveNew(QStringLiteral("mail"));
    const QStringList right = Keys();
    ASSERT_EQ(right, (QStringList{QStringLiteral("|491711234567|"), QStringLiteral("|7700900123|"),
                                  QStringLiteral("|ann@example.com|")}));
    WriteOldKeys(QStringLiteral("|1711234567|"));
    EXPECT_EQ(Station->RewriteMessageKeys(1, 1000), 3);
    EXPECT_EQ(Keys(), right);
    EXPECT_EQ(Keys(QStringLiteral("CcKey")), (QStringList{QString(), QString(), QString()}));
}

TEST_F(MessageKeysTest, RowsThatAreRightAreLeftAloneAndTheStampWithThem)
{
    SaveText(QStringLiteral("07700 900123"));
    const Date before = Station->LastMessageChanged();
    Now.Advance(60);
    EXPECT_EQ(Station->RewriteMessageKeys(1, 1000), 0);
    EXPECT_EQ(Station->LastMessageChanged(), before);
    WriteOldKeys(QStringLiteral("|old|"));
    EXPECT_EQ(Station->RewriteMessageKeys(1, 1000), 1);
    EXPECT_GT(Station->LastMessageChanged(), before) << "other computers read their lists again";
}

TEST_F(MessageKeysTest, OnlyTheGivenMessagesAreWritten)
{
    for (int i = 0; i < 3; ++i)
        SaveText(QStringLiteral("07700 900123"));
    WriteOldKeys(QStringLiteral("|old|"));
    EXPECT_EQ(Station->RewriteMessageKeys(2, 2), 1);
    EXPECT_EQ(Keys(), (QStringList{QStringLiteral("|old|"), QStringLiteral("|7700900123|"), QStringLiteral("|old|")}));
    EXPECT_EQ(Station->RewriteMessageKeys(7, 9), 0);
}

TEST_F(MessageKeysTest, TheFirstTextMessageStoresTheCountryForEveryComputer)
{
    Machine.Set(QStringLiteral("SOFTWARE\\Kelvarin"), QStringLiteral("Country"), QStringLiteral("DE"));
    SaveNew(QStringLiteral("mail"));
    EXPECT_EQ(Station->DatabaseSetting(QStringLiteral("Station.Country"), QString()), QString());
    SaveText(QStringLiteral("0171 1234567"));
    EXPECT_EQ(Station->DatabaseSetting(QStringLiteral("Station.Country"), QString()), QStringLiteral("DE"));
    // Another computer, which is set to another country.
    Machine.Set(QStringLiteral("SOFTWARE\\Kelvarin"), QStringLiteral("Country"), QStringLiteral("GB"));
    SaveText(QStringLiteral("0171 1234567"));
    EXPECT_EQ(Keys().mid(1), (QStringList{QStringLiteral("|1711234567|"), QStringLiteral("|1711234567|")}));
}

TEST_F(MessageKeysTest, AChangedCountryIsTakenOverByWritingTheKeysAnew)
{
    SaveText(QStringLiteral("0171 1234567"));
    SaveText(QStringLiteral("+49 171 1234567"));
    Station->SetStationCountry(QStringLiteral("DE"));
    Station->SetStationCountry(QStringLiteral("England"));
    EXPECT_EQ(Station->StationCountry(), u"DE") << "what is no country is not stored";
    Station->RewriteMessageKeys(1, 1000);
    EXPECT_EQ(Keys(), (QStringList{QStringLiteral("|1711234567|"), QStringLiteral("|1711234567|")}));
}
