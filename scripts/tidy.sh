#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs clang-tidy on the sources that differ from an earlier state: those of the last commit and what is not committed
# yet, or everything since BASE. A header stands for the source of its name.
#   scripts/tidy.sh [BASE]
#   scripts/tidy.sh --all       on all of src and apps; some twenty minutes on two cores
set -euo pipefail
# shellcheck source=scripts/setup.sh
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

# More than these take longer than a build server waits.
most=40

changedSources() {
    {
        git diff --name-only --diff-filter=d "$base" -- '*.cpp' '*.h'
        git ls-files --others --exclude-standard -- '*.cpp' '*.h'
    } | sed 's/\.h$/.cpp/' | sort -u | while read -r file; do
        if [ -f "$file" ] && grep -qF "/$file\"" "$database"; then printf '%s\n' "$file"; fi
    done
}

# configure PRESET: what Qt generates for two sources is all that is built.
configure() {
    database=build/$1/compile_commands.json
    mkdir -p build
    cmake --preset "$1" >"build/configure-$1.log"
    cmake --build --preset "$1" --target kvTolva1Controls_autogen >/dev/null
}

# tidy OPTION... <FILES: with the programs' own options. Headers that g++ precompiled mean nothing to clang; without them it also sees
# what a source forgot to include.
tidy() {
    local work report
    work=$(mktemp -d)
    report=$work/report
    sed -E 's/ -Winvalid-pch| -fpch-preprocess| -Wno-subobject-linkage| -include [^ ]*cmake_pch\.hxx//g' "$database" >"$work/compile_commands.json"
    if ! xargs -0 -n 2 -P "$(nproc)" clang-tidy-14 --quiet "$@" -p "$work" >"$report" 2>/dev/null; then
        cat "$report"
        rm -rf "$work"
        say "clang-tidy has something to say of these sources; it is above."
        exit 1
    fi
    rm -rf "$work"
}

if [ "${1:-}" = --all ]; then
    configure tidy
    mapfile -t sources < <(sed -nE 's/^ *"file": "(.*)",?$/\1/p' "$database" | grep -E '/(src|apps)/' | grep -v _autogen/)
    say "Tidying all of src and apps, in ${#sources[@]} pieces"
    # The pieces include sources, which is what they are for.
    printf '%s\0' "${sources[@]}" | tidy --checks=-bugprone-suspicious-include
    exit 0
fi

base=${1:-HEAD~1}
if ! git rev-parse -q --verify "$base^{commit}" >/dev/null; then
    say "There is no earlier commit to compare with, so nothing is tidied here; scripts/tidy.sh --all looks at every source."
    exit 0
fi
configure dev
mapfile -t sources < <(changedSources)
if [ ${#sources[@]} -eq 0 ]; then
    say "No source differs from $base"
    exit 0
fi
if [ ${#sources[@]} -gt $most ]; then
    say "${#sources[@]} sources differ from $base, too many for here: scripts/tidy.sh --all looks at every source."
    exit 0
fi
say "Tidying ${#sources[@]} sources that differ from $base"
printf '%s\0' "${sources[@]}" | tidy
