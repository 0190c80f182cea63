# SPDX-License-Identifier: Apache-2.0
# Business cards; seeds are in tests/data/vcard.
tolva_add_fuzz_target(vCardFuzz VCardFuzz.cpp)
target_compile_options(tolvaAppSupport PRIVATE -fsanitize=fuzzer-no-link,${TOLVA_FUZZ_SANITIZERS} -fno-sanitize-recover=all
                                               -fno-omit-frame-pointer)
target_link_libraries(vCardFuzz PRIVATE tolvaAppSupport)
