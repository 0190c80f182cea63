#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Runs the systemd of a Debian in a folder as the first process of a computer of its own, without any network.
#   unshare --mount --pid --fork --uts --ipc --net --cgroup --kill-child packaging/boot-root.sh ROOT
# The control group that this is started in becomes the root of its groups. It ends with unshare.
set -euo pipefail
root=$1
mount --make-rprivate /
mount --bind "$root" "$root"
mount -t proc proc "$root/proc"
mount -t sysfs -o ro sysfs "$root/sys"
mount -t cgroup2 cgroup2 "$root/sys/fs/cgroup"
mount -t tmpfs -o mode=0755 tmpfs "$root/run"
mount -t tmpfs -o mode=0755 tmpfs "$root/dev"
for device in null zero full random urandom tty; do
    touch "$root/dev/$device"
    mount --bind "/dev/$device" "$root/dev/$device"
done
mkdir "$root/dev/pts" "$root/dev/shm" "$root/run/before"
mount -t devpts -o newinstance,ptmxmode=0666 devpts "$root/dev/pts"
ln -s pts/ptmx "$root/dev/ptmx"
cd "$root"
pivot_root . run/before
umount -l /run/before
exec env -i container=tolva PATH=/usr/sbin:/usr/bin:/sbin:/bin /lib/systemd/systemd --unit=multi-user.target </dev/null
