#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Measures many desks on a PostgreSQL server of its own, which is gone afterwards. Needs what ./test built; exits with 1 when a limit is
# passed.
#   scripts/measure-server.sh idle [SECONDS]     fifty desks that look for changes: the server's processor time, below 2 percent of a core
#   scripts/measure-server.sh soak [SECONDS]     fifty desks that look and list, 20 messages a second by four filers: none missing or twice
#   scripts/measure-server.sh size [MESSAGES]    opening, a folder of 5,000, a contact's history, an award: within 3 times of 10,000 messages
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

desks=50
what=${1:-}
programs=build/check/bin
folder=$(mktemp -d)
chmod 755 "$folder"
mkdir "$folder/server"
# Whoever holds this keeps the server.
exec 8>"$folder/server/users"
flock --shared 8
leave() {
    kill $(jobs -p) 2>/dev/null || true
    wait
    exec 8>&-
    # The server ends by itself now and takes its folder along; without that it would run on for ever.
    for ((i = 0; i < 300; i++)); do
        if [ ! -e "$folder/server" ]; then break; fi
        sleep 0.2
    done
    rm -rf "$folder"
}
trap leave EXIT
tests/support/testServer.sh "$folder/server" 2 fsync=on autovacuum=on shared_buffers=128MB max_connections=150 8>&-

sql() { psql --host="$folder/server" --username=tolva --dbname=postgres --quiet --tuples-only --no-align --set=ON_ERROR_STOP=1 "$@"; }
# In the foreground: what runs beside is started without it, so that it can be ended by its number.
desk() { "$programs/serverDesk" "$@" 8>&-; }

makeStation() {
    "$programs/tolva" init "$folder/station" --name Harbour --phone "01632 960100" \
        --connect "host=$folder/server dbname=postgres user=tolva schema=station" 8>&- >/dev/null
}

# Of all processes of the server together, in seconds.
serverSeconds() {
    local postmaster ticks=0 pid
    postmaster=$(head -n 1 "$folder/server/data/postmaster.pid")
    for pid in "$postmaster" $(pgrep --parent "$postmaster"); do
        if [ -r "/proc/$pid/stat" ]; then ticks=$((ticks + $(awk '{ print $14 + $15 }' "/proc/$pid/stat"))); fi
    done
    awk -v ticks="$ticks" -v hertz="$(getconf CLK_TCK)" 'BEGIN { print ticks / hertz }'
}

measureIdle() {
    local seconds=${1:-60} before after i
    makeStation
    for ((i = 0; i < desks; i++)); do "$programs/serverDesk" watch "$folder/station" $((seconds + 60)) 8>&- & done
    until [ "$(sql --command="SELECT count(*) FROM pg_stat_activity WHERE query LIKE '%LISTEN%' OR wait_event = 'ClientRead'")" -ge $((2 * desks)) ]; do
        sleep 0.5
    done
    sleep 5
    before=$(serverSeconds)
    sleep "$seconds"
    after=$(serverSeconds)
    awk -v before="$before" -v after="$after" -v seconds="$seconds" -v desks="$desks" 'BEGIN {
        percent = 100 * (after - before) / seconds
        printf "%d idle desks cost the server %.2f percent of a core (limit 2)\n", desks, percent
        exit percent < 2 ? 0 : 1
    }'
}

measureSoak() {
    local seconds=${1:-600} i watchers=() filers=()
    makeStation
    mkdir "$folder/log"
    for ((i = 0; i < desks; i++)); do
        "$programs/serverDesk" watch "$folder/station" $((seconds + 5)) 8>&- &
        watchers+=($!)
    done
    for ((i = 0; i < 4; i++)); do
        "$programs/serverDesk" file "$folder/station" "$seconds" 5 >"$folder/log/filed-$i" 8>&- &
        filers+=($!)
    done
    for i in "${filers[@]}" "${watchers[@]}"; do wait "$i"; done
    grep --no-filename '^saved' "$folder"/log/filed-* | cut -d' ' -f2 | sort >"$folder/log/saved"
    sql --command="SELECT id FROM station.rows_$(sql --command="SELECT id FROM station.tolva_tables WHERE name = 'Messages'")" |
        sort >"$folder/log/stored"
    if [ -n "$(uniq -d "$folder/log/saved")" ] || ! cmp "$folder/log/saved" "$folder/log/stored"; then
        echo "messages are missing or there twice" >&2
        return 1
    fi
    "$programs/tolva" check "$folder/station" 8>&- >/dev/null
    echo "$(wc -l <"$folder/log/saved") messages in $seconds seconds, none missing or twice; the longest save took" \
        "$(grep --no-filename '^longest' "$folder"/log/filed-* | cut -d' ' -f2 | sort -n | tail -n 1) ms"
    if [ "$(wc -l <"$folder/log/saved")" -lt $((19 * seconds)) ]; then
        echo "the machine did not keep up with 20 messages a second" >&2
        return 1
    fi
}

# Rows of the folder that nobody lists, copied with other numbers; what checks a mail does not hold for these, and nothing here reads them.
growTo() {
    local messages=$1 table
    table="station.rows_$(sql --command="SELECT id FROM station.tolva_tables WHERE name = 'Messages'")"
    sql --command="
        CREATE TEMPORARY TABLE copied AS SELECT * FROM $table WHERE id > 5000;
        UPDATE copied SET $2 = convert_to(replace(convert_from($2, 'UTF8'), 'listener', 'elsewhere'), 'UTF8'),
            $2_folded = convert_to(replace(convert_from($2, 'UTF8'), 'listener', 'elsewhere'), 'UTF8');
        DO \$\$ BEGIN
            FOR i IN 1 .. ($messages - 10000) / 5000 LOOP
                UPDATE copied SET id = id + 10000;
                INSERT INTO $table SELECT * FROM copied;
            END LOOP;
        END \$\$;
        SELECT setval('${table/rows_/ids_}', (SELECT max(id) FROM $table))" >/dev/null
    if [ "$(sql --command="SELECT count(*) FROM $table")" -ne "$messages" ]; then
        echo "there are not $messages messages" >&2
        return 1
    fi
    sql --command="VACUUM ANALYZE"
    # What the copying has left to be written to the disk would delay each commit.
    sql --command="CHECKPOINT"
}

measureSize() {
    local messages=${1:-1000000} column
    makeStation
    desk fill "$folder/station" 10000 5000
    sql --command="VACUUM ANALYZE"
    sql --command="CHECKPOINT"
    desk measure "$folder/station" >"$folder/small"
    column=c$(sql --command="SELECT ordinal FROM station.tolva_fields WHERE name = 'FromKey'")
    growTo "$messages" "$column"
    desk measure "$folder/station" >"$folder/large"
    paste -d' ' "$folder/small" "$folder/large" | awk -v messages="$messages" '{
        ratio = $4 / $2
        printf "%-8s %10.2f ms of 10000 messages, %10.2f ms of %d: %.2f times (limit 3)\n", $1, $2, $4, messages, ratio
        worst = ratio > worst ? ratio : worst
    } END { exit worst <= 3 ? 0 : 1 }'
}

case $what in
    idle) measureIdle "${2:-60}" ;;
    soak) measureSoak "${2:-600}" ;;
    size) measureSize "${2:-1000000}" ;;
    *)
        echo "usage: scripts/measure-server.sh idle|soak|size [NUMBER]" >&2
        exit 64
        ;;
esac
