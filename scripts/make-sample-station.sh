#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Makes the sample station of samples/ (samples/README.md describes it).
#   scripts/make-sample-station.sh TOLVA FOLDER
# TOLVA is the program, FOLDER the station to make. One that stands already is left alone. The station grows in a folder
# beside FOLDER and gets its name when it is whole, so an interrupted run leaves nothing that looks like a station.
set -euo pipefail

say() { printf '%s\n' "$*" >&2; }

if [ $# -ne 2 ]; then
    say "Usage: $0 TOLVA FOLDER"
    exit 64
fi
tolva=$(realpath "$1")
folder=$(realpath -m "$2")
cd "$(dirname "${BASH_SOURCE[0]}")/../samples"

if [ -e "$folder/Tolva.mdb" ]; then
    say "The sample station is in $folder already."
    exit 0
fi
# An empty folder may be taken; anything else in it is somebody's.
if [ -e "$folder" ] && ! rmdir "$folder" 2>/dev/null; then
    say "$folder exists and is not empty; no station was made."
    exit 73
fi

mkdir -p "$(dirname "$folder")"
unfinished=$(mktemp -d "$folder.unfinished-XXXXXX")
trap 'rm -rf "$unfinished"' EXIT
station=$unfinished/station

# Each section of station.ini in the order of its lines: what stands before the first "=", and what stands behind.
declare -A value=()
folders=() filePatterns=() fileFolders=() readPatterns=() readAnswers=()

readSettings() {
    local line section='' key text
    while IFS= read -r line || [ -n "$line" ]; do
        case $line in
        '' | ';'*) continue ;;
        '['*']') section=${line:1:-1} && continue ;;
        esac
        key=${line%%=*} text=${line#*=}
        case $section in
        Folders) folders+=("$key") ;;
        File) filePatterns+=("$key") fileFolders+=("$text") ;;
        Read) readPatterns+=("$key") readAnswers+=("$text") ;;
        *) value[$section.$key]=$text ;;
        esac
    done <station.ini
}

# folderOf FILE: where it goes.
folderOf() {
    local i
    for i in "${!filePatterns[@]}"; do
        # shellcheck disable=SC2053 # the right side is a pattern
        if [[ $1 == ${filePatterns[i]} ]]; then
            printf '%s' "${fileFolders[i]}"
            return
        fi
    done
    printf 'Inbox'
}

# isRead FILE
isRead() {
    local i
    for i in "${!readPatterns[@]}"; do
        # shellcheck disable=SC2053 # the right side is a pattern
        if [[ $1 == ${readPatterns[i]} ]]; then
            [ "${readAnswers[i]}" = yes ]
            return
        fi
    done
    return 1
}

makeStation() {
    "$tolva" init "$station" --name "${value[Station.Name]}" --phone "${value[Station.Phone]}" >/dev/null
    "$tolva" setting "$station" Station.SMSPhoneNumber "${value[Station.SMSNumber]}"
    "$tolva" setting "$station" Station.EmailAddress "${value[Station.Email]}"
    "$tolva" setting "$station" Station.Address "${value[Station.Address]}"
    "$tolva" setting "$station" Messages.HighlightWords "${value[Highlight.Words]}"
}

makeFolders() {
    local path
    say "Making ${#folders[@]} folders"
    for path in "${folders[@]}"; do
        case $path in
        */*) "$tolva" folders "$station" add "${path##*/}" --parent "${path%/*}" ;;
        *) "$tolva" folders "$station" add "$path" ;;
        esac
    done >/dev/null
}

# Files all messages, one call a folder, and marks those read that were.
fileMessages() {
    local file target line name files targets=() references=()
    local -A filesOf=()
    for file in maildir mbox/*.mbox mail/*.eml sms/*.sms; do
        target=$(folderOf "$file")
        [ -n "${filesOf[$target]:-}" ] || targets+=("$target")
        filesOf[$target]+=$file$'\n'
    done
    for target in "${targets[@]}"; do
        mapfile -t files <<<"${filesOf[$target]%$'\n'}"
        say "Filing in $target"
        "$tolva" file "$station" --category "$target" --verbose "${files[@]}" >"$unfinished/filed"
        while IFS= read -r line; do
            case $line in
            *' as '*) ;;
            *) continue ;;
            esac
            name=${line#filed }
            if isRead "${name% as *}"; then
                references+=("${line##* as }")
            fi
        done <"$unfinished/filed"
    done
    say "Marking ${#references[@]} messages as read"
    "$tolva" mark "$station" "${references[@]}" read
}

readSettings
makeStation
makeFolders
fileMessages
mv -T "$station" "$folder"
say "Made the sample station in $folder"
