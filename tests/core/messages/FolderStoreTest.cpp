// SPDX-License-Identifier: Apache-2.0

// The folders of a station.

#include "core/support/StationTest.h"
#include "platform/records/DBEngine.h"

class FolderStoreTest : public StationTest
{
protected:
    void SetUp() override { OpenStation(); }
    qint16 Add(const char16_t* name, qint32 parent = 0)
    {
        clsCategory category;
        category.SetDescription(QString::fromUtf16(name));
        category.SetParentReference(parent);
        EXPECT_TRUE(Station->SaveMessageCategory(category));
        return category.Reference();
    }
    QStringList Rows() const
    {
        QStringList rows;
        const auto recordset = OpenTable(QStringLiteral("MessageCategories"));
        recordset->SetIndex(QStringLiteral("Main"));
        for (; !recordset->AtEOF(); recordset->MoveNext()) {
            rows.append(QStringLiteral("%1 %2 %3")
                            .arg(recordset->Collect(QStringLiteral("Reference")).toString(),
                                 recordset->Collect(QStringLiteral("ParentReference")).toString(),
                                 recordset->Collect(QStringLiteral("Description")).toString()));
        }
        return rows;
    }
};

TEST_F(FolderStoreTest, ARowBeyondAllFoldersKeepsNobodyOut)
{
    const auto rows = OpenTable(QStringLiteral("MessageCategories"));
    rows->AddNew();
    rows->SetCollect(QStringLiteral("Reference"), 40000);
    rows->SetCollect(QStringLiteral("Description"), QStringLiteral("beyond"));
    rows->Update();
    ASSERT_EQ(Station->OpenTolvaDatabase(Folder.path()), 0);
    EXPECT_EQ(Station->MessageCategories().SubCategoryCount(), 7);
    EXPECT_EQ(Station->LastMessageCategoryReference(), 7);
    EXPECT_EQ(Station->GetMessageCategory(40000), nullptr);
    EXPECT_FALSE(Station->DeleteMessageCategory(40000));
    EXPECT_EQ(Add(u"Requests"), 8);
    EXPECT_TRUE(Station->DeleteMessageCategory(8));
}

TEST_F(FolderStoreTest, TheFixedFoldersStandAfterTheOpen)
{
    const struct
    {
        int Reference;
        const char* Description;
        const char* Icon;
    } fixed[] = {{1, "Inbox", ""},
                 {2, "Outbox", "foldersending"},
                 {3, "Saved", "foldersaved"},
                 {4, "Sent", "foldersent"},
                 {5, "Deleted Items", "trash"},
                 {6, "Draft Messages", "folderdrafts"},
                 {7, "Auto-Messages", "foldersending"}};
    EXPECT_EQ(Station->MessageCategories().SubCategoryCount(), 7);
    for (const auto& expected : fixed) {
        const clsCategory* category = Station->MessageCategories().FindCategory(expected.Reference);
        ASSERT_NE(category, nullptr);
        EXPECT_EQ(category->Description(), QLatin1String(expected.Description));
        EXPECT_EQ(category->IconReference(), QLatin1String(expected.Icon));
        EXPECT_EQ(category->BackColour(), static_cast<qint32>(0x80000005U));
        EXPECT_EQ(category->UserLong(), -1);
        EXPECT_EQ(category->ParentReference(), 0);
        EXPECT_EQ(category->EndHours(), 0);
        EXPECT_EQ(category->KillHours(), 0);
    }
}

TEST_F(FolderStoreTest, ARenamedFixedFolderGetsItsTitleBackAndADeletedOneReturns)
{
    const auto inbox = Station->GetMessageCategory(tmcInbox);
    inbox->SetDescription(QStringLiteral("Post"));
    ASSERT_TRUE(Station->SaveMessageCategory(*inbox));
    ASSERT_TRUE(Station->DeleteMessageCategory(tmcAutomatic));
    ASSERT_EQ(Station->MessageCategories().FindCategory(tmcAutomatic), nullptr);
    Station->ReadDatabaseSettings();
    EXPECT_EQ(Station->MessageCategories().FindCategory(tmcInbox)->Description(), QStringLiteral("Inbox"));
    EXPECT_NE(Station->MessageCategories().FindCategory(tmcAutomatic), nullptr);
}

