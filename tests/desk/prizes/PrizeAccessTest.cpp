// SPDX-License-Identifier: Apache-2.0
#include "PrizeDeskTest.h"
#include "prizes/PrizeChooser.h"
#include "prizes/PrizeSettingsDialog.h"

#include <QAccessible>
#include <QCheckBox>
#include <QSet>
#include <QSpinBox>
#include <QTabBar>
#include <QTabWidget>

namespace
{
QString AccessibleName(QWidget& widget)
{
    QAccessibleInterface* const accessible = QAccessible::queryAccessibleInterface(&widget);
    return accessible ? accessible->text(QAccessible::Name) : QString();
}

/// Those that take the focus by the Tab key, without the parts that Qt makes within them.
QList<QWidget*> FocusStops(QWidget& window)
{
    QList<QWidget*> stops;
    for (QWidget* widget : window.findChildren<QWidget*>()) {
        const bool isStop = widget->isVisible() && widget->isEnabled() && !widget->focusProxy() &&
                            (widget->focusPolicy() & Qt::TabFocus) == Qt::TabFocus && widget->window() == &window;
        if (isStop && !widget->objectName().startsWith(u"qt_"))
            stops.append(widget);
    }
    return stops;
}

QString CaptionOf(const QWidget& widget)
{
    if (const auto* button = qobject_cast<const QAbstractButton*>(&widget))
        return button->text();
    const auto* label = qobject_cast<const QLabel*>(&widget);
    return label && !label->wordWrap() ? label->text() : QString();
}

/// What the text and the picture beside it take.
QSize RoomOf(const QWidget& widget)
{
    QSize room = widget.fontMetrics().size(Qt::TextShowMnemonic, CaptionOf(widget));
    const auto* button = qobject_cast<const QAbstractButton*>(&widget);
    if (button && !button->icon().isNull())
        room.rwidth() += button->iconSize().width();
    return room;
}

/// Names, captions and the walk of the Tab key, for one window and all its pages.
class PrizeAccessTest : public PrizeDeskTest
{
protected:
    void SetUp() override
    {
        PrizeDeskTest::SetUp();
        Ann = AddContact(QStringLiteral("Ann Angove"), QStringLiteral("07700 900111"));
        Prize = AddPrize(QStringLiteral("Two tickets"), 3, [](cPrize& prize) {
            prize.SetScript(QStringLiteral("Win!"));
            prize.SetNotes(QStringLiteral("Ask"));
        });
        Winner = AwardElsewhere(Prize, Ann);
    }
    static void CheckNames(QWidget& window)
    {
        const QList<QWidget*> stops = FocusStops(window);
        EXPECT_FALSE(stops.isEmpty());
        for (QWidget* stop : stops) {
            EXPECT_FALSE(stop->objectName().isEmpty()) << stop->metaObject()->className();
            EXPECT_FALSE(AccessibleName(*stop).isEmpty()) << qPrintable(stop->objectName());
        }
    }
    static void CheckCaptions(QWidget& window)
    {
        for (QWidget* widget : window.findChildren<QWidget*>()) {
            if (!widget->isVisible() || CaptionOf(*widget).isEmpty())
                continue;
            EXPECT_GE(widget->width(), RoomOf(*widget).width()) << qPrintable(CaptionOf(*widget));
            EXPECT_GE(widget->height(), RoomOf(*widget).height()) << qPrintable(CaptionOf(*widget));
        }
    }
    /// Every stop, walking by Tab from the one that has the focus.
    static void CheckWalk(QWidget& window)
    {
        Activate(window);
        QSet<QWidget*> missing;
        for (QWidget* stop : FocusStops(window))
            missing.insert(stop);
        const qsizetype most = 3 * missing.size() + 10;
        for (qsizetype i = 0; i < most && !missing.isEmpty() && window.focusWidget(); ++i) {
            QWidget* const focus = window.focusWidget();
            missing.remove(focus);
            // A table of cells may keep the key for itself; everything else passes it on.
            QTest::keyClick(focus, Qt::Key_Tab);
        }
        for (const QWidget* stop : std::as_const(missing))
            ADD_FAILURE() << "not reached: " << qPrintable(stop->objectName());
    }
    static void Check(QWidget& window)
    {
        CheckNames(window);
        CheckCaptions(window);
        CheckWalk(window);
    }

