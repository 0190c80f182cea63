// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/engines/Engine.h"

#include <random>

/// Random texts of queries over two tables, their rows and the values of their parameters. Most queries are right; some
/// compare what cannot be compared, name what is not there, or lack a parameter's value.
class RandomQueries
{
public:
    explicit RandomQueries(unsigned seed) : Random_(seed) {}

    /// T: Id (counter), N (integer), L (long), D (double), S (text), W (date), B (truth value), M (memo).
    /// U: Key (counter), Ref (long, indexed), S (text, indexed), R (single), X (memo that takes no empty text).
    static dao::engine::Table FirstTable();
    static dao::engine::Table SecondTable();
    /// A value for the column, as it is stored; often Null.
    dao::StoredValue ValueFor(const dao::engine::Column& column);

    /// With everything in its ORDER BY that tells rows apart.
    struct Select
    {
        QString Text;
        bool IsOrdered = false; ///< Whether ORDER BY leaves no two rows equal.
    };
    Select MakeSelect();
    struct Change
    {
        QString Text;
        int Assignments = 0;
    };
    Change MakeChange();
    dao::engine::ParameterValues MakeParameters();

    int Below(int limit) { return static_cast<int>(Random_() % static_cast<unsigned>(limit)); }

private:
    bool OneIn(int chances) { return Below(chances) == 0; }
    QString OneOf(const QStringList& choices) { return choices.at(Below(static_cast<int>(choices.size()))); }
    QString Condition(int depth);
    QString Comparison(int depth);
    QString Like(int depth);
    QString Among(int depth);
    QString Number(int depth);
    QString NumberLiteral();
    QString Text(int depth);
    QString Date(int depth);
    QString Anything(int depth);
    QString Column(const QStringList& ofFirst, const QStringList& ofSecond);
    QString Chained(const char* word, int depth);
    QString Items();
    QString Aggregates();
    QString Source();
    QString Where(int depth);

    std::mt19937 Random_;
    bool HasFirst_ = true;  ///< What the query under way names behind FROM.
    bool HasSecond_ = true; ///< Either or both.
    bool IsTame_ = false;   ///< Whether numbers have to be such that a sum is exact in any order.
};