TEST_F(FolderStoreTest, AFixedFolderThatIsAsItShouldBeIsNotWrittenAgain)
{
    const auto rows = OpenTable(QStringLiteral("MessageCategories"));
    rows->SetIndex(QStringLiteral("Main"));
    rows->Seek(dao::SeekComparison::Equal, {tmcInbox});
    rows->Edit();
    Station->ReadDatabaseSettings();
    rows->SetCollect(QStringLiteral("Description"), QStringLiteral("Post"));
    EXPECT_NO_THROW(rows->Update()); // 3197 if somebody had written the row since the Edit
    Station->ReadDatabaseSettings();
    EXPECT_EQ(Station->MessageCategories().FindCategory(tmcInbox)->Description(), QStringLiteral("Inbox"));
}

TEST_F(FolderStoreTest, ANewFolderGetsTheNextNumberAndShowsAfterTheTreeIsRead)
{
    EXPECT_EQ(Station->LastMessageCategoryReference(), 7);
    EXPECT_EQ(Add(u"Competitions"), 8);
    EXPECT_EQ(Station->MessageCategories().FindCategory(8), nullptr);
    Station->UpdateCategoryTree();
    ASSERT_NE(Station->MessageCategories().FindCategory(8), nullptr);
    EXPECT_EQ(Station->LastMessageCategoryReference(), 8);
}

TEST_F(FolderStoreTest, TheFirstFolderOfAnEmptyTableIsNumberOne)
{
    for (int reference = 1; reference <= 7; ++reference)
        ASSERT_TRUE(Station->DeleteMessageCategory(reference));
    EXPECT_EQ(Station->LastMessageCategoryReference(), 0);
    EXPECT_EQ(Add(u"Competitions"), 1);
}

TEST_F(FolderStoreTest, AllFieldsAreStored)
{
    clsCategory category;
    category.SetDescription(QStringLiteral("Fan post"));
    category.SetSortKey(5);
    category.SetParentReference(3);
    category.SetEndHours(24);
    category.SetKillHours(48);
    category.SetBackColour(255);
    category.SetForeColour(65280);
    category.SetUserLong(12);
    category.SetUserString(QStringLiteral("free"));
    category.SetIconReference(QStringLiteral("star"));
    ASSERT_TRUE(Station->SaveMessageCategory(category));
    const auto read = Station->GetMessageCategory(category.Reference());
    EXPECT_EQ(read->Description(), QStringLiteral("Fan post"));
    EXPECT_EQ(read->SortKey(), 5);
    EXPECT_EQ(read->ParentReference(), 3);
    EXPECT_EQ(read->EndHours(), 24);
    EXPECT_EQ(read->KillHours(), 48);
    EXPECT_EQ(read->BackColour(), 255);
    EXPECT_EQ(read->ForeColour(), 65280);
    EXPECT_EQ(read->UserLong(), 12);
    EXPECT_EQ(read->UserString(), QStringLiteral("free"));
    EXPECT_EQ(read->IconReference(), QStringLiteral("star"));
}

TEST_F(FolderStoreTest, AFreshlyReadFolderIsSeparateFromTheTree)
{
    const auto inbox = Station->GetMessageCategory(tmcInbox);
    inbox->SetDescription(QStringLiteral("Post"));
    EXPECT_EQ(Station->MessageCategories().FindCategory(tmcInbox)->Description(), QStringLiteral("Inbox"));
    EXPECT_EQ(Station->GetMessageCategory(0), nullptr);
    EXPECT_EQ(Station->GetMessageCategory(-3), nullptr);
}

