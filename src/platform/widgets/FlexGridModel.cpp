// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/FlexGridModel.h"

#include <algorithm>
#include <utility>

namespace
{
/// A text that was put together may hold much more room than it fills, which a long list cannot afford.
QString WithoutReserve(const QString& text)
{
    constexpr qsizetype Spare = 8;
    return text.capacity() > text.size() + Spare ? QString(text.constData(), text.size()) : text;
}
} // namespace

void RowRange::Add(int first, int last)
{
    if (last < first)
        return;
    First = IsEmpty() ? first : std::min(First, first);
    Last = std::max(Last, last);
}

size_t FlexGridModel::CellAt(int row, int col) const
{
    return static_cast<size_t>(row) * static_cast<size_t>(Cols_) + static_cast<size_t>(col);
}

// ---- Size

void FlexGridModel::SetRows(int rows)
{
    rows = std::max(rows, 1);
    if (rows == Rows_)
        return;
    const int kept = std::min(rows, Rows_);
    if (Collecting_) {
        ResizeRows(rows);
        // Rows that were dropped and came back are empty now, though the views' count does not tell.
        ChangedRows_.Add(kept, rows - 1);
    } else if (rows > Rows_) {
        beginInsertRows({}, Rows_ - 1, rows - 2);
        ResizeRows(rows);
        ShownRows_ = rows;
        endInsertRows();
    } else {
        beginRemoveRows({}, rows - 1, Rows_ - 2);
        ResizeRows(rows);
        ShownRows_ = rows;
        endRemoveRows();
    }
    ChangedHeights_.Add(kept, rows - 1);
}

void FlexGridModel::ResizeRows(int rows)
{
    const auto count = static_cast<size_t>(rows);
    const size_t cells = count * static_cast<size_t>(Cols_);
    Texts_.resize(cells);
    StyleOfCell_.resize(cells);
    Heights_.resize(count, -1);
    AccessibleOfRow_.resize(count);
    LateOfRow_.resize(count);
    IsLate_.resize(count);
    Rows_ = rows;
    if (rows == 1)
        ForgetShared();
}

void FlexGridModel::ArrangeRows(const std::vector<int>& sources)
{
    Q_ASSERT(Collecting_);
    const auto count = sources.size() + 1;
    const auto cols = static_cast<size_t>(Cols_);
    std::deque<QString> texts(count * cols);
    std::deque<qint32> styles(count * cols);
    std::deque<float> heights(count, -1);
    std::deque<qint32> accessible(count);
    std::deque<std::unique_ptr<const LateTexts>> late(count);
    std::deque<bool> isLate(count);
    for (size_t row = 0; row < count; ++row) {
        const int source = row == 0 ? 0 : sources[row - 1] + 1;
        if (source < 0 || (row > 0 && source < 1) || source >= Rows_)
            continue;
        const size_t from = CellAt(source, 0);
        for (size_t col = 0; col < cols; ++col) {
            texts[row * cols + col] = std::move(Texts_[from + col]);
            styles[row * cols + col] = StyleOfCell_[from + col];
        }
        heights[row] = Heights_[static_cast<size_t>(source)];
        accessible[row] = AccessibleOfRow_[static_cast<size_t>(source)];
        late[row] = std::move(LateOfRow_[static_cast<size_t>(source)]);
        isLate[row] = IsLate_[static_cast<size_t>(source)];
    }
    for (size_t row = 1; row < count; ++row) {
        if (row >= Heights_.size() || heights[row] != Heights_[row])
            ChangedHeights_.Add(static_cast<int>(row));
    }
    Texts_.swap(texts);
    StyleOfCell_.swap(styles);
    Heights_.swap(heights);
    AccessibleOfRow_.swap(accessible);
    LateOfRow_.swap(late);
    IsLate_.swap(isLate);
    Rows_ = static_cast<int>(count);
    ChangedRows_.Add(1, Rows_ - 1);
}

void FlexGridModel::ForgetShared()
{
    Styles_.resize(1);
    StyleIndices_ = {{CellStyle(), 0}};
    Pictures_.clear();
    PictureIndices_.clear();
    AccessibleTexts_ = {QString()};
    AccessibleIndices_ = {{QString(), 0}};
}

