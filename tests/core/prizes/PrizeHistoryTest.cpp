// SPDX-License-Identifier: Apache-2.0

// What prizes have to do with one contact.

#include "common/ListViewObject.h"
#include "core/prizes/PrizeTest.h"

#include <QSet>

namespace
{
class FakeListView : public ListViewObject
{
public:
    explicit FakeListView(const QStringList& columns) : Columns_(columns) {}
    QString TypeName() const override { return Type; }
    int ColumnCount() const override { return static_cast<int>(Columns_.size()); }
    QString ColumnKey(int column) const override { return Columns_.at(column); }
    void ClearItems() override
    {
        Items.clear();
        Keys_.clear();
    }
    bool AddListItem(const QString& key, const QStringList& texts, const QVariantList& sortValues) override
    {
        EXPECT_EQ(texts.size(), Columns_.size());
        if (!key.isEmpty() && Keys_.contains(key))
            return false;
        Keys_.insert(key);
        Items.append(key + u':' + texts.join(u'|'));
        SortValues.append(sortValues);
        return true;
    }

    QString Type = QStringLiteral("ListView");
    QStringList Items;
    QList<QVariantList> SortValues;

private:
    QStringList Columns_;
    QSet<QString> Keys_;
};

class PrizeHistoryTest : public PrizeTest
{
protected:
    QStringList Fill(const QStringList& columns, qint32 contact)
    {
        FakeListView list(columns);
        list.Items.append(QStringLiteral("old"));
        Station->FillPrizesListView(&list, contact);
        list.Items.sort();
        return list.Items;
    }
    qint32 Supply(const QString& title, qint32 supplier, qint32 units = 5)
    {
        const cPrizePtr prize = MakePrize(title, units);
        prize->SetSupplierReference(supplier);
        EXPECT_TRUE(Station->SavePrize(prize));
        return prize->Reference();
    }
    const QStringList TitleAndRole{QStringLiteral("Title"), QStringLiteral("FOLDER")};
};
} // namespace

TEST_F(PrizeHistoryTest, AWinnerSeesTheTitleAndTheRole)
{
    const qint32 prize = Supply(QStringLiteral("Tickets"), 20);
    Award(prize, 11);
    Award(prize, 12);
    Supply(QStringLiteral("Mug"), 21);
    EXPECT_EQ(Fill(TitleAndRole, 11), QStringList{QStringLiteral("w1:Tickets|Winner")});
}

TEST_F(PrizeHistoryTest, TheRoleOfAWinnerGoesBeforeThatOfAnAwarderAndASupplier)
{
    const qint32 own = Supply(QStringLiteral("Own"), 11);
    Award(own, 11);
    const qint32 awarded = Supply(QStringLiteral("Awarded"), 7);
    Award(awarded, 12);
    EXPECT_EQ(Fill(TitleAndRole, 11), QStringList{QStringLiteral("w1:Own|Winner")});
    // User 7 awarded both, and supplied the second.
    EXPECT_EQ(Fill(TitleAndRole, 7),
              (QStringList{QStringLiteral("w1:Own|Awarder"), QStringLiteral("w2:Awarded|Awarder")}));
}

TEST_F(PrizeHistoryTest, ASupplierSeesAPrizeOnceHoweverManyWonIt)
{
    const qint32 prize = Supply(QStringLiteral("Tickets"), 20);
    Award(prize, 11);
    Award(prize, 12);
    Supply(QStringLiteral("Mug"), 20);
    EXPECT_EQ(Fill(TitleAndRole, 20),
              (QStringList{QStringLiteral("p1:Tickets|Supplier"), QStringLiteral("p2:Mug|Supplier")}));
}

TEST_F(PrizeHistoryTest, WithoutAContactAllPrizesAreListedWithAllTheirWinners)
{
    const qint32 prize = Supply(QStringLiteral("Tickets"), 20);
    Award(prize, 11);
    Award(prize, 12);
    Supply(QStringLiteral("Mug"), 20);
    const QStringList all{QStringLiteral("p2:Mug"), QStringLiteral("w1:Tickets"), QStringLiteral("w2:Tickets")};
    EXPECT_EQ(Fill({QStringLiteral("Title")}, 0), all);
    EXPECT_EQ(Fill({QStringLiteral("Title")}, -5), all);
}

