// SPDX-License-Identifier: Apache-2.0
#include "answering/AnsweredNumbers.h"

#include "common/ClockHelper.h"
#include "core/support/EngineFile.h"
#include "platform/records/Recordset.h"
#include "support/FixedClock.h"

#include <gtest/gtest.h>

namespace
{
constexpr qint64 SecondsOfDay = 86400;

class AnsweredNumbersTest : public testing::TestWithParam<std::string>
{
protected:
    bool Claims(dao::Database& computer, const QString& number, double secondsAhead = 0) const
    {
        const Date asked(ClockHelper::NowUTC().DayNumber() + secondsAhead / static_cast<double>(SecondsOfDay));
        return AnsweredNumbers(computer).Claim(number, asked);
    }
    int Rows() const
    {
        return Mine->OpenRecordset(QStringLiteral("SELECT [Number] FROM [AutomaticAnswers]"), dao::dbOpenSnapshot)
            ->RecordCount();
    }

    const QString Ann = QStringLiteral("7700900123");
    const QString Ben = QStringLiteral("7700900124");
    EngineFile File{GetParam()};
    std::unique_ptr<dao::Database> Mine = File.Open();
    std::unique_ptr<dao::Database> Other = File.Open();
    FixedClock Now;
};
} // namespace

TEST_P(AnsweredNumbersTest, ANumberIsClaimedOnceInFiveMinutesByWhateverComputer)
{
    EXPECT_TRUE(Claims(*Mine, Ann));
    EXPECT_FALSE(Claims(*Mine, Ann));
    EXPECT_FALSE(Claims(*Other, Ann));
    EXPECT_TRUE(Claims(*Other, Ben));
    Now.Advance(AnsweredNumbers::Seconds - 1);
    EXPECT_FALSE(Claims(*Other, Ann));
    Now.Advance(2);
    EXPECT_TRUE(Claims(*Other, Ann));
    EXPECT_FALSE(Claims(*Mine, Ann));
}

TEST_P(AnsweredNumbersTest, AClaimThatIsTakenBackCountsForNothing)
{
    EXPECT_TRUE(Claims(*Mine, Ann));
    AnsweredNumbers(*Mine).TakeBack(Ann);
    EXPECT_TRUE(Claims(*Other, Ann));
    AnsweredNumbers(*Mine).TakeBack(Ben);
}

TEST_P(AnsweredNumbersTest, AQuestionFromAheadHoldsTheNumberForAsLongAsItIsRecent)
{
    EXPECT_TRUE(Claims(*Mine, Ann, 50));
    Now.Advance(AnsweredNumbers::Seconds + 40);
    EXPECT_FALSE(Claims(*Mine, Ann));
    Now.Advance(20);
    EXPECT_TRUE(Claims(*Mine, Ann));
}

TEST_P(AnsweredNumbersTest, NumbersAreForgottenAfterADayAndAClockThatWasWrongHoldsNobodyForLonger)
{
    EXPECT_TRUE(Claims(*Mine, Ann));
    Now.Advance(2 * SecondsOfDay);
    EXPECT_TRUE(Claims(*Mine, Ben));
    EXPECT_EQ(Rows(), 1) << "whoever asked yesterday";
    Now.Advance(-365 * SecondsOfDay);
    EXPECT_TRUE(Claims(*Other, Ben)) << "claimed by a clock that was a year ahead";
}

INSTANTIATE_TEST_SUITE_P(Engines, AnsweredNumbersTest, testing::ValuesIn(EngineFile::Engines()),
                         [](const auto& engine) { return engine.param; });
