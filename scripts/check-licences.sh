#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Proves that every source and script says its licence in its first lines, as https://spdx.dev/ids/ tells how.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
failed=0
while IFS= read -r file; do
    if ! head -n 2 "$file" | grep -q 'SPDX-License-Identifier: Apache-2\.0'; then
        echo "$file: its first lines have to say: SPDX-License-Identifier: Apache-2.0" >&2
        failed=1
    fi
done < <(find src apps tests bench benchmarks fuzz examples library cmake scripts packaging CMakeLists.txt run test .ci \
    -path tests/data -prune -o -type f \
    \( -name '*.h' -o -name '*.cpp' -o -name '*.cmake' -o -name '*.sh' -o -name CMakeLists.txt -o -name run -o -name test \) -print)
exit $failed
