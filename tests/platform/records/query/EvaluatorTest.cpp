// SPDX-License-Identifier: Apache-2.0
#include "platform/records/query/Evaluator.h"

#include "platform/records/RecordsFixture.h"
#include "platform/records/jetsql/MemoryDatabase.h"
#include "platform/records/jetsql/Parser.h"
#include "platform/records/query/Binder.h"
#include "platform/records/query/StoredValues.h"

#include <cmath>
#include <limits>

using namespace dao;

namespace
{

/// One row of one table.
class OneRow final : public query::RowValues
{
public:
    explicit OneRow(std::vector<StoredValue> values) : Values_(std::move(values)) {}
    StoredValue ValueAt(const query::BoundColumn& column) override
    {
        return Values_.at(static_cast<std::size_t>(column.Column));
    }

private:
    std::vector<StoredValue> Values_;
};

/// The text of what a value of a query is over a row with N = 7, S = "Été", E = Null and W = 45000.5.
std::string ValueOf(const char* value, const engine::ParameterValues& parameters = {})
{
    engine::Schema schema;
    schema.Tables = {MakeTable(QStringLiteral("T"), {{QStringLiteral("N"), dbInteger},
                                                     {QStringLiteral("S"), dbText, 20},
                                                     {QStringLiteral("E"), dbText, 20},
                                                     {QStringLiteral("W"), dbDate}})};
    const query::BoundSelect select = query::BindSelect(
        jetsql::ParseSelect(QStringLiteral("SELECT %1 FROM T").arg(QString::fromUtf8(value))), schema);
    OneRow row({qint64{7}, QByteArrayLiteral("Été"), {}, 45000.5});
    const query::ParameterTable table(select.Parameters, parameters);
    const StoredValue result = query::Evaluator(row, table).Value(select.Outputs.front());
    if (query::IsNull(result))
        return "Null";
    const StoredValue text = query::AsText(result);
    return std::string(std::holds_alternative<double>(result) ? "real " : "") + std::string(query::TextIn(text));
}

TEST(Evaluator, TruthIsMinusOneAndNullIsUnknown)
{
    EXPECT_EQ(ValueOf("N = 7"), "-1");
    EXPECT_EQ(ValueOf("N <> 7"), "0");
    EXPECT_EQ(ValueOf("NOT N"), "0");
    EXPECT_EQ(ValueOf("E = 'x'"), "Null");
    EXPECT_EQ(ValueOf("E = 'x' OR N = 7"), "-1");
    EXPECT_EQ(ValueOf("E = 'x' AND N = 8"), "0");
    EXPECT_EQ(ValueOf("E = 'x' AND N = 7"), "Null");
    EXPECT_EQ(ValueOf("E IS NULL"), "-1");
    EXPECT_EQ(ValueOf("N IN (1, NULL)"), "Null");
    EXPECT_EQ(ValueOf("N IN (7, NULL)"), "-1");
    EXPECT_EQ(ValueOf("N BETWEEN 8 AND NULL"), "0");
}

TEST(Evaluator, TextsCompareAndMatchWithoutRegardToCase)
{
    EXPECT_EQ(ValueOf("S = 'ÉTÉ'"), "-1");
    EXPECT_EQ(ValueOf("S LIKE '?T*'"), "-1");
    EXPECT_EQ(ValueOf("S LIKE 'x*' OR E LIKE '*'"), "Null");
    EXPECT_EQ(ValueOf("N LIKE '#'"), "-1");
    EXPECT_EQ(ValueOf("S LIKE '*' & 't*'"), "-1");
    EXPECT_EQ(ValueOf("S & E & N"), "Été7");
    EXPECT_EQ(ValueOf("S + E"), "Null");
}

TEST(Evaluator, WholeNumbersStayWholeUntilTheyDoNotFit)
{
    EXPECT_EQ(ValueOf("N + 1"), "8");
    EXPECT_EQ(ValueOf("N / 2"), "real 3.5");
    EXPECT_EQ(ValueOf("N / 0"), "Null");
    EXPECT_EQ(ValueOf("N MOD 4"), "3");
    EXPECT_EQ(ValueOf("N MOD 0.4"), "Null");
    EXPECT_EQ(ValueOf("-2.5 MOD 2"), "-1");
    EXPECT_EQ(ValueOf("9223372036854775807 + N"), "real 9.22337203685478e+18");
    EXPECT_EQ(ValueOf("9007199254740993 = 9007199254740992.0"), "0");
    EXPECT_EQ(ValueOf("1e308 * 10 - 1e308 * 10"), "Null");
    EXPECT_EQ(ValueOf("W - #2023-03-15#"), "real 0.5");
}

TEST(Evaluator, ParametersAreConvertedWhenARunBegins)
{
    EXPECT_EQ(ValueOf("N = [p]", {{QStringLiteral("P"), QStringLiteral(" 7 ")}}), "-1");
    EXPECT_EQ(ValueOf("S + [p]", {{QStringLiteral("p"), 5.0}}), "Été5");
    EXPECT_EQ(ErrorNumberOf([] {
                  ValueOf("N = [p]", {{QStringLiteral("p"), QStringLiteral("seven")}});
              }),
              errDataTypeConversion);
    EXPECT_EQ(ErrorNumberOf([] { ValueOf("N = [p]"); }), errTooFewParameters);
}

TEST(Evaluator, SumsOfWholeNumbersDoNotWrapAround)
{
    query::Accumulator sum(jetsql::AggregateFunction::Sum);
    EXPECT_TRUE(query::IsNull(sum.Result()));
    sum.Add(std::numeric_limits<qint64>::max());
    sum.Add({});
    EXPECT_EQ(sum.Result(), StoredValue(std::numeric_limits<qint64>::max()));
    sum.Add(qint64{1});
    EXPECT_EQ(ErrorNumberOf([&] { sum.Result(); }), errOverflow);
}

TEST(StoredValues, AColumnHoldsNoNumberThatIsNoneAndNoDateOutsideTheCalendar)
{
    const auto errorOf = [](DataTypeEnum type, double value) {
        return ErrorNumberOf([&] { query::AsHeldBy({QStringLiteral("x"), type}, value); });
    };
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(errorOf(dbDouble, infinity), errOverflow);
    EXPECT_EQ(errorOf(dbSingle, -infinity), errOverflow);
    EXPECT_EQ(errorOf(dbDouble, std::nan("")), errOverflow);
    EXPECT_EQ(errorOf(dbDate, 2958466), errOverflow);
    EXPECT_EQ(errorOf(dbDate, 2958465.5), 0);
    EXPECT_EQ(errorOf(dbByte, 255.5), errOverflow);
    EXPECT_EQ(query::AsHeldBy({QStringLiteral("x"), dbByte}, 254.5), StoredValue(qint64{254}));
}

} // namespace
