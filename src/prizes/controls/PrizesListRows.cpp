// SPDX-License-Identifier: Apache-2.0

// The rows of the prizes list: what a prize looks like in the grid.

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
} // namespace

void uPrizesList::MakeGridHeader()
{
    grdList_->SetRedraw(false);
    grdList_->SetRows(1);
    grdList_->SetCols(columnCount);
    grdList_->SetTextMatrix(0, colReference, QStringLiteral("Reference"));
    grdList_->SetTextMatrix(0, colTitle, QStringLiteral("Title"));
    for (int column = 0; column < columnCount; ++column)
        grdList_->SetColAlignment(column, Qt::AlignLeft | Qt::AlignVCenter);
    grdList_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    grdList_->SetRedraw(true);
}

void uPrizesList::SizeColumns()
{
    if (grdList_->Cols() < columnCount)
        return;
    const double width = Twips::FromPixels(*grdList_, grdList_->width());
    grdList_->SetColWidth(colReference, 0);
    grdList_->SetColWidth(colTitle, std::max(0.0, width - GridMargin));
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
    grdList_->SetTextMatrix(row, colReference, QString::number(line.Reference));
    RowOfReference_.insert(line.Reference, row);
    const auto place = static_cast<std::size_t>(row) - 1;
    if (place < ShownRows_.size())
        ShownRows_[place] = AsShown(line);
    QString text = line.Title.trimmed();
    if (DoubleHeightRows_)
        text += QLatin1Char('\r') + SecondLine(line);
    grdList_->SetTextMatrix(row, colTitle, text);
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
