// SPDX-License-Identifier: Apache-2.0
#include "answering/AnsweringTable.h"

#include "core/support/EngineFile.h"

#include <gtest/gtest.h>

namespace
{
class AnsweringTableTest : public testing::TestWithParam<std::string>
{
protected:
    static AnsweringEntry EntryOf(const char* entry, qint32 message, qint32 seconds = 0)
    {
        return {QString::fromLatin1(entry), message, QStringLiteral("Petra"), seconds};
    }

    EngineFile File{GetParam()};
    std::unique_ptr<dao::Database> Mine = File.Open();
    std::unique_ptr<dao::Database> Other = File.Open();
};
} // namespace

TEST_P(AnsweringTableTest, WhereNobodyHasAnsweredThereIsNobodyAndNoTable)
{
    EXPECT_TRUE(AnsweringTable(*Mine).Read().isEmpty());
    EXPECT_EQ(Mine->TableDefs().Count(), 0);
}

TEST_P(AnsweringTableTest, WhatOneDeskTellsTheOtherReadsAndWhatItTakesBackIsGone)
{
    EXPECT_TRUE(AnsweringTable(*Other).Read().isEmpty());
    AnsweringTable(*Mine).Write({EntryOf("a", 5), EntryOf("b", 6)}, {});
    EXPECT_EQ(AnsweringTable(*Other).Read(), (QList<AnsweringEntry>{EntryOf("a", 5), EntryOf("b", 6)}));
    AnsweringTable(*Mine).Write({EntryOf("a", 5, 20)}, {QStringLiteral("b"), QStringLiteral("never there")});
    EXPECT_EQ(AnsweringTable(*Other).Read(), (QList<AnsweringEntry>{EntryOf("a", 5, 20)}));
}

TEST_P(AnsweringTableTest, TwoDesksThatTellAtOnceTakeNothingFromEachOther)
{
    for (qint32 seconds = 0; seconds < 100; seconds += 20) {
        AnsweringTable(*Mine).Write({EntryOf("a", 5, seconds)}, {});
        AnsweringTable(*Other).Write({EntryOf("b", 5, seconds)}, {});
    }
    EXPECT_EQ(AnsweringTable(*Mine).Read(), (QList<AnsweringEntry>{EntryOf("a", 5, 80), EntryOf("b", 5, 80)}));
}

INSTANTIATE_TEST_SUITE_P(Engines, AnsweringTableTest, testing::ValuesIn(EngineFile::Engines()),
                         [](const auto& engine) { return engine.param; });
