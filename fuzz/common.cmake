# SPDX-License-Identifier: Apache-2.0
tolva_add_fuzz_target(keyValueFuzz KeyValueFuzz.cpp)
tolva_add_fuzz_target(iniFuzz IniFuzz.cpp)
