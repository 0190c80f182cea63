// SPDX-License-Identifier: Apache-2.0
#include "prizes/controls/WeekHours.h"

#include "platform/widgets/Contrast.h"
#include "prizes/controls/WeekHoursModel.h"

#include <QAccessible>
#include <QHeaderView>
#include <QMouseEvent>
#include <QPainter>
#include <QStyledItemDelegate>

#include <algorithm>
#include <cstdlib>

namespace
{
constexpr int CellMargin = 6;
constexpr int BlockMargin = 3;
constexpr int FocusWidth = 2;
constexpr double LineShare = 0.25;

/// An hour that is available is a block, one that is not is empty: told apart without colours.
class HourDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        const bool isEnabled = option.state.testFlag(QStyle::State_Enabled);
        const auto group = isEnabled ? QPalette::Active : QPalette::Disabled;
        const QColor ground = option.palette.color(group, QPalette::Base);
        painter->save();
        const QColor text = option.palette.color(group, QPalette::Text);
        painter->fillRect(option.rect, ground);
        // Lines that can be seen on a dark ground too.
        painter->setPen(Contrast::Blend(ground, text, LineShare));
        painter->drawLine(option.rect.topRight(), option.rect.bottomRight());
        painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
        if (index.data(WeekHoursModel::AvailableRole).toBool()) {
            const QColor ink = option.palette.color(group, isEnabled ? QPalette::Highlight : QPalette::Text);
            painter->fillRect(option.rect.adjusted(BlockMargin, BlockMargin, -BlockMargin, -BlockMargin),
                              Contrast::Readable(ink, ground));
        }
        const bool isCurrent = option.state.testFlag(QStyle::State_HasFocus);
        if (isCurrent || option.state.testFlag(QStyle::State_Selected)) {
            const int width = isCurrent ? FocusWidth : 1;
            QPen pen(text, width);
            pen.setJoinStyle(Qt::MiterJoin);
            painter->setPen(pen);
            const int inset = width / 2;
            painter->drawRect(option.rect.adjusted(inset, inset, -width, -width));
        }
        painter->restore();
    }
};
} // namespace

WeekHours::WeekHours(QWidget* parent) : QTableView(parent), Model_(new WeekHoursModel(this))
{
    setModel(Model_);
    setItemDelegate(new HourDelegate(this));
    setSelectionMode(ExtendedSelection);
    setSelectionBehavior(SelectItems);
    setEditTriggers(NoEditTriggers);
    setTabKeyNavigation(false);
    setCornerButtonEnabled(false);
    setWordWrap(false);
    setShowGrid(false);
    // The week fits at the least size; bars would come and go while the sections stretch.
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAccessibleName(tr("Hours of the week"));
    setAccessibleDescription(Words());
    for (QHeaderView* header : {horizontalHeader(), verticalHeader()}) {
        header->setSectionsClickable(true);
        header->setHighlightSections(true);
        header->setSectionResizeMode(QHeaderView::Stretch);
    }
    connect(horizontalHeader(), &QHeaderView::sectionClicked, this, [this](int hour) {
        QModelIndexList cells;
        for (int day = 0; day < Model_->rowCount(); ++day)
            cells.append(Model_->index(day, hour));
        Toggle(cells);
    });
    connect(verticalHeader(), &QHeaderView::sectionClicked, this, [this](int day) {
        QModelIndexList cells;
        for (int hour = 0; hour < Model_->columnCount(); ++hour)
            cells.append(Model_->index(day, hour));
        Toggle(cells);
    });
    SizeSections();
    setCurrentIndex(Model_->index(0, 0));
}

void WeekHours::SetHours(const WeekOfHours& hours)
{
    Model_->SetHours(hours);
    setAccessibleDescription(Words());
}

WeekOfHours WeekHours::Hours() const
{
    return Model_->Hours();
}

void WeekHours::SetReadOnly(bool readOnly)
{
    ReadOnly_ = readOnly;
    LastPainted_ = QModelIndex();
}

void WeekHours::SizeSections()
{
    const QFontMetrics metrics = fontMetrics();
    horizontalHeader()->setMinimumSectionSize(metrics.horizontalAdvance(QStringLiteral("00")) + CellMargin);
    verticalHeader()->setMinimumSectionSize(metrics.height() + CellMargin);
}

QSize WeekHours::SizeFor(int cellWidth, int cellHeight) const
{
    const int frame = 2 * frameWidth();
    return {verticalHeader()->sizeHint().width() + Model_->columnCount() * cellWidth + frame,
            horizontalHeader()->sizeHint().height() + Model_->rowCount() * cellHeight + frame};
}

