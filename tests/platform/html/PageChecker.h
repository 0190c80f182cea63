// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

/// Parses a page that is said to be safe anew and looks for what must not be on one.
namespace PageChecker
{
/// What is not allowed on the page, one line each; empty for a safe page.
QStringList Faults(const QString& html);
/// The page's text as a reader sees it, blanks simplified.
QString TextOf(const QString& html);
} // namespace PageChecker
