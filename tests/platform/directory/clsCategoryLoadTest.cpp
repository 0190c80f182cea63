// SPDX-License-Identifier: Apache-2.0
#include "platform/directory/TemporaryDirectory.h"
#include "platform/directory/clsCategory.h"
#include "platform/records/DBEngine.h"

#include <QSet>
#include <QStringList>

#include <random>

namespace
{
const QString tableName = QStringLiteral("MessageCategories");

/// Descriptions by depth, such as "Competitions(Hamper(Late) Tickets) Traffic".
QString Outline(const clsCategory& parent)
{
    QStringList parts;
    for (int i = 1; i <= parent.SubCategoryCount(); ++i) {
        const clsCategory& child = *parent.SubCategory(i);
        const QString below = Outline(child);
        parts.append(below.isEmpty() ? child.Description() : QStringLiteral("%1(%2)").arg(child.Description(), below));
    }
    return parts.join(QLatin1Char(' '));
}

void CollectReferences(const clsCategory& root, QList<qint32>& references)
{
    QList<const clsCategory*> pending{&root};
    while (!pending.isEmpty()) {
        const clsCategory* const node = pending.takeLast();
        for (int i = 1; i <= node->SubCategoryCount(); ++i) {
            references.append(node->SubCategory(i)->Reference());
            pending.append(node->SubCategory(i));
        }
    }
}

class clsCategoryLoadTest : public testing::Test
{
protected:
    void SetUp() override
    {
        Database = dao::DBEngine::CreateDatabase(Folder.filePath(QStringLiteral("Station.mdb")), QString());
        auto table = Database->CreateTableDef(tableName);
        for (const char* name : {"Reference", "ParentReference", "SortKey", "ForeColour", "BackColour", "EndHours",
                                 "KillHours", "UserLong"})
            table->Fields().Append(table->CreateField(QString::fromLatin1(name), dao::dbLong));
        for (const char* name : {"Description", "UserString", "IconReference"})
            table->Fields().Append(table->CreateField(QString::fromLatin1(name), dao::dbText));
        Database->TableDefs().Append(std::move(table));
        Rows = Database->OpenRecordset(tableName, dao::dbOpenTable);
    }

    void Add(qint32 reference, qint32 parent, const QString& description = QString(), qint32 sortKey = 0,
             qint32 userLong = 0)
    {
        Rows->AddNew();
        Rows->SetCollect(QStringLiteral("Reference"), reference);
        Rows->SetCollect(QStringLiteral("ParentReference"), parent);
        Rows->SetCollect(QStringLiteral("Description"), description);
        Rows->SetCollect(QStringLiteral("SortKey"), sortKey);
        Rows->SetCollect(QStringLiteral("UserLong"), userLong);
        Rows->Update();
    }

    void Load(clsCategory& node) { node.LoadCategories(*Database, QStringLiteral("Categories"), tableName); }

    QString LoadedOutline(qint16 reference = 0)
    {
        clsCategory node;
        node.SetReference(reference);
        Load(node);
        return Outline(node);
    }

    QTemporaryDir Folder;
    std::unique_ptr<dao::Database> Database;
    std::unique_ptr<dao::Recordset> Rows;
};
} // namespace

TEST_F(clsCategoryLoadTest, AnEmptyTableGivesARootWithoutSubCategories)
{
    EXPECT_EQ(LoadedOutline(), QString());
}

TEST_F(clsCategoryLoadTest, TheRootHoldsTheWholeTreeWhateverTheOrderOfTheRows)
{
    Add(4, 2, QStringLiteral("Late"));
    Add(3, 0, QStringLiteral("Traffic"));
    Add(2, 1, QStringLiteral("Hamper"));
    Add(1, 0, QStringLiteral("Competitions"));
    EXPECT_EQ(LoadedOutline(), QStringLiteral("Competitions(Hamper(Late)) Traffic"));
}

TEST_F(clsCategoryLoadTest, SiblingsStandBySortKeyThenDescriptionWithoutCaseThenReference)
{
    Add(1, 0, QStringLiteral("zebra"), -1);
    Add(2, 0, QStringLiteral("Beta"));
    Add(3, 0, QStringLiteral("alpha"));
    Add(4, 0, QStringLiteral("ÉCLAIR"));
    Add(5, 0, QStringLiteral("éclair"));
    Add(6, 0, QStringLiteral("Aardvark"), 7);
    EXPECT_EQ(LoadedOutline(), QStringLiteral("zebra alpha Beta ÉCLAIR éclair Aardvark"));
}

TEST_F(clsCategoryLoadTest, FixedCategoriesLeadTheirSiblingsInTheOrderOfTheirNumbers)
{
    constexpr qint32 fixed = -1;
    Add(7, 0, QStringLiteral("Auto-Messages"), 0, fixed);
    Add(1, 0, QStringLiteral("Inbox"), 0, fixed);
    Add(8, 0, QStringLiteral("Competitions"));
    Add(9, 0, QStringLiteral("Pinned"), -1);
    EXPECT_EQ(LoadedOutline(), QStringLiteral("Pinned Inbox Auto-Messages Competitions"));
}