void FlexGridModel::SetCols(int cols)
{
    cols = std::max(cols, 0);
    if (cols > Cols_) {
        beginInsertColumns({}, Cols_, cols - 1);
        ResizeCols(cols);
        endInsertColumns();
    } else if (cols < Cols_) {
        beginRemoveColumns({}, cols, Cols_ - 1);
        ResizeCols(cols);
        endRemoveColumns();
    }
}

void FlexGridModel::ResizeCols(int cols)
{
    const int kept = std::min(cols, Cols_);
    const auto size = static_cast<size_t>(Rows_) * static_cast<size_t>(cols);
    std::deque<QString> texts(size);
    std::deque<qint32> styles(size);
    for (int row = 0; row < Rows_; ++row) {
        const size_t start = static_cast<size_t>(row) * static_cast<size_t>(cols);
        for (int col = 0; col < kept; ++col) {
            texts[start + static_cast<size_t>(col)] = std::move(Texts_[CellAt(row, col)]);
            styles[start + static_cast<size_t>(col)] = StyleOfCell_[CellAt(row, col)];
        }
    }
    Texts_.swap(texts);
    StyleOfCell_.swap(styles);
    Alignments_.resize(static_cast<size_t>(cols), Qt::AlignLeft | Qt::AlignVCenter);
    Cols_ = cols;
}

// ---- Collecting

void FlexGridModel::SetCollecting(bool collecting)
{
    if (collecting == Collecting_)
        return;
    Collecting_ = collecting;
    if (collecting)
        return;
    const int known = std::min(ShownRows_, Rows_);
    TellRowCount();
    const int first = std::max(ChangedRows_.First, 1);
    const int last = std::min(ChangedRows_.Last, known - 1);
    ChangedRows_.Clear();
    if (first <= last && Cols_ > 0)
        Q_EMIT dataChanged(index(first - 1, 0), index(last - 1, Cols_ - 1));
    if (HeaderChanged_ && Cols_ > 0)
        Q_EMIT headerDataChanged(Qt::Horizontal, 0, Cols_ - 1);
    HeaderChanged_ = false;
}

void FlexGridModel::TellRowCount()
{
    if (Rows_ > ShownRows_) {
        beginInsertRows({}, ShownRows_ - 1, Rows_ - 2);
        ShownRows_ = Rows_;
        endInsertRows();
    } else if (Rows_ < ShownRows_) {
        beginRemoveRows({}, Rows_ - 1, ShownRows_ - 2);
        ShownRows_ = Rows_;
        endRemoveRows();
    }
}

void FlexGridModel::Changed(int row, int firstCol, int lastCol)
{
    if (row == 0 && Collecting_)
        HeaderChanged_ = true;
    else if (row == 0)
        Q_EMIT headerDataChanged(Qt::Horizontal, firstCol, lastCol);
    else if (Collecting_)
        ChangedRows_.Add(row);
    else
        Q_EMIT dataChanged(index(row - 1, firstCol), index(row - 1, lastCol));
}

// ---- Cells

QString FlexGridModel::Text(int row, int col) const
{
    if (!IsCell(row, col))
        return {};
    MakeTexts(row, col);
    return Texts_[CellAt(row, col)];
}

/// Before the text of that column is looked at or set.
void FlexGridModel::MakeTexts(int row, int col) const
{
    if (col < FirstLateCol_)
        return;
    const auto place = static_cast<size_t>(row);
    if (!IsLate_[place])
        return;
    IsLate_[place] = false;
    const auto set = [this, row](int made, const QString& text) {
        if (made >= FirstLateCol_ && made < Cols_)
            Texts_[CellAt(row, made)] = WithoutReserve(text);
    };
    if (KeepsLate_)
        LateOfRow_[place]->Make(set);
    else if (const auto late = std::exchange(LateOfRow_[place], nullptr))
        late->Make(set);
}

void FlexGridModel::SetLateTexts(int row, int firstCol, std::unique_ptr<const LateTexts> texts)
{
    if (row < 1 || !IsCell(row, firstCol))
        return;
    FirstLateCol_ = firstCol;
    IsLate_[static_cast<size_t>(row)] = texts != nullptr;
    LateOfRow_[static_cast<size_t>(row)] = std::move(texts);
    Changed(row, firstCol, Cols_ - 1);
}