QSize WeekHours::sizeHint() const
{
    const int side = fontMetrics().height() + 2 * CellMargin;
    return SizeFor(side, side).expandedTo(minimumSizeHint());
}

QSize WeekHours::minimumSizeHint() const
{
    return SizeFor(horizontalHeader()->minimumSectionSize(), verticalHeader()->minimumSectionSize());
}

void WeekHours::mousePressEvent(QMouseEvent* event)
{
    if (ReadOnly_ || event->button() != Qt::LeftButton) {
        QTableView::mousePressEvent(event);
        return;
    }
    const QModelIndex cell = indexAt(event->position().toPoint());
    if (!cell.isValid())
        return;
    setCurrentIndex(cell);
    PaintsAvailable_ = !Model_->IsAvailable(cell);
    LastPainted_ = cell;
    SetAll({cell}, PaintsAvailable_);
}

void WeekHours::mouseDoubleClickEvent(QMouseEvent* event)
{
    // The second of two quick clicks is a click.
    mousePressEvent(event);
}

void WeekHours::mouseMoveEvent(QMouseEvent* event)
{
    if (!LastPainted_.isValid()) {
        QTableView::mouseMoveEvent(event);
        return;
    }
    // A hand that runs over the edge paints along it.
    const QRect cells(visualRect(Model_->index(0, 0)) |
                      visualRect(Model_->index(Model_->rowCount() - 1, Model_->columnCount() - 1)));
    const QRect within = cells & viewport()->rect();
    const QPoint position = event->position().toPoint();
    PaintTo(indexAt({std::clamp(position.x(), within.left(), within.right()),
                     std::clamp(position.y(), within.top(), within.bottom())}));
}

/// All cells on the way there: a quick hand is told of at few places.
void WeekHours::PaintTo(const QModelIndex& cell)
{
    if (!cell.isValid() || cell == LastPainted_)
        return;
    const int rows = cell.row() - LastPainted_.row();
    const int columns = cell.column() - LastPainted_.column();
    const int steps = std::max(std::abs(rows), std::abs(columns));
    QModelIndexList way;
    for (int step = 1; step <= steps; ++step) {
        way.append(Model_->index(LastPainted_.row() + qRound(static_cast<double>(rows * step) / steps),
                                 LastPainted_.column() + qRound(static_cast<double>(columns * step) / steps)));
    }
    LastPainted_ = cell;
    setCurrentIndex(cell);
    SetAll(way, PaintsAvailable_);
}

void WeekHours::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && LastPainted_.isValid())
        LastPainted_ = QModelIndex();
    else
        QTableView::mouseReleaseEvent(event);
}

void WeekHours::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Space || event->key() == Qt::Key_Select) {
        event->accept();
        ToggleSelection();
        return;
    }
    QTableView::keyPressEvent(event);
}

/// There are no words to search for.
void WeekHours::keyboardSearch(const QString&) {}

void WeekHours::changeEvent(QEvent* event)
{
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        SizeSections();
        updateGeometry();
    }
}

void WeekHours::ToggleSelection()
{
    if (!currentIndex().isValid())
        return;
    QModelIndexList cells = selectedIndexes();
    if (!cells.contains(currentIndex()))
        cells = {currentIndex()};
    if (!ReadOnly_)
        SetAll(cells, !Model_->IsAvailable(currentIndex()));
}

void WeekHours::Toggle(const QModelIndexList& cells)
{
    if (ReadOnly_)
        return;
    const bool areAll =
        std::all_of(cells.begin(), cells.end(), [this](const QModelIndex& cell) { return Model_->IsAvailable(cell); });
    SetAll(cells, !areAll);
}

void WeekHours::SetAll(const QModelIndexList& cells, bool available)
{
    bool isChanged = false;
    for (const QModelIndex& cell : cells)
        isChanged = Model_->SetAvailable(cell, available) || isChanged;
    if (isChanged)
        TellChange();
}

void WeekHours::TellChange()
{
    setAccessibleDescription(Words());
    TellScreenReader();
    Q_EMIT HoursChanged();
}

/// What the current cell says is another thing now.
void WeekHours::TellScreenReader()
{
    if (!QAccessible::isActive() || !currentIndex().isValid())
        return;
    QAccessibleEvent changed(this, QAccessible::NameChanged);
    changed.setChild((currentIndex().row() + 1) * (Model_->columnCount() + 1) + currentIndex().column() + 1);
    QAccessible::updateAccessibility(&changed);
}
