#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs clang-tidy on the sources that differ from an earlier state: those of the last commit and what is not committed
# yet, or everything since BASE. A header stands for the source of its name. The whole tree is the tidy preset's.
#   scripts/tidy.sh [BASE]
set -euo pipefail
# shellcheck source=scripts/setup.sh
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

# More than these take longer than a build server waits.
most=40
database=build/dev/compile_commands.json
base=${1:-HEAD~1}
if ! git rev-parse -q --verify "$base^{commit}" >/dev/null; then
    say "There is no earlier commit to compare with, so nothing is tidied here; cmake --preset tidy looks at every source."
    exit 0
fi

changedSources() {
    {
        git diff --name-only --diff-filter=d "$base" -- '*.cpp' '*.h'
        git ls-files --others --exclude-standard -- '*.cpp' '*.h'
    } | sed 's/\.h$/.cpp/' | sort -u | while read -r file; do
        if [ -f "$file" ] && grep -qF "/$file\"" "$database"; then printf '%s\n' "$file"; fi
    done
}

# The tree in which each source is compiled by itself says how; what Qt generates for two of them is all that is built there.
say "Configuring (dev)"
cmake --preset dev >/dev/null
cmake --build --preset dev --target kvTolva1Controls_autogen >/dev/null
mapfile -t sources < <(changedSources)
if [ ${#sources[@]} -eq 0 ]; then
    say "No source differs from $base"
    exit 0
fi
if [ ${#sources[@]} -gt $most ]; then
    say "${#sources[@]} sources differ from $base, too many for here: please run cmake --preset tidy && cmake --build --preset tidy."
    exit 0
fi
say "Tidying ${#sources[@]} sources that differ from $base"
# Headers that g++ precompiled mean nothing to clang; without them it also sees what a source forgot to include.
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
report=$work/report
sed -E 's/ -Winvalid-pch| -fpch-preprocess| -include [^ ]*cmake_pch\.hxx//g' "$database" >"$work/compile_commands.json"
if ! printf '%s\0' "${sources[@]}" |
    xargs -0 -n 4 -P "$(nproc)" clang-tidy-14 --quiet -p "$work" >"$report" 2>/dev/null; then
    cat "$report"
    say "clang-tidy has something to say of the changed sources; it is above."
    exit 1
fi
