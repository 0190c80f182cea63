// SPDX-License-Identifier: Apache-2.0
#include "answering/AnsweringWatch.h"

#include <gtest/gtest.h>

namespace
{
AnsweringEntry EntryOf(const char* entry, qint32 message, const char* name, qint32 seconds)
{
    return {QString::fromLatin1(entry), message, QString::fromLatin1(name), seconds};
}

constexpr qint64 Second = 1000;
} // namespace

TEST(AnsweringWatchTest, AnEntryCountsFromTheFirstLookAndItsTimeRunsOn)
{
    AnsweringWatch watch;
    watch.Take({EntryOf("a", 5, "Petra", 120)}, 7000 * Second);
    ASSERT_EQ(watch.Alive(7000 * Second).size(), 1);
    EXPECT_EQ(watch.Alive(7000 * Second).first(), (Answering{5, QStringLiteral("Petra"), 120}));
    EXPECT_EQ(watch.Alive(7010 * Second).first().Seconds, 130);
}

TEST(AnsweringWatchTest, WhatACrashLeftGoesWithinAMinuteOfTheReadersClock)
{
    AnsweringWatch watch;
    for (qint64 now = 0; now < 60 * Second; now += Second) {
        watch.Take({EntryOf("a", 5, "Petra", 20)}, now);
        ASSERT_EQ(watch.Alive(now).size(), 1) << now;
    }
    watch.Take({EntryOf("a", 5, "Petra", 20)}, 60 * Second);
    EXPECT_TRUE(watch.Alive(60 * Second).isEmpty());
    EXPECT_TRUE(watch.Forgotten(60 * Second).isEmpty()) << "its desk may only be held up";
    watch.Take({EntryOf("a", 5, "Petra", 20)}, 180 * Second);
    EXPECT_EQ(watch.Forgotten(180 * Second), QStringList{QStringLiteral("a")});
}

TEST(AnsweringWatchTest, WhoeverGoesOnCountingStays)
{
    AnsweringWatch watch;
    for (qint32 seconds = 0; seconds <= 400; seconds += 20) {
        watch.Take({EntryOf("a", 5, "Petra", seconds)}, seconds * Second);
        ASSERT_EQ(watch.Alive((seconds + 19) * Second).size(), 1) << seconds;
        ASSERT_EQ(watch.Alive(seconds * Second).first().Seconds, seconds);
    }
    EXPECT_TRUE(watch.Forgotten(400 * Second).isEmpty());
    watch.Take({}, 401 * Second);
    EXPECT_TRUE(watch.Alive(401 * Second).isEmpty()) << "its window was closed";
}

TEST(AnsweringWatchTest, OneThatWasTakenForDeadIsBackWithItsNextBeat)
{
    AnsweringWatch watch;
    watch.Take({EntryOf("a", 5, "Petra", 20)}, 0);
    watch.Take({EntryOf("a", 5, "Petra", 20)}, 90 * Second);
    EXPECT_TRUE(watch.Alive(90 * Second).isEmpty());
    watch.Take({EntryOf("a", 5, "Petra", 110)}, 91 * Second);
    EXPECT_EQ(watch.Alive(91 * Second).size(), 1);
}

TEST(AnsweringWatchTest, OfSeveralOnOneMessageTheOneWhoBeganComesFirst)
{
    AnsweringWatch watch;
    watch.Take({EntryOf("a", 5, "Ann", 20), EntryOf("b", 5, "Petra", 200), EntryOf("c", 4, "Joe", 1)}, 0);
    QStringList names;
    for (const Answering& answering : watch.Alive(0))
        names.append(answering.Name);
    EXPECT_EQ(names.join(u' '), QStringLiteral("Joe Petra Ann"));
}
