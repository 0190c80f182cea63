#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Proves that every source and script says its licence in its first lines, as https://spdx.dev/ids/ tells how.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
find src apps tests bench benchmarks fuzz examples library cmake scripts packaging CMakeLists.txt run test .ci/run \
    -path tests/data -prune -o -type f \
    \( -name '*.h' -o -name '*.cpp' -o -name '*.cmake' -o -name '*.sh' -o -name CMakeLists.txt -o -name run -o -name test \) -print0 |
    sort -z | xargs -0 awk '
        function tell() {
            if (file != "" && !said) {
                print file ": its first lines have to say: SPDX-License-Identifier: Apache-2.0" > "/dev/stderr"
                failed = 1
            }
        }
        FNR == 1 { tell(); file = FILENAME; said = 0; seen[file] = 1 }
        FNR <= 2 && /SPDX-License-Identifier: Apache-2\.0/ { said = 1 }
        FNR == 2 { nextfile }
        END {
            tell()
            # Of an empty file no line comes by.
            for (i = 1; i < ARGC; ++i)
                if (!(ARGV[i] in seen)) { file = ARGV[i]; said = 0; tell() }
            exit failed
        }'
