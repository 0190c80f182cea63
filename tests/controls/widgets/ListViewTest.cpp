// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/ListView.h"

#include <QAbstractItemModelTester>
#include <QAccessible>
#include <QHeaderView>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

class ListViewTest : public testing::Test
{
protected:
    ListViewTest()
    {
        List.AddColumn(QStringLiteral("Name"), 2400);
        List.AddColumn(QStringLiteral("Date"), 1500);
        List.AddColumn(QStringLiteral("Number"), 900, Qt::AlignRight | Qt::AlignVCenter);
        List.resize(400, 250);
        QObject::connect(&List, &ListView::ItemClick, &List,
                         [this](const QString& key) { Told.append(QStringLiteral("click ") + key); });
        QObject::connect(&List, &ListView::ItemActivated, &List,
                         [this](const QString& key) { Told.append(QStringLiteral("activated ") + key); });
        QObject::connect(&List, &ListView::SelectedKeyChanged, &List,
                         [this](const QString& key) { Told.append(QStringLiteral("selected ") + key); });
        QObject::connect(&List, &ListView::ColumnClick, &List,
                         [this](int column) { Told.append(QStringLiteral("column %1").arg(column)); });
    }

    void AddThree()
    {
        EXPECT_TRUE(List.AddItem(QStringLiteral("b"),
                                 {QStringLiteral("Track 10"), QStringLiteral("2 May"), QStringLiteral("30")}));
        EXPECT_TRUE(List.AddItem(QStringLiteral("c"),
                                 {QStringLiteral("track 9"), QStringLiteral("11 January"), QStringLiteral("4")}));
        EXPECT_TRUE(List.AddItem(QStringLiteral("a"),
                                 {QStringLiteral("Zebra"), QStringLiteral("3 March"), QStringLiteral("200")}));
    }

    void Show()
    {
        List.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&List));
    }
    void TearDown() override { List.close(); }

    QPoint Centre(int place) const { return List.visualItemRect(List.topLevelItem(place)).center(); }
    void Click(int place, Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mouseClick(List.viewport(), button, {}, Centre(place));
    }
    void ClickHeading(int column)
    {
        const QHeaderView* header = List.header();
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                          {header->sectionViewportPosition(column) + header->sectionSize(column) / 2, 5});
    }
    QString Order() const { return List.Keys().join(QString()); }

    ListView List;
    QStringList Told;
};

TEST_F(ListViewTest, EntriesAreKnownByTheirKeysInTheOrderTheyWereAddedIn)
{
    AddThree();
    EXPECT_EQ(List.ItemCount(), 3);
    EXPECT_EQ(Order(), QStringLiteral("bca"));
    EXPECT_TRUE(List.HasItem(QStringLiteral("c")));
    EXPECT_EQ(List.SubItem(QStringLiteral("c"), 1), QStringLiteral("11 January"));
}

TEST_F(ListViewTest, AKeyThatIsThereOrEmptyAddsAndReplacesNothing)
{
    AddThree();
    EXPECT_FALSE(List.AddItem(QStringLiteral("c"), {QStringLiteral("other")}));
    EXPECT_FALSE(List.AddItem(QString(), {QStringLiteral("other")}));
    EXPECT_EQ(List.ItemCount(), 3);
    EXPECT_EQ(List.SubItem(QStringLiteral("c"), 0), QStringLiteral("track 9"));
    EXPECT_TRUE(List.AddItem(QStringLiteral("C"), {QStringLiteral("other")})) << "keys are told apart by case";
}

TEST_F(ListViewTest, AKeyThatIsNotThereReadsAsEmptyAndIgnoresBeingSet)
{
    AddThree();
    const QString none = QStringLiteral("none");
    List.SetSubItem(none, 0, QStringLiteral("lost"));
    List.SetSortValue(none, 0, 1);
    List.SetTag(none, 5);
    List.SetIcon(none, QIcon());
    List.SetSubItem(QStringLiteral("a"), 3, QStringLiteral("lost"));
    List.SetSubItem(QStringLiteral("a"), -1, QStringLiteral("lost"));
    EXPECT_EQ(List.SubItem(none, 0), QString());
    EXPECT_EQ(List.SubItem(QStringLiteral("a"), 3), QString());
    EXPECT_EQ(List.Tag(none), 0);
    EXPECT_FALSE(List.SelectKey(none));
    EXPECT_FALSE(List.RemoveItem(none));
    EXPECT_EQ(List.ItemCount(), 3);
}

