// SPDX-License-Identifier: Apache-2.0
#include "platform/records/Error.h"
#include "platform/records/jetsql/MemoryDatabase.h"
#include "platform/records/jetsql/Parser.h"
#include "platform/records/jetsql/PredicateModel.h"
#include "platform/records/jetsql/TreePrinter.h"

#include <gtest/gtest.h>

#include <random>

using namespace dao;
using namespace dao::jetsql;

namespace
{
/// Random conditions in which types agree.
class RandomTree
{
public:
    explicit RandomTree(unsigned int seed) : Random_(seed) {}

    unsigned int Below(unsigned int bound) { return static_cast<unsigned int>(Random_() % bound); }

    Expression Condition(int depth)
    {
        switch (depth <= 0 ? 3 + Below(7) : Below(10)) {
        case 0:
            return Many(Operator::And, depth);
        case 1:
            return Many(Operator::Or, depth);
        case 2:
            return Make(Operator::Not, Condition(depth - 1));
        case 3:
            return Make(Comparison(), Number(depth - 1), Number(depth - 1));
        case 4:
            return Make(Comparison(), Text(depth - 1), Text(depth - 1));
        case 5:
            return Make(Below(3) == 0 ? Operator::NotLike : Operator::Like, Text(depth - 1), Pattern());
        case 6:
            return Make(Below(2) == 0 ? Operator::IsNull : Operator::IsNotNull,
                        Below(2) == 0 ? Text(depth - 1) : Number(depth - 1));
        case 7: {
            const Operator kind = Below(2) == 0 ? Operator::Between : Operator::NotBetween;
            return Below(2) == 0 ? Make(kind, Number(depth - 1), Number(0), Number(0))
                                 : Make(kind, Text(depth - 1), Text(0), Text(0));
        }
        case 8:
            return In(depth);
        default:
            return Number(depth - 1);
        }
    }

    QVariant NumberValue()
    {
        if (Below(4) == 0)
            return {};
        return Below(2) == 0 ? QVariant(static_cast<qint64>(Below(7)) - 3) : QVariant(Below(8) / 2.0 - 2);
    }

    QVariant TextValue()
    {
        static const QStringList texts = {QString(),
                                          QStringLiteral("a"),
                                          QStringLiteral("A"),
                                          QStringLiteral("ab"),
                                          QStringLiteral("É"),
                                          QStringLiteral("éa"),
                                          QStringLiteral("σ"),
                                          QStringLiteral("ς'\""),
                                          QStringLiteral("bab"),
                                          QStringLiteral("ſk")};
        const unsigned int choice = Below(13);
        return choice < 10 ? QVariant(texts.at(choice)) : QVariant();
    }

private:
    template <typename... Operands>
    Expression Make(Operator kind, Operands... operands)
    {
        std::vector<Expression> list;
        (list.push_back(std::move(operands)), ...);
        return MakeOperation(kind, std::move(list));
    }

    static Expression Leaf(const QVariant& value) { return {Literal{value}, 0, 1}; }
    static Expression Column(const char* name) { return {Name{QString(), QString::fromUtf8(name)}, 0, 1}; }

    Operator Comparison()
    {
        constexpr Operator kinds[] = {Operator::Equal,       Operator::NotEqual, Operator::Less,
                                      Operator::LessOrEqual, Operator::Greater,  Operator::GreaterOrEqual};
        return kinds[Below(6)];
    }

    Expression Many(Operator kind, int depth)
    {
        std::vector<Expression> operands;
        for (unsigned int count = 2 + Below(12); count > 0; --count)
            operands.push_back(Condition(depth - 1));
        return MakeOperation(kind, std::move(operands));
    }

    Expression In(int depth)
    {
        const bool isText = Below(2) == 0;
        std::vector<Expression> operands;
        operands.push_back(isText ? Text(depth - 1) : Number(depth - 1));
        for (unsigned int count = 1 + Below(4); count > 0; --count)
            operands.push_back(isText ? Text(0) : Number(0));
        return MakeOperation(Below(2) == 0 ? Operator::In : Operator::NotIn, std::move(operands));
    }