TEST_F(clsCategoryLoadTest, TheRootKeepsItsOwnFields)
{
    Add(1, 0, QStringLiteral("Inbox"));
    clsCategory root;
    root.SetDescription(QStringLiteral("All Categories"));
    root.SetBackColour(255);
    Load(root);
    EXPECT_EQ(root.Reference(), 0);
    EXPECT_EQ(root.Description(), QStringLiteral("All Categories"));
    EXPECT_EQ(root.BackColour(), 255);
    EXPECT_EQ(root.SubCategoryCount(), 1);
}

TEST_F(clsCategoryLoadTest, ANodeLoadsItsFieldsAndAllBelowItAndNothingBesides)
{
    Add(1, 0, QStringLiteral("Competitions"), 3);
    Add(2, 1, QStringLiteral("Hamper"));
    Add(3, 2, QStringLiteral("Late"));
    Add(4, 0, QStringLiteral("Traffic"));
    clsCategory node;
    node.SetReference(2);
    Load(node);
    EXPECT_EQ(node.Description(), QStringLiteral("Hamper"));
    EXPECT_EQ(node.ParentReference(), 1);
    EXPECT_EQ(Outline(node), QStringLiteral("Late"));
}

TEST_F(clsCategoryLoadTest, EveryFieldIsRead)
{
    Rows->AddNew();
    const QStringList numbers{QStringLiteral("Reference"),  QStringLiteral("ParentReference"),
                              QStringLiteral("SortKey"),    QStringLiteral("ForeColour"),
                              QStringLiteral("BackColour"), QStringLiteral("EndHours"),
                              QStringLiteral("KillHours")};
    for (int i = 0; i < numbers.size(); ++i)
        Rows->SetCollect(numbers.at(i), 10 + i);
    Rows->SetCollect(QStringLiteral("BackColour"), static_cast<qint32>(0x80000005));
    Rows->SetCollect(QStringLiteral("UserLong"), -1);
    Rows->SetCollect(QStringLiteral("Description"), QStringLiteral("Inbox"));
    Rows->SetCollect(QStringLiteral("UserString"), QStringLiteral("free"));
    Rows->SetCollect(QStringLiteral("IconReference"), QStringLiteral("trash"));
    Rows->Update();
    clsCategory node;
    node.SetReference(10);
    Load(node);
    EXPECT_EQ(node.ParentReference(), 11);
    EXPECT_EQ(node.SortKey(), 12);
    EXPECT_EQ(node.ForeColour(), 13);
    EXPECT_EQ(node.BackColour(), static_cast<qint32>(0x80000005));
    EXPECT_EQ(node.EndHours(), 15);
    EXPECT_EQ(node.KillHours(), 16);
    EXPECT_EQ(node.UserLong(), -1);
    EXPECT_EQ(node.Description(), QStringLiteral("Inbox"));
    EXPECT_EQ(node.UserString(), QStringLiteral("free"));
    EXPECT_EQ(node.IconReference(), QStringLiteral("trash"));
}

TEST_F(clsCategoryLoadTest, NullReadsAsZeroAndEmpty)
{
    Rows->AddNew();
    Rows->SetCollect(QStringLiteral("Reference"), 8);
    Rows->Update();
    clsCategory root;
    Load(root);
    const clsCategory* const node = root.SubCategory(1);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->ParentReference(), 0);
    EXPECT_EQ(node->SortKey(), 0);
    EXPECT_EQ(node->UserLong(), 0);
    EXPECT_TRUE(node->Description().isEmpty());
}

TEST_F(clsCategoryLoadTest, ARowWhoseParentIsAbsentStandsDirectlyBelowTheRootAndKeepsTheStoredParent)
{
    Add(1, 0, QStringLiteral("Inbox"));
    Add(2, 70000, QStringLiteral("Orphan"));
    Add(3, 2, QStringLiteral("Child"));
    clsCategory root;
    Load(root);
    EXPECT_EQ(Outline(root), QStringLiteral("Inbox Orphan(Child)"));
    EXPECT_EQ(root.FindCategory(2)->ParentReference(), 70000);
}

TEST_F(clsCategoryLoadTest, ARingIsCutAtItsLowestReferenceAndWhatHangsOnItStays)
{
    Add(7, 3, QStringLiteral("seven"));
    Add(3, 5, QStringLiteral("three"));
    Add(5, 7, QStringLiteral("five"));
    Add(1, 5, QStringLiteral("tail"));
    EXPECT_EQ(LoadedOutline(), QStringLiteral("three(seven(five(tail)))"));
    EXPECT_EQ(LoadedOutline(5), QStringLiteral("tail"));
    EXPECT_EQ(LoadedOutline(3), QStringLiteral("seven(five(tail))"));
}

