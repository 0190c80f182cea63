// SPDX-License-Identifier: Apache-2.0
#include "common/TemplateHelper.h"

#include <gtest/gtest.h>

using namespace TemplateHelper;

TEST(TemplateHelperTest, EveryOccurrenceOfATagIsReplaced)
{
    EXPECT_EQ(
        ReplaceTag(QStringLiteral("<A> and <A>"), QStringLiteral("<A>"), QStringLiteral("x"), TagValue::AsItStands),
        QStringLiteral("x and x"));
}

TEST(TemplateHelperTest, AnEncodedValueWritesNoMarkup)
{
    const QString value = QStringLiteral("<b>\"Tom\" & Jerry</b>");
    EXPECT_EQ(ReplaceTag(QStringLiteral("<A>"), QStringLiteral("<A>"), value, TagValue::EncodedForHTML),
              QStringLiteral("&lt;b&gt;&quot;Tom&quot; &amp; Jerry&lt;/b&gt;"));
    EXPECT_EQ(ReplaceTag(QStringLiteral("<A>"), QStringLiteral("<A>"), value, TagValue::AsItStands), value);
}

TEST(TemplateHelperTest, AValueThatHoldsTheTagIsNotReplacedAgain)
{
    EXPECT_EQ(ReplaceTag(QStringLiteral("<A>"), QStringLiteral("<A>"), QStringLiteral("<A><A>"), TagValue::AsItStands),
              QStringLiteral("<A><A>"));
    EXPECT_EQ(ReplaceTag(QStringLiteral("text"), QString(), QStringLiteral("x"), TagValue::AsItStands),
              QStringLiteral("text"));
}

TEST(TemplateHelperTest, SectionsGoWithTheirTags)
{
    EXPECT_EQ(RemoveSection(QStringLiteral("a<S>b</S>c<S>d</S>e"), QStringLiteral("<S>"), QStringLiteral("</S>")),
              QStringLiteral("ace"));
}

TEST(TemplateHelperTest, ASectionThatIsNotClosedStays)
{
    EXPECT_EQ(RemoveSection(QStringLiteral("a</S>b<S>c"), QStringLiteral("<S>"), QStringLiteral("</S>")),
              QStringLiteral("a</S>b<S>c"));
    EXPECT_EQ(RemoveSection(QStringLiteral("abc"), QString(), QString()), QStringLiteral("abc"));
}
