// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/widgets/RowMark.h"
#include "platform/widgets/SystemColour.h"

#include <QAbstractTableModel>
#include <QHash>
#include <QIcon>
#include <QStringList>

#include <deque>
#include <functional>
#include <memory>
#include <vector>

/// How a cell looks: colours as SystemColour has them, a picture by its place in the grid's list (-1: none).
struct CellStyle
{
    qint32 BackColour = SystemColour::WindowBackground;
    qint32 ForeColour = SystemColour::WindowText;
    qint32 Picture = -1;
    bool Bold = false;

    friend bool operator==(const CellStyle&, const CellStyle&) = default;
    friend size_t qHash(const CellStyle& style, size_t seed = 0)
    {
        return qHashMulti(seed, style.BackColour, style.ForeColour, style.Picture, style.Bold);
    }
};

/// A line break that only the width asks for: a screen reader reads on.
inline const QString SoftLineBreak = QStringLiteral("\u200B\r");

/// Texts of a row that are made when somebody asks for one of them or sees it: of a long list few rows are ever seen.
class LateTexts
{
public:
    using Set = std::function<void(int col, const QString& text)>;

    LateTexts() = default;
    virtual ~LateTexts() = default;
    LateTexts(const LateTexts&) = delete;
    LateTexts& operator=(const LateTexts&) = delete;

    /// Sets the texts of some cells; the others keep theirs.
    virtual void Make(const Set& set) const = 0;
};

/// Rows that something happened to. Coarse on purpose: the first and the last one.
class RowRange
{
public:
    void Add(int row) { Add(row, row); }
    void Add(int first, int last);
    bool IsEmpty() const { return Last < First; }
    void Clear() { *this = {}; }

    int First = 0;
    int Last = -1;
};

/// The table behind a FlexGrid: texts, an index into the distinct styles for each cell, a height and a text for the
/// screen reader for each row. No object per cell or row, so that a folder of a hundred thousand messages fits.
///
/// Rows count from 0 as the grid's do: row 0 is the header, whose texts are the columns' headings; Qt's row r is row
/// r + 1 here. What lies outside the table reads as empty and ignores being set. Owned by its grid; one thread.
///
/// While it is collecting, views keep the row count they know and hear of nothing; when it stops, they hear of the rows
/// added or dropped in one step, and of the range of rows that changed.
class FlexGridModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    using QAbstractTableModel::QAbstractTableModel;

    int Rows() const { return Rows_; }
    void SetRows(int rows);
    /// FlexGrid::ArrangeRows; while collecting.
    void ArrangeRows(const std::vector<int>& sources);
    int Cols() const { return Cols_; }
    void SetCols(int cols);
    bool IsCollecting() const { return Collecting_; }
    void SetCollecting(bool collecting);

    QString Text(int row, int col) const;
    void SetText(int row, int col, const QString& text);
    /// FlexGrid::SetLateTexts.
    void SetLateTexts(int row, int firstCol, std::unique_ptr<const LateTexts> texts);
    bool HasLateTexts(int row) const;
    /// FlexGrid::SetKeepsLateTexts.
    void SetKeepsLateTexts(bool keeps) { KeepsLate_ = keeps; }
    /// Also those that were made, where they are kept; null for none.
    const LateTexts* LateTextsOf(int row) const;
    void RemakeLateTexts();
    /// The default style outside the table, and for the header row.
    const CellStyle& Style(int row, int col) const;
    void SetBackColour(int row, int firstCol, int lastCol, qint32 colour);
    void SetForeColour(int row, int firstCol, int lastCol, qint32 colour);
    void SetBold(int row, int firstCol, int lastCol, bool bold);
    /// A null icon takes the picture away. Icons are told apart by their cache key: give the same one again, and it is
    /// kept once.
    void SetPicture(int row, int col, const QIcon& picture);
    /// Null when the cell has none.
    QIcon Picture(int row, int col) const;
    /// Negative: none of its own.
    float RowHeight(int row) const;
    void SetRowHeight(int row, float height);
    /// Takes every row's own height away.
    void ClearRowHeights();
    QString RowAccessibleText(int row) const;
    void SetRowAccessibleText(int row, const QString& text);
    /// FlexGrid::SetRowNotes.
    void SetNotes(int col, std::function<QString(int row)> noteOf);
    /// The note of that cell; empty for none.
    QString Note(int row, int col) const;
    /// FlexGrid::SetRowMarks.
    void SetMarks(int col, std::function<QList<RowMark>(int row)> marksOf);
    /// The marks of that cell.
    QList<RowMark> Marks(int row, int col) const;
    Qt::Alignment Alignment(int col) const;
    void SetAlignment(int col, Qt::Alignment alignment);

    /// All heights count as changed, as when the default is another one.
    void MarkRowHeights() { ChangedHeights_.Add(1, Rows_ - 1); }
    /// The rows whose height may have changed since the last call, which starts anew.
    RowRange TakeChangedHeights();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    bool IsCell(int row, int col) const { return row >= 0 && row < Rows_ && col >= 0 && col < Cols_; }
    size_t CellAt(int row, int col) const;
    void ResizeRows(int rows);
    void ResizeCols(int cols);
    void ForgetShared();
    void MakeTexts(int row, int col) const;
    void TellRowCount();
    void Changed(int row, int firstCol, int lastCol);
    qint32 StyleIndex(const CellStyle& style);
    qint32 PictureIndex(const QIcon& picture);
    /// change gets each cell's style and alters it.
    template <typename Change>
    void ChangeStyles(int row, int firstCol, int lastCol, Change change);
    QString AccessibleText(int row, int col) const;

    int Rows_ = 1;
    int Cols_ = 0;
    int ShownRows_ = 1;
    bool Collecting_ = false;
    bool HeaderChanged_ = false;
    RowRange ChangedRows_;
    RowRange ChangedHeights_;

    // Queues rather than vectors: they grow in small pieces, without copying and without a reserve of half their size.
    mutable std::deque<QString> Texts_;
    /// What the row's texts from FirstLateCol_ on have yet to be made by; null for nothing.
    mutable std::deque<std::unique_ptr<const LateTexts>> LateOfRow_ = std::deque<std::unique_ptr<const LateTexts>>(1);
    mutable std::deque<bool> IsLate_ = std::deque<bool>(1); ///< They have not been made since.
    bool KeepsLate_ = false;
    int FirstLateCol_ = 0;
    std::deque<qint32> StyleOfCell_;
    std::deque<float> Heights_ = {-1};
    std::deque<qint32> AccessibleOfRow_ = {0};

    std::function<QString(int row)> NoteOf_; ///< Null while there are none.
    int NoteCol_ = 0;
    std::function<QList<RowMark>(int row)> MarksOf_; ///< The same.
    int MarksCol_ = 0;
    std::vector<Qt::Alignment> Alignments_;
    std::vector<CellStyle> Styles_ = {{}};
    QHash<CellStyle, qint32> StyleIndices_ = {{{}, 0}};
    std::vector<QIcon> Pictures_;
    QHash<qint64, qint32> PictureIndices_;
    QStringList AccessibleTexts_ = {QString()};
    QHash<QString, qint32> AccessibleIndices_ = {{QString(), 0}};
};
