// SPDX-License-Identifier: Apache-2.0

// What is written from right to left, and windows that are laid out so.

#include "platform/widgets/FlexGrid.h"
#include "platform/widgets/Icons.h"
#include "platform/widgets/ListView.h"
#include "prizes/PrizeChooser.h"
#include "prizes/PrizeDeskTest.h"

#include <QHelpEvent>
#include <QStyledItemDelegate>
#include <QToolTip>

namespace
{
const QString Number = QStringLiteral("07700 900123");
const QString Hebrew = QStringLiteral("\u05D3\u05E0\u05D4");
constexpr char16_t FirstStrongIsolate = 0x2068;
constexpr char16_t PopDirectionalIsolate = 0x2069;
constexpr char16_t LeftToRightMark = 0x200E;

/// The points that are light in one and dark in the other. Letters may stand a fraction of a point apart.
int DifferencesOf(const QImage& one, const QImage& other)
{
    constexpr int half = 128;
    int count = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x)
            count += std::abs(qGray(one.pixel(x, y)) - qGray(other.pixel(x, y))) >= half;
    }
    return count;
}

QString IsolatedText(const QString& text)
{
    return QChar(FirstStrongIsolate) + text + QChar(PopDirectionalIsolate);
}

class RightToLeftTest : public PrizeDeskTest
{
protected:
    void TearDown() override
    {
        QApplication::setLayoutDirection(Qt::LeftToRight);
        PrizeDeskTest::TearDown();
    }
    /// As the delegate hands it to the style.
    static QString Shown(const QAbstractItemView& list, const QString& text)
    {
        const auto& delegate = dynamic_cast<const QStyledItemDelegate&>(*list.itemDelegate());
        return delegate.displayText(text, QLocale());
    }
};

/// A list with one entry that is cut off and one that is not.
class TextDelegateTest : public testing::Test
{
protected:
    void SetUp() override
    {
        List.AddColumn(QStringLiteral("Name"), 1500);
        List.AddColumn(QStringLiteral("Number"), 1500);
        List.AddItem(QStringLiteral("1"),
                     {QStringLiteral("A long <b>name</b> that no narrow column can hold"), Number});
        List.resize(400, 200);
        List.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&List));
    }
    void TearDown() override
    {
        QToolTip::hideText();
        WaitUntil([] { return !QToolTip::isVisible(); });
    }
    QString ToolTipOver(int column)
    {
        const QPoint place = List.visualRect(List.model()->index(0, column)).center();
        QHelpEvent help(QEvent::ToolTip, place, List.viewport()->mapToGlobal(place));
        QApplication::sendEvent(List.viewport(), &help);
        return QToolTip::text();
    }

    ListView List;
};
} // namespace

TEST_F(TextDelegateTest, ATextThatIsCutOffIsSeenWholeAsItsToolTip)
{
    EXPECT_EQ(ToolTipOver(0),
              QStringLiteral("<span>A long &lt;b&gt;name&lt;/b&gt; that no narrow column can hold</span>"));
}

TEST_F(TextDelegateTest, ATextThatIsSeenWholeHasNone)
{
    List.setColumnWidth(1, 200);
    EXPECT_EQ(ToolTipOver(1), QString());
}

TEST_F(RightToLeftTest, ANumberInAListReadsTheSameInEitherLayout)
{
    WinnersView winners(Station);
    ListView list;
    for (QTreeWidget* tree : {static_cast<QTreeWidget*>(&winners), static_cast<QTreeWidget*>(&list)}) {
        EXPECT_EQ(Shown(*tree, Number), Number);
        EXPECT_EQ(Shown(*tree, Hebrew), IsolatedText(Hebrew));
        tree->setLayoutDirection(Qt::RightToLeft);
        EXPECT_EQ(Shown(*tree, Number), IsolatedText(Number));
        EXPECT_EQ(Shown(*tree, Hebrew), Hebrew);
    }
}

TEST_F(RightToLeftTest, ANameDoesNotTurnTheNumberBehindItRound)
{
    PrizeChooser chooser(Station, {1, Hebrew, Number, {}, {}, {}, {}});
    EXPECT_EQ(chooser.findChild<QLabel*>(QStringLiteral("winner"))->text(),
              QStringLiteral("A prize for %1 (%2)").arg(IsolatedText(Hebrew), Number));
}

TEST_F(RightToLeftTest, ASubjectReadsInTheDirectionOfItsLetters)
{
    const auto picture = [](const QString& text) {
        FlexGrid grid;
        grid.SetCols(2);
        grid.SetRows(2);
        grid.SetColWidth(1, 3000);
        grid.SetTextMatrix(1, 1, text);
        grid.resize(400, 120);
        return grid.grab().toImage();
    };
    // The Latin letters come last, and so stand at the left of those that run from right to left.
    const QString latin = QStringLiteral("WWWW");
    const QImage shown = picture(Hebrew + u' ' + latin);
    const QImage right = picture(latin + u' ' + Hebrew);
    const QImage wrong = picture(QChar(LeftToRightMark) + Hebrew + u' ' + latin);
    EXPECT_GT(DifferencesOf(shown, wrong), 50);
    EXPECT_LT(4 * DifferencesOf(shown, right), DifferencesOf(shown, wrong));
}

TEST_F(RightToLeftTest, ASubjectThatIsCutOffShowsThatAtItsEndInEitherLayout)
{
    const auto picture = [](int columnBeyondEdge, const QString& text) {
        FlexGrid grid;
        grid.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        grid.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        grid.SetCols(2);
        grid.SetRows(2);
        grid.resize(300, 120);
        grid.SetColWidth(0, 0);
        grid.SetTextMatrix(1, 1, text);
        grid.SetColWidth(1, 15.0 * (grid.viewport()->width() + columnBeyondEdge));
        return grid.viewport()->grab().toImage();
    };
    const QString text = QStringLiteral("A subject that is too long to be seen whole in so narrow a list of messages");
    for (const Qt::LayoutDirection direction : {Qt::LeftToRight, Qt::RightToLeft}) {
        QApplication::setLayoutDirection(direction);
        EXPECT_EQ(picture(10, text), picture(0, text)) << direction;
        EXPECT_NE(picture(0, text), picture(0, QString())) << direction;
    }
}

TEST_F(RightToLeftTest, PicturesThatPointForwardsOrBackAreMirrored)
{
    const auto picture = [](const QString& key) { return Icons::Get(key).pixmap(QSize(32, 32)).toImage(); };
    for (const char* key : {"reply", "replyall", "forward", "send"}) {
        const QImage before = picture(QLatin1String(key));
        QApplication::setLayoutDirection(Qt::RightToLeft);
        EXPECT_NE(picture(QLatin1String(key)), before) << key;
        QApplication::setLayoutDirection(Qt::LeftToRight);
        EXPECT_EQ(picture(QLatin1String(key)), before) << key;
    }
    const QImage save = picture(QStringLiteral("save"));
    QApplication::setLayoutDirection(Qt::RightToLeft);
    EXPECT_EQ(picture(QStringLiteral("save")), save);
}
