# SPDX-License-Identifier: Apache-2.0
# Set-up that run, test and bench share: packages, configuring, building. Sourced, not run.
# shellcheck shell=bash

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

say() {
    if [ -t 2 ]; then printf '\033[1m%s\033[0m\n' "$*" >&2; else printf '%s\n' "$*" >&2; fi
}

buildPackages=(cmake ninja-build g++ pkg-config ccache lld qt6-base-dev libsqlite3-dev libgmime-3.0-dev
               libphonenumber-dev libprotobuf-dev qt6-svg-dev libgumbo-dev libpq-dev libhunspell-dev)
# For the plugin of Qt Designer, which is left out without it.
designerPackages=(qt6-tools-dev)
testPackages=("${designerPackages[@]}" libgtest-dev tzdata clang-format-14 clang-tidy-14 git perl rsync mdbtools msmtp postgresql
              iproute2 hostname openssl)

# installPackages NAME...: installs with the system's package manager what is not there yet.
installPackages() {
    if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
        if command -v cmake >/dev/null && command -v ninja >/dev/null; then
            return 0 # Elsewhere the configure step says what is missing.
        fi
        say "This is not a Debian system, so nothing was installed. Please install the counterparts of these Debian 12 packages and try again:"
        say "  $*"
        exit 1
    fi
    local missing=() package
    for package in "$@"; do
        if [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" != installed ]; then
            missing+=("$package")
        fi
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    local asRoot=()
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            say "These packages are missing and need an administrator to install them: ${missing[*]}"
            exit 1
        fi
        asRoot=(sudo)
    fi
    say "Installing ${missing[*]}"
    "${asRoot[@]}" apt-get update -q
    "${asRoot[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "${missing[@]}"
}

# build PRESET [TARGET]: configures and builds; quiet where nothing is to be done.
build() {
    local preset=$1 target=${2:-all} log
    mkdir -p build
    log="build/configure-$preset.log"
    say "Configuring ($preset)"
    if ! cmake --preset "$preset" >"$log" 2>&1; then
        cat "$log" >&2
        say "Configuring failed; the lines above say what is missing."
        exit 1
    fi
    say "Building ($preset)"
    cmake --build --preset "$preset" --target "$target" >&2
}
