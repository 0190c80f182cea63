#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Unpacks the mail servers and fetchers that the tests of the hook-ups run, into build/mail-programs/NAME. Nothing is
# installed: two mail servers cannot be on one system, and an installed one would start. What is there stays as it is.
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

if ! command -v dpkg-deb >/dev/null || ! command -v apt-get >/dev/null; then
    say "This is not a Debian system: the tests with real mail programs skip themselves."
    exit 0
fi

# neededFor PACKAGE...: the packages with all that they need and this system lacks.
neededFor() {
    apt-get -s -q --no-install-recommends install "$@" 2>/dev/null | awk '/^Inst /{print $2}'
    printf '%s\n' "$@"
}

# Some packages still put files into /lib, which is a link on the system that they are laid over.
mergeIntoUsr() {
    local part
    for part in bin sbin lib lib64; do
        [ -d "$1/$part" ] || continue
        mkdir -p "$1/usr/$part"
        cp -a "$1/$part/." "$1/usr/$part/"
        rm -r "${1:?}/$part"
    done
}

# unpack NAME PACKAGE...
unpack() {
    local folder=build/mail-programs/$1 work archive
    shift
    [ -d "$folder" ] && return 0
    say "Unpacking $*"
    work=$(mktemp -d build/mail-programs/work.XXXXXX)
    # The names hold no blanks. The user that apt downloads as may not write here; that is no harm.
    # shellcheck disable=SC2046
    if ! (cd "$work" && apt-get -q -o APT::Sandbox::User=root download $(neededFor "$@" | sort -u)) >"$work/log" 2>&1; then
        cat "$work/log" >&2
        rm -r "$work"
        say "They could not be fetched; the tests that need them skip themselves."
        return 0
    fi
    for archive in "$work"/*.deb; do
        dpkg-deb -x "$archive" "$work/tree"
    done
    mergeIntoUsr "$work/tree"
    mv "$work/tree" "$folder"
    rm -r "$work"
}

mkdir -p build/mail-programs
unpack postfix postfix
unpack exim exim4-daemon-light
unpack imap dovecot-imapd isync fetchmail
unpack gammu gammu-smsd gammu
