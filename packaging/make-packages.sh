#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Makes the Debian packages of the programs, the library and its headers in build/release/packages/.
set -euo pipefail
# shellcheck source=scripts/setup.sh
source "$(dirname "${BASH_SOURCE[0]}")/../scripts/setup.sh"
installPackages "${buildPackages[@]}" "${designerPackages[@]}" dpkg-dev
build release
say "Packing"
(cd build/release && cpack -G DEB >packages.log 2>&1) || { cat build/release/packages.log >&2; exit 1; }
ls -1 build/release/packages/*.deb
