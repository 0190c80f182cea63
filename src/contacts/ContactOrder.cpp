// SPDX-License-Identifier: Apache-2.0
#include "contacts/ContactOrder.h"

#include "common/SearchFold.h"

#include <algorithm>
#include <utility>
#include <vector>

QList<clsKVContactPtr> ContactOrder::ByName(const QList<clsKVContactPtr>& contacts)
{
    std::vector<std::pair<QString, clsKVContactPtr>> named;
    named.reserve(static_cast<size_t>(contacts.size()));
    for (const clsKVContactPtr& contact : contacts)
        named.emplace_back(SearchFold::Folded(contact->Name), contact);
    std::sort(named.begin(), named.end(), [](const auto& one, const auto& other) {
        if (const int difference = one.first.compare(other.first); difference != 0)
            return difference < 0;
        return one.second->Reference < other.second->Reference;
    });
    QList<clsKVContactPtr> ordered;
    ordered.reserve(contacts.size());
    for (auto& [name, contact] : named)
        ordered.append(std::move(contact));
    return ordered;
}
