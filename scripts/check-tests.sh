#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Proves that every test case that is written down was built into a test binary and is known to ctest, so that no file is left out of a build list
# and no case is switched off in silence, and that each case that skips itself gives its reason.
#   scripts/check-tests.sh BUILD
set -euo pipefail
build=$1
cd "$(dirname "${BASH_SOURCE[0]}")/.."
written=$(mktemp) known=$(mktemp)
trap 'rm -f "$written" "$known"' EXIT
mapfile -t sources < <(find tests -name '*.cpp' | LC_ALL=C sort)

# Plain and fixture cases, and the cases of parameterised suites by their bare names.
perl -0777 -ne 'while (/^\s*TEST(?:_F|_P)?\(\s*(\w+)\s*,\s*(\w+)\s*\)/mg) { print "$1.$2\n" }' "${sources[@]}" | LC_ALL=C sort -u >"$written"
ctest --test-dir "$build" -N | sed -nE 's/^ *Test +#[0-9]+: //p' | perl -pe 's{^(?:[^/.]+/)?([^/.]+)\.([^/]+)(?:/.*)?$}{$1.$2}' | LC_ALL=C sort -u >"$known"

missing=$(LC_ALL=C comm -23 "$written" "$known")
if [ -n "$missing" ]; then
    printf 'These cases are written down and do not run:\n%s\n' "$missing" >&2
    exit 1
fi
if grep -nE '(TEST|TEST_F|TEST_P)\(\w+, *DISABLED_|GTEST_SKIP\(\) *;' "${sources[@]}"; then
    echo "^ switched off, or skipped without a reason" >&2
    exit 1
fi
echo "$(wc -l <"$written") cases are written down, and all are run." >&2
