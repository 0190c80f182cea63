# The safe page of a mail; seeds and finds are in tests/data/html.
tolva_add_fuzz_target(safeHtmlFuzz SafeHtmlFuzz.cpp)
