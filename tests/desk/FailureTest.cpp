// SPDX-License-Identifier: Apache-2.0

// What a program says of an error that nobody expected.

#include "Failure.h"

#include <QByteArray>
#include <QProcess>

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

TEST(FailureTest, AnErrorThatAnEventHandlerLetsThroughIsToldAndTheDeskGoesOn)
{
    QProcess program;
    program.start(QStringLiteral(LAST_NET_PROGRAM), QStringList());
    ASSERT_TRUE(program.waitForFinished());
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(program.exitCode(), 0);
    const QByteArrayList told = program.readAllStandardOutput().trimmed().split('\n');
    ASSERT_EQ(told.size(), 4) << told.join('\n').constData();
    EXPECT_TRUE(told.at(0).contains("the handler failed")) << told.at(0).constData();
    EXPECT_TRUE(told.at(1).contains("the disk is full")) << told.at(1).constData();
    EXPECT_TRUE(told.at(2).contains("an error without a name")) << told.at(2).constData();
    EXPECT_TRUE(told.at(3).contains("while it was told")) << told.at(3).constData();
}
