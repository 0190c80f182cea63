// SPDX-License-Identifier: Apache-2.0

// What becomes of an error that leaves an event handler.

#include <QByteArray>
#include <QProcess>

#include <gtest/gtest.h>

TEST(DeskApplicationTest, AnErrorThatAnEventHandlerLetsThroughIsToldAndTheDeskGoesOn)
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
