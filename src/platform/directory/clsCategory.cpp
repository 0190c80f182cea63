// SPDX-License-Identifier: Apache-2.0
#include "platform/directory/clsCategory.h"

#include <QHash>

#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>

namespace
{
constexpr std::size_t noParent = std::numeric_limits<std::size_t>::max();

using Nodes = std::vector<std::unique_ptr<clsCategory>>;

int Number(const dao::Field& field)
{
    return field.Value().toInt();
}

bool FitsReference(int number)
{
    return number >= std::numeric_limits<qint16>::min() && number <= std::numeric_limits<qint16>::max();
}

/// All rows, each a node of its own as yet. A snapshot, so that nobody else's change comes between two rows.
Nodes ReadRows(dao::Database& database, const QString& tableName)
{
    const std::unique_ptr<dao::Recordset> rows = database.OpenRecordset(tableName, dao::dbOpenSnapshot);
    const dao::Recordset& columns = *rows;
    const dao::Field& reference = columns[QStringLiteral("Reference")];
    const dao::Field& parentReference = columns[QStringLiteral("ParentReference")];
    const dao::Field& description = columns[QStringLiteral("Description")];
    const dao::Field& sortKey = columns[QStringLiteral("SortKey")];
    const dao::Field& foreColour = columns[QStringLiteral("ForeColour")];
    const dao::Field& backColour = columns[QStringLiteral("BackColour")];
    const dao::Field& endHours = columns[QStringLiteral("EndHours")];
    const dao::Field& killHours = columns[QStringLiteral("KillHours")];
    const dao::Field& userLong = columns[QStringLiteral("UserLong")];
    const dao::Field& userString = columns[QStringLiteral("UserString")];
    const dao::Field& iconReference = columns[QStringLiteral("IconReference")];

    Nodes nodes;
    for (; !rows->AtEOF(); rows->MoveNext()) {
        // A number that no folder can bear makes none; it keeps nobody from the others.
        if (!FitsReference(Number(reference)))
            continue;
        auto node = std::make_unique<clsCategory>();
        node->SetReference(static_cast<qint16>(Number(reference)));
        node->SetParentReference(Number(parentReference));
        node->SetDescription(description.Value().toString());
        node->SetSortKey(Number(sortKey));
        node->SetForeColour(Number(foreColour));
        node->SetBackColour(Number(backColour));
        node->SetEndHours(Number(endHours));
        node->SetKillHours(Number(killHours));
        node->SetUserLong(Number(userLong));
        node->SetUserString(userString.Value().toString());
        node->SetIconReference(iconReference.Value().toString());
        nodes.push_back(std::move(node));
    }
    return nodes;
}

bool StandsBefore(const std::unique_ptr<clsCategory>& a, const std::unique_ptr<clsCategory>& b)
{
    if (a->SortKey() != b->SortKey())
        return a->SortKey() < b->SortKey();
    if (a->IsFixed() != b->IsFixed())
        return a->IsFixed();
    if (a->IsFixed())
        return a->Reference() < b->Reference();
    const int order = a->Description().compare(b->Description(), Qt::CaseInsensitive);
    return order != 0 ? order < 0 : a->Reference() < b->Reference();
}

/// The place of each node's parent in the same list; noParent at the top level and where the parent is absent.
std::vector<std::size_t> FindParents(const Nodes& nodes)
{
    QHash<qint32, std::size_t> places;
    places.reserve(static_cast<qsizetype>(nodes.size()));
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        // 0 means "no parent" in every row, also where a row bears that number.
        if (nodes[i]->Reference() != 0 && !places.contains(nodes[i]->Reference()))
            places.insert(nodes[i]->Reference(), i);
    }
    std::vector<std::size_t> parents;
    parents.reserve(nodes.size());
    for (const auto& node : nodes)
        parents.push_back(places.value(node->ParentReference(), noParent));
    return parents;
}

