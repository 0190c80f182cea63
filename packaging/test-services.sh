#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs the services of the package tolva by a systemd that is the first process of a computer of its own: in ROOT, where the package is
# installed with isync, msmtp and python3, a station stands in /srv/station, and "tolva setup mail" wrote the ways mbsync and msmtp into
# /root. packaging/test-packages.sh makes such a root. Needs root; takes about five minutes, because timers wait for as long as they wait
# at a station.
#   packaging/test-services.sh ROOT
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
root=$1
say() { printf '%s\n' "$*" >&2; }

groups=$(mktemp -d "${TMPDIR:-/tmp}/tolva-groups-XXXXXX")
mount -t cgroup2 cgroup2 "$groups"
group=$groups/tolva-test-$$
leader=
finish() {
    # Its first process ends with it, and takes all others with it.
    [ -z "$leader" ] || kill -KILL "$leader" 2>/dev/null || true
    for ((i = 0; i < 100; ++i)); do
        find "$group" -depth -type d -exec rmdir {} + 2>/dev/null && break
        sleep 0.1
    done
    umount "$groups"
    rmdir "$groups"
}
trap finish EXIT
mkdir "$group"
(
    echo "$BASHPID" >"$group/cgroup.procs"
    exec unshare --mount --pid --fork --uts --ipc --net --cgroup --kill-child packaging/boot-root.sh "$root"
) &
leader=$!

first=
inMachine() {
    nsenter --target "$first" --mount --pid --uts --ipc --net --cgroup --root --wd -- \
        env -i PATH=/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 "$@"
}
asTolva() { inMachine runuser -u tolva -- "$@"; }
# within SECONDS WHAT COMMAND...: until the command succeeds.
within() {
    local end=$((SECONDS + $1)) what=$2
    shift 2
    until "$@" >/dev/null 2>&1; do
        if [ $SECONDS -ge $end ]; then
            say "This did not come in time: $what"
            inMachine systemctl --no-pager list-timers 'tolva-*' >&2 || true
            inMachine journalctl --no-pager -n 40 -u 'tolva-*' >&2 || true
            exit 1
        fi
        sleep 0.2
    done
}
isBooted() {
    first=$(pgrep -P "$leader") && inMachine systemctl show-environment
}
within 60 "the start of systemd" isBooted

receive=tolva-receive@srv-station
fetch=tolva-fetch@srv-station
send=tolva-send@srv-station
# Reads to the end, so that who writes is not killed.
holds() { grep -e "$1" >/dev/null; }
list() { inMachine tolva list /srv/station "$@"; }
isFiled() { list --find "$1" | holds "$1"; }
deliver() { printf 'To: ann@listeners.example\nSubject: %s\n\nHello.\n' "$1" | asTolva sh -c "umask 0007; cat >/srv/station/Incoming/tmp/$2 && mv /srv/station/Incoming/tmp/$2 /srv/station/Incoming/new"; }
hasJournal() { inMachine journalctl --no-pager -u "$1.service" | holds "$2"; }
is() { [ "$(inMachine systemctl show -P "$2" "$1")" = "$3" ]; }

say "Installing what tolva setup mail wrote, where systemd runs"
for way in mbsync msmtp; do
    inMachine sh "/root/$way/install.sh" >/dev/null 2>&1
    inMachine sh "/root/$way/install.sh" >/dev/null 2>&1
done
for unit in "$receive.path" "$fetch.timer" "$send.timer"; do
    within 5 "$unit is enabled and active" inMachine sh -c "systemctl is-enabled $unit && systemctl is-active $unit"
done

say "Receiving: a mail is filed as soon as it is there, and one that cannot be filed is tried again"
deliver Watched 1.watched
within 10 "a mail in the watched folder is filed" isFiled Watched
asTolva mv /srv/station/Tolva.mdb /srv/station/away
deliver Patient 2.patient
within 10 "the service waits for its next try" is $receive.service SubState auto-restart
within 5 "the journal says why" hasJournal $receive 'There is no station'
asTolva mv /srv/station/away /srv/station/Tolva.mdb
within 80 "it is filed by the next try" isFiled Patient
within 10 "the service is done" is $receive.service ActiveState inactive

say "Fetching: without a network it fails in words, and the timer tries again"
within 150 "mbsync says why" hasJournal $fetch imap.example.org
# As a mailbox with one mail answers.
inMachine sh -c 'cat >/usr/local/bin/mbsync && chmod 755 /usr/local/bin/mbsync' <<'END'
#!/bin/sh
[ -e /var/lib/tolva/fetched ] || printf 'Subject: Fetched\n\nHello.\n' >/srv/station/Incoming/new/3.fetched
touch /var/lib/tolva/fetched
END

say "Sending: what the provider cannot be asked waits, and goes out by the timer"
reference=$(list --find Watched --json | sed 's/.*"reference": *\([0-9]*\).*/\1/')
# As a desk lets it wait. The order of texts matters to none of these columns.
asTolva python3 - "$reference" <<'END'
import sqlite3, sys
station = sqlite3.connect("/srv/station/Tolva.mdb")
station.create_collation("JET", lambda one, other: (one > other) - (one < other))
with station:
    station.execute("UPDATE Messages SET Category=2, Flags=2, Sent=0 WHERE Reference=?", sys.argv[1:])
END
asTolva sh -c 'echo SECRET >/etc/tolva/smtp-password'
asTolva tolva setting /srv/station Station.EmailAddress studio@example.org >/dev/null
state() { inMachine tolva send /srv/station state --json | holds "$1"; }
within 80 "the timer tries to send" state notYet
within 10 "sending is over" is $send.service ActiveState inactive
is $send.service Result success || { say "A passing refusal counts as a failure of the service."; exit 1; }
within 5 "the journal says why it was not sent" hasJournal $send smtp.example.org
# As a provider that takes its time answers.
inMachine sh -c 'cat >/usr/local/bin/msmtp && chmod 755 /usr/local/bin/msmtp' <<'END'
#!/bin/sh
cat >>/var/lib/tolva/handed-over
sleep 5
END
asTolva tolva send /srv/station again "$reference" >/dev/null
within 80 "the mail is handed over" inMachine grep 'Subject: Watched' /var/lib/tolva/handed-over
# Stopped in the middle, it lets the hand-over come to its end.
inMachine systemctl stop $send.service
isSent() { list --category Sent --find Watched | holds Watched; }
isSent || { say "Stopping the service left in doubt whether a mail went out."; exit 1; }
[ "$(inMachine grep -c '^Subject: Watched' /var/lib/tolva/handed-over)" = 1 ] || { say "The mail went out twice."; exit 1; }

say "Backing up"
before=$(inMachine tolva backups /srv/station --json | wc -l)
inMachine systemctl start tolva-backup@srv-station.service
[ "$(inMachine tolva backups /srv/station --json | wc -l)" -gt "$before" ] || { say "The service has made no backup."; exit 1; }

within 150 "the timer has fetched the next mail" isFiled Fetched
say "The services do their work."
