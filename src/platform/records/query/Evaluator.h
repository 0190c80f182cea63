// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/Error.h"
#include "platform/records/query/BoundTree.h"
#include "platform/records/query/ParameterTable.h"

namespace dao::query
{

/// The row that an expression is worked out over: one row of each source.
class RowValues
{
public:
    RowValues() = default;
    virtual ~RowValues() = default;
    RowValues(const RowValues&) = delete;
    RowValues& operator=(const RowValues&) = delete;

    /// A cell, a memo's whole text included; Null for a source without a row. A text may be a view of octets that live
    /// until the row changes.
    virtual StoredValue ValueAt(const BoundColumn& column) = 0;
};

/// Works out bound expressions: what a query means, in one place. Holds references to both, which must live as long.
///
/// Truth is -1 and 0, with Null for unknown. Texts compare by CompareText. Whole numbers stay whole where they fit 64
/// bits, and become floating-point numbers beyond; what is not a number (infinity less infinity) is Null. Division
/// gives a floating-point number; division and MOD by zero give Null.
class Evaluator
{
public:
    Evaluator(RowValues& row, const ParameterTable& parameters) : Row_(row), Parameters_(parameters) {}

    /// Of anything but an aggregate. A text may be a view of the row's.
    StoredValue Value(const BoundExpression& expression) const;
    /// Whether a condition holds; a condition that is Null does not.
    bool Holds(const BoundExpression& condition) const;

private:
    StoredValue Operation(const BoundOperation& operation, ValueType type) const;
    StoredValue Chain(const BoundOperation& operation, bool decisive) const;
    StoredValue Comparison(const BoundOperation& operation) const;
    StoredValue Between(const BoundOperation& operation) const;
    StoredValue In(const BoundOperation& operation) const;
    StoredValue Like(const BoundOperation& operation) const;

    RowValues& Row_;
    const ParameterTable& Parameters_;
};

/// COUNT, MAX, MIN or SUM over the rows that it is given.
class Accumulator
{
public:
    explicit Accumulator(jetsql::AggregateFunction function) : Function_(function) {}

    /// A row's value; for COUNT(*) anything but Null.
    void Add(const StoredValue& value);
    /// Null for no values, but 0 for COUNT. Error SumOverflow.
    StoredValue Result() const;

private:
    void AddToSum(const StoredValue& value);

    jetsql::AggregateFunction Function_;
    qint64 Count_ = 0;
    StoredValue Best_;
    qint64 WholeSum_ = 0;
    double RealSum_ = 0;
    bool IsWhole_ = true;
    bool HasOverflown_ = false;
};

/// Error 6: the SUM of whole numbers is beyond 64 bits.
Error SumOverflow();

} // namespace dao::query
