#!/usr/bin/env bash
# Installs the packages in a bare Debian 12 that is made for it, uses them there as a user without rights, builds the example host from
# the installed headers, takes the packages away again and looks whether the station is still whole.
# Needs root and debootstrap; fetches the base system and what the packages depend on.
#   packaging/test-packages.sh [MIRROR]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
mirror=${1:-http://deb.debian.org/debian}
if [ "$(id -u)" -ne 0 ] || ! command -v debootstrap >/dev/null; then
    echo "This needs root and the package debootstrap: a root of its own is made for the test." >&2
    exit 69
fi
say() { printf '%s\n' "$*" >&2; }
packages=$(echo build/release/packages/tolva_*.deb)
[ -e "$packages" ] || packaging/make-packages.sh

root=$(mktemp -d "${TMPDIR:-/tmp}/tolva-root-XXXXXX")
chmod 755 "$root" # the user without rights goes through it
finish() {
    umount "$root/proc" 2>/dev/null || true
    rm -rf --one-file-system "$root"
}
trap finish EXIT
say "Making a bare Debian 12 in $root"
debootstrap --variant=minbase bookworm "$root" "$mirror" >"$root.log" 2>&1 || { tail -20 "$root.log" >&2; exit 1; }
rm -f "$root.log"
mount -t proc proc "$root/proc"
cp /etc/resolv.conf "$root/etc/resolv.conf"
mkdir -p "$root/packages"
cp build/release/packages/*.deb "$root/packages/"
cp -r samples scripts examples "$root/packages/"
inRoot() { chroot "$root" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 "$@"; }
asUser() { chroot --userspec=presenter:presenter "$root" /usr/bin/env -i PATH=/usr/bin:/bin HOME=/home/presenter LC_ALL=C.UTF-8 QT_QPA_PLATFORM=offscreen "$@"; }

say "Installing"
inRoot sh -c 'apt-get update -q && apt-get install -q -y --no-install-recommends /packages/tolva_*.deb /packages/tolva-desk_*.deb /packages/libkvtolva1-0_*.deb' \
    >"$root/packages/install.log" 2>&1 || { tail -30 "$root/packages/install.log" >&2; exit 1; }
inRoot useradd -m presenter

say "Using the programs"
asUser tolva --version
asUser /packages/scripts/make-sample-station.sh /usr/bin/tolva /home/presenter/station
asUser tolva check /home/presenter/station
before=$(asUser tolva list /home/presenter/station --json | sha256sum)
asUser tolva-desk --version
asUser tolva-desk --pictures /home/presenter/pictures /home/presenter/station
pictures=$(find "$root/home/presenter/pictures" -name '*.png' | wc -l)
[ "$pictures" -gt 5 ] || { say "The desk saved $pictures pictures."; exit 1; }
for page in tolva tolva-desk; do
    [ -s "$root/usr/share/man/man1/$page.1.gz" ] || [ -s "$root/usr/share/man/man1/$page.1" ] || { say "The manual page of $page is missing."; exit 1; }
done

say "Building the example host from the installed headers"
inRoot sh -c 'apt-get install -q -y --no-install-recommends /packages/libkvtolva1-dev_*.deb cmake ninja-build g++' \
    >"$root/packages/install.log" 2>&1 || { tail -30 "$root/packages/install.log" >&2; exit 1; }
asUser sh -c 'cmake -S /packages/examples/contact-desk -B /home/presenter/example -G Ninja >/dev/null && cmake --build /home/presenter/example >/dev/null'
asUser sh -c 'timeout 5 /home/presenter/example/contact-desk /home/presenter/station Technician 2>/dev/null; [ $? -eq 124 ]' ||
    { say "The example host did not stay open."; exit 1; }

say "Uninstalling"
inRoot sh -c 'apt-get purge -q -y tolva tolva-desk libkvtolva1-0 libkvtolva1-dev' >"$root/packages/install.log" 2>&1
for left in "$root"/usr/bin/tolva* "$root"/usr/lib/*/libkvTolva1* "$root"/usr/include/kvTolva1 "$root"/usr/share/tolva; do
    [ ! -e "$left" ] || { say "Uninstalling left ${left#"$root"}."; exit 1; }
done
inRoot sh -c 'apt-get install -q -y --no-install-recommends /packages/tolva_*.deb' >"$root/packages/install.log" 2>&1
asUser tolva check /home/presenter/station
[ "$before" = "$(asUser tolva list /home/presenter/station --json | sha256sum)" ] ||
    { say "The station is not what it was."; exit 1; }
say "The packages install, work and go without touching the station."
