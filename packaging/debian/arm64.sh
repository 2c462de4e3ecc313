#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# arm64.sh [ROOT]
#
# Builds the library for Debian arm64 and runs tests of it under qemu-user. Compiler and libraries are those of a bare
# Debian system in the folder ROOT, so that the packages of this one stay as they are. Needs root's rights and debootstrap.
# Without ROOT the system is made in a temporary folder. Run it in the project's folder.
set -euo pipefail
root=${1-$(mktemp -d)}
trap '[ -n "${1-}" ] || rm -rf "$root"' EXIT

if [ ! -e "$root/etc/debian_version" ]; then
  debootstrap --variant=minbase "$(. /etc/os-release && echo "$VERSION_CODENAME")" "$root" >"$root.log" ||
    { cat "$root.log" >&2; exit 1; }
fi
mkdir -p "$root/project"
git ls-files -z | tar --null -T - -c | tar -x -C "$root/project"
chroot "$root" /bin/bash /project/packaging/debian/in_arm64_root.sh
