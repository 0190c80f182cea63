// SPDX-License-Identifier: Apache-2.0
#include "common/PendingError.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace
{
[[noreturn]] void Fail(int number)
{
    throw dao::Error(number, QStringLiteral("Failure %1").arg(number));
}
} // namespace

TEST(PendingErrorTest, NothingIsPendingAtFirstAndAfterASuccess)
{
    PendingError error;
    int value = 0;
    EXPECT_TRUE(error.Try([&] { value = 5; }));
    EXPECT_EQ(value, 5);
    EXPECT_EQ(error.Number(), 0);
    EXPECT_EQ(error.Description(), QString());
    EXPECT_FALSE(error);
}

TEST(PendingErrorTest, AFailedStatementDoesNotStopTheRun)
{
    PendingError error;
    EXPECT_FALSE(error.Try([] { Fail(3021); }));
    EXPECT_TRUE(error);
    EXPECT_EQ(error.Number(), 3021);
    EXPECT_EQ(error.Description(), u"Failure 3021");
}

TEST(PendingErrorTest, ALaterSuccessLeavesTheErrorAndALaterErrorReplacesIt)
{
    PendingError error;
    error.Try([] { Fail(3021); });
    EXPECT_TRUE(error.Try([] {}));
    EXPECT_EQ(error.Number(), 3021);
    error.Try([] { Fail(3022); });
    EXPECT_EQ(error.Number(), 3022);
}

TEST(PendingErrorTest, ClearForgets)
{
    PendingError error;
    error.Try([] { Fail(3021); });
    error.Clear();
    EXPECT_EQ(error.Number(), 0);
    EXPECT_EQ(error.Description(), QString());
}

TEST(PendingErrorTest, OtherExceptionsHaveNumbersToo)
{
    PendingError error;
    error.Try([] { throw std::runtime_error("broken"); });
    EXPECT_EQ(error.Number(), 5);
    EXPECT_EQ(error.Description(), u"broken");
    error.Try([] { throw std::runtime_error(""); });
    EXPECT_EQ(error.Description(), u"Invalid procedure call or argument");
    error.Try([] { throw std::bad_alloc(); });
    EXPECT_EQ(error.Number(), 7);
    EXPECT_EQ(error.Description(), u"Out of memory");
}

TEST(PendingErrorTest, WhatIsNoErrorPassesThrough)
{
    PendingError error;
    EXPECT_THROW(error.Try([] { throw 5; }), int);
    EXPECT_EQ(error.Number(), 0);
}