    qint32 Ann = 0;
    qint32 Prize = 0;
    qint32 Winner = 0;
};
} // namespace

TEST_F(PrizeAccessTest, ThePresentersPageIsReachedByTheKeyboardAndHasNames)
{
    OpenPrizes();
    Select(Prize);
    CheckNames(*Window);
    CheckCaptions(Page());
    CheckWalk(*Window);
}

TEST_F(PrizeAccessTest, ThePrizeWindowIsReachedByTheKeyboardAndHasNamesOnAllItsPages)
{
    OpenPrizes();
    Prizes().OpenPrize(Prize);
    PrizeWindow* window = OnlyPrizeWindow();
    ASSERT_TRUE(window);
    auto& pages = Get<QTabWidget>(*window, "pages");
    for (int page = 0; page < pages.count(); ++page) {
        SCOPED_TRACE(qPrintable(pages.tabText(page)));
        pages.setCurrentIndex(page);
        Check(*window);
    }
    EXPECT_TRUE(window->close());
}

TEST_F(PrizeAccessTest, TheWinnerWindowIsReachedByTheKeyboardAndHasNames)
{
    OpenPrizes();
    Prizes().OpenWinner(Winner);
    WinnerWindow* window = OnlyWinnerWindow();
    ASSERT_TRUE(window);
    Check(*window);
    // The button beside the moment comes behind it.
    Get<QWidget>(*window, "sentCalendar").setFocus();
    QTest::keyClick(window->focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(window->focusWidget()->objectName(), QStringLiteral("sentNow"));
    QTest::keyClick(window->focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(window->focusWidget()->objectName(), QStringLiteral("notes"));
    // The rows keep a distance, so that no box touches the next.
    const QRect won(Get<QLineEdit>(*window, "won").mapTo(window, QPoint()), Get<QLineEdit>(*window, "won").size());
    const QRect sent(Get<QLineEdit>(*window, "sent").mapTo(window, QPoint()), Get<QLineEdit>(*window, "sent").size());
    EXPECT_GE(sent.top() - won.bottom(), 4);
    EXPECT_TRUE(window->close());
}

TEST_F(PrizeAccessTest, TheDialogsAreReachedByTheKeyboardAndHaveNames)
{
    OpenPrizes();
    const clsKVContactPtr contact = Window->Station().Directory().GetContact(Ann);
    PrizeChooser chooser(Window->Station(), *contact, Window.get());
    PrizeSettingsDialog settings(Window->Station(), Window.get());
    for (QDialog* dialog : std::initializer_list<QDialog*>{&chooser, &settings}) {
        SCOPED_TRACE(qPrintable(dialog->objectName()));
        dialog->show();
        Check(*dialog);
        dialog->close();
    }
}

TEST_F(PrizeAccessTest, NoCaptionIsCutShortInALargeFont)
{
    const QFont before = QApplication::font();
    const auto restore = qScopeGuard([&] { QApplication::setFont(before); });
    QFont large = before;
    large.setPointSizeF(before.pointSizeF() * 1.75);
    QApplication::setFont(large);
    OpenPrizes();
    Select(Prize);
    QCoreApplication::processEvents();
    CheckCaptions(Page());
    Prizes().OpenPrize(Prize);
    PrizeWindow* window = OnlyPrizeWindow();
    ASSERT_TRUE(window);
    auto& pages = Get<QTabWidget>(*window, "pages");
    for (int page = 0; page < pages.count(); ++page) {
        pages.setCurrentIndex(page);
        QCoreApplication::processEvents();
        CheckCaptions(*window);
    }
    EXPECT_TRUE(window->close());
    Prizes().OpenWinner(Winner);
    WinnerWindow* winner = OnlyWinnerWindow();
    ASSERT_TRUE(winner);
    QCoreApplication::processEvents();
    CheckCaptions(*winner);
    EXPECT_TRUE(winner->close());
}
