// SPDX-License-Identifier: Apache-2.0
#include "answering/TextTemplate.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace
{
QString FileWith(const QTemporaryDir& folder, const QByteArray& octets)
{
    QFile file(folder.filePath(QStringLiteral("Answer.txt")));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(file.write(octets), octets.size());
    return file.fileName();
}
} // namespace

TEST(TextTemplateTest, AValueThatLooksLikeATagStaysWhatItIs)
{
    EXPECT_EQ(TextTemplate::Filled(QStringLiteral("<ZRT_SONG>, <ZRT_TIME><ZRT_UNKNOWN>.<ZRT_song>"),
                                   {{QStringLiteral("SONG"), QStringLiteral("<ZRT_TIME>")},
                                    {QStringLiteral("TIME"), QStringLiteral("14:05")}}),
              QStringLiteral("<ZRT_TIME>, 14:05.<ZRT_song>"));
    EXPECT_TRUE(TextTemplate::Holds(QStringLiteral("a <ZRT_SONG>"), QStringLiteral("SONG")));
    EXPECT_FALSE(TextTemplate::Holds(QStringLiteral("a <ZRT_SONG_IN_LINK>"), QStringLiteral("SONG")));
}

TEST(TextTemplateTest, AFileIsReadWithLineEndsOfOneKind)
{
    const QTemporaryDir folder;
    QString problem;
    EXPECT_EQ(TextTemplate::Read(FileWith(folder, "one\r\ntwo\n"), problem), QStringLiteral("one\ntwo\n"));
    EXPECT_EQ(TextTemplate::Read(FileWith(folder, ""), problem), QString());
    EXPECT_EQ(problem, QString());
}

TEST(TextTemplateTest, WhatCannotBeReadOrIsTooLargeIsTold)
{
    const QTemporaryDir folder;
    QString problem;
    EXPECT_FALSE(TextTemplate::Read(folder.filePath(QStringLiteral("none.txt")), problem).has_value());
    EXPECT_TRUE(problem.contains(QStringLiteral("none.txt cannot be read: "))) << qPrintable(problem);
    EXPECT_FALSE(TextTemplate::Read(FileWith(folder, QByteArray(300000, 'a')), problem).has_value());
    EXPECT_TRUE(problem.endsWith(QStringLiteral("Answer.txt is too large for a template."))) << qPrintable(problem);
}
