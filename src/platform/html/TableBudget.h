// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QHash>

struct GumboInternalNode;

/// Which of a page's tables stay tables. Rich text lays the content of a table out twice for each table around it, so
/// that a short page can cost years; and each row of a table costs as much as its widest row. The tables beyond the
/// budget are written as paragraphs. For one page, whose tree outlives it.
class TableBudget
{
public:
    /// mostCharacters: how much of the page is written at most; 0 for all of it.
    explicit TableBudget(const GumboInternalNode* document, qsizetype mostCharacters = 0);

    /// Whether a table within so many others can be laid out in good time; it is then charged for.
    bool Affords(const GumboInternalNode* table, int tablesAround);

    /// What laying a table out takes.
    struct Size
    {
        qsizetype Weight = 0; ///< Characters, tables within it included.
        qsizetype Grid = 0;   ///< Places of cells: its rows times the columns of its widest one.
    };

private:
    QHash<const GumboInternalNode*, Size> Sizes_;
    qsizetype MostCharacters_;
    qsizetype Cost_ = 0;
    qsizetype Grids_ = 0;
};
