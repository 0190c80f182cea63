// SPDX-License-Identifier: Apache-2.0
#include "prizes/controls/WeekHours.h"

#include "prizes/cPrize.h"
#include "support/Print.h"

#include <QAbstractItemModelTester>
#include <QAccessible>
#include <QHeaderView>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace
{
const QString All = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWX");
const QString None = QString(24, u' ');
} // namespace

/// A week on a window of its own, all off, with the focus.
class WeekHoursTest : public testing::Test
{
protected:
    WeekHoursTest() : Changes(&Week, &WeekHours::HoursChanged)
    {
        Set(QList<QString>(7, None));
        Week.resize(Week.sizeHint());
        Week.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&Week));
        Week.setFocus();
    }
    ~WeekHoursTest() override { Week.close(); }

    void Set(const QList<QString>& days)
    {
        WeekOfHours hours;
        for (qsizetype i = 0; i < days.size(); ++i)
            hours.at(static_cast<std::size_t>(i)) = days.at(i);
        Week.SetHours(hours);
    }
    QString Day(int weekDay) const { return Week.Hours().at(static_cast<std::size_t>(weekDay - 1)); }
    /// weekDay from 1.
    QPoint Cell(int weekDay, int hour) const
    {
        return Week.visualRect(Week.model()->index(weekDay - 1, hour)).center();
    }
    void Press(QPoint at) { QTest::mousePress(Week.viewport(), Qt::LeftButton, {}, at); }
    void MoveTo(QPoint at)
    {
        QMouseEvent move(QEvent::MouseMove, at, Week.viewport()->mapToGlobal(at), Qt::NoButton, Qt::LeftButton,
                         Qt::NoModifier);
        QCoreApplication::sendEvent(Week.viewport(), &move);
    }
    void Release(QPoint at) { QTest::mouseRelease(Week.viewport(), Qt::LeftButton, {}, at); }
    void Click(QPoint at)
    {
        Press(at);
        Release(at);
    }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(&Week, key, modifiers); }
    void ClickHeading(QHeaderView& header, int section)
    {
        const int middle = header.sectionViewportPosition(section) + header.sectionSize(section) / 2;
        const QPoint at = header.orientation() == Qt::Horizontal ? QPoint(middle, header.height() / 2)
                                                                 : QPoint(header.width() / 2, middle);
        QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, at);
    }
    QString CurrentText() const { return Week.currentIndex().data(Qt::AccessibleTextRole).toString(); }

    WeekHours Week;
    QSignalSpy Changes;
};

