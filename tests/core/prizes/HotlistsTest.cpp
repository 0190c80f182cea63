// SPDX-License-Identifier: Apache-2.0

// Hotlists of available hours: the settings rows behind the dialog.

#include "core/prizes/PrizeTest.h"

class HotlistsTest : public PrizeTest
{
protected:
    void ExpectChoice(const QString& item, bool isSaving)
    {
        Ui.ExpectHotlist([item, isSaving](dao::Recordset& settings, bool saveMode) {
            EXPECT_EQ(saveMode, isSaving);
            EXPECT_EQ(settings.Name(), QStringLiteral("Settings"));
            EXPECT_EQ(settings.Index(), QStringLiteral("Main"));
            settings.MoveLast(); // as a dialog leaves it
            return item;
        });
    }
};

TEST_F(HotlistsTest, SavedHoursAreLoadedAgain)
{
    ExpectChoice(QStringLiteral("HR.Breakfast"), true);
    EXPECT_TRUE(Station->SaveAvailableHoursHotlist(QStringLiteral("ABC|DEF"), nullptr));
    EXPECT_EQ(Station->DatabaseSetting(QStringLiteral("HR.Breakfast"), QString()).toString(),
              QStringLiteral("ABC|DEF"));
    ExpectChoice(QStringLiteral("HR.Breakfast"), false);
    EXPECT_EQ(Station->LoadAvailableHoursHotlist(nullptr), QStringLiteral("ABC|DEF"));
}

TEST_F(HotlistsTest, SavingUnderTheSameNameReplacesTheHours)
{
    ExpectChoice(QStringLiteral("HR.Late"), true);
    EXPECT_TRUE(Station->SaveAvailableHoursHotlist(QStringLiteral("1"), nullptr));
    const int rows = OpenTable(QStringLiteral("Settings"))->RecordCount();
    ExpectChoice(QStringLiteral("HR.Late"), true);
    EXPECT_TRUE(Station->SaveAvailableHoursHotlist(QStringLiteral("2"), nullptr));
    EXPECT_EQ(OpenTable(QStringLiteral("Settings"))->RecordCount(), rows);
    ExpectChoice(QStringLiteral("HR.Late"), false);
    EXPECT_EQ(Station->LoadAvailableHoursHotlist(nullptr), QStringLiteral("2"));
}

TEST_F(HotlistsTest, WithoutAChoiceNothingIsLoadedOrSaved)
{
    const int rows = OpenTable(QStringLiteral("Settings"))->RecordCount();
    ExpectChoice(QString(), false);
    EXPECT_EQ(Station->LoadAvailableHoursHotlist(nullptr), QString());
    ExpectChoice(QString(), true);
    EXPECT_FALSE(Station->SaveAvailableHoursHotlist(QStringLiteral("1"), nullptr));
    EXPECT_EQ(OpenTable(QStringLiteral("Settings"))->RecordCount(), rows);
}

TEST_F(HotlistsTest, AnAbsentListLoadsLikeAnEmptyOne)
{
    ExpectChoice(QStringLiteral("HR.Gone"), false);
    EXPECT_EQ(Station->LoadAvailableHoursHotlist(nullptr), QString());
    ExpectChoice(QStringLiteral("HR.Empty"), true);
    EXPECT_TRUE(Station->SaveAvailableHoursHotlist(QString(), nullptr));
    ExpectChoice(QStringLiteral("HR.Empty"), false);
    EXPECT_EQ(Station->LoadAvailableHoursHotlist(nullptr), QString());
}

TEST_F(HotlistsTest, SavingNoHoursOverAListKeepsItsName)
{
    for (const QString& hours : {QStringLiteral("1"), QString()}) {
        ExpectChoice(QStringLiteral("HR.Late"), true);
        EXPECT_TRUE(Station->SaveAvailableHoursHotlist(hours, nullptr));
    }
    const auto rows = OpenTable(QStringLiteral("Settings"));
    rows->SetIndex(QStringLiteral("Main"));
    rows->Seek(dao::SeekComparison::Equal, {QStringLiteral("HR.Late")});
    ASSERT_FALSE(rows->NoMatch());
    EXPECT_EQ(rows->Collect(QStringLiteral("Value")).toString(), QString());
}

TEST_F(HotlistsTest, AListWithoutHoursLoadsLikeCancel)
{
    Station->SetDatabaseSetting(QStringLiteral("HR.Blank"), QStringLiteral("x"), QString());
    const auto rows = OpenTable(QStringLiteral("Settings"));
    for (const QVariant& hours : {QVariant(QString()), QVariant()}) {
        rows->SetIndex(QStringLiteral("Main"));
        rows->Seek(dao::SeekComparison::Equal, {QStringLiteral("HR.Blank")});
        ASSERT_FALSE(rows->NoMatch());
        rows->Edit();
        rows->SetCollect(QStringLiteral("Value"), hours);
        rows->Update();
        ExpectChoice(QStringLiteral("HR.Blank"), false);
        EXPECT_EQ(Station->LoadAvailableHoursHotlist(nullptr), QString());
    }
}

TEST_F(HotlistsTest, OnAClosedStationNobodyIsAsked)
{
    Station->CloseTolvaDatabase();
    EXPECT_EQ(Station->LoadAvailableHoursHotlist(nullptr), QString());
    EXPECT_FALSE(Station->SaveAvailableHoursHotlist(QStringLiteral("1"), nullptr));
}
