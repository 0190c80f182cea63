#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Takes the pictures of docs/ anew: the desk saves pictures of itself on the sample station, and those that the pages show are kept.
#   scripts/make-pictures.sh TOLVA TOLVA-DESK
set -euo pipefail
if [ $# -ne 2 ]; then
    echo "Usage: $0 TOLVA TOLVA-DESK" >&2
    exit 64
fi
tolva=$(realpath "$1")
desk=$(realpath "$2")
cd "$(dirname "${BASH_SOURCE[0]}")/.."
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
scripts/make-sample-station.sh "$tolva" "$work/station"
"$desk" --pictures "$work/pictures" "$work/station" >/dev/null
mkdir -p docs/pictures
grep -ohE 'pictures/[a-z0-9-]+\.png' README.md docs/*.md | sort -u | while IFS= read -r picture; do
    cp "$work/$picture" "docs/$picture"
done
