# SPDX-License-Identifier: Apache-2.0
# The safe page of a mail; seeds and finds are in tests/data/html.
tolva_add_fuzz_target(safeHtmlFuzz SafeHtmlFuzz.cpp)
# The page in memory; seeds are in tests/data/html too, finds in tests/data/htmldocument/finds.
tolva_add_fuzz_target(htmlDocumentFuzz HtmlDocumentFuzz.cpp)
# The page all the way to its layout; seeds and finds are in tests/data/page.
tolva_add_fuzz_target(pageFuzz PageFuzz.cpp)
target_link_libraries(pageFuzz PRIVATE kvTolva1Controls)