    Expression Number(int depth)
    {
        constexpr Operator kinds[] = {Operator::Add, Operator::Subtract, Operator::Multiply, Operator::Divide};
        const unsigned int choice = Below(depth <= 0 ? 3 : 6);
        if (choice == 0)
            return Leaf(NumberValue());
        if (choice <= 2)
            return Column(choice == 1 ? "N" : "M");
        if (choice == 3)
            return Make(Operator::Negate, Column("N"));
        // A condition is a value too.
        if (choice == 4)
            return Make(Operator::Add, Condition(0), Number(depth - 1));
        return Make(kinds[Below(4)], Number(depth - 1), Number(depth - 1));
    }

    Expression Text(int depth)
    {
        const unsigned int choice = Below(depth <= 0 ? 3 : 4);
        if (choice == 0)
            return Leaf(TextValue());
        if (choice <= 2)
            return Column(choice == 1 ? "S" : "T");
        return Make(Operator::Concatenate, Text(depth - 1), Text(depth - 1));
    }

    Expression Pattern()
    {
        static const QStringList patterns = {QStringLiteral("*"),    QStringLiteral("*a*"), QStringLiteral("?"),
                                             QStringLiteral("a*"),   QStringLiteral("*É*"), QStringLiteral("*s*"),
                                             QStringLiteral("*b?*"), QStringLiteral("Σ"),   QStringLiteral("*a*b")};
        return Leaf(patterns.at(Below(9)));
    }

    std::mt19937 Random_;
};

PredicateModel::Row RandomRow(RandomTree& random)
{
    return {{QStringLiteral("N"), random.NumberValue()},
            {QStringLiteral("M"), random.NumberValue()},
            {QStringLiteral("S"), random.TextValue()},
            {QStringLiteral("T"), random.TextValue()}};
}
} // namespace

TEST(SqlRendererProperty, RandomConditionsKeepTheRowsThatTheModelKeeps)
{
    constexpr unsigned int seed = 4711;
    SCOPED_TRACE(seed);
    RandomTree random(seed);
    MemoryDatabase database;
    database.AddTable(MakeTable(QStringLiteral("R"), {{QStringLiteral("Id"), dbLong},
                                                      {QStringLiteral("N"), dbDouble},
                                                      {QStringLiteral("M"), dbDouble},
                                                      {QStringLiteral("S"), dbText, 255, 0, true},
                                                      {QStringLiteral("T"), dbMemo, 0, 0, true}}));
    std::vector<PredicateModel::Row> rows;
    for (int i = 0; i < 40; ++i) {
        rows.push_back(RandomRow(random));
        const PredicateModel::Row& row = rows.back();
        database.Insert(QStringLiteral("R"),
                        {static_cast<qint64>(i), row[QStringLiteral("N")], row[QStringLiteral("M")],
                         row[QStringLiteral("S")], row[QStringLiteral("T")]});
    }
    int refused = 0;
    for (int round = 0; round < 1500; ++round) {
        const Expression condition = random.Condition(1 + static_cast<int>(random.Below(5)));
        const QString printed = ToText(condition);
        SCOPED_TRACE(printed.left(2000).toStdString());
        ASSERT_EQ(ToText(ParseCondition(printed)), printed);
        std::string expected;
        for (std::size_t i = 0; i < rows.size(); ++i) {
            if (PredicateModel::Keeps(condition, rows[i]))
                expected += (expected.empty() ? "" : " ") + std::to_string(i);
        }
        try {
            ASSERT_EQ(
                database.List(QStringLiteral("SELECT Id FROM R WHERE ") + printed + QStringLiteral(" ORDER BY Id")),
                expected);
        } catch (const Error& error) {
            // Only what is too much for SQLite's parser may be refused.
            ASSERT_EQ(error.Number(), 3075) << error.what();
            ++refused;
        }
    }
    EXPECT_LT(refused, 15);
}
