#include "platform/html/TableBudget.h"

#include <QVector>

#include <cstring>
#include <gumbo.h>

namespace
{
/// What all tables of a page may cost, in characters laid out; those on the outside are always shown.
constexpr qsizetype LayoutBudget = 2'000'000;
constexpr int DeepestTable = 12;
constexpr int TablesAlwaysShown = 2;
constexpr qsizetype WeightOfElement = 30;

struct Place
{
    const GumboNode* Node;
    unsigned NextChild = 0;
    qsizetype Weight = WeightOfElement;
};
} // namespace

TableBudget::TableBudget(const GumboInternalNode* document, qsizetype mostCharacters) : MostCharacters_(mostCharacters)
{
    QVector<Place> places{{document}};
    while (!places.isEmpty()) {
        Place& top = places.last();
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
        const Place done = places.takeLast();
        if (!isDocument && done.Node->v.element.tag == GUMBO_TAG_TABLE)
            Weights_.insert(done.Node, done.Weight);
        if (!places.isEmpty())
            places.last().Weight += done.Weight;
    }
}

bool TableBudget::Affords(const GumboInternalNode* table, int tablesAround)
{
    if (tablesAround >= DeepestTable)
        return false;
    qsizetype weight = Weights_.value(table);
    if (MostCharacters_ > 0)
        weight = std::min(weight, MostCharacters_);
    const qsizetype cost = weight << tablesAround;
    if (tablesAround >= TablesAlwaysShown && Cost_ + cost > LayoutBudget)
        return false;
    Cost_ += cost;
    return true;
}
