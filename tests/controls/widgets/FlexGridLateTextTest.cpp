// SPDX-License-Identifier: Apache-2.0

// Texts of a row that are made when somebody asks for them.

#include "platform/widgets/FlexGridModel.h"
#include "widgets/FlexGridFixture.h"

namespace
{
/// A subject and, where it has one, a sender.
class CountedTexts : public LateTexts
{
public:
    CountedTexts(const QString& subject, const QString& sender, QStringList& made)
        : Subject_(subject), Sender_(sender), Made_(made)
    {
    }
    void Make(const Set& set) const override
    {
        Made_.append(Subject_);
        set(2, Subject_);
        if (!Sender_.isNull())
            set(3, Sender_);
    }

private:
    QString Subject_;
    QString Sender_;
    QStringList& Made_;
};
} // namespace

class FlexGridLateTextTest : public FlexGridFixture
{
protected:
    void SetLate(int row, const QString& subject, const QString& sender = QStringLiteral("Ann"))
    {
        Grid.SetLateTexts(row, 2, std::make_unique<CountedTexts>(subject, sender, Made));
    }
    QString Subject(int row) const { return Grid.TextMatrix(row, 2); }

    QStringList Made;
};

TEST_F(FlexGridLateTextTest, AreMadeOnceWhenSomebodyAsksForAnyOfThem)
{
    Fill(2);
    SetLate(1, QStringLiteral("One"));
    SetLate(2, QStringLiteral("Two"));
    EXPECT_EQ(Grid.TextMatrix(2, 0), QStringLiteral("1002"));
    EXPECT_EQ(Made, QStringList());
    EXPECT_EQ(Grid.TextMatrix(2, 3), QStringLiteral("Ann"));
    EXPECT_EQ(Subject(2), QStringLiteral("Two"));
    EXPECT_EQ(Made, QStringList{QStringLiteral("Two")});
    EXPECT_EQ(Subject(1), QStringLiteral("One"));
}

TEST_F(FlexGridLateTextTest, OfRowsThatAreNotInViewAreNotMade)
{
    Fill(1000);
    for (int row = 1; row <= 1000; ++row)
        SetLate(row, QString::number(row));
    Show();
    Grid.viewport()->repaint();
    EXPECT_GT(Made.size(), 0);
    EXPECT_LT(Made.size(), 50);
    EXPECT_TRUE(Made.contains(QStringLiteral("1")));
    Grid.SetTopRow(500);
    Grid.viewport()->repaint();
    EXPECT_TRUE(Made.contains(QStringLiteral("500")));
    EXPECT_LT(Made.size(), 100);
}

TEST_F(FlexGridLateTextTest, GiveWayToOthersAndLeaveTheCellsTheyDoNotSet)
{
    Fill(1);
    Grid.SetTextMatrix(1, 3, QStringLiteral("Bea"));
    SetLate(1, QStringLiteral("One"));
    SetLate(1, QStringLiteral("Two"), QString());
    EXPECT_EQ(Subject(1), QStringLiteral("Two"));
    EXPECT_EQ(Grid.TextMatrix(1, 3), QStringLiteral("Bea"));
    EXPECT_EQ(Made, QStringList{QStringLiteral("Two")});
}

TEST_F(FlexGridLateTextTest, ATextSetBehindThemStays)
{
    Fill(1);
    SetLate(1, QStringLiteral("One"));
    Grid.SetTextMatrix(1, 2, QStringLiteral("Changed"));
    EXPECT_EQ(Subject(1), QStringLiteral("Changed"));
    EXPECT_EQ(Grid.TextMatrix(1, 3), QStringLiteral("Ann"));
}

TEST_F(FlexGridLateTextTest, GoWithTheirRow)
{
    Fill(3);
    SetLate(1, QStringLiteral("One"));
    SetLate(3, QStringLiteral("Three"));
    Grid.SetRedraw(false);
    Grid.ArrangeRows({2, -1, 0});
    Grid.SetRedraw(true);
    EXPECT_EQ(Subject(1), QStringLiteral("Three"));
    EXPECT_EQ(Subject(2), QString());
    EXPECT_EQ(Subject(3), QStringLiteral("One"));
    SetLate(3, QStringLiteral("Lost"));
    Grid.SetRows(3);
    Grid.SetRows(4);
    EXPECT_EQ(Subject(3), QString());
    EXPECT_FALSE(Made.contains(QStringLiteral("Lost")));
}

TEST_F(FlexGridLateTextTest, OutsideTheTableAreIgnored)
{
    Fill(1);
    SetLate(2, QStringLiteral("Lost"));
    SetLate(0, QStringLiteral("Lost"));
    EXPECT_EQ(Subject(0), QStringLiteral("Subject"));
    EXPECT_EQ(Made, QStringList());
}
