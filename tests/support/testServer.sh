#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# testServer.sh FOLDER SECONDS [SETTING=VALUE...]
# Starts a PostgreSQL server for tests in FOLDER, which answers on the unix socket there and nowhere else, and returns once it does. It
# belongs to whoever holds a shared lock on FOLDER/users; when nobody has held one for that many seconds, however he ended, the server is
# stopped and the folder removed. Nothing of the system's own server is touched.
set -euo pipefail

folder=$1
seconds=$2
shift 2

programs=$(find /usr/lib/postgresql -mindepth 2 -maxdepth 2 -name bin 2>/dev/null | sort -V | tail -n 1)
if [ -z "$programs" ]; then programs=$(dirname "$(command -v initdb)"); fi

# The server refuses to run as root.
asServer=()
if [ "$(id -u)" -eq 0 ]; then
    asServer=(setpriv --reuid=postgres --regid=postgres --clear-groups env "HOME=$folder")
    chown postgres:postgres "$folder"
fi
chmod 755 "$folder"
cd "$folder"

data=$folder/data
if [ ! -e "$data/PG_VERSION" ]; then
    "${asServer[@]}" "$programs/initdb" -D "$data" -U tolva --auth=trust --no-sync --encoding=UTF8 --locale=C \
        >"$folder/initdb.log" 2>&1
    # Durability is not what most tests are about.
    {
        echo "listen_addresses = ''"
        echo "unix_socket_directories = '$folder'"
        echo "fsync = off"
        echo "shared_buffers = 32MB"
        echo "max_connections = 60"
        echo "autovacuum = off"
        for setting in "$@"; do echo "${setting%%=*} = '${setting#*=}'"; done
    } >>"$data/postgresql.conf"
fi
"${asServer[@]}" "$programs/pg_ctl" -D "$data" -l "$folder/server.log" -w -t 30 start >/dev/null

# A watcher that nobody has to end.
if [ ! -e "$folder/watcher" ]; then
    touch "$folder/watcher"
    setsid bash -c '
        folder=$1 seconds=$2 programs=$3
        shift 3
        idle=0
        while [ "$idle" -lt $((seconds * 2)) ]; do
            sleep 0.5
            if flock --exclusive --nonblock "$folder/users" true; then idle=$((idle + 1)); else idle=0; fi
        done
        exec 9>"$folder/users"
        flock --exclusive 9
        "$@" "$programs/pg_ctl" -D "$folder/data" -m immediate -w stop
        # Out of the way first: whoever comes while it is being removed makes a folder of his own.
        mv "$folder" "$folder-gone-$$"
        rm -rf "$folder-gone-$$"
    ' watcher "$folder" "$seconds" "$programs" "${asServer[@]}" </dev/null >/dev/null 2>&1 9>&- &
fi
