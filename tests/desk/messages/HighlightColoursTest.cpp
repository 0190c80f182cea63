// SPDX-License-Identifier: Apache-2.0

// Words that the station marks are read in the list and in the pane, in light and dark colours.

#include "WindowTest.h"
#include "messages/PreviewPane.h"
#include "messages/controls/uMessageBasic.h"
#include "platform/widgets/Contrast.h"
#include "platform/widgets/PageView.h"
#include "platform/widgets/SystemColour.h"
#include "window/Appearance.h"

#include <QPushButton>
#include <QTextBlock>
#include <QTextBrowser>

namespace
{
constexpr double Good = 4.5;

class HighlightColoursTest : public WindowTest, public testing::WithParamInterface<const char*>
{
protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        Appearance::Apply(QLatin1String(GetParam()));
        Station.Database().SetDatabaseSetting(QStringLiteral("Messages.HighlightWords"), QStringLiteral("lighthouse"),
                                              QString());
    }
    void TearDown() override
    {
        WindowTest::TearDown();
        Appearance::Apply(QString());
    }
    /// In General: the colour that a user chose for the marks.
    void ShowMarked(const QColor& marks)
    {
        Station.Database().SetDatabaseSetting(QStringLiteral("Messages.HighLightTextColour"),
                                              marks.red() | marks.green() << 8 | marks.blue() << 16, 0);
        Station.Database().ReadDatabaseSettings();
        FileMail(Mail("Newer"));
        const qint32 marked = FileMail("From: a@b.org\r\nSubject: MMMM\r\nDate: Fri, 20 Nov 2026 08:00:00 +0000\r\n"
                                       "Content-Type: text/html\r\n\r\n<p>The lighthouse at night</p>");
        OpenWindow();
        SelectByKeys(*Window, marked);
        ASSERT_TRUE(WaitUntil([this] { return Window->Preview().IsLoaded(); }));
        Marked = marked;
    }
    QTextBrowser& Page() { return *Window->Preview().findChild<QTextBrowser*>(QStringLiteral("pageText")); }
    /// Of the marked word, on what it lies on.
    double RatioInPane()
    {
        const QTextCursor word = Page().document()->find(QStringLiteral("lighthouse"));
        EXPECT_FALSE(word.isNull());
        const QTextCharFormat format = word.charFormat();
        EXPECT_TRUE(format.hasProperty(QTextFormat::ForegroundBrush)) << "the mark has its colour";
        return Contrast::Ratio(format.foreground().color(), Page().palette().color(QPalette::Base));
    }
    /// The best that a point of the marked row's subject reaches, without what other rows and columns paint.
    double RatioInList(const QColor& marks)
    {
        auto* grid = Window->List().findChild<FlexGrid*>(QStringLiteral("grdMessages"));
        const auto row = static_cast<int>(Window->List().References().indexOf(Marked)) + 1;
        const QImage image = grid->viewport()->grab().toImage();
        const QRect place = grid->visualRect(grid->model()->index(row - 1, 2)) & image.rect();
        const QColor ground = image.pixelColor(place.right() - 2, place.top() + 2);
        double best = 1;
        for (int y = place.top(); y < place.bottom(); ++y) {
            for (int x = place.left(); x < place.right(); ++x) {
                const QColor point = image.pixelColor(x, y);
                const bool isMark =
                    marks.red() > marks.blue() ? point.red() > point.blue() + 60 : point.blue() > point.red() + 60;
                if (isMark)
                    best = std::max(best, Contrast::Ratio(point, ground));
            }
        }
        return best;
    }

    qint32 Marked = 0;
};
} // namespace

TEST_P(HighlightColoursTest, RedMarksAreRead)
{
    const QColor red(255, 0, 0);
    ShowMarked(red);
    EXPECT_GE(RatioInPane(), Good);
    SelectByKeys(*Window, Window->List().References().at(0));
    EXPECT_GE(RatioInList(red), Good);
}

TEST_P(HighlightColoursTest, BlueMarksAreRead)
{
    const QColor blue(0, 0, 255);
    ShowMarked(blue);
    EXPECT_GE(RatioInPane(), Good);
    SelectByKeys(*Window, Window->List().References().at(0));
    EXPECT_GE(RatioInList(blue), Good);
}

TEST_P(HighlightColoursTest, MarksStayOnADarkPageAsWell)
{
    ShowMarked(QColor(160, 0, 0));
    auto* dark = Window->Preview().findChild<QPushButton*>(QStringLiteral("cmdGround"));
    ASSERT_EQ(dark->isVisible(), GetParam() == std::string("dark"));
    if (dark->isVisible())
        QTest::mouseClick(dark, Qt::LeftButton);
    EXPECT_GE(RatioInPane(), Good);
}

INSTANTIATE_TEST_SUITE_P(Colours, HighlightColoursTest, testing::Values("light", "dark"),
                         [](const auto& colours) { return std::string(colours.param); });