TEST_F(FolderStoreTest, SavingWithSubCategoriesReplacesTheStoredChildren)
{
    const qint16 parent = Add(u"Competitions");
    const qint16 kept = Add(u"Hamper", parent);
    const qint16 dropped = Add(u"Tickets", parent);
    const qint16 grandchild = Add(u"Late", dropped);
    const auto node = Station->GetMessageCategory(parent);
    ASSERT_EQ(node->SubCategoryCount(), 2);
    for (int i = 1; i <= node->SubCategoryCount(); ++i) {
        if (node->SubCategory(i)->Reference() == dropped) {
            node->TakeSubCategory(i);
            break;
        }
    }
    ASSERT_TRUE(Station->SaveMessageCategory(*node, true));
    const QStringList rows = Rows();
    EXPECT_TRUE(rows.contains(QStringLiteral("%1 %2 Hamper").arg(kept).arg(parent)));
    EXPECT_EQ(rows.filter(QStringLiteral("Tickets")).size(), 0);
    EXPECT_TRUE(rows.contains(QStringLiteral("%1 %2 Late").arg(grandchild).arg(dropped)));
}

TEST_F(FolderStoreTest, SavingWithoutSubCategoriesLeavesTheChildrenAlone)
{
    const qint16 parent = Add(u"Competitions");
    Add(u"Hamper", parent);
    clsCategory bare;
    bare.SetReference(parent);
    bare.SetDescription(QStringLiteral("Contests"));
    ASSERT_TRUE(Station->SaveMessageCategory(bare, false));
    EXPECT_EQ(Rows().filter(QStringLiteral("Hamper")).size(), 1);
    EXPECT_EQ(Rows().filter(QStringLiteral("Contests")).size(), 1);
}

TEST_F(FolderStoreTest, AFolderThatHoldsAMessageStays)
{
    const qint16 reference = Add(u"Competitions");
    Station->UpdateCategoryTree();
    SaveNew(QStringLiteral("s"), static_cast<enTolvaMessageCategories>(reference));
    EXPECT_FALSE(Station->DeleteMessageCategory(reference));
    EXPECT_EQ(Rows().filter(QStringLiteral("Competitions")).size(), 1);
}

TEST_F(FolderStoreTest, AFolderWithSubFoldersStays)
{
    const qint16 parent = Add(u"Competitions");
    Add(u"Hamper", parent);
    EXPECT_FALSE(Station->DeleteMessageCategory(parent));
    EXPECT_EQ(Rows().filter(QStringLiteral("Competitions")).size(), 1);
}

TEST_F(FolderStoreTest, DeletingRefreshesTheTreeAndFreesTheHighestNumber)
{
    const qint16 reference = Add(u"Competitions");
    Station->UpdateCategoryTree();
    EXPECT_TRUE(Station->DeleteMessageCategory(reference));
    EXPECT_EQ(Station->MessageCategories().FindCategory(reference), nullptr);
    EXPECT_EQ(Station->LastMessageCategoryReference(), 7);
    EXPECT_EQ(Add(u"Again"), reference);
}

TEST_F(FolderStoreTest, AnAbsentFolderCountsAsDeletedAndZeroDoesNot)
{
    EXPECT_TRUE(Station->DeleteMessageCategory(500));
    EXPECT_FALSE(Station->DeleteMessageCategory(0));
    EXPECT_FALSE(Station->DeleteMessageCategory(-1));
}

TEST_F(FolderStoreTest, AReplacedSubtreeIsWrittenWholeOrNotAtAll)
{
    const qint16 parent = Add(u"Competitions");
    const qint16 child = Add(u"Hamper", parent);
    const auto node = Station->GetMessageCategory(parent);
    node->SubCategory(1)->SetDescription(QString(300, QLatin1Char('x'))); // does not fit its field
    EXPECT_THROW(Station->SaveMessageCategory(*node, true), dao::Error);
    EXPECT_TRUE(Rows().contains(QStringLiteral("%1 %2 Hamper").arg(child).arg(parent)));
}
