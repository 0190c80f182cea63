// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/PropertyBag.h"
#include "platform/widgets/SystemColour.h"
#include "platform/widgets/TabStrip.h"
#include "platform/widgets/Twips.h"
#include "prizes/PrizesListTest.h"

#include <QPushButton>
#include <QSignalSpy>

class PrizesListPropertiesTest : public PrizesListTest
{
};

TEST_F(PrizesListPropertiesTest, BeginsWithTheDefaults)
{
    EXPECT_TRUE(List->DoubleHeightRows());
    EXPECT_TRUE(List->DisplayNewPrize());
    EXPECT_TRUE(List->PrintVisible());
    EXPECT_TRUE(List->AutoUpdate());
    EXPECT_EQ(List->AutoUpdateInterval(), 10);
    EXPECT_EQ(List->BackColour(), SystemColour::ButtonFace);
    EXPECT_EQ(List->NumberItems(), 0);
    EXPECT_EQ(List->SelectedReference(), 0);
    PropertyBag bag;
    List->WriteProperties(bag);
    EXPECT_TRUE(bag.Values().isEmpty());
}

TEST_F(PrizesListPropertiesTest, TheIntervalIsLimitedAndNoneStopsThePolling)
{
    List->SetAutoUpdateInterval(90);
    EXPECT_EQ(List->AutoUpdateInterval(), 60);
    EXPECT_EQ(Timer().interval(), 60000);
    List->SetAutoUpdateInterval(2.5F);
    EXPECT_EQ(Timer().interval(), 2500);
    EXPECT_TRUE(Timer().isActive());
    List->SetAutoUpdateInterval(0);
    EXPECT_EQ(Timer().interval(), 0);
    EXPECT_FALSE(Timer().isActive());
    List->SetAutoUpdateInterval(-4);
    EXPECT_EQ(List->AutoUpdateInterval(), 0);
}

TEST_F(PrizesListPropertiesTest, PollingIsSwitched)
{
    List->SetAutoUpdate(false);
    EXPECT_FALSE(Timer().isActive());
    Attach();
    List->UpdateDisplay();
    EXPECT_FALSE(Timer().isActive());
    List->SetAutoUpdate(true);
    EXPECT_TRUE(Timer().isActive());
}

TEST_F(PrizesListPropertiesTest, PrintingAndNewPrizesAreHidden)
{
    Attach();
    const int wide = Box->width();
    List->SetPrintVisible(false);
    EXPECT_FALSE(Entry("mnuPrint").isVisible());
    EXPECT_FALSE(Entry("mnuPrintSep").isVisible());
    List->SetDisplayNewPrize(false);
    EXPECT_FALSE(Child<QPushButton>("cmdNewPrize").isVisible());
    EXPECT_FALSE(Entry("mnuPrizeNewPrize").isVisible());
    EXPECT_FALSE(Entry("mnuPrizeNewPrizeSep").isVisible());
    EXPECT_GT(Box->width(), wide);
}

TEST_F(PrizesListPropertiesTest, AHostsBagGivesThemBack)
{
    List->SetPrintVisible(false);
    List->SetBackColour(255);
    List->SetDoubleHeightRows(false);
    List->SetDisplayNewPrize(false);
    List->SetAutoUpdate(false);
    List->SetAutoUpdateInterval(20);
    QFont font = List->Font();
    font.setPointSize(font.pointSize() + 4);
    List->SetFont(font);
    PropertyBag bag;
    List->WriteProperties(bag);
    EXPECT_EQ(bag.Values().size(), 7);
    uPrizesList other;
    other.ReadProperties(bag);
    EXPECT_FALSE(other.PrintVisible());
    EXPECT_EQ(other.BackColour(), 255);
    EXPECT_FALSE(other.DoubleHeightRows());
    EXPECT_FALSE(other.DisplayNewPrize());
    EXPECT_FALSE(other.AutoUpdate());
    EXPECT_EQ(other.AutoUpdateInterval(), 20);
    EXPECT_EQ(other.Font(), font);
    EXPECT_EQ(other.findChild<FlexGrid*>(QStringLiteral("grdPrizes"))->font().pointSize(), font.pointSize());
    other.ReadProperties(PropertyBag());
    EXPECT_TRUE(other.PrintVisible());
    EXPECT_EQ(other.AutoUpdateInterval(), 10);
    EXPECT_EQ(other.BackColour(), SystemColour::ButtonFace);
}

TEST_F(PrizesListPropertiesTest, EachSetterTellsItsContainer)
{
    QStringList keys;
    QObject::connect(List.get(), &uPrizesList::PropertyChanged, List.get(),
                     [&](const QString& key) { keys.append(key); });
    List->SetDoubleHeightRows(true);
    List->SetDisplayNewPrize(true);
    List->SetPrintVisible(true);
    List->SetBackColour(SystemColour::ButtonFace);
    List->SetFont(List->Font());
    List->SetAutoUpdateInterval(10);
    List->SetAutoUpdate(true);
    EXPECT_EQ(keys, QStringList({QStringLiteral("DoubleHeightRows"), QStringLiteral("DisplayNewPrize"),
                                 QStringLiteral("PrintVisible"), QStringLiteral("BackColour"), QStringLiteral("Font"),
                                 QStringLiteral("AutoUpdateInterval"), QStringLiteral("AutoUpdate")}));
}

TEST_F(PrizesListPropertiesTest, BothFramesTakeTheBackColour)
{
    List->SetBackColour(255);
    for (const char* name : {"tbsCategories", "tbsPrizes"})
        EXPECT_EQ(Child<TabStrip>(name).palette().color(QPalette::Window), QColor(255, 0, 0));
}

TEST_F(PrizesListPropertiesTest, TheTitleTakesTheGridsWidth)
{
    Attach();
    const double width = Twips::FromPixels(*Grid, Grid->width());
    EXPECT_NEAR(Grid->ColWidth(1), width - 90, 1);
    List->resize(1200, 600);
    EXPECT_GT(Twips::FromPixels(*Grid, Grid->width()), width);
    EXPECT_NEAR(Grid->ColWidth(1), Twips::FromPixels(*Grid, Grid->width()) - 90, 1);
}

TEST_F(PrizesListPropertiesTest, WherePeopleReadFromRightToLeftThePanesChangeSides)
{
    Attach();
    const QRect tree = Child<QWidget>("tbsCategories").geometry();
    EXPECT_EQ(tree.left(), 0);
    List->setLayoutDirection(Qt::RightToLeft);
    EXPECT_EQ(Child<QWidget>("tbsCategories").geometry().right(), List->width() - 1);
    EXPECT_EQ(Child<QWidget>("picPrizes").x(), 0);
    EXPECT_EQ(Child<QWidget>("cmdNewPrize").x(), 0);
    const QRect box(Box->mapTo(List.get(), QPoint()), Box->size());
    EXPECT_FALSE(box.intersects(Child<QWidget>("cmdNewPrize").geometry()));
}
