// SPDX-License-Identifier: Apache-2.0
#include "common/LabelLayout.h"

#include "common/cPageSetup.h"

namespace
{
constexpr double Padding = 3; // millimetres
/// Letter has tenths of a millimetre, and doubles have less than whole ones.
constexpr double Tolerance = 0.001;

int FirstLabel(const cPageSetup& pageSetup, int startAt)
{
    return qBound(1, startAt, LabelLayout::LabelsPerSheet(pageSetup)) - 1;
}

QString Beyond(double length, const QString& edge)
{
    return QStringLiteral("The labels reach %1 mm beyond the %2 edge of the paper.")
        .arg(QString::number(length, 'g', 4), edge);
}
} // namespace

int LabelLayout::LabelsPerSheet(const cPageSetup& pageSetup)
{
    if (pageSetup.NumberRows() <= 0 || pageSetup.NumberColumns() <= 0 || pageSetup.RowHeight() <= 0 ||
        pageSetup.ColumnWidth() <= 0)
        return 0;
    constexpr qint64 Most = 1'000'000;
    return static_cast<int>(qMin(Most, qint64(pageSetup.NumberRows()) * pageSetup.NumberColumns()));
}

int LabelLayout::SheetCount(const cPageSetup& pageSetup, int labels, int startAt)
{
    const int perSheet = LabelsPerSheet(pageSetup);
    if (perSheet == 0 || labels <= 0)
        return 0;
    return (FirstLabel(pageSetup, startAt) + labels - 1) / perSheet + 1;
}

int LabelLayout::FirstLabelOf(const cPageSetup& pageSetup, int sheet, int startAt)
{
    return qMax(0, sheet * LabelsPerSheet(pageSetup) - FirstLabel(pageSetup, startAt));
}

LabelLayout::LabelPlace LabelLayout::PlaceOf(const cPageSetup& pageSetup, int label, int startAt)
{
    const int position = FirstLabel(pageSetup, startAt) + label;
    const int perSheet = LabelsPerSheet(pageSetup);
    const int onSheet = position % perSheet;
    const int row = onSheet / pageSetup.NumberColumns();
    const int column = onSheet % pageSetup.NumberColumns();
    LabelPlace place;
    place.Sheet = position / perSheet;
    place.Label = QRectF(pageSetup.LeftMargin() + double(column) * pageSetup.ColumnWidth(),
                         pageSetup.TopMargin() + double(row) * pageSetup.RowHeight(), pageSetup.ColumnWidth(),
                         pageSetup.RowHeight());
    return place;
}

QRectF LabelLayout::TextArea(const cPageSetup& pageSetup, const QSizeF& paper, const QRectF& label)
{
    const QRectF printed(0, 0, paper.width() - qMax(0, pageSetup.RightMargin()),
                         paper.height() - qMax(0, pageSetup.BottomMargin()));
    const QRectF area = label.adjusted(Padding, Padding, -Padding, -Padding);
    return area.isValid() && printed.isValid() ? area.intersected(printed) : QRectF();
}

QString LabelLayout::Problem(const cPageSetup& pageSetup, const QSizeF& paper)
{
    if (pageSetup.NumberRows() <= 0 || pageSetup.NumberColumns() <= 0)
        return QStringLiteral("There are no labels on the sheet: the number of rows or columns is 0.");
    if (pageSetup.RowHeight() <= 0 || pageSetup.ColumnWidth() <= 0)
        return QStringLiteral("The labels have no size: their width or height is 0.");
    if (pageSetup.LeftMargin() < 0)
        return Beyond(-double(pageSetup.LeftMargin()), QStringLiteral("left"));
    if (pageSetup.TopMargin() < 0)
        return Beyond(-double(pageSetup.TopMargin()), QStringLiteral("top"));
    const double right =
        pageSetup.LeftMargin() + double(pageSetup.NumberColumns()) * pageSetup.ColumnWidth() - paper.width();
    if (right > Tolerance)
        return Beyond(right, QStringLiteral("right"));
    const double bottom =
        pageSetup.TopMargin() + double(pageSetup.NumberRows()) * pageSetup.RowHeight() - paper.height();
    return bottom > Tolerance ? Beyond(bottom, QStringLiteral("bottom")) : QString();
}
