#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Installs the packages in a bare Debian 12 that is made for it, uses them there as a user without rights, runs their services by a
# systemd of its own, builds the example host from the installed headers, takes the packages away again and looks whether the station is still whole.
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
if command -v lintian >/dev/null; then
    say "Looking the packages over"
    lintian --allow-root --fail-on error,warning build/release/packages/*.deb
fi

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
inRoot sh -c 'apt-get update -q && apt-get install -q -y --no-install-recommends /packages/tolva_*.deb /packages/tolva-data_*.deb /packages/tolva-desk_*.deb /packages/tolva-pdf_*.deb /packages/libkvtolva1-0_*.deb' \
    >"$root/packages/install.log" 2>&1 || { tail -30 "$root/packages/install.log" >&2; exit 1; }
inRoot useradd -m presenter

say "Using the programs"
asUser tolva --version
asUser /packages/scripts/make-sample-station.sh /usr/bin/tolva /home/presenter/station
asUser tolva check /home/presenter/station
asUser tolva-desk --version
asUser tolva-desk --pictures /home/presenter/pictures /home/presenter/station
pictures=$(find "$root/home/presenter/pictures" -name '*.png' | wc -l)
[ "$pictures" -gt 5 ] || { say "The desk saved $pictures pictures."; exit 1; }
asUser tolva print /home/presenter/station "Studio list" --category Inbox -o /home/presenter/list.html
# Without a display and without a word on which platform to take.
asUser env -u QT_QPA_PLATFORM tolva print /home/presenter/station "Single message" 27 -o /home/presenter/card.pdf
[ "$(head -c 5 "$root/home/presenter/card.pdf")" = %PDF- ] || { say "No PDF file was printed."; exit 1; }
# What draws on a screen is loaded by name, so that nothing that is linked tells whether it is there.
screen=$(cd "$root" && echo usr/lib/*/qt6/plugins/platforms/libqxcb.so)
if [ ! -e "$root/$screen" ] || inRoot ldd "/$screen" | grep 'not found'; then
    say "The desk could not draw on a screen."
    exit 1
fi
shipped=$(find htmldocs -name '*.htm' | wc -l)
[ "$(find "$root/home/presenter/station/HTMLDocs" -name '*.htm' | wc -l)" -eq "$shipped" ] || { say "The station has not got all templates."; exit 1; }
for page in tolva tolva-desk tolva-pdf; do
    gzip -dc "$root/usr/share/man/man1/$page.1.gz" | cmp - "docs/man/$page.1" || { say "The manual page of $page is not the one of the checkout."; exit 1; }
done

say "Setting a station up as the pages tell its technician"
# What they type as root; the gateway's account comes with its own package.
asTold=$(perl -ne '$code = !$code, next if /^```/; print if $code && /^(groupadd|useradd|usermod|chown|chmod|find|install) /' docs/hookups.md)
[ "$(wc -l <<<"$asTold")" -ge 8 ] || { say "The page on hooking up has lost its commands."; exit 1; }
inRoot useradd --system --user-group gammu
inRoot tolva init /srv/station --name Harbour --phone 1 >/dev/null
# Where the page puts files of its own before.
inRoot mkdir -p /etc/tolva
inRoot sh -e -c "$asTold"
inRoot usermod -a -G station presenter
file() { printf 'Subject: From %s\n\nHello.\n' "$1" | inRoot runuser -u "$1" -- sh -c 'umask 0007; tolva file /srv/station'; }
file tolva
file presenter
inRoot useradd stranger
if inRoot runuser -u stranger -- tolva list /srv/station 2>/dev/null; then
    say "The station is open to accounts outside its group."
    exit 1
fi
inRoot sh -c 'apt-get install -q -y --no-install-recommends systemd isync msmtp python3' >"$root/packages/install.log" 2>&1 || { tail -30 "$root/packages/install.log" >&2; exit 1; }
if find "$root/etc/systemd" -name 'tolva-*' | grep .; then
    say "The package has enabled its timer."
    exit 1
fi
unit=tolva-backup@$(inRoot systemd-escape --path /srv/station)
inRoot systemd-analyze verify --man=no "$unit.timer" "$unit.service"
command=$(sed -n 's/^ExecStart=//p' "$root"/usr/lib/systemd/system/tolva-backup@.service)
inRoot runuser -u tolva -- sh -c "${command//%f//srv/station}" >/dev/null
# The services that receive, fetch and send, with the scripts that they start.
for way in "mbsync --host imap.example.org" "msmtp --host smtp.example.org --address studio@example.org"; do
    # Blanks divide the words.
    # shellcheck disable=SC2086
    inRoot tolva setup mail /srv/station --with $way --login studio --output "/root/${way%% *}" >/dev/null
    inRoot sh "/root/${way%% *}/install.sh" >/dev/null
done
station=$(inRoot systemd-escape --path /srv/station)
for unit in receive@.path receive@.service fetch@.timer fetch@.service send@.timer send@.service; do
    inRoot systemd-analyze verify --man=no "tolva-${unit/@/@$station}"
done
packaging/test-services.sh "$root"

say "Building the example host from the installed headers"
inRoot sh -c 'apt-get install -q -y --no-install-recommends /packages/libkvtolva1-dev_*.deb cmake ninja-build g++' \
    >"$root/packages/install.log" 2>&1 || { tail -30 "$root/packages/install.log" >&2; exit 1; }
for example in contact-desk file-a-mail; do
    asUser sh -c "cmake -S /packages/examples/$example -B /home/presenter/$example -G Ninja >/dev/null && cmake --build /home/presenter/$example >/dev/null"
done
asUser sh -c 'timeout 5 /home/presenter/contact-desk/contact-desk /home/presenter/station Technician 2>/dev/null; [ $? -eq 124 ]' ||
    { say "The example host did not stay open."; exit 1; }

printf 'Subject: From a host\n\nHello.\n' | asUser /home/presenter/file-a-mail/file-a-mail /home/presenter/station Technician
before=$(asUser tolva list /home/presenter/station --json | sha256sum)

say "Uninstalling"
inRoot sh -c 'apt-get purge -q -y tolva tolva-desk tolva-pdf tolva-data libkvtolva1-0 libkvtolva1-dev' >"$root/packages/install.log" 2>&1
for left in "$root"/usr/bin/tolva* "$root"/usr/lib/systemd/system/tolva* "$root"/usr/lib/*/libkvTolva1* "$root"/usr/include/kvTolva1 "$root"/usr/share/tolva; do
    [ ! -e "$left" ] || { say "Uninstalling left ${left#"$root"}."; exit 1; }
done
inRoot sh -c 'apt-get install -q -y --no-install-recommends /packages/tolva_*.deb /packages/tolva-data_*.deb' >"$root/packages/install.log" 2>&1
asUser tolva check /home/presenter/station
[ "$before" = "$(asUser tolva list /home/presenter/station --json | sha256sum)" ] ||
    { say "The station is not what it was."; exit 1; }
say "The packages install, work and go without touching the station."
