// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// Appends text of a page with its character references ("&amp;", "&#8217;") resolved: the names of HTML 4 and all
/// numbers. What is none stays as it stands. For words that are looked for; pages that are shown go through the parser.
void AppendResolved(QString& text, QStringView markup);
