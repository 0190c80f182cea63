// SPDX-License-Identifier: Apache-2.0
#include "messages/onair/RunningOrder.h"

#include "core/support/EngineFile.h"
#include "support/FixedClock.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

namespace
{
using Outcome = RunningOrder::Outcome;

class RunningOrderTest : public testing::TestWithParam<std::string>
{
protected:
    static OnAirEntry Message(qint32 message, const char* text = "Play it again.")
    {
        OnAirEntry entry;
        entry.Message = message;
        entry.Arrived = Date(46344.25);
        entry.From = QStringLiteral("Loveday");
        entry.Original = entry.Text = QString::fromLatin1(text);
        entry.AddedBy = QStringLiteral("Petra");
        return entry;
    }
    qint32 Add(qint32 message) { return Mine().Add(Message(message)).Reference; }
    RunningOrder Mine() const { return RunningOrder(*MyFile); }
    RunningOrder Other() const { return RunningOrder(*OtherFile); }
    /// The messages, in the order that the other desk sees.
    QString Order() const
    {
        QStringList words;
        for (const OnAirEntry& entry : Other().Read())
            words.append(QString::number(entry.Message));
        return words.join(u' ');
    }

    FixedClock Now;
    EngineFile File{GetParam()};
    std::unique_ptr<dao::Database> MyFile = File.Open();
    std::unique_ptr<dao::Database> OtherFile = File.Open();
};
} // namespace

TEST_P(RunningOrderTest, IsMadeWhenSomethingIsPutOnItAndNotBefore)
{
    EXPECT_TRUE(Mine().Read().isEmpty());
    EXPECT_EQ(Mine().SetState(1, OnAirState::Waiting, OnAirState::Used, {}), Outcome::Gone);
    EXPECT_EQ(Mine().MoveUp(1), Outcome::Gone);
    EXPECT_EQ(Mine().Empty(), 0);
    EXPECT_EQ(MyFile->TableDefs().Count(), 0);
    Add(5);
    EXPECT_EQ(OtherFile->TableDefs().Count(), 1);
    EXPECT_EQ(Order(), QStringLiteral("5"));
}

TEST_P(RunningOrderTest, KeepsWhatIsPutOnIt)
{
    OnAirEntry entry = Message(5, "  Two\nlines \xe9  ");
    entry.From = QString(300, u'x');
    const qint32 reference = Mine().Add(entry).Reference;
    entry.Reference = reference;
    entry.From = QString(255, u'x');
    entry.Position = 1;
    ASSERT_EQ(Other().Read().size(), 1);
    EXPECT_EQ(Other().Read().first(), entry);
}

TEST_P(RunningOrderTest, AMessageThatWaitsIsNotPutOnItTwice)
{
    const qint32 first = Add(5);
    const RunningOrder::Added second = Other().Add(Message(5));
    EXPECT_TRUE(second.WasThere);
    EXPECT_EQ(second.Reference, first);
    EXPECT_EQ(Mine().SetState(first, OnAirState::Waiting, OnAirState::Used, {}), Outcome::Done);
    EXPECT_FALSE(Other().Add(Message(5)).WasThere) << "it may be read once more";
    OnAirEntry prize;
    prize.Prize = 5;
    EXPECT_FALSE(Mine().Add(prize).WasThere) << "a prize of the same number is something else";
}

TEST_P(RunningOrderTest, MovesByOnePlaceAndStaysAtTheEnds)
{
    qint32 references[4];
    for (qint32 message = 1; message <= 3; ++message)
        references[message] = Add(message);
    EXPECT_EQ(Mine().MoveUp(references[3]), Outcome::Done);
    EXPECT_EQ(Order(), QStringLiteral("1 3 2"));
    EXPECT_EQ(Mine().MoveUp(references[3]), Outcome::Done);
    EXPECT_EQ(Order(), QStringLiteral("3 1 2"));
    EXPECT_EQ(Mine().MoveUp(references[3]), Outcome::Done);
    EXPECT_EQ(Order(), QStringLiteral("3 1 2"));
    EXPECT_EQ(Mine().MoveDown(references[1]), Outcome::Done);
    EXPECT_EQ(Order(), QStringLiteral("3 2 1"));
    EXPECT_EQ(Mine().MoveDown(references[1]), Outcome::Done);
    EXPECT_EQ(Order(), QStringLiteral("3 2 1"));
}

