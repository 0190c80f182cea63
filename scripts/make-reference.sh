#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Makes the reference of the library's public headers in build/reference/html. A comment that Doxygen cannot follow fails it.
set -euo pipefail
# shellcheck source=scripts/setup.sh
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
installPackages doxygen
mkdir -p build/reference
# The page leads to others that are no part of the reference.
sed -E 's/\[([^]]*)\]\([^)]*\)/\1/g' docs/embedding.md >build/reference/embedding.md
headers=$(sed -nE 's#^ +([A-Za-z/0-9]+\.h)$#src/\1#p' library/PublicHeaders.cmake | tr '\n' ' ')
{ cat docs/Doxyfile; echo "INPUT += $headers"; } | doxygen - 2>&1
say "build/reference/html/index.html"
