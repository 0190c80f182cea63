// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/TableWidths.h"

#include <numeric>

QTextTableFormat TableWidths::FittedTo(double available, QTextTableFormat format)
{
    if (format.width().type() == QTextLength::FixedLength && format.width().rawValue() > available)
        format.setWidth(QTextLength(QTextLength::PercentageLength, 100));
    auto widths = format.columnWidthConstraints();
    const double sum = std::accumulate(widths.begin(), widths.end(), 0.0, [](double total, const QTextLength& one) {
        return total + (one.type() == QTextLength::FixedLength ? one.rawValue() : 0);
    });
    if (sum > available) {
        for (QTextLength& width : widths) {
            if (width.type() == QTextLength::FixedLength)
                width = QTextLength(QTextLength::PercentageLength, 100 * width.rawValue() / sum);
        }
        format.setColumnWidthConstraints(widths);
    }
    return format;
}
