// SPDX-License-Identifier: Apache-2.0

// The notice that a backup is under way.

#include "database/dialogs/frmHandler.h"

#include "common/dialogs/DialogUserInterface.h"
#include "platform/widgets/Panel3.h"
#include "platform/widgets/Twips.h"

#include <QApplication>
#include <QLabel>
#include <QScreen>
#include <QTest>
#include <QWindow>

#include <gtest/gtest.h>

namespace
{
/// Counts how often a widget was painted.
class PaintCount final : public QObject
{
public:
    explicit PaintCount(QWidget& widget) { widget.installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* event) override
    {
        Count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
    int Count = 0;
};

frmHandler* Notice()
{
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (auto* const notice = qobject_cast<frmHandler*>(window))
            return notice;
    }
    return nullptr;
}
} // namespace

class frmHandlerTest : public testing::Test
{
protected:
    Panel3& OK() { return *Form.findChild<Panel3*>(QStringLiteral("pnlOK")); }

    frmHandler Form;
};

TEST_F(frmHandlerTest, ItSaysWhatIsGoingOn)
{
    const auto* const label = Form.findChild<QLabel*>(QStringLiteral("lblBackingUpDesc"));
    ASSERT_NE(label, nullptr);
    EXPECT_EQ(label->text(), QStringLiteral("Tolva is automatically creating a backup of your database"));
    EXPECT_EQ(OK().Caption(), QStringLiteral("OK"));
    Form.ShowNotice();
    // Nothing is cut off.
    EXPECT_GE(label->width(), label->sizeHint().width());
    Form.hide();
}

TEST_F(frmHandlerTest, ItStandsInTheBottomRightCornerAboveTheTaskBar)
{
    Form.ShowNotice();
    const QRect screen = Form.screen()->geometry();
    const QRect place = Form.frameGeometry();
    EXPECT_EQ(screen.right() - place.right(), Twips::ToPixels(Form, 60));
    EXPECT_EQ(screen.bottom() - place.bottom(), Twips::ToPixels(Form, 410));
    Form.hide();
}

TEST_F(frmHandlerTest, ItAsksForAPlaceAboveTheOthersWithoutTheFocus)
{
    Form.ShowNotice();
    const Qt::WindowFlags flags = Form.windowHandle()->flags();
    EXPECT_TRUE(flags.testFlag(Qt::WindowStaysOnTopHint));
    EXPECT_TRUE(flags.testFlag(Qt::WindowDoesNotAcceptFocus));
    EXPECT_TRUE(flags.testFlag(Qt::FramelessWindowHint));
    EXPECT_TRUE(Form.testAttribute(Qt::WA_ShowWithoutActivating));
    EXPECT_FALSE(Form.testAttribute(Qt::WA_QuitOnClose));
    Form.hide();
}

TEST_F(frmHandlerTest, ItsTextIsOnTheScreenBeforeTheCopyBegins)
{
    PaintCount painted(*Form.findChild<QLabel*>(QStringLiteral("lblBackingUpDesc")));
    for (int time = 1; time <= 2; ++time) {
        const int before = painted.Count;
        Form.ShowNotice();
        // No event loop runs from here on until the copy yields.
        EXPECT_GT(painted.Count, before);
        EXPECT_TRUE(Form.isVisible());
        Form.hide();
    }
}

TEST_F(frmHandlerTest, TheBevelGoesInOnPressingAndOutOnRelease)
{
    Form.ShowNotice();
    EXPECT_EQ(OK().Bevel(), Panel3::RaisedBevel);
    const QImage out = OK().grab().toImage();
    QTest::mousePress(&OK(), Qt::LeftButton);
    EXPECT_EQ(OK().Bevel(), Panel3::InsetBevel);
    EXPECT_NE(OK().grab().toImage(), out);
    EXPECT_TRUE(Form.isVisible());
    QTest::mouseRelease(&OK(), Qt::LeftButton);
    EXPECT_EQ(OK().Bevel(), Panel3::RaisedBevel);
    EXPECT_EQ(OK().grab().toImage(), out);
    EXPECT_FALSE(Form.isVisible());
}

TEST_F(frmHandlerTest, LettingGoElsewhereAndTheOtherButtonLeaveItUp)
{
    Form.ShowNotice();
    QTest::mousePress(&OK(), Qt::LeftButton);
    QTest::mouseRelease(&OK(), Qt::LeftButton, Qt::NoModifier, QPoint(-20, 5));
    EXPECT_EQ(OK().Bevel(), Panel3::RaisedBevel);
    EXPECT_TRUE(Form.isVisible());
    QTest::mouseClick(&OK(), Qt::RightButton);
    EXPECT_EQ(OK().Bevel(), Panel3::RaisedBevel);
    EXPECT_TRUE(Form.isVisible());
    Form.hide();
}

TEST(BackupNoticeTest, TheUserInterfaceShowsAndHidesIt)
{
    DialogUserInterface dialogs;
    dialogs.SetBackupNotice(false);
    dialogs.SetBackupNotice(true);
    ASSERT_NE(Notice(), nullptr);
    EXPECT_TRUE(Notice()->isVisible());
    dialogs.SetBackupNotice(true);
    EXPECT_TRUE(Notice()->isVisible());
    dialogs.SetBackupNotice(false);
    EXPECT_FALSE(Notice()->isVisible());
}

TEST(BackupNoticeTest, ItIsPaintedAnewWhileTheCopyYields)
{
    DialogUserInterface dialogs;
    dialogs.SetBackupNotice(true);
    ASSERT_NE(Notice(), nullptr);
    auto* const label = Notice()->findChild<QLabel*>(QStringLiteral("lblBackingUpDesc"));
    PaintCount painted(*label);
    // Something that lay over it went.
    label->update();
    dialogs.Yield();
    EXPECT_GT(painted.Count, 0);
    dialogs.SetBackupNotice(false);
}

TEST(BackupNoticeTest, ItGoesWithTheUserInterface)
{
    {
        DialogUserInterface dialogs;
        dialogs.SetBackupNotice(true);
    }
    EXPECT_EQ(Notice(), nullptr);
}
