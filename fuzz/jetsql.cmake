# SPDX-License-Identifier: Apache-2.0
# The query dialect's parser and its LIKE patterns; seeds and finds are in tests/data/jetsql.
tolva_add_fuzz_target(jetSqlFuzz JetSqlFuzz.cpp)
