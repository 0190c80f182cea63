// SPDX-License-Identifier: Apache-2.0
#include "platform/html/TableBudget.h"

#include "platform/html/PageElements.h"

#include <QVector>

#include <algorithm>
#include <cstring>
#include <gumbo.h>

namespace
{
/// What all tables of a page may cost, in characters laid out; those on the outside are always shown.
constexpr qsizetype LayoutBudget = 2'000'000;
constexpr int DeepestTable = 12;
constexpr int TablesAlwaysShown = 2;
constexpr qsizetype WeightOfElement = 30;
/// Places of cells that all tables of a page may have, filled or not; some 50 microseconds of layout each.
constexpr qsizetype MostGridPlaces = 40'000;

struct OpenElement
{
    const GumboNode* Node;
    unsigned NextChild = 0;
    qsizetype Weight = WeightOfElement;
    qsizetype Rows = 0;    ///< Of a table.
    qsizetype Columns = 0; ///< Of a row, or of a table's widest one.
};

bool Is(const OpenElement& place, GumboTag tag)
{
    return place.Node->type == GUMBO_NODE_ELEMENT && place.Node->v.element.tag == tag;
}

/// Counts a cell for its row, and a row for its table: the nearest around it, which stands beyond a group of rows.
void CountInGrid(const OpenElement& done, QVector<OpenElement>& around)
{
    const bool isRow = Is(done, GUMBO_TAG_TR);
    if (!isRow && !Is(done, GUMBO_TAG_TD) && !Is(done, GUMBO_TAG_TH))
        return;
    // NOLINTNEXTLINE(modernize-loop-convert): reversed views do not compile with clang 14.
    for (auto place = around.rbegin(); place != around.rend(); ++place) {
        if (isRow && Is(*place, GUMBO_TAG_TABLE)) {
            ++place->Rows;
            place->Columns = std::max(place->Columns, done.Columns);
            return;
        }
        if (!isRow && Is(*place, GUMBO_TAG_TR)) {
            place->Columns += PageElements::SpanOf(done.Node, "colspan");
            return;
        }
        if (!isRow && Is(*place, GUMBO_TAG_TABLE))
            return;
    }
}
} // namespace

TableBudget::TableBudget(const GumboInternalNode* document, qsizetype mostCharacters) : MostCharacters_(mostCharacters)
{
    QVector<OpenElement> places{{document}};
    while (!places.isEmpty()) {
        OpenElement& top = places.last();
        const bool isDocument = top.Node->type == GUMBO_NODE_DOCUMENT;
        const GumboVector& children = isDocument ? top.Node->v.document.children : top.Node->v.element.children;
        if (top.NextChild < children.length) {
            const auto* child = static_cast<const GumboNode*>(children.data[top.NextChild++]);
            if (child->type == GUMBO_NODE_ELEMENT)
                places.append({child});
            else if (child->type == GUMBO_NODE_TEXT)
                top.Weight += static_cast<qsizetype>(std::strlen(child->v.text.text));
            continue;
        }
        const OpenElement done = places.takeLast();
        CountInGrid(done, places);
        if (Is(done, GUMBO_TAG_TABLE))
            Sizes_.insert(done.Node, {done.Weight, done.Rows * done.Columns});
        if (!places.isEmpty())
            places.last().Weight += done.Weight;
    }
}

bool TableBudget::Affords(const GumboInternalNode* table, int tablesAround)
{
    if (tablesAround >= DeepestTable)
        return false;
    const Size size = Sizes_.value(table);
    const qsizetype weight = MostCharacters_ > 0 ? std::min(size.Weight, MostCharacters_) : size.Weight;
    const qsizetype cost = weight << tablesAround;
    const qsizetype grid = size.Grid << tablesAround;
    const bool isTooLong = tablesAround >= TablesAlwaysShown && Cost_ + cost > LayoutBudget;
    // However few characters it holds, and wherever it stands.
    if (isTooLong || Grids_ + grid > MostGridPlaces)
        return false;
    Cost_ += cost;
    Grids_ += grid;
    return true;
}