TEST_F(WeekHoursTest, BeginsWithAllHoursAndKeepsToTheRulesOfModels)
{
    const WeekHours fresh;
    EXPECT_EQ(fresh.Words(), QStringLiteral("at any time"));
    const QAbstractItemModelTester tester(Week.model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    Click(Cell(1, 0));
    EXPECT_EQ(Week.model()->rowCount(), 7);
    EXPECT_EQ(Week.model()->columnCount(), 24);
    EXPECT_EQ(Week.model()->headerData(2, Qt::Vertical).toString(), QStringLiteral("Wednesday"));
    EXPECT_EQ(Week.model()->headerData(9, Qt::Horizontal).toString(), QStringLiteral("09"));
}

TEST_F(WeekHoursTest, AClickTurnsAnHourAndTheNextOneTurnsItBack)
{
    Click(Cell(3, 10));
    EXPECT_EQ(Day(3), QString(10, u' ') + QStringLiteral("K") + QString(13, u' '));
    EXPECT_EQ(Changes.count(), 1);
    Click(Cell(3, 10));
    EXPECT_EQ(Day(3), None);
    EXPECT_EQ(Changes.count(), 2);
    QTest::mouseDClick(Week.viewport(), Qt::LeftButton, {}, Cell(3, 10));
    EXPECT_EQ(Day(3), QString(10, u' ') + QStringLiteral("K") + QString(13, u' '));
}

TEST_F(WeekHoursTest, ADragPaintsAllItMeetsToTheOppositeOfItsFirstHour)
{
    QString mixed = None;
    mixed.replace(11, 1, QStringLiteral("L"));
    Set({None, None, mixed, None, None, None, None});
    Press(Cell(3, 9));
    MoveTo(Cell(3, 13)); // at once: the hours on the way are painted too
    Release(Cell(3, 13));
    EXPECT_EQ(Week.Words(), QStringLiteral("Wednesday 09:00 to 14:00"));
    Press(Cell(3, 10));
    MoveTo(Cell(3, 12));
    Release(Cell(3, 12));
    EXPECT_EQ(Week.Words(), QStringLiteral("Wednesday 09:00 to 10:00 and 13:00 to 14:00"));
    MoveTo(Cell(3, 20));
    EXPECT_EQ(Week.Words(), QStringLiteral("Wednesday 09:00 to 10:00 and 13:00 to 14:00"));
}

TEST_F(WeekHoursTest, ADragOverTheEdgePaintsAlongIt)
{
    Press(Cell(7, 21));
    MoveTo(Cell(7, 23) + QPoint(4000, 4000));
    Release(Cell(7, 23) + QPoint(4000, 4000));
    EXPECT_EQ(Week.Words(), QStringLiteral("Sunday 21:00 to midnight"));
}

TEST_F(WeekHoursTest, ADragDownPaintsDays)
{
    Press(Cell(1, 8));
    MoveTo(Cell(5, 8));
    Release(Cell(5, 8));
    EXPECT_EQ(Week.Words(), QStringLiteral("Monday to Friday 08:00 to 09:00"));
}

TEST_F(WeekHoursTest, TheRightButtonPaintsNothing)
{
    QTest::mouseClick(Week.viewport(), Qt::RightButton, {}, Cell(1, 8));
    EXPECT_EQ(Week.Words(), QStringLiteral("never"));
    EXPECT_EQ(Changes.count(), 0);
}

TEST_F(WeekHoursTest, ArrowsHomeAndEndMoveAndSpaceTurns)
{
    EXPECT_EQ(CurrentText(), QStringLiteral("Monday 00:00, not available"));
    Key(Qt::Key_Down);
    Key(Qt::Key_Down);
    Key(Qt::Key_End);
    Key(Qt::Key_Left);
    EXPECT_EQ(CurrentText(), QStringLiteral("Wednesday 22:00, not available"));
    Key(Qt::Key_Space);
    EXPECT_EQ(CurrentText(), QStringLiteral("Wednesday 22:00, available"));
    EXPECT_EQ(Week.Words(), QStringLiteral("Wednesday 22:00 to 23:00"));
    Key(Qt::Key_Home);
    EXPECT_EQ(CurrentText(), QStringLiteral("Wednesday 00:00, not available"));
    EXPECT_EQ(Changes.count(), 1);
}

TEST_F(WeekHoursTest, ShiftExtendsAndSpaceTurnsTheSelectionToTheOppositeOfTheCurrentHour)
{
    Click(Cell(1, 9));
    Key(Qt::Key_Right, Qt::ShiftModifier);
    Key(Qt::Key_Right, Qt::ShiftModifier);
    Key(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(Week.selectionModel()->selectedIndexes().size(), 6);
    Changes.clear();
    Key(Qt::Key_Space);
    EXPECT_EQ(Week.Words(), QStringLiteral("Monday and Tuesday 09:00 to 12:00"));
    EXPECT_EQ(Changes.count(), 1);
    Key(Qt::Key_Space);
    EXPECT_EQ(Week.Words(), QStringLiteral("never"));
}

TEST_F(WeekHoursTest, ControlASelectsTheWeek)
{
    Key(Qt::Key_A, Qt::ControlModifier);
    Key(Qt::Key_Space);
    EXPECT_EQ(Week.Words(), QStringLiteral("at any time"));
    EXPECT_EQ(Changes.count(), 1);
}

TEST_F(WeekHoursTest, TabLeavesTheWeekAndEnterIsTheWindows)
{
    QWidget window;
    WeekHours week(&window);
    QWidget neighbour(&window);
    neighbour.setFocusPolicy(Qt::StrongFocus);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    week.setFocus();
    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QCoreApplication::sendEvent(&week, &enter);
    EXPECT_FALSE(enter.isAccepted());
    QTest::keyClick(&week, Qt::Key_Tab);
    EXPECT_TRUE(neighbour.hasFocus());
    window.close();
}

TEST_F(WeekHoursTest, AHeadingTurnsItsDayOrItsHour)
{
    Click(Cell(2, 5));
    ClickHeading(*Week.verticalHeader(), 1);
    EXPECT_EQ(Week.Words(), QStringLiteral("Tuesday all day"));
    ClickHeading(*Week.verticalHeader(), 1);
    EXPECT_EQ(Week.Words(), QStringLiteral("never"));
    ClickHeading(*Week.horizontalHeader(), 23);
    EXPECT_EQ(Week.Words(), QStringLiteral("every day 23:00 to midnight"));
    ClickHeading(*Week.horizontalHeader(), 23);
    EXPECT_EQ(Week.Words(), QStringLiteral("never"));
    EXPECT_EQ(Changes.count(), 5);
}

TEST_F(WeekHoursTest, HoursThatNobodyChangesStayAsTheyWereStored)
{
    const QString shortText = QStringLiteral("ab?");
    const QString longText = QString(24, u'x') + QStringLiteral(" and more");
    Set({shortText, longText, QString(), None, None, None, None});
    EXPECT_EQ(Changes.count(), 0);
    EXPECT_EQ(Week.Words(), QStringLiteral("Monday 00:00 to 03:00; Tuesday all day"));
    Click(Cell(1, 1));
    EXPECT_EQ(Day(1), QStringLiteral("a ?"));
    EXPECT_EQ(Day(2), longText);
    EXPECT_EQ(Day(3), QString());
    Click(Cell(2, 23));
    EXPECT_EQ(Day(2), QString(23, u'x') + QStringLiteral("  and more"));
    Click(Cell(1, 4));
    EXPECT_EQ(Day(1), QStringLiteral("a ? E"));
    // A whole day that is painted over keeps the letters that were right already.
    ClickHeading(*Week.verticalHeader(), 1);
    EXPECT_EQ(Day(2), QString(23, u'x') + QStringLiteral("X and more"));
}

TEST_F(WeekHoursTest, ReadsAndWritesAsAPrizeDoes)
{
    Set({QStringLiteral("AB")});
    Click(Cell(1, 6));
    cPrize prize;
    prize.SetAvailableHours(1, QStringLiteral("AB"));
    prize.SetAvailableForHour(1, 6, true);
    EXPECT_EQ(Day(1), prize.AvailableHours(1));
}

TEST_F(WeekHoursTest, ReadOnlyLooksAndMovesAndChangesNothing)
{
    Week.SetReadOnly(true);
    Click(Cell(4, 4));
    EXPECT_EQ(CurrentText(), QStringLiteral("Thursday 04:00, not available"));
    Key(Qt::Key_Space);
    Key(Qt::Key_A, Qt::ControlModifier);
    Key(Qt::Key_Space);
    ClickHeading(*Week.verticalHeader(), 1);
    ClickHeading(*Week.horizontalHeader(), 1);
    EXPECT_EQ(Week.Words(), QStringLiteral("never"));
    EXPECT_EQ(Changes.count(), 0);
    Week.SetReadOnly(false);
    Key(Qt::Key_Space); // the hour whose heading was clicked is selected
    EXPECT_EQ(Week.Words(), QStringLiteral("every day 01:00 to 02:00"));
}

TEST_F(WeekHoursTest, WherePeopleReadFromRightToLeftTheDayBeginsAtTheRight)
{
    Week.setLayoutDirection(Qt::RightToLeft);
    QCoreApplication::processEvents();
    EXPECT_GT(Cell(1, 0).x(), Cell(1, 23).x());
    Click(Cell(1, 0));
    EXPECT_EQ(Week.Words(), QStringLiteral("Monday 00:00 to 01:00"));
    Key(Qt::Key_Left);
    EXPECT_EQ(CurrentText(), QStringLiteral("Monday 01:00, not available"));
}

TEST_F(WeekHoursTest, AScreenReaderHearsTheWeekInWordsAndEachHour)
{
    EXPECT_EQ(Week.accessibleDescription(), QStringLiteral("never"));
    Click(Cell(3, 10));
    EXPECT_EQ(Week.accessibleDescription(), QStringLiteral("Wednesday 10:00 to 11:00"));
    QAccessibleInterface* const table = QAccessible::queryAccessibleInterface(&Week);
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->text(QAccessible::Name), QStringLiteral("Hours of the week"));
    QAccessibleInterface* const cell = table->child((3) * 25 + 10 + 1);
    ASSERT_NE(cell, nullptr);
    EXPECT_EQ(cell->text(QAccessible::Name), QStringLiteral("Wednesday 10:00, available"));
}

TEST_F(WeekHoursTest, AllHoursFitAtTheLeastSizeAlsoInAHugeFont)
{
    const auto shown = [this] {
        Week.resize(Week.minimumSizeHint());
        QCoreApplication::processEvents();
        return Week.viewport()->rect().contains(Week.visualRect(Week.model()->index(6, 23)));
    };
    EXPECT_TRUE(shown());
    QFont font = Week.font();
    font.setPointSize(2 * font.pointSize());
    Week.setFont(font);
    EXPECT_TRUE(shown());
}

TEST_F(WeekHoursTest, AvailableHoursAreBlocksThatStandOutOnAnyGround)
{
    for (const auto& [ground, highlight] :
         {std::pair<QColor, QColor>{Qt::white, Qt::yellow}, {Qt::black, QColor(20, 20, 60)}}) {
        QPalette palette = Week.palette();
        palette.setColor(QPalette::Base, ground);
        palette.setColor(QPalette::Highlight, highlight);
        Week.setPalette(palette);
        Set({None, QString(24, u'A'), None, None, None, None, None});
        const QImage picture = Week.viewport()->grab().toImage();
        const QColor on = picture.pixelColor(Cell(2, 12));
        const QColor off = picture.pixelColor(Cell(3, 12));
        EXPECT_EQ(off, ground);
        EXPECT_GT(qAbs(on.lightness() - off.lightness()), 60);
    }
}
