// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QRectF>
#include <QSizeF>
#include <QString>

class cPageSetup;

/// Where labels lie on sheets of paper. All lengths are millimetres from the top left corner of the paper, whatever
/// part of it a printer can reach. Each place is computed from the corner, never from its neighbour, so that nothing
/// drifts from row to row. Labels follow each other row by row, from left to right.
namespace LabelLayout
{
/// Upright.
constexpr QSizeF A4{210, 297};
constexpr QSizeF Letter{215.9, 279.4};

struct LabelPlace
{
    int Sheet = 0; ///< 0 for the first.
    QRectF Label;
};

/// 0 where the page setup has no rows, no columns or no size.
int LabelsPerSheet(const cPageSetup& pageSetup);
/// Sheets for so many labels when the first is printed on the label startAt of the first sheet, 1 for its top left one.
/// A startAt that is not on the sheet counts as the nearest that is. 0 where there is nothing to print or nowhere.
int SheetCount(const cPageSetup& pageSetup, int labels, int startAt);
/// The first label of a sheet, as PlaceOf counts them; no less than 0.
int FirstLabelOf(const cPageSetup& pageSetup, int sheet, int startAt);
/// The place of a label, 0 for the first that is printed. There must be labels on the sheet.
LabelPlace PlaceOf(const cPageSetup& pageSetup, int label, int startAt);
/// The part of a label that a text may cover: away from the label's edges, and on the paper but for its right and
/// bottom margin. Empty where nothing is left.
QRectF TextArea(const cPageSetup& pageSetup, const QSizeF& paper, const QRectF& label);
/// What is wrong with the page setup on that paper, in words for the user; empty when all labels are on it.
QString Problem(const cPageSetup& pageSetup, const QSizeF& paper);
} // namespace LabelLayout
