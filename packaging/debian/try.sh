#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# try.sh BUILD_DIR [ROOT]
#
# Installs the packages of BUILD_DIR in a bare Debian system in the folder ROOT and uses them there as somebody would who
# has nothing else: starts the emulator, searches it, and builds a small project with CMake and with pkg-config. Needs
# root's rights and debootstrap. Without ROOT the system is made in a temporary folder.
set -euo pipefail
build=$1
here=$(cd "$(dirname "$0")" && pwd)
root=${2-$(mktemp -d)}
trap '[ -n "${2-}" ] || rm -rf "$root"' EXIT

if [ ! -e "$root/etc/debian_version" ]; then
  debootstrap --variant=minbase "$(. /etc/os-release && echo "$VERSION_CODENAME")" "$root" >"$root.log" ||
    { cat "$root.log" >&2; exit 1; }
fi
rm -rf "$root/packages" "$root/consumer"
mkdir "$root/packages"
cp "$build"/*.deb "$root/packages"
cp -r "$here/../../tests/install/consumer" "$root/consumer"
cp "$here/in_bare_root.sh" "$root/packages"
# Nothing of this environment goes in.
env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin chroot "$root" /bin/bash /packages/in_bare_root.sh