TEST_F(ListViewTest, TextsAndTagsChangeByKey)
{
    AddThree();
    List.SetSubItem(QStringLiteral("a"), 2, QStringLiteral("7"));
    List.SetTag(QStringLiteral("a"), -2'000'000'000);
    EXPECT_EQ(List.SubItem(QStringLiteral("a"), 2), QStringLiteral("7"));
    EXPECT_EQ(List.Tag(QStringLiteral("a")), -2'000'000'000);
    EXPECT_EQ(List.Tag(QStringLiteral("b")), 0);
}

TEST_F(ListViewTest, ARemovedKeyIsGoneAndMayComeBack)
{
    AddThree();
    EXPECT_TRUE(List.RemoveItem(QStringLiteral("c")));
    EXPECT_EQ(Order(), QStringLiteral("ba"));
    EXPECT_FALSE(List.HasItem(QStringLiteral("c")));
    EXPECT_TRUE(List.AddItem(QStringLiteral("c"), {QStringLiteral("again")}));
    EXPECT_EQ(Order(), QStringLiteral("bac"));
}

TEST_F(ListViewTest, ClearingTakesTheEntriesAndLeavesTheColumns)
{
    AddThree();
    List.SelectKey(QStringLiteral("a"));
    Told.clear();
    List.Clear();
    EXPECT_EQ(List.ItemCount(), 0);
    EXPECT_EQ(List.ColumnCount(), 3);
    EXPECT_EQ(List.SelectedKey(), QString());
    EXPECT_EQ(Told, QStringList{QStringLiteral("selected ")});
    AddThree();
    EXPECT_EQ(Order(), QStringLiteral("bca"));
}

TEST_F(ListViewTest, ColumnsHaveTheirHeadingWidthAndAlignment)
{
    AddThree();
    EXPECT_EQ(List.headerItem()->text(2), QStringLiteral("Number"));
    EXPECT_EQ(List.columnWidth(0), 160);
    EXPECT_EQ(List.columnWidth(1), 100);
    EXPECT_EQ(List.topLevelItem(0)->data(2, Qt::TextAlignmentRole).toInt(), Qt::AlignRight | Qt::AlignVCenter);
    EXPECT_EQ(List.AddColumn(QStringLiteral("Key"), 0), 3);
    EXPECT_TRUE(List.isColumnHidden(3));
}

TEST_F(ListViewTest, SelectingByKeyTellsOfTheSelectionButOfNoClick)
{
    AddThree();
    Show();
    EXPECT_EQ(List.SelectedKey(), QString());
    EXPECT_TRUE(List.SelectKey(QStringLiteral("c")));
    EXPECT_TRUE(List.SelectKey(QStringLiteral("c")));
    EXPECT_EQ(List.SelectedKey(), QStringLiteral("c"));
    EXPECT_TRUE(List.SelectKey(QString()));
    EXPECT_EQ(List.SelectedKey(), QString());
    EXPECT_EQ(Told, (QStringList{QStringLiteral("selected c"), QStringLiteral("selected ")}));
}

TEST_F(ListViewTest, SelectingByKeyScrollsToTheEntry)
{
    for (int i = 0; i < 200; ++i)
        List.AddItem(QString::number(i), {QStringLiteral("Entry %1").arg(i)});
    Show();
    List.SelectKey(QStringLiteral("150"));
    EXPECT_TRUE(List.viewport()->rect().contains(Centre(150)));
}

TEST_F(ListViewTest, AClickSelectsAndIsTold)
{
    AddThree();
    Show();
    Click(1);
    EXPECT_EQ(Told, (QStringList{QStringLiteral("selected c"), QStringLiteral("click c")}));
    Told.clear();
    Click(1);
    EXPECT_EQ(Told, (QStringList{QStringLiteral("click c")}));
    Told.clear();
    QTest::mouseClick(List.viewport(), Qt::LeftButton, Qt::ControlModifier, Centre(1));
    EXPECT_EQ(List.SelectedKey(), QStringLiteral("c"));
    QTest::mouseClick(List.viewport(), Qt::LeftButton, {}, {50, 200});
    EXPECT_EQ(List.SelectedKey(), QStringLiteral("c")) << "the empty space below changes nothing";
}

/// Scrolling to the entry is the last that is done with it: whoever hears of it may fill the list anew.
TEST_F(ListViewTest, SelectingByKeyIsToldWhenItIsDone)
{
    for (int i = 0; i < 100; ++i)
        List.AddItem(QString::number(i), {QString::number(i)});
    Show();
    bool isSeen = false;
    QObject::connect(&List, &ListView::SelectedKeyChanged, &List,
                     [&](const QString& key) { isSeen = List.viewport()->rect().contains(Centre(key.toInt())); });
    List.SelectKey(QStringLiteral("90"));
    EXPECT_TRUE(isSeen);
}

TEST_F(ListViewTest, WhoeverHearsOfASelectionMayFillTheListAnew)
{
    AddThree();
    Show();
    int times = 0;
    QObject::connect(&List, &ListView::SelectedKeyChanged, &List, [&](const QString& key) {
        if (key.isEmpty())
            return;
        ++times;
        List.Clear();
        AddThree();
    });
    Click(1);
    EXPECT_TRUE(List.SelectKey(QStringLiteral("b")));
    QTest::keyClick(&List, Qt::Key_End);
    EXPECT_GE(times, 2);
    EXPECT_EQ(List.Keys(), (QStringList{QStringLiteral("b"), QStringLiteral("c"), QStringLiteral("a")}));
}

TEST_F(ListViewTest, ADoubleClickActivates)
{
    AddThree();
    Show();
    Click(2);
    Told.clear();
    QTest::mouseDClick(List.viewport(), Qt::LeftButton, {}, Centre(2));
    EXPECT_EQ(Told.count(QStringLiteral("activated a")), 1);
}

TEST_F(ListViewTest, KeysMoveTheSelectionAndEnterActivates)
{
    AddThree();
    Show();
    List.SelectKey(QStringLiteral("b"));
    Told.clear();
    QTest::keyClick(&List, Qt::Key_Down);
    QTest::keyClick(&List, Qt::Key_End);
    QTest::keyClick(&List, Qt::Key_Down);
    QTest::keyClick(&List, Qt::Key_Return);
    EXPECT_EQ(Told, (QStringList{QStringLiteral("selected c"), QStringLiteral("click c"), QStringLiteral("selected a"),
                                 QStringLiteral("click a"), QStringLiteral("activated a")}));
}

TEST_F(ListViewTest, EnterIsKeptFromTheWindowOnlyWhenItActivatesSomething)
{
    class Parent : public QWidget
    {
    public:
        void keyPressEvent(QKeyEvent*) override { ++Keys; }
        int Keys = 0;
    };
    Parent parent;
    auto* list = new ListView(&parent);
    list->AddColumn(QStringLiteral("Name"), 900);
    list->AddItem(QStringLiteral("a"), {QStringLiteral("A")});
    QTest::keyClick(list, Qt::Key_Enter);
    EXPECT_EQ(parent.Keys, 1);
    list->SelectKey(QStringLiteral("a"));
    QTest::keyClick(list, Qt::Key_Enter);
    EXPECT_EQ(parent.Keys, 1);
}

TEST_F(ListViewTest, AHeadingSortsNaturallyAndASecondClickTurnsTheOrder)
{
    AddThree();
    Show();
    ClickHeading(0);
    EXPECT_EQ(Order(), QStringLiteral("cba"));
    ClickHeading(0);
    EXPECT_EQ(Order(), QStringLiteral("abc"));
    ClickHeading(2);
    EXPECT_EQ(Order(), QStringLiteral("cba")) << "4, 30, 200";
    EXPECT_EQ(Told, (QStringList{QStringLiteral("column 0"), QStringLiteral("column 0"), QStringLiteral("column 2")}));
}

TEST_F(ListViewTest, SortValuesGoBeforeTexts)
{
    AddThree();
    List.SetSortValue(QStringLiteral("b"), 1, 20260502.0);
    List.SetSortValue(QStringLiteral("c"), 1, 20260111.0);
    Show();
    ClickHeading(1);
    EXPECT_EQ(Order(), QStringLiteral("cba")) << "the one without a value comes last";
    List.SetSortValue(QStringLiteral("a"), 1, 20250303.0);
    EXPECT_EQ(Order(), QStringLiteral("acb")) << "and finds its place as soon as it has one";
    EXPECT_TRUE(List.AddItem(QStringLiteral("d"), {QStringLiteral("New"), QStringLiteral("none")}));
    EXPECT_EQ(Order(), QStringLiteral("acbd"));
}

TEST_F(ListViewTest, TheSelectionStaysWithItsEntryWhenTheListIsSorted)
{
    AddThree();
    Show();
    List.SelectKey(QStringLiteral("b"));
    Told.clear();
    ClickHeading(0);
    EXPECT_EQ(List.SelectedKey(), QStringLiteral("b"));
    EXPECT_EQ(Told, QStringList{QStringLiteral("column 0")});
}

TEST_F(ListViewTest, TheModelKeepsItsPromises)
{
    const QAbstractItemModelTester tester(List.model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    AddThree();
    List.sortByColumn(0, Qt::AscendingOrder);
    List.SetSubItem(QStringLiteral("a"), 0, QStringLiteral("Aardvark"));
    EXPECT_EQ(Order(), QStringLiteral("acb"));
    List.RemoveItem(QStringLiteral("c"));
    List.Clear();
    EXPECT_EQ(List.ItemCount(), 0);
}

TEST_F(ListViewTest, AScreenReaderHearsTheNameAndTheWholeEntry)
{
    AddThree();
    List.setAccessibleName(QStringLiteral("Templates"));
    Show();
    QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(&List);
    ASSERT_NE(interface, nullptr);
    EXPECT_EQ(interface->text(QAccessible::Name), QStringLiteral("Templates"));
    QAccessibleTableInterface* table = interface->tableInterface();
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->cellAt(0, 0)->text(QAccessible::Name), QStringLiteral("Track 10, 2 May, 30"));
    EXPECT_EQ(table->cellAt(0, 1)->text(QAccessible::Name), QStringLiteral("2 May"));
    EXPECT_EQ(table->columnDescription(1), QStringLiteral("Date"));
}
