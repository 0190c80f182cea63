// SPDX-License-Identifier: Apache-2.0

// The size in which messages are read.

#include "WindowTest.h"
#include "messages/MessageWindow.h"
#include "messages/PreviewPane.h"
#include "messages/controls/uMessageBasic.h"

#include <QTextBrowser>
#include <QWheelEvent>

namespace
{
class TextSizeTest : public WindowTest
{
protected:
    static uMessageBasic& ViewIn(QWidget& window) { return *window.findChild<uMessageBasic*>(); }
    static void TurnWheel(QWidget& window, int notches)
    {
        QWidget* page = window.findChild<QTextBrowser*>()->viewport();
        const QPointF middle = page->rect().center();
        QWheelEvent turn(middle, page->mapToGlobal(middle), QPoint(), QPoint(0, 120 * notches), Qt::NoButton,
                         Qt::ControlModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(page, &turn);
    }
    void Show(qint32 reference)
    {
        SelectByKeys(*Window, reference);
        ASSERT_TRUE(WaitUntil([this] { return Window->Preview().IsLoaded(); }));
    }
};
} // namespace

TEST_F(TextSizeTest, IsChosenByCtrlAndTheWheelAndRemembered)
{
    const qint32 reference = FileMail(Mail("Lighthouse"));
    OpenWindow();
    Show(reference);
    TurnWheel(Window->Preview(), 2);
    EXPECT_GT(ViewIn(Window->Preview()).TextSize(), 0);
    const int chosen = ViewIn(Window->Preview()).TextSize();
    CloseWindow();
    OpenWindow();
    EXPECT_EQ(ViewIn(Window->Preview()).TextSize(), chosen);
    Show(reference);
    TurnWheel(Window->Preview(), -4);
    EXPECT_LT(ViewIn(Window->Preview()).TextSize(), chosen);
}

TEST_F(TextSizeTest, IsOneInAllWindows)
{
    const qint32 reference = FileMail(Mail("Lighthouse"));
    OpenWindow();
    Show(reference);
    MessageWindow* const own = Window->OpenInWindow(Station.Database().GetMessage(reference));
    TurnWheel(*own, 1);
    EXPECT_EQ(ViewIn(*own).TextSize(), 1);
    EXPECT_EQ(ViewIn(Window->Preview()).TextSize(), 1);
    EXPECT_EQ(ViewIn(*Window->OpenInWindow(Station.Database().GetMessage(FileMail(Mail("Another"))))).TextSize(), 1);
}

TEST_F(TextSizeTest, HasItsLimits)
{
    Settings->SetTextSize(1000000);
    OpenWindow();
    EXPECT_EQ(ViewIn(Window->Preview()).TextSize(), 8);
}
