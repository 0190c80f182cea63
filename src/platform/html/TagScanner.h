// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/html/HtmlTree.h"

#include <QString>

/// A rough and quick look at a page without making a tree of it, in time proportional to its length.
namespace TagScanner
{
/// How long the page may be parsed: little for one whose tags nest deeper than a tree may be. It is a guess, which
/// saves time and decides nothing else.
HtmlPatience PatienceWith(const QString& html);
/// The page's text without tags, comments, scripts and style sheets; entities stay as they are. Line ends stand where
/// blocks begin.
QString TextOf(const QString& html);
/// The words that a reader sees, with their entities resolved: what stands in several elements of one line is one word
/// (as in "<b>light</b>house"), and what an element's own style hides is left out. Style sheets do not count.
QString ShownText(const QString& html);
} // namespace TagScanner
