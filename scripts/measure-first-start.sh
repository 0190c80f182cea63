#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Measures the first start as somebody meets it on a new machine: makes a bare Debian 12 in a folder, puts this commit into it, and
# times ./run there, then ./test. Packages come from where this machine takes its own. Needs root, debootstrap and the network.
#   scripts/measure-first-start.sh [--run-only] [FOLDER]    FOLDER: new; the default is taken away again
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
runOnly=0
if [ "${1:-}" = --run-only ]; then
    runOnly=1
    shift
fi
[ "$(id -u)" -eq 0 ] || { echo "Run it as root: a bare system is made and entered." >&2; exit 77; }
command -v debootstrap >/dev/null || { echo "Install debootstrap first: apt-get install debootstrap" >&2; exit 69; }

keep=1
root=${1:-}
if [ -z "$root" ]; then
    root=$(mktemp -d)
    keep=0
elif [ -e "$root" ]; then
    echo "$root is there already; name a new folder." >&2
    exit 73
fi
leave() {
    for place in dev/pts dev proc; do
        # What a test left behind in there may still hold it; nobody sees it any more.
        mountpoint -q "$root/$place" && umount --lazy "$root/$place"
    done
    [ "$keep" -eq 1 ] || rm -rf --one-file-system "$root"
}
trap leave EXIT

site=$(apt-get indextargets --format '$(SITE)' | grep -v security | head -n 1)
echo "Making a bare Debian 12 in $root"
debootstrap --variant=minbase bookworm "$root" "$site" >"$root.log" 2>&1 || { tail -n 20 "$root.log" >&2; exit 70; }
rm -f "$root.log"
cp -r /etc/apt/. "$root/etc/apt/"
cp /etc/resolv.conf "$root/etc/resolv.conf"
mount -t proc proc "$root/proc"
mount --bind /dev "$root/dev"
mount --bind /dev/pts "$root/dev/pts"
mkdir -p "$root/src"
git clone --quiet --no-hardlinks "$here" "$root/src/tolva"

# measure WORDS COMMAND...: in the bare system, without this machine's environment.
measure() {
    local words=$1 start end
    shift
    echo "Running $*"
    start=$(date +%s)
    chroot "$root" /usr/bin/env -i HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin LANG=C.UTF-8 DEBIAN_FRONTEND=noninteractive \
        /bin/bash -c 'cd /src/tolva && time "$@"' bash "$@" >"$root/measure.log" 2>&1 || { tail -n 40 "$root/measure.log" >&2; exit 1; }
    end=$(date +%s)
    printf '%s: %d min %02d s; processor time %s\n' "$words" $(((end - start) / 60)) $(((end - start) % 60)) \
        "$(grep -E '^(user|sys)' "$root/measure.log" | tr '\t\n' '  ')"
}
measure "./run from a bare system" ./run
[ "$runOnly" -eq 1 ] || measure "./test behind it" ./test