TEST_F(clsCategoryLoadTest, ARowThatIsItsOwnParentStandsDirectlyBelowTheRoot)
{
    Add(4, 4, QStringLiteral("self"));
    Add(5, 4, QStringLiteral("child"));
    EXPECT_EQ(LoadedOutline(), QStringLiteral("self(child)"));
}

TEST_F(clsCategoryLoadTest, ARowWithReferenceZeroIsShownAndTakesNoOtherRowAway)
{
    Add(0, 0, QStringLiteral("zero"));
    Add(1, 0, QStringLiteral("Inbox"));
    EXPECT_EQ(LoadedOutline(), QStringLiteral("Inbox zero"));
}

TEST_F(clsCategoryLoadTest, RowsThatRepeatAReferenceAreAllShownAndTheFirstHoldsTheChildren)
{
    Add(1, 0, QStringLiteral("a"));
    Add(1, 0, QStringLiteral("b"));
    Add(2, 1, QStringLiteral("child"));
    EXPECT_EQ(LoadedOutline(), QStringLiteral("a(child) b"));
}

TEST_F(clsCategoryLoadTest, ANodeThatTheTableLacksKeepsItsFieldsAndLosesItsSubCategories)
{
    Add(1, 0, QStringLiteral("Inbox"));
    clsCategory node;
    node.SetReference(9);
    node.SetDescription(QStringLiteral("mine"));
    node.AddSubCategory(std::make_unique<clsCategory>());
    Load(node);
    EXPECT_EQ(node.Reference(), 9);
    EXPECT_EQ(node.Description(), QStringLiteral("mine"));
    EXPECT_EQ(node.SubCategoryCount(), 0);
}

TEST_F(clsCategoryLoadTest, LoadingAgainShowsTheTableAsItIsNow)
{
    Add(1, 0, QStringLiteral("Inbox"));
    clsCategory root;
    Load(root);
    Add(2, 1, QStringLiteral("new"));
    Load(root);
    EXPECT_EQ(Outline(root), QStringLiteral("Inbox(new)"));
}

TEST_F(clsCategoryLoadTest, ARowBeyond16BitsIsNoFolderAndKeepsNobodyFromTheOthers)
{
    Add(1, 0, QStringLiteral("Inbox"));
    for (const qint32 reference : {32768, 65537, -32769})
        Add(reference, 0, QStringLiteral("beyond"));
    Add(2, 32768, QStringLiteral("below it"));
    EXPECT_EQ(LoadedOutline(), QStringLiteral("below it Inbox"));
}

TEST_F(clsCategoryLoadTest, TheEndsOf16BitsAreReferencesLikeOthers)
{
    Add(32767, 0, QStringLiteral("high"));
    Add(-32768, 32767, QStringLiteral("low"));
    EXPECT_EQ(LoadedOutline(), QStringLiteral("high(low)"));
}

TEST_F(clsCategoryLoadTest, AnAbsentTableIsTheStoresError)
{
    clsCategory root;
    EXPECT_EQ(
        ErrorNumber([&] { root.LoadCategories(*Database, QStringLiteral("Categories"), QStringLiteral("None")); }),
        dao::errTableNotFound);
}

TEST_F(clsCategoryLoadTest, FiveThousandNestedFoldersLoadWithTheDeepestInReach)
{
    constexpr int depth = 5000;
    dao::DBEngine::BeginTrans();
    for (int reference = depth; reference >= 1; --reference)
        Add(reference, reference - 1);
    dao::DBEngine::CommitTrans();
    clsCategory root;
    Load(root);
    const clsCategory* node = &root;
    for (int reference = 1; reference <= depth; ++reference) {
        ASSERT_EQ(node->SubCategoryCount(), 1);
        node = node->SubCategory(1);
        ASSERT_EQ(node->Reference(), reference);
    }
    EXPECT_EQ(root.FindCategory(depth), node);
}

TEST_F(clsCategoryLoadTest, WhateverTheParentsAreEveryRowStandsInTheTreeOnce)
{
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    for (int round = 0; round < 20; ++round) {
        dao::DBEngine::BeginTrans();
        Database->Execute(QStringLiteral("DELETE FROM [MessageCategories]"));
        const int count = 1 + static_cast<int>(random() % 40);
        QSet<qint32> expected;
        for (int reference = 1; reference <= count; ++reference) {
            Add(reference, static_cast<qint32>(random() % static_cast<unsigned>(count + 3)));
            expected.insert(reference);
        }
        dao::DBEngine::CommitTrans();
        clsCategory root;
        Load(root);
        QList<qint32> found;
        CollectReferences(root, found);
        EXPECT_EQ(found.size(), count);
        EXPECT_EQ(QSet<qint32>(found.begin(), found.end()), expected);
    }
}
