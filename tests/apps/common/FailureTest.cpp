// SPDX-License-Identifier: Apache-2.0

// What a program says of an error that nobody expected.

#include "Failure.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

namespace
{
template <typename Exception>
Failure FailureFor(const Exception& exception)
{
    try {
        throw exception;
    } catch (...) {
        return UnexpectedFailure();
    }
}
} // namespace

TEST(FailureTest, WhateverEndsAProgramHasItsWordsAndItsCode)
{
    EXPECT_EQ(FailureFor(Failure(exitNoUser, QStringLiteral("Nobody."))).Code(), exitNoUser);
    EXPECT_EQ(FailureFor(std::bad_alloc()).Code(), exitTemporary);
    EXPECT_EQ(FailureFor(dao::Error(dao::errLocked, QStringLiteral("x"))).Code(), exitTemporary);
    EXPECT_EQ(FailureFor(dao::Error(dao::errDiskFull, QStringLiteral("x"))).Code(), exitInputOutput);
    EXPECT_EQ(FailureFor(dao::Error(dao::errCannotOpen, QStringLiteral("x"))).Code(), exitNoPermission);
    EXPECT_EQ(FailureFor(dao::Error(dao::errReadOnly, QStringLiteral("x"))).Code(), exitNoPermission);
    EXPECT_EQ(FailureFor(7).Code(), exitSoftware);
    const Failure unexpected = FailureFor(std::runtime_error("the reason"));
    EXPECT_EQ(unexpected.Code(), exitSoftware);
    EXPECT_TRUE(unexpected.Words().contains(QStringLiteral("the reason"))) << qPrintable(unexpected.Words());
    EXPECT_TRUE(unexpected.Words().contains(QStringLiteral("Try again"))) << qPrintable(unexpected.Words());
}