/// Parts the lowest reference of the ring that this node is in from its parent.
void CutRing(const Nodes& nodes, std::vector<std::size_t>& parents, std::size_t start)
{
    std::size_t lowest = start;
    for (std::size_t i = parents[start]; i != start; i = parents[i]) {
        if (nodes[i]->Reference() < nodes[lowest]->Reference())
            lowest = i;
    }
    parents[lowest] = noParent;
}

/// Follows each node up to the top level, no step twice. A walk that meets its own steps has found a ring.
void CutRings(const Nodes& nodes, std::vector<std::size_t>& parents)
{
    std::vector<std::size_t> walkOf(nodes.size(), 0);
    for (std::size_t start = 0; start < nodes.size(); ++start) {
        const std::size_t walk = start + 1;
        std::size_t i = start;
        while (i != noParent && walkOf[i] == 0) {
            walkOf[i] = walk;
            i = parents[i];
        }
        if (i != noParent && walkOf[i] == walk)
            CutRing(nodes, parents, i);
    }
}
} // namespace

clsCategory::~clsCategory()
{
    // Children are taken out before their parent goes; else each level of the tree would take a level of the stack.
    std::vector<std::unique_ptr<clsCategory>> pending = std::move(SubCategories_);
    while (!pending.empty()) {
        const std::unique_ptr<clsCategory> node = std::move(pending.back());
        pending.pop_back();
        std::move(node->SubCategories_.begin(), node->SubCategories_.end(), std::back_inserter(pending));
        node->SubCategories_.clear();
    }
}

void clsCategory::LoadCategories(dao::Database& database, const QString&, const QString& tableName)
{
    Nodes nodes = ReadRows(database, tableName);
    std::sort(nodes.begin(), nodes.end(), StandsBefore);
    std::vector<std::size_t> parents = FindParents(nodes);
    CutRings(nodes, parents);

    // The nodes stay where they are in memory while their owners change, so places and pointers hold throughout.
    std::vector<clsCategory*> all;
    all.reserve(nodes.size());
    for (const auto& node : nodes)
        all.push_back(node.get());
    clsCategory whole;
    for (std::size_t i = 0; i < all.size(); ++i) {
        clsCategory& parent = parents[i] == noParent ? whole : *all[parents[i]];
        parent.SubCategories_.push_back(std::move(nodes[i]));
    }

    if (Reference_ == 0) {
        SubCategories_.swap(whole.SubCategories_);
    } else if (clsCategory* const found = whole.FindCategory(Reference_)) {
        *this = std::move(*found);
    } else {
        SubCategories_.clear();
    }
}

const clsCategory* clsCategory::FindCategory(qint32 reference) const
{
    if (Reference_ == reference)
        return this;
    std::vector<const clsCategory*> pending{this};
    while (!pending.empty()) {
        const clsCategory* const node = pending.back();
        pending.pop_back();
        for (const auto& child : node->SubCategories_) {
            if (child->Reference_ == reference)
                return child.get();
            if (!child->SubCategories_.empty())
                pending.push_back(child.get());
        }
    }
    return nullptr;
}

clsCategory* clsCategory::FindCategory(qint32 reference)
{
    return const_cast<clsCategory*>(std::as_const(*this).FindCategory(reference));
}

const clsCategory* clsCategory::SubCategory(int index) const
{
    if (index < 1 || index > SubCategoryCount())
        return nullptr;
    return SubCategories_[static_cast<std::size_t>(index - 1)].get();
}

clsCategory* clsCategory::SubCategory(int index)
{
    return const_cast<clsCategory*>(std::as_const(*this).SubCategory(index));
}

clsCategory& clsCategory::AddSubCategory(std::unique_ptr<clsCategory> category)
{
    category->ParentReference_ = Reference_;
    SubCategories_.push_back(std::move(category));
    return *SubCategories_.back();
}

std::unique_ptr<clsCategory> clsCategory::TakeSubCategory(int index)
{
    if (index < 1 || index > SubCategoryCount())
        return nullptr;
    const auto place = SubCategories_.begin() + (index - 1);
    std::unique_ptr<clsCategory> taken = std::move(*place);
    SubCategories_.erase(place);
    return taken;
}
