// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/MemoCheck.h"

#include <gtest/gtest.h>

#include <string>

using namespace dao::engine;

namespace
{

/// The sums of RFC 3720, appendix B.4, and the check value of the catalogue of CRCs.
TEST(MemoCheck, IsCrc32cOfThePublishedVectors)
{
    std::string rising;
    std::string falling;
    for (int i = 0; i < 32; ++i) {
        rising.push_back(static_cast<char>(i));
        falling.push_back(static_cast<char>(31 - i));
    }
    for (const auto sumOf : {&Crc32c, &Crc32cByTable}) {
        EXPECT_EQ(sumOf(std::string(), 0), 0U);
        EXPECT_EQ(sumOf("123456789", 0), 0xE3069283U);
        EXPECT_EQ(sumOf(std::string(32, '\0'), 0), 0x8A9136AAU);
        EXPECT_EQ(sumOf(std::string(32, '\xFF'), 0), 0x62A8AB43U);
        EXPECT_EQ(sumOf(rising, 0), 0x46DD794EU);
        EXPECT_EQ(sumOf(falling, 0), 0x113FDB5CU);
    }
}

TEST(MemoCheck, BothWaysAgreeAtAnyLengthPlaceAndDivision)
{
    std::string octets;
    for (unsigned i = 0, state = 1; i < 300; ++i) {
        state = state * 1664525U + 1013904223U;
        octets.push_back(static_cast<char>(state >> 24U));
    }
    for (std::size_t begin = 0; begin < 9; ++begin) {
        for (std::size_t size = 0; begin + size <= octets.size(); size += 1 + size / 7) {
            const std::string_view part = std::string_view(octets).substr(begin, size);
            const quint32 sum = Crc32c(part);
            EXPECT_EQ(sum, Crc32cByTable(part));
            EXPECT_EQ(sum, Crc32c(part.substr(size / 3), Crc32c(part.substr(0, size / 3))));
        }
    }
}

TEST(MemoCheck, TheSameMemoInAnotherRowHasAnotherCheck)
{
    EXPECT_NE(MemoCheck(1, "Dear station"), MemoCheck(2, "Dear station"));
    EXPECT_NE(MemoCheck(1, "Dear station"), MemoCheck(1, "Dear statiom"));
    EXPECT_NE(MemoCheck(1, ""), MemoCheck(2, ""));
}

} // namespace