TEST_F(PrizeHistoryTest, ColumnsAreFieldsInAnyCaseAndUnknownOnesStayEmpty)
{
    const qint32 prize = Supply(QStringLiteral("Tickets"), 20);
    Now.SetUtc(QDateTime(QDate(2026, 7, 1), QTime(12, 0, 0), Qt::UTC));
    Award(prize, 11);
    // A date is the local one, none is empty; the role in the first column would be a field of that name.
    EXPECT_EQ(Fill({QStringLiteral("FOLDER"), QStringLiteral("folder"), QStringLiteral("WONDATE"),
                    QStringLiteral("SentDate"), QStringLiteral("Prizes.Reference"), QStringLiteral("Nonsense"),
                    QStringLiteral("WinnerReference"), QString()},
                   11),
              QStringList{QStringLiteral("w1:|Winner|01/07/2026 13:00:00||1||11|")});
}

TEST_F(PrizeHistoryTest, DatesAndNumbersSortByTheirValues)
{
    const qint32 prize = Supply(QStringLiteral("Tickets"), 20);
    Award(prize, 11);
    FakeListView list({QStringLiteral("Title"), QStringLiteral("WonDate"), QStringLiteral("WinnerReference")});
    Station->FillPrizesListView(&list, 11);
    ASSERT_EQ(list.SortValues.size(), 1);
    EXPECT_FALSE(list.SortValues.first().at(0).isValid());
    EXPECT_DOUBLE_EQ(list.SortValues.first().at(1).toDouble(), Date(2026, 11, 21, 14, 5, 9).DayNumber());
    EXPECT_EQ(list.SortValues.first().at(2).toInt(), 11);
}

TEST_F(PrizeHistoryTest, WhatIsNoListViewStaysUntouched)
{
    Award(Supply(QStringLiteral("Tickets"), 20), 11);
    FakeListView list({QStringLiteral("Title")});
    list.Type = QStringLiteral("TreeView");
    list.Items = QStringList{QStringLiteral("old")};
    Station->FillPrizesListView(&list, 11);
    EXPECT_EQ(list.Items, QStringList{QStringLiteral("old")});
    FakeListView without({});
    without.Items = QStringList{QStringLiteral("old")};
    Station->FillPrizesListView(&without, 11);
    EXPECT_EQ(without.Items, QStringList{QStringLiteral("old")});
    Station->FillPrizesListView(nullptr, 11);
    Station->CloseTolvaDatabase();
    list.Type = QStringLiteral("ListView");
    Station->FillPrizesListView(&list, 11);
    EXPECT_EQ(list.Items, QStringList{QStringLiteral("old")});
}

TEST_F(PrizeHistoryTest, OnlyWinsAreCounted)
{
    const qint32 prize = Supply(QStringLiteral("Tickets"), 20);
    Award(prize, 11);
    Award(prize, 11);
    Award(prize, 12);
    EXPECT_EQ(Station->GetNumberWinsForContact(11), 2);
    EXPECT_EQ(Station->GetNumberWinsForContact(12), 1);
    EXPECT_EQ(Station->GetNumberWinsForContact(20), 0); // the supplier
    EXPECT_EQ(Station->GetNumberWinsForContact(7), 0);  // who awarded them
    EXPECT_EQ(Station->GetNumberWinsForContact(0), -1);
    EXPECT_EQ(Station->GetNumberWinsForContact(-1), -1);
    Station->CloseTolvaDatabase();
    EXPECT_EQ(Station->GetNumberWinsForContact(11), -1);
}

TEST_F(PrizeHistoryTest, WithoutAContactAPrizeThatNobodyWonHasNoWinner)
{
    Supply(QStringLiteral("Mug"), 20);
    EXPECT_EQ(Fill(TitleAndRole, 0), QStringList{QStringLiteral("p1:Mug|")});
    const qint32 prize = Supply(QStringLiteral("Tickets"), 20);
    Award(prize, 11);
    EXPECT_EQ(Fill(TitleAndRole, 0), (QStringList{QStringLiteral("p1:Mug|"), QStringLiteral("w1:Tickets|")}));
    EXPECT_EQ(Fill(TitleAndRole, -5), (QStringList{QStringLiteral("p1:Mug|"), QStringLiteral("w1:Tickets|")}));
}

TEST_F(PrizeHistoryTest, AnAwarderWhoSuppliedAnotherPrizeSeesBoth)
{
    Supply(QStringLiteral("Mug"), 7);
    Award(Supply(QStringLiteral("Tickets"), 20), 11);
    EXPECT_EQ(Fill(TitleAndRole, 7),
              (QStringList{QStringLiteral("p1:Mug|Supplier"), QStringLiteral("w1:Tickets|Awarder")}));
    EXPECT_TRUE(Fill(TitleAndRole, 99).isEmpty());
}
