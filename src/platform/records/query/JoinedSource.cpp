// SPDX-License-Identifier: Apache-2.0
#include "platform/records/query/JoinedSource.h"

#include "platform/records/jetsql/CaseFolding.h"
#include "platform/records/query/CurrentRows.h"
#include "platform/records/query/StoredValues.h"

#include <algorithm>
#include <cstring>

namespace dao::query
{

using jetsql::Operator;

namespace
{

/// Whether an expression speaks of sources before that one only.
bool IsKnownBefore(const BoundExpression& expression, int number)
{
    if (const auto* column = std::get_if<BoundColumn>(&expression.Node))
        return column->Source < number;
    const auto* operation = std::get_if<BoundOperation>(&expression.Node);
    return operation == nullptr ||
           std::all_of(operation->Operands.begin(), operation->Operands.end(),
                       [number](const BoundExpression& operand) { return IsKnownBefore(operand, number); });
}

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

JoinedSource::JoinedSource(const BoundSource& source, int number, TableRows& rows) : Source_(source)
{
    rows.ForEachRow(source.Table, [this](const Row& row) {
        Rows_.push_back(row);
        return true;
    });
    FindKey(*source.Condition, number);
    if (KeyColumn_ != nullptr) {
        IndexRows(rows);
        return;
    }
    AllRows_.reserve(Rows_.size());
    for (const Row& row : Rows_)
        AllRows_.push_back(&row);
}

void JoinedSource::FindKey(const BoundExpression& condition, int number)
{
    const auto* operation = std::get_if<BoundOperation>(&condition.Node);
    if (operation == nullptr || KeyColumn_ != nullptr)
        return;
    if (operation->Kind == Operator::And) {
        for (const BoundExpression& operand : operation->Operands)
            FindKey(operand, number);
        return;
    }
    if (operation->Kind != Operator::Equal)
        return;
    for (const std::size_t side : {std::size_t{0}, std::size_t{1}}) {
        const auto* column = std::get_if<BoundColumn>(&operation->Operands[side].Node);
        if (column == nullptr || column->Source != number || !IsKnownBefore(operation->Operands[1 - side], number))
            continue;
        KeyColumn_ = column;
        KeyValue_ = &operation->Operands[1 - side];
        return;
    }
}

void JoinedSource::IndexRows(TableRows& rows)
{
    CurrentRows current({Source_.Table}, rows);
    for (const Row& row : Rows_) {
        current.Set(0, &row);
        const StoredValue value = current.ValueAt({0, KeyColumn_->Column});
        if (!IsNull(value))
            RowsByKey_[KeyOf(value)].push_back(&row);
    }
}

const std::vector<const Row*>& JoinedSource::Candidates(const Evaluator& before) const
{
    static const std::vector<const Row*> none;
    if (KeyColumn_ == nullptr)
        return AllRows_;
    const StoredValue value = before.Value(*KeyValue_);
    const auto found = IsNull(value) ? RowsByKey_.end() : RowsByKey_.find(KeyOf(value));
    return found == RowsByKey_.end() ? none : found->second;
}

} // namespace dao::query
