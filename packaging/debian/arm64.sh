#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# arm64.sh [ROOT [CTEST_OPTION...]]
#
# Builds everything for Debian arm64 and runs the tests of it under qemu-user. Compiler and libraries are those of a bare
# Debian system in the folder ROOT, so that the packages of this one stay as they are. Without ROOT the system is made in a
# temporary folder. Needs root's rights, debootstrap, and Linux 6.7 or later, where a user namespace has a binfmt_misc of
# its own. Run it in the project's folder.
set -euo pipefail
root=${1-$(mktemp -d)}
trap '[ -n "${1-}" ] || rm -rf "$root"' EXIT
here=$PWD/packaging/debian

if [ ! -e "$root/etc/debian_version" ]; then
  debootstrap --variant=minbase "$(. /etc/os-release && echo "$VERSION_CODENAME")" "$root" >"$root.log" ||
    { cat "$root.log" >&2; exit 1; }
fi
mkdir -p "$root/project" "$root/corpora"
git ls-files -z | tar --null -T - -c | tar -x -C "$root/project"
# Nothing of this environment goes in.
bare() { env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin "$@"; }
bare chroot "$root" /bin/bash /project/packaging/debian/build_for_arm64.sh packages
bare unshare --user --map-root-user --mount "$here/in_arm64_root.sh" "$root" "${STOWRA_CORPORA_DIR-../shared/corpora}" "${@:2}"
