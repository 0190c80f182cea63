// SPDX-License-Identifier: Apache-2.0
#include "platform/directory/clsCategory.h"

#include <gtest/gtest.h>

namespace
{
std::unique_ptr<clsCategory> Category(qint16 reference)
{
    auto category = std::make_unique<clsCategory>();
    category->SetReference(reference);
    return category;
}
} // namespace

TEST(clsCategoryTest, IsEmptyAtFirst)
{
    const clsCategory category;
    EXPECT_EQ(category.Reference(), 0);
    EXPECT_EQ(category.ParentReference(), 0);
    EXPECT_TRUE(category.Description().isEmpty());
    EXPECT_EQ(category.SortKey(), 0);
    EXPECT_EQ(category.UserLong(), 0);
    EXPECT_EQ(category.SubCategoryCount(), 0);
}

TEST(clsCategoryTest, AnAddedNodeIsTheLastAndHasThisNodeAsItsParent)
{
    clsCategory parent;
    parent.SetReference(9);
    parent.AddSubCategory(Category(3));
    clsCategory& added = parent.AddSubCategory(Category(2));
    EXPECT_EQ(added.ParentReference(), 9);
    ASSERT_EQ(parent.SubCategoryCount(), 2);
    EXPECT_EQ(parent.SubCategory(2), &added);
}

TEST(clsCategoryTest, SubCategoriesCountFromOneAndAreNullOutside)
{
    clsCategory parent;
    parent.AddSubCategory(Category(3));
    EXPECT_EQ(parent.SubCategory(0), nullptr);
    ASSERT_NE(parent.SubCategory(1), nullptr);
    EXPECT_EQ(parent.SubCategory(1)->Reference(), 3);
    EXPECT_EQ(parent.SubCategory(2), nullptr);
    EXPECT_EQ(parent.SubCategory(-1), nullptr);
}

TEST(clsCategoryTest, ATakenNodeIsHandedOverWithAllBelowIt)
{
    clsCategory root;
    root.AddSubCategory(Category(1)).AddSubCategory(Category(2));
    root.AddSubCategory(Category(3));
    const std::unique_ptr<clsCategory> taken = root.TakeSubCategory(1);
    ASSERT_NE(taken, nullptr);
    EXPECT_NE(taken->FindCategory(2), nullptr);
    EXPECT_EQ(root.FindCategory(2), nullptr);
    ASSERT_EQ(root.SubCategoryCount(), 1);
    EXPECT_EQ(root.SubCategory(1)->Reference(), 3);
    EXPECT_EQ(root.TakeSubCategory(0), nullptr);
    EXPECT_EQ(root.TakeSubCategory(2), nullptr);
}

TEST(clsCategoryTest, FindsItselfAndNodesAtAnyDepthAndNothingElse)
{
    clsCategory root;
    root.SetReference(1);
    clsCategory& deepest = root.AddSubCategory(Category(2)).AddSubCategory(Category(3)).AddSubCategory(Category(4));
    root.AddSubCategory(Category(5));
    EXPECT_EQ(root.FindCategory(1), &root);
    EXPECT_EQ(root.FindCategory(4), &deepest);
    EXPECT_NE(root.FindCategory(5), nullptr);
    EXPECT_EQ(root.FindCategory(6), nullptr);
    EXPECT_EQ(root.FindCategory(0), nullptr);
}

TEST(clsCategoryTest, ANumberBeyond16BitsIsNotTakenForTheOneThatItsLowBitsMake)
{
    clsCategory root;
    root.AddSubCategory(Category(5));
    EXPECT_EQ(root.FindCategory(65536 + 5), nullptr);
}

TEST(clsCategoryTest, TheDeepestTreeThereCanBeIsDestroyedAndSearchedWithoutRecursion)
{
    auto root = std::make_unique<clsCategory>();
    clsCategory* node = root.get();
    for (int reference = 1; reference <= 32767; ++reference)
        node = &node->AddSubCategory(Category(static_cast<qint16>(reference)));
    EXPECT_EQ(root->FindCategory(32767), node);
    root.reset();
}
