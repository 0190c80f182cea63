// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// The words of an HTML page as plain text. An approximation for reading in a terminal: tags go, scripts and styles
/// with all they hold, blocks begin new lines, the commonest character references are resolved. It does not lay out
/// tables and does not know what a style hides.
QString TextOfHtml(const QString& html);