bool FlexGridModel::HasLateTexts(int row) const
{
    return row >= 1 && row < Rows_ && IsLate_[static_cast<size_t>(row)];
}

const LateTexts* FlexGridModel::LateTextsOf(int row) const
{
    return row >= 1 && row < Rows_ ? LateOfRow_[static_cast<size_t>(row)].get() : nullptr;
}

void FlexGridModel::RemakeLateTexts()
{
    for (size_t row = 1; row < LateOfRow_.size(); ++row)
        IsLate_[row] = LateOfRow_[row] != nullptr;
}

void FlexGridModel::SetText(int row, int col, const QString& text)
{
    if (!IsCell(row, col))
        return;
    MakeTexts(row, col);
    QString& present = Texts_[CellAt(row, col)];
    if (present == text)
        return;
    present = WithoutReserve(text);
    Changed(row, col, col);
}

const CellStyle& FlexGridModel::Style(int row, int col) const
{
    return Styles_[IsCell(row, col) ? static_cast<size_t>(StyleOfCell_[CellAt(row, col)]) : 0];
}

template <typename Change>
void FlexGridModel::ChangeStyles(int row, int firstCol, int lastCol, Change change)
{
    firstCol = std::max(firstCol, 0);
    lastCol = std::min(lastCol, Cols_ - 1);
    if (row < 1 || row >= Rows_)
        return;
    bool changed = false;
    for (int col = firstCol; col <= lastCol; ++col) {
        CellStyle style = Style(row, col);
        change(style);
        qint32& present = StyleOfCell_[CellAt(row, col)];
        if (style == Styles_[static_cast<size_t>(present)])
            continue;
        const qint32 wanted = StyleIndex(style);
        changed = changed || wanted != present;
        present = wanted;
    }
    if (changed)
        Changed(row, firstCol, lastCol);
}

void FlexGridModel::SetBackColour(int row, int firstCol, int lastCol, qint32 colour)
{
    ChangeStyles(row, firstCol, lastCol, [colour](CellStyle& style) { style.BackColour = colour; });
}

void FlexGridModel::SetForeColour(int row, int firstCol, int lastCol, qint32 colour)
{
    ChangeStyles(row, firstCol, lastCol, [colour](CellStyle& style) { style.ForeColour = colour; });
}

void FlexGridModel::SetBold(int row, int firstCol, int lastCol, bool bold)
{
    ChangeStyles(row, firstCol, lastCol, [bold](CellStyle& style) { style.Bold = bold; });
}

void FlexGridModel::SetPicture(int row, int col, const QIcon& picture)
{
    if (row < 1 || !IsCell(row, col))
        return;
    const qint32 place = PictureIndex(picture);
    ChangeStyles(row, col, col, [place](CellStyle& style) { style.Picture = place; });
}

QIcon FlexGridModel::Picture(int row, int col) const
{
    const qint32 place = Style(row, col).Picture;
    return place < 0 ? QIcon() : Pictures_[static_cast<size_t>(place)];
}

qint32 FlexGridModel::StyleIndex(const CellStyle& style)
{
    const auto found = StyleIndices_.constFind(style);
    if (found != StyleIndices_.constEnd())
        return *found;
    const auto place = static_cast<qint32>(Styles_.size());
    Styles_.push_back(style);
    StyleIndices_.insert(style, place);
    return place;
}

qint32 FlexGridModel::PictureIndex(const QIcon& picture)
{
    if (picture.isNull())
        return -1;
    const auto found = PictureIndices_.constFind(picture.cacheKey());
    if (found != PictureIndices_.constEnd())
        return *found;
    const auto place = static_cast<qint32>(Pictures_.size());
    Pictures_.push_back(picture);
    PictureIndices_.insert(picture.cacheKey(), place);
    return place;
}

// ---- Rows and columns

float FlexGridModel::RowHeight(int row) const
{
    return row >= 0 && row < Rows_ ? Heights_[static_cast<size_t>(row)] : -1;
}

