// SPDX-License-Identifier: Apache-2.0

// tolva setting.

#include "CommandLineTest.h"

class SettingTest : public CommandLineTest
{
protected:
    QByteArray Value(const char* key) const { return Expect("setting", {QString::fromLatin1(key)}); }
    int Store(const char* key, const char* value) const
    {
        return OnStation("setting", {QString::fromLatin1(key), QString::fromUtf8(value)}).Code;
    }
};

TEST_F(SettingTest, AValueIsStoredAndAnEmptyOneBringsTheDefaultBack)
{
    EXPECT_EQ(Value("Backups.ExpiryDays"), "7\n");
    EXPECT_EQ(Store("backups.expirydays", " 14 "), 0);
    EXPECT_EQ(Value("Backups.ExpiryDays"), "14\n");
    EXPECT_EQ(Store("Backups.ExpiryDays", ""), 0);
    EXPECT_EQ(Value("Backups.ExpiryDays"), "7\n");
}

TEST_F(SettingTest, TextOfAnyLanguageIsKept)
{
    EXPECT_EQ(Store("Messages.HighlightWords", "competition|\xC3\xBC"
                                               "ber|\xF0\x9F\x8E\xB6"),
              0);
    EXPECT_EQ(Value("Messages.HighlightWords"), "competition|\xC3\xBC"
                                                "ber|\xF0\x9F\x8E\xB6\n");
}

TEST_F(SettingTest, ValuesThatTheirReadersWouldNotUnderstandAreRefused)
{
    EXPECT_EQ(Store("Backups.ExpiryDays", "soon"), 65);
    EXPECT_EQ(Store("Backups.EnableAutoBackup", "perhaps"), 65);
    EXPECT_EQ(Value("Backups.ExpiryDays"), "7\n");
    EXPECT_EQ(Store("Backups.EnableAutoBackup", "false"), 0);
    EXPECT_EQ(Value("Backups.EnableAutoBackup"), "False\n");
}

TEST_F(SettingTest, AKeyThatNothingReadsIsWarnedOfAndStored)
{
    const Outcome outcome = OnStation("setting", {QStringLiteral("Sation.Name"), QStringLiteral("X")});
    EXPECT_EQ(outcome.Code, 0);
    EXPECT_TRUE(outcome.Problems.startsWith("tolva: warning: \"Sation.Name\"")) << outcome.Problems.constData();
    EXPECT_EQ(OnStation("setting", {QStringLiteral("Sation.Name")}).Output, "X\n");
}
