// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// Text that others wrote, made fit for a terminal as common/HarmlessText.h says.

/// On one line: line ends and tabs become blanks.
QString OneLine(const QString& text);

/// Columns that one line of text takes: two for East Asian wide characters and emoji, none for combining marks.
int DisplayWidth(QStringView text);

/// The text on one line in exactly that many columns: cut with an ellipsis, or filled with blanks. Of a joined emoji
/// the first picture is kept, because terminals disagree on the width of the whole. Text with right-to-left letters
/// stands in an isolate, so that it does not reorder its neighbours.
QString Cell(const QString& text, int width);
