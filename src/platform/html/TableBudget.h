#pragma once

#include <QHash>

struct GumboInternalNode;

/// Which of a page's tables stay tables. Rich text lays the content of a table out twice for each table around it, so
/// that a short page can cost years; the tables beyond the budget are written as paragraphs. For one page, whose tree
/// outlives it.
class TableBudget
{
public:
    /// mostCharacters: how much of the page is written at most; 0 for all of it.
    explicit TableBudget(const GumboInternalNode* document, qsizetype mostCharacters = 0);

    /// Whether a table within so many others can be laid out in good time; it is then charged for.
    bool Affords(const GumboInternalNode* table, int tablesAround);

private:
    QHash<const GumboInternalNode*, qsizetype> Weights_;
    qsizetype MostCharacters_;
    qsizetype Cost_ = 0;
};
