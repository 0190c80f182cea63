#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Fuzzes every parser for a while, from the data of the tests. Ends with 1 at the first find, whose file it names.
#   scripts/fuzz.sh [SECONDS]      seconds for each parser, 60 without it
set -euo pipefail
# shellcheck source=scripts/setup.sh
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
seconds=${1:-60}
installPackages "${buildPackages[@]}" clang
build fuzz fuzzers
finds=$PWD/build/fuzz/finds
mkdir -p "$finds"
for target in build/fuzz/bin/*Fuzz; do
    name=$(basename "$target")
    # The seeds stand in a folder with the parser's name, or the mails.
    seeds=tests/data/$(basename "$name" Fuzz | tr '[:upper:]' '[:lower:]')
    [ -d "$seeds" ] || seeds=tests/data/mail
    corpus=$(mktemp -d)
    say "$name: $seconds seconds"
    if ! "$target" -max_total_time="$seconds" -timeout=25 -rss_limit_mb=2048 -artifact_prefix="$finds/$name-" "$corpus" "$seeds" >"$finds/$name.log" 2>&1; then
        tail -30 "$finds/$name.log" >&2
        rm -rf "$corpus"
        exit 1
    fi
    grep -E '^(Done|stat::number_of_executed_units)' "$finds/$name.log" >&2 || tail -1 "$finds/$name.log" >&2
    rm -rf "$corpus"
done
