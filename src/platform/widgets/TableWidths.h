// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QTextTableFormat>

/// How wide the tables of a page may be, on the screen as on paper.
namespace TableWidths
{
/// The format with its fixed widths made shares of the width that there is, where they are too wide for it. available:
/// in the units of the document.
QTextTableFormat FittedTo(double available, QTextTableFormat format);
} // namespace TableWidths
