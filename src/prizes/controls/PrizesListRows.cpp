// SPDX-License-Identifier: Apache-2.0

// The rows of the prizes list: what a prize looks like in the grid.

#include "common/controls/GridColumn.h"
#include "platform/widgets/FlexGrid.h"
#include "platform/widgets/SystemColour.h"
#include "platform/widgets/Twips.h"
#include "prizes/RelativeTime.h"
#include "prizes/controls/PrizesListNames.h"
#include "prizes/controls/uPrizesList.h"

#include <algorithm>

namespace
{
constexpr double GridMargin = 90;
constexpr double RowMargin = 90;

/// What the texts of a prize's row are made of.
struct RowSource
{
    qint32 Reference;
    QString Title;
    QString SecondLine; ///< Empty for none: what is left of the prize, or when it was won.
    bool IsDoubleHeight;
};

/// What the widths of the columns depend on.
struct GridSpace
{
    double Width;
};

QString TitleText(const RowSource& row)
{
    const QString title = row.Title.trimmed();
    return row.IsDoubleHeight ? title + QLatin1Char('\r') + row.SecondLine : title;
}

/// The grid's columns, in the order of PrizesListColumn.
constexpr GridColumn<RowSource, GridSpace> Columns[] = {
    {"Reference", [](const GridSpace&) { return 0.0; },
     [](const RowSource& row) { return QString::number(row.Reference); }},
    {"Title", [](const GridSpace& space) { return std::max(0.0, space.Width - GridMargin); }, TitleText},
};
static_assert(std::size(Columns) == columnCount);
} // namespace

void uPrizesList::MakeGridHeader()
{
    grdList_->SetRedraw(false);
    MakeColumns(*grdList_, Columns);
    grdList_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    grdList_->SetRedraw(true);
}

void uPrizesList::SizeColumns()
{
    if (grdList_->Cols() < columnCount)
        return;
    SizeColumnsOf(*grdList_, Columns, GridSpace{Twips::FromPixels(*grdList_, grdList_->width())});
}

/// One line for the heading, one or two such lines for each prize.
void uPrizesList::SetGridRowHeights()
{
    const double line = Twips::FromPixels(*grdList_, grdList_->fontMetrics().lineSpacing()) + RowMargin;
    grdList_->SetRowHeight(0, line);
    grdList_->SetDefaultRowHeight(DoubleHeightRows_ ? 2 * grdList_->RowHeight(0) : grdList_->RowHeight(0));
}

uPrizesList::Line uPrizesList::LineOf(const cPrize& prize)
{
    return {prize.Reference(), prize.Title(), prize.NumberSupplied(), prize.NumberWinners(), prize.LastWonDate()};
}

ReadRow uPrizesList::AsShown(const Line& line) const
{
    // How long ago it was won is another text at another time.
    const quint64 signature = CurrentCategory_ == plcRecentlyWonPrizes
                                  ? qHashMulti(1, line.Title, TolvaControlsFN::RelativeTimeText(line.LastWon))
                                  : qHashMulti(1, line.Title, line.NumberSupplied, line.NumberWinners);
    return {line.Reference, signature == 0 ? 1 : signature};
}

void uPrizesList::DisplayPrize(int row, const cPrizePtr& prize)
{
    if (prize)
        DrawLine(row, LineOf(*prize));
}

void uPrizesList::DrawLine(int row, const Line& line)
{
    if (row < 1 || row > grdList_->Rows() - 1)
        return;
    const RowSource source{line.Reference, line.Title, DoubleHeightRows_ ? SecondLine(line) : QString(),
                           DoubleHeightRows_};
    for (int column = 0; column < columnCount; ++column)
        grdList_->SetTextMatrix(row, column, Columns[column].Text(source));
    RowOfReference_.insert(line.Reference, row);
    const auto place = static_cast<std::size_t>(row) - 1;
    if (place < ShownRows_.size())
        ShownRows_[place] = AsShown(line);
    grdList_->SetCellBackColour(row, colTitle, colTitle, SystemColour::WindowBackground);
    grdList_->SetCellForeColour(row, colTitle, colTitle, SystemColour::WindowText);
}

QString uPrizesList::SecondLine(const Line& line) const
{
    const qint64 supplied = line.NumberSupplied;
    const qint64 won = line.NumberWinners;
    switch (CurrentCategory_) {
    case plcAvailable:
    case plcAllAvailable:
        return won < supplied ? QStringLiteral("(%1 Available)").arg(supplied - won) : QString();
    case plcRecentlyWonPrizes:
        return TolvaControlsFN::RelativeTimeText(line.LastWon);
    default:
        return won >= supplied ? QStringLiteral("(All Prizes - %1 - Won)").arg(supplied)
                               : QStringLiteral("(%1 of %2 Won)").arg(won).arg(supplied);
    }
}
void uPrizesList::TakeSelection()
{
    if (IsBusy_)
        return;
    const int row = grdList_->Row();
    if (row < 1) {
        SelectedReference_ = 0;
        Q_EMIT PrizeSelected(nullptr);
        return;
    }
    SelectedReference_ = ReferenceOfRow(row);
    if (const cPrizePtr prize = SelectedPrize(true))
        Q_EMIT PrizeSelected(prize);
}
