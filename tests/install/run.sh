#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Installs the library into an empty folder and uses it from there as a stranger would: the example host is built and run, the plugin is
# loaded as Qt Designer does it, each public header is compiled alone, and what the library shows to others is looked at.
#   tests/install/run.sh BUILD
# BUILD is the build folder. Works in BUILD/install-test.
set -euo pipefail
build=$(realpath "$1")
source=$(realpath "$(dirname "${BASH_SOURCE[0]}")/../..")
work=$build/install-test
rm -rf "$work/prefix" "$work/station" "$work/fresh" "$work/list.pdf"
mkdir -p "$work"

cmake --install "$build" --prefix "$work/prefix" >"$work/install.log"
prefix=$work/prefix
library=$(echo "$prefix"/lib*/libkvTolva1.so.0)
[ -e "$library" ] || library=$(find "$prefix" -name 'libkvTolva1.so.0')

echo "Symbols"
nm -DC --defined-only "$library" >"$work/symbols"
if ! grep -q ' T cTolvaDatabase::OpenTolvaDatabase' "$work/symbols"; then
    echo "The library hides its main class." >&2
    exit 1
fi
if grep -E ' T (SafeHtml|HtmlTree|AddressKey|TableCheck)' "$work/symbols"; then
    echo "The library shows what is its own affair." >&2
    exit 1
fi

echo "Example, plugin and headers"
cmake -S "$source/tests/install" -B "$work/build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" -DEXAMPLE="$source/examples/contact-desk" \
    -DCMAKE_BUILD_TYPE=Debug >"$work/configure.log" 2>&1 || { cat "$work/configure.log" >&2; exit 1; }
cmake --build "$work/build" >"$work/build.log" 2>&1 || { grep -vE "^\[[0-9]" "$work/build.log" >&2; exit 1; }

"$source/scripts/make-sample-station.sh" "$prefix/bin/tolva" "$work/station" >"$work/station.log" 2>&1 || { cat "$work/station.log" >&2; exit 1; }
export QT_QPA_PLATFORM=offscreen XDG_STATE_HOME=$work/state XDG_CONFIG_HOME=$work/config
"$work/build/exampleTest" "$work/station" Technician
plugin=$(find "$prefix" -name tolva-controls.so)
"$work/build/pluginTest" "$plugin" uMessageAddress uMessageBasic uMessagesList uPrizeBasic uPrizesList

# The examples' own projects, as their readers build them.
for example in contact-desk file-a-mail; do
    cmake -S "$source/examples/$example" -B "$work/$example" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >"$work/$example.log" 2>&1 &&
        cmake --build "$work/$example" >>"$work/$example.log" 2>&1 || { cat "$work/$example.log" >&2; exit 1; }
    code=0
    "$work/$example/$example" 2>"$work/usage.log" || code=$?
    [ "$code" -eq 2 ] && grep -q '^Usage' "$work/usage.log"
done
printf 'From: ann@example.com\r\nSubject: From outside\r\n\r\nHello.\r\n' | "$work/file-a-mail/file-a-mail" "$work/station" Technician >"$work/filed"
grep -qx 'Stored "From outside".' "$work/filed"
reference=$(sed -nE 's/^It is on the disk as message ([0-9]+)\.$/\1/p' "$work/filed")
"$prefix/bin/tolva" show "$work/station" "$reference" --raw >"$work/shown"
grep -q "^Subject: From outside" "$work/shown"

echo "Templates and printing"
[ -e "$prefix/share/tolva/HTMLDocs/Message-Single message.htm" ]
# The installed set reaches a station that is made now, wherever the build lies.
"$prefix/bin/tolva" init "$work/fresh" --name Fresh --phone 1 >/dev/null
"$prefix/bin/tolva" list "$work/fresh"
"$prefix/bin/tolva" print "$work/station" "Studio list" --category Inbox -o "$work/list.pdf"
[ "$(head -c 5 "$work/list.pdf")" = %PDF- ]
[ "$(find "$work/fresh/HTMLDocs" -name '*.htm' | wc -l)" -eq "$(find "$prefix/share/tolva/HTMLDocs" -name '*.htm' | wc -l)" ]
echo "The installed library is usable."
