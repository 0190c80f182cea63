// SPDX-License-Identifier: Apache-2.0
#include "platform/records/query/Binder.h"

#include "platform/records/RecordsFixture.h"
#include "platform/records/jetsql/MemoryDatabase.h"
#include "platform/records/jetsql/Parser.h"

using namespace dao;

namespace
{

class Binder : public testing::Test
{
protected:
    Binder()
    {
        Schema_.Tables = {
            MakeTable(QStringLiteral("Messages"), {{QStringLiteral("Reference"), dbLong, 4, dbAutoIncrField},
                                                   {QStringLiteral("Subject"), dbText, 20},
                                                   {QStringLiteral("Category"), dbInteger},
                                                   {QStringLiteral("Sent"), dbDate},
                                                   {QStringLiteral("Message"), dbMemo}})};
    }

    query::BoundSelect Select(const QString& text) const
    {
        return query::BindSelect(jetsql::ParseSelect(text), Schema_);
    }
    query::BoundExpression Where(const QString& condition) const
    {
        return *Select(QStringLiteral("SELECT * FROM Messages WHERE ") + condition).Where;
    }
    query::BoundChange Change(const QString& text) const
    {
        return query::BindChangeToRun(jetsql::ParseStatement(text), Schema_);
    }

    engine::Schema Schema_;
};

const query::BoundOperation& OperationOf(const query::BoundExpression& expression)
{
    return std::get<query::BoundOperation>(expression.Node);
}

template <typename Node>
const Node& Operand(const query::BoundExpression& expression, std::size_t place)
{
    return std::get<Node>(OperationOf(expression).Operands.at(place).Node);
}

TEST_F(Binder, NamesBecomeColumnsByTheirPlaces)
{
    const query::BoundExpression where = Where(QStringLiteral("[messages.CATEGORY] = 5"));
    EXPECT_EQ(Operand<query::BoundColumn>(where, 0), (query::BoundColumn{0, 2}));
    EXPECT_EQ(Operand<query::BoundConstant>(where, 1).Value, StoredValue(qint64{5}));
    EXPECT_TRUE(query::IsTruth(where));
}

TEST_F(Binder, ConstantsAreConvertedOnce)
{
    EXPECT_EQ(Operand<query::BoundConstant>(Where(QStringLiteral("Category = ' 5 '")), 1).Value, StoredValue(5.0));
    EXPECT_EQ(Operand<query::BoundConstant>(Where(QStringLiteral("Subject = 5")), 1).Value,
              StoredValue(QByteArrayLiteral("5")));
}

TEST_F(Binder, ParametersAreTakenAsWhatTheyAreComparedWith)
{
    using query::BoundParameter;
    using query::ParameterUse;
    EXPECT_EQ(Operand<BoundParameter>(Where(QStringLiteral("Category = [p]")), 1).Use, ParameterUse::AsNumber);
    EXPECT_EQ(Operand<BoundParameter>(Where(QStringLiteral("[p] = Subject")), 0).Use, ParameterUse::AsText);
    EXPECT_EQ(Operand<BoundParameter>(Where(QStringLiteral("[p] = 5")), 0).Use, ParameterUse::AsNumber);
    EXPECT_EQ(Operand<BoundParameter>(Where(QStringLiteral("5 = [p]")), 1).Use, ParameterUse::AsNumber);
    const query::BoundExpression among = Where(QStringLiteral("[p] IN (NULL, [q], 5)"));
    EXPECT_EQ(Operand<BoundParameter>(among, 0).Use, ParameterUse::AsNumber);
    EXPECT_EQ(Operand<BoundParameter>(among, 2).Use, ParameterUse::AsNumber);
    const query::BoundExpression sum = Where(QStringLiteral("'' = Subject + [p]"));
    EXPECT_EQ(Operand<BoundParameter>(OperationOf(sum).Operands.at(1), 1).Use, ParameterUse::AsText);
    EXPECT_EQ(Operand<BoundParameter>(Where(QStringLiteral("[p] IS NULL")), 0).Use, ParameterUse::AsIs);
    const query::BoundSelect select = Select(QStringLiteral("SELECT [b], [a] FROM Messages WHERE [A] = 1 AND [c]"));
    EXPECT_EQ(select.Parameters.Names, (QStringList{QStringLiteral("b"), QStringLiteral("a"), QStringLiteral("c")}));
    EXPECT_EQ(select.Parameters.AreNumbers, (std::vector<bool>{false, true, true}));
}

TEST_F(Binder, AlternativesOverTheSameColumnsBecomeOneSearch)
{
    const query::BoundExpression where =
        Where(QStringLiteral("Subject LIKE '*a*' OR Message LIKE '*a*' OR Subject LIKE '*b*' OR Message LIKE '*b*'"));
    EXPECT_EQ(OperationOf(where).Kind, jetsql::Operator::Like);
    EXPECT_EQ(Operand<query::BoundPattern>(where, 0).Texts,
              (QStringList{QStringLiteral("*a*"), QStringLiteral("*b*")}));
    EXPECT_EQ(OperationOf(where).Operands.size(), 3U);
}

/// Were an operand bound twice, each further term would double the time.
TEST_F(Binder, ALongSumIsBoundInNoTime)
{
    for (const char* symbol : {" + Category", " - Category", " & Category"}) {
        const QString text = QStringLiteral("Category") + QString::fromLatin1(symbol).repeated(150);
        EXPECT_EQ(Select(QStringLiteral("SELECT %1 FROM Messages").arg(text)).Outputs.size(), 1U);
    }
}

TEST_F(Binder, ACounterIsNotAssignedHoweverItIsSpelt)
{
    for (const char* name : {"Reference", "Messages.Reference", "[Messages.Reference]"})
        EXPECT_EQ(
            ErrorNumberOf([&] { Change(QStringLiteral("UPDATE Messages SET %1 = 9").arg(QString::fromLatin1(name))); }),
            errNotSupported)
            << name;
    EXPECT_EQ(ErrorNumberOf([&] { Change(QStringLiteral("SELECT * FROM Messages")); }), errNotSupported);
}

TEST_F(Binder, AChangeOfThePrimaryKeyIsSeen)
{
    engine::Table table = *Schema_.Tables.front();
    table.Indexes = {{QStringLiteral("Main"), true, true, {2}}};
    Schema_.Tables = {std::make_shared<const engine::Table>(table)};
    EXPECT_TRUE(query::ChangesPrimaryKey(Change(QStringLiteral("UPDATE Messages SET [Messages.Category] = 1"))));
    EXPECT_FALSE(query::ChangesPrimaryKey(Change(QStringLiteral("UPDATE Messages SET Subject = 'x'"))));
}

} // namespace
