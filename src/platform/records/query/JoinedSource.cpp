// SPDX-License-Identifier: Apache-2.0
#include "platform/records/query/JoinedSource.h"

#include "platform/records/jetsql/CaseFolding.h"
#include "platform/records/query/CurrentRows.h"
#include "platform/records/query/StoredValues.h"

#include <cstring>

namespace dao::query
{

namespace
{

/// The same for values that are equal, and for few others.
std::string KeyOf(const StoredValue& value)
{
    if (IsNumber(value)) {
        const double number = RealIn(value) + 0.0; // A negative zero becomes the other one.
        std::string key(1 + sizeof number, 'n');
        std::memcpy(key.data() + 1, &number, sizeof number);
        return key;
    }
    std::string key(1, 't');
    for (jetsql::Utf8Reader reader(TextIn(value)); !reader.AtEnd();) {
        const char32_t character = jetsql::Fold(reader.Next());
        key.append(reinterpret_cast<const char*>(&character), character < 0x80 ? 1 : sizeof character);
    }
    return key;
}

} // namespace

JoinedSource::JoinedSource(const BoundSource& source, int number, TableRows& rows)
    : Source_(source), Key_(FindKey(*source.Condition, number))
{
    rows.ForEachRow(source.Table, [this](const Row& row) {
        Rows_.push_back(row);
        return true;
    });
    if (Key_.Column != nullptr) {
        IndexRows(rows);
        return;
    }
    AllRows_.reserve(Rows_.size());
    for (const Row& row : Rows_)
        AllRows_.push_back(&row);
}

void JoinedSource::IndexRows(TableRows& rows)
{
    CurrentRows current({Source_.Table}, rows);
    for (const Row& row : Rows_) {
        current.Set(0, &row);
        const StoredValue value = current.ValueAt({0, Key_.Column->Column});
        if (!IsNull(value))
            RowsByKey_[KeyOf(value)].push_back(&row);
    }
}

const std::vector<const Row*>& JoinedSource::Candidates(const Evaluator& before) const
{
    static const std::vector<const Row*> none;
    if (Key_.Column == nullptr)
        return AllRows_;
    const StoredValue value = before.Value(*Key_.Value);
    const auto found = IsNull(value) ? RowsByKey_.end() : RowsByKey_.find(KeyOf(value));
    return found == RowsByKey_.end() ? none : found->second;
}

} // namespace dao::query
