#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# in_arm64_root.sh ROOT CORPORA [CTEST_OPTION...]
#
# What arm64.sh runs in a user and mount namespace of its own. There the kernel starts programs for arm64 with the qemu of
# ROOT, and so do the build and the tests, which start many.
set -euo pipefail
root=$1 corpora=$2
mount -t binfmt_misc binfmt_misc /proc/sys/fs/binfmt_misc
sed "s|:[^:]*:[^:]*\$|:$root/usr/bin/qemu-aarch64-static:F|" "$root/usr/lib/binfmt.d/qemu-aarch64.conf" \
  >/proc/sys/fs/binfmt_misc/register
for folder in dev proc; do mount --rbind "/$folder" "$root/$folder"; done
if [ -d "$corpora" ]; then mount --bind "$corpora" "$root/corpora"; fi

chroot "$root" /bin/bash /project/packaging/debian/build_for_arm64.sh build
chroot "$root" ctest --test-dir /build --output-on-failure -j "$(nproc)" "${@:3}"
