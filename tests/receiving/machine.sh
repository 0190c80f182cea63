#!/bin/bash
# SPDX-License-Identifier: Apache-2.0
# Makes a computer of its own out of this one: its files seen through a layer that takes all changes and is gone with
# it, with other trees copied over them; its processes, network and host name are its own. Says "ready" and stays until
# standard input ends; with it ends everything that runs in there.
#   unshare --mount --pid --net --uts --fork --kill-child machine.sh PLACE VISIBLE [TREE...]
# PLACE is an empty folder to mount on, VISIBLE one that has to be seen there although it may be another file system.
set -eu
place=$1
visible=$2
shift 2

mount -t tmpfs -o size=3g,mode=0755 tmpfs "$place"
mkdir "$place/changes" "$place/work" "$place/root"
mount -t overlay overlay -o "lowerdir=/,upperdir=$place/changes,workdir=$place/work" "$place/root"
for tree in "$@"; do cp -a "$tree/." "$place/root/"; done
cd "$place/root"
mount -t proc proc proc
mount --rbind /dev dev
for folder in run tmp; do mount -t tmpfs -o mode=1777 tmpfs "$folder"; done
mkdir -p ".$visible"
mount --rbind "$visible" ".$visible"
# Accounts of its own run the programs that were built in there.
folder=$visible
while [ "$folder" != / ]; do
    chmod a+rx ".$folder"
    folder=$(dirname "$folder")
done
ip link set lo up
hostname station.test
# Stays root of its processes, whose remains a shell takes away.
exec chroot . /bin/bash -c 'echo ready; while read -r _; do :; done'