TEST_P(RunningOrderTest, MovesForEverBetweenTwoNeighbours)
{
    for (qint32 message = 1; message <= 3; ++message)
        Add(message);
    // Each move halves the gap; a double has room for about fifty.
    for (int i = 0; i < 130; ++i) {
        const qint32 last = Other().Read().last().Reference;
        ASSERT_EQ(Mine().MoveUp(last), Outcome::Done);
        ASSERT_EQ(Other().Read().at(1).Reference, last) << i;
    }
    EXPECT_EQ(Mine().Read().size(), 3);
}

TEST_P(RunningOrderTest, TwoDesksThatReorderAtOnceLoseNothingAndHaveNothingTwice)
{
    std::vector<qint32> references;
    for (qint32 message = 1; message <= 8; ++message)
        references.push_back(Add(message));
    std::mt19937 random(4711);
    for (int i = 0; i < 200; ++i) {
        const RunningOrder order = i % 2 == 0 ? Mine() : Other();
        const qint32 reference = references.at(random() % references.size());
        ASSERT_EQ(random() % 2 == 0 ? RunningOrder(order).MoveUp(reference) : RunningOrder(order).MoveDown(reference),
                  Outcome::Done);
    }
    std::set<qint32> messages;
    std::set<double> positions;
    for (const OnAirEntry& entry : Mine().Read()) {
        messages.insert(entry.Message);
        positions.insert(entry.Position);
    }
    EXPECT_EQ(messages.size(), 8U);
    EXPECT_EQ(positions.size(), 8U);
    EXPECT_EQ(Mine().Read(), Other().Read());
}

TEST_P(RunningOrderTest, WhatIsUsedSaysWhenAndByWhomAndOnlyTheFirstWhoSaysSoCounts)
{
    const qint32 reference = Add(5);
    EXPECT_EQ(Mine().SetState(reference, OnAirState::Waiting, OnAirState::Used, QStringLiteral("Petra")),
              Outcome::Done);
    EXPECT_EQ(Other().SetState(reference, OnAirState::Waiting, OnAirState::Skipped, QStringLiteral("Joe")),
              Outcome::Changed);
    const OnAirEntry used = Other().Read().first();
    EXPECT_EQ(used.State, OnAirState::Used);
    EXPECT_EQ(used.StateBy, QStringLiteral("Petra"));
    EXPECT_EQ(used.When, ClockHelper::NowUTC());
    EXPECT_EQ(Other().SetState(reference, OnAirState::Used, OnAirState::Waiting, QStringLiteral("Joe")), Outcome::Done);
    EXPECT_EQ(Mine().Read().first(), [&] {
        OnAirEntry entry = Message(5);
        entry.Reference = reference;
        entry.Position = 1;
        return entry;
    }());
}

TEST_P(RunningOrderTest, TheTextForAirIsChangedAndTheOriginalKept)
{
    const qint32 reference = Add(5);
    EXPECT_EQ(Mine().SetText(reference, QStringLiteral("Play it again."), QStringLiteral("Again!")), Outcome::Done);
    OnAirEntry entry = Other().Read().first();
    EXPECT_EQ(entry.Text, QStringLiteral("Again!"));
    EXPECT_EQ(entry.Original, QStringLiteral("Play it again."));
    EXPECT_TRUE(entry.IsShortened());
    EXPECT_EQ(Other().SetText(reference, QStringLiteral("Play it again."), QStringLiteral("Mine")), Outcome::Changed);
    EXPECT_EQ(Other().SetText(reference, QStringLiteral("Again!"), QStringLiteral(" ")), Outcome::Done);
    EXPECT_FALSE(Mine().Read().first().IsShortened());
}

TEST_P(RunningOrderTest, WhatWasTakenOffIsGoneForTheOtherDeskToo)
{
    const qint32 first = Add(5);
    Add(6);
    EXPECT_EQ(Mine().Remove(first), Outcome::Done);
    EXPECT_EQ(Other().Remove(first), Outcome::Gone);
    EXPECT_EQ(Other().MoveUp(first), Outcome::Gone);
    EXPECT_EQ(Other().SetText(first, {}, {}), Outcome::Gone);
    EXPECT_EQ(Order(), QStringLiteral("6"));
    EXPECT_EQ(Other().Empty(), 1);
    EXPECT_TRUE(Mine().Read().isEmpty());
    Add(7);
    EXPECT_EQ(Order(), QStringLiteral("7"));
}

INSTANTIATE_TEST_SUITE_P(Engines, RunningOrderTest, testing::ValuesIn(EngineFile::Engines()),
                         [](const auto& engine) { return engine.param; });
