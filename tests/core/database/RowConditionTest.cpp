// SPDX-License-Identifier: Apache-2.0

// Conditions of queries that several readers share, as the engines take them.

#include "database/RowCondition.h"

#include "core/support/StationTest.h"

#include <QSet>

namespace
{
class RowConditionTest : public StationTest
{
protected:
    void SetUp() override { OpenStation(); }
    QList<qint32> Found(const QString& condition) const
    {
        QList<qint32> found;
        const auto rows =
            Station->OpenMessageRows({QStringLiteral("Reference")}, condition, QStringLiteral("[Reference]"));
        for (; !rows->AtEOF(); rows->MoveNext())
            found.append(rows->Collect(QStringLiteral("Reference")).toInt());
        return found;
    }
    qint32 Save() const
    {
        const auto message = std::make_shared<cMessage>();
        message->SetCategory(tmcInbox);
        EXPECT_TRUE(Station->SaveMessage(message));
        return message->Reference();
    }
};
} // namespace

TEST_F(RowConditionTest, RowsAreFoundByAnyOfTheirReferences)
{
    const QList<qint32> saved = {Save(), Save(), Save()};
    EXPECT_EQ(RowCondition::HasOneOf(QList<qint32>{3, 1}), QStringLiteral("[Reference] IN (3,1)"));
    EXPECT_EQ(Found(RowCondition::HasOneOf(QList<qint32>{saved.at(2), saved.at(0)})),
              (QList<qint32>{saved.at(0), saved.at(2)}));
    EXPECT_EQ(Found(RowCondition::HasOneOf(QSet<qint32>{saved.at(1)})), QList<qint32>{saved.at(1)});
    EXPECT_EQ(Found(RowCondition::HasOneOf(std::vector<qint32>{saved.at(0)}) + QStringLiteral(" AND [Category]=1")),
              QList<qint32>{saved.at(0)});
}

TEST_F(RowConditionTest, NoRowHasOneOfNoReferences)
{
    Save();
    EXPECT_EQ(Found(RowCondition::HasOneOf(QList<qint32>())), QList<qint32>());
}