void FlexGridModel::SetRowHeight(int row, float height)
{
    if (row < 0 || row >= Rows_)
        return;
    Heights_[static_cast<size_t>(row)] = height;
    if (row > 0)
        ChangedHeights_.Add(row);
}

void FlexGridModel::ClearRowHeights()
{
    std::fill(Heights_.begin() + 1, Heights_.end(), -1.0F);
    MarkRowHeights();
}

RowRange FlexGridModel::TakeChangedHeights()
{
    RowRange taken = ChangedHeights_;
    ChangedHeights_.Clear();
    taken.First = std::max(taken.First, 1);
    taken.Last = std::min(taken.Last, Rows_ - 1);
    return taken;
}

QString FlexGridModel::RowAccessibleText(int row) const
{
    return row >= 0 && row < Rows_ ? AccessibleTexts_.at(AccessibleOfRow_[static_cast<size_t>(row)]) : QString();
}

void FlexGridModel::SetRowAccessibleText(int row, const QString& text)
{
    if (row < 1 || row >= Rows_ || Cols_ == 0)
        return;
    auto found = AccessibleIndices_.constFind(text);
    if (found == AccessibleIndices_.constEnd()) {
        found = AccessibleIndices_.insert(text, static_cast<qint32>(AccessibleTexts_.size()));
        AccessibleTexts_.append(text);
    }
    qint32& present = AccessibleOfRow_[static_cast<size_t>(row)];
    if (present == *found)
        return;
    present = *found;
    Changed(row, 0, Cols_ - 1);
}

Qt::Alignment FlexGridModel::Alignment(int col) const
{
    return col >= 0 && col < Cols_ ? Alignments_[static_cast<size_t>(col)] : Qt::AlignLeft | Qt::AlignVCenter;
}

void FlexGridModel::SetAlignment(int col, Qt::Alignment alignment)
{
    if (col < 0 || col >= Cols_)
        return;
    Alignments_[static_cast<size_t>(col)] = alignment;
    Changed(0, col, col);
    if (Collecting_)
        ChangedRows_.Add(1, Rows_ - 1);
    else if (Rows_ > 1)
        Q_EMIT dataChanged(index(0, col), index(Rows_ - 2, col));
}

// ---- What views ask

int FlexGridModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ShownRows_ - 1;
}

int FlexGridModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : Cols_;
}

QVariant FlexGridModel::data(const QModelIndex& index, int role) const
{
    const int row = index.row() + 1;
    // While rows are collected a view may still know more of them than there are.
    if (!index.isValid() || !IsCell(row, index.column()))
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return Text(row, index.column());
    case Qt::AccessibleTextRole:
        return AccessibleText(row, index.column());
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(Alignment(index.column()));
    default:
        return {};
    }
}

QVariant FlexGridModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && section >= 0 && section < Cols_) {
        if (role == Qt::DisplayRole)
            return Text(0, section);
        if (role == Qt::TextAlignmentRole)
            return QVariant::fromValue(Alignment(section));
    }
    return QAbstractTableModel::headerData(section, orientation, role);
}

void FlexGridModel::SetNotes(int col, std::function<QString(int row)> noteOf)
{
    NoteCol_ = col;
    NoteOf_ = std::move(noteOf);
}

QString FlexGridModel::Note(int row, int col) const
{
    return NoteOf_ && col == NoteCol_ && row > 0 && row < Rows_ ? NoteOf_(row) : QString();
}

void FlexGridModel::SetMarks(int col, std::function<QList<RowMark>(int row)> marksOf)
{
    MarksCol_ = col;
    MarksOf_ = std::move(marksOf);
}

QList<RowMark> FlexGridModel::Marks(int row, int col) const
{
    return MarksOf_ && col == MarksCol_ && row > 0 && row < Rows_ ? MarksOf_(row) : QList<RowMark>();
}

QString FlexGridModel::AccessibleText(int row, int col) const
{
    QStringList parts{RowAccessibleText(row)};
    for (const RowMark& mark : Marks(row, MarksCol_))
        parts.append(mark.Name);
    parts.append(Note(row, NoteCol_));
    QString text = Text(row, col).replace(SoftLineBreak, QStringLiteral(" "));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    parts += text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    parts.removeAll(QString());
    return parts.join(QStringLiteral(", "));
}
