#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs the tests instrumented for coverage and says which part of the lines they reach. Ends with 1 where a layer is below its limit.
set -euo pipefail
# shellcheck source=scripts/setup.sh
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
installPackages "${buildPackages[@]}" "${testPackages[@]}" gcovr
./test coverage
failed=0
measure() { # measure LAYER LIMIT FILTER...
    local layer=$1 limit=$2 filters=() filter percent
    shift 2
    for filter in "$@"; do filters+=(--filter "$filter"); done
    percent=$(gcovr --root . --object-directory build/coverage -j 2 "${filters[@]}" --exclude-throw-branches --gcov-ignore-parse-errors \
        --print-summary --output /dev/null build/coverage/src | sed -nE 's/^lines: ([0-9.]+)%.*/\1/p')
    printf '%-10s %s %% of the lines (at least %s)\n' "$layer" "$percent" "$limit"
    awk -v p="$percent" -v l="$limit" 'BEGIN { exit !(p >= l) }' || failed=1
}
measure platform 90 'src/platform/(records|mail|directory|html)/'
measure core 90 'src/(common|database|messages|prizes)/[^/]*$'
measure controls 80 'src/platform/widgets/' 'src/messageslist/' 'src/[a-z]+/(controls|dialogs)/'
exit $failed
