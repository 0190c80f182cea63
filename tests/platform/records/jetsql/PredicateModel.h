// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/jetsql/SyntaxTree.h"

#include <QMap>
#include <QString>

/// The meaning of a condition in plain C++, written to be obvious rather than fast and sharing no code with what it
/// checks. Knows the operators over whole numbers, doubles and texts that random trees are made of.
namespace PredicateModel
{

using Row = QMap<QString, QVariant>;

/// Null, qint64, double or QString. Conditions give the qint64 -1 or 0.
QVariant Evaluate(const dao::jetsql::Expression& expression, const Row& row);

/// Whether a WHERE keeps the row.
bool Keeps(const dao::jetsql::Expression& condition, const Row& row);

} // namespace PredicateModel
