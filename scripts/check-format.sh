#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Proves that the C++ sources stand as .clang-format says.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# Another version breaks lines in other places.
format=$(command -v clang-format-14 || command -v clang-format)
git ls-files -z --cached --others --exclude-standard -- '*.h' '*.cpp' | xargs -0 "$format" --dry-run -Werror
