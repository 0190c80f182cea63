// SPDX-License-Identifier: Apache-2.0
#include "sending/HandOver.h"

#include <gtest/gtest.h>

TEST(HandOverTest, AnExitCodeMeansWhatSysexitsAndTheServersReplySay)
{
    using Kind = HandOverResult::Kind;
    const struct
    {
        int Code;
        const char* Words;
        Kind What;
    } cases[] = {
        {0, "", Kind::Accepted},
        {67, "no such user", Kind::Refused},
        {65, "server message: 550 no such mailbox", Kind::Refused},
        {65, "server message: 451 greylisted", Kind::Later},
        {69, "TLS certificate verification failed", Kind::Later},
        {69, "server message: 554 5.7.1 no", Kind::Refused},
        {69, "server message: 421 busy", Kind::Later},
        {68, "", Kind::Later},
        {75, "550 in the middle of words", Kind::Later},
        {76, "the server sent an empty reply", Kind::Unknown},
        {76, "454 TLS not available", Kind::Later},
        {76, "554 no", Kind::Refused},
        {77, "authentication failed: 535 wrong", Kind::SetUp},
        {78, "", Kind::SetUp},
        {127, "", Kind::SetUp},
        {1, "refused", Kind::Refused},
        {1, "451 later", Kind::Later},
        {74, "", Kind::Unknown},
        {139, "", Kind::Unknown},
    };
    for (const auto& [code, words, what] : cases)
        EXPECT_EQ(MeaningOfExitCode(code, QString::fromUtf8(words)), what) << code << ' ' << words;
}
