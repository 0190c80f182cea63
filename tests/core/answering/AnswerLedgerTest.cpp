// SPDX-License-Identifier: Apache-2.0
#include "answering/AnswerLedger.h"

#include "core/support/EngineFile.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{
class AnswerLedgerTest : public testing::TestWithParam<std::string>
{
protected:
    /// "5 Petra", "6 Joe", by message.
    static QStringList Words(const QList<FiledAnswer>& answers)
    {
        QStringList words;
        for (const FiledAnswer& answer : answers)
            words.append(QStringLiteral("%1 %2").arg(answer.Original.Message).arg(answer.Name));
        words.sort();
        return words;
    }
    AnswerLedger Ledger() const { return AnswerLedger(*Mine); }

    const QString Petra = QStringLiteral("Petra");
    const Date Monday{46344.5};
    const Date Tuesday{46345.5};
    EngineFile File{GetParam()};
    std::unique_ptr<dao::Database> Mine = File.Open();
    std::unique_ptr<dao::Database> Other = File.Open();
};
} // namespace

TEST_P(AnswerLedgerTest, WhereNothingWasAnsweredThereIsNothing)
{
    EXPECT_TRUE(Ledger().Since(Date()).isEmpty());
    EXPECT_TRUE(Ledger().OriginalsOf(7).isEmpty());
    Ledger().Note({}, 7, Petra, Monday);
    EXPECT_EQ(Mine->TableDefs().Count(), 0);
}

TEST_P(AnswerLedgerTest, AnAnswerIsReadByTheOtherDeskWithWhoAndWhen)
{
    Ledger().Note({{5, Monday}}, 7, Petra, Tuesday);
    const QList<FiledAnswer> answers = AnswerLedger(*Other).Since(Date());
    ASSERT_EQ(answers.size(), 1);
    EXPECT_EQ(answers.first().Original, (AnsweredMessage{5, Monday}));
    EXPECT_EQ(answers.first().Name, Petra);
    EXPECT_EQ(answers.first().When, Tuesday);
}

TEST_P(AnswerLedgerTest, ADraftAnswersNothingUntilItIsSentAndKnowsWhatItAnswers)
{
    Ledger().Note({{5, Monday}}, 7, Petra, Date());
    EXPECT_TRUE(Ledger().Since(Date()).isEmpty());
    EXPECT_EQ(AnswerLedger(*Other).OriginalsOf(7), (QList<AnsweredMessage>{{5, Monday}}));
    AnswerLedger(*Other).Note(Ledger().OriginalsOf(7), 7, QStringLiteral("Joe"), Tuesday);
    EXPECT_EQ(Words(Ledger().Since(Date())), QStringList{QStringLiteral("5 Joe")});
}

TEST_P(AnswerLedgerTest, ASecondAnswerStandsBesideTheFirst)
{
    Ledger().Note({{5, Monday}}, 7, Petra, Monday);
    Ledger().Note({{5, Monday}, {6, Monday}}, 8, QStringLiteral("Joe"), Tuesday);
    EXPECT_EQ(Words(Ledger().Since(Date())).join(u','), QStringLiteral("5 Joe,5 Petra,6 Joe"));
    EXPECT_EQ(Words(Ledger().Since(Tuesday)).join(u','), QStringLiteral("5 Joe,6 Joe")) << "only what is new";
}

INSTANTIATE_TEST_SUITE_P(Engines, AnswerLedgerTest, testing::ValuesIn(EngineFile::Engines()),
                         [](const auto& engine) { return engine.param; });
