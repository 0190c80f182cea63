#pragma once

#include <QString>

/// A rough and quick look at a page without making a tree of it, in time proportional to its length.
namespace TagScanner
{
/// How deep elements nest at most, counting only elements whose end tags may not be left out.
qsizetype Depth(const QString& html);
/// The page's text without tags, comments, scripts and style sheets; entities stay as they are. Line ends stand where
/// blocks begin.
QString TextOf(const QString& html);
} // namespace TagScanner
