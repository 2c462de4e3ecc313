#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# build_for_arm64.sh packages|build: what arm64.sh runs inside the bare system.
set -euo pipefail
export DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8
quiet() { "$@" >/tmp/log 2>&1 || { cat /tmp/log >&2; exit 1; }; }

if [ "$1" = packages ]; then
  dpkg --add-architecture arm64
  quiet apt-get update
  quiet apt-get install -y --no-install-recommends g++-aarch64-linux-gnu cmake ninja-build pkg-config qemu-user-static \
    libcli11-dev nlohmann-json3-dev rapidjson-dev googletest binutils nginx-light openssl \
    lib{curl4-openssl,expat1,icu,sqlite3,ssl,fmt,cpp-httplib,gtest,gmock}-dev:arm64 zlib1g-dev:arm64
  echo "127.0.0.1 localhost" >/etc/hosts
else
  export PKG_CONFIG_LIBDIR=/usr/lib/aarch64-linux-gnu/pkgconfig:/usr/share/pkgconfig
  quiet cmake -G Ninja -S /project -B /build -DCMAKE_SYSTEM_NAME=Linux -DCMAKE_SYSTEM_PROCESSOR=aarch64 \
    -DCMAKE_CXX_COMPILER=aarch64-linux-gnu-g++ -DCMAKE_LIBRARY_ARCHITECTURE=aarch64-linux-gnu \
    -DCMAKE_CROSSCOMPILING_EMULATOR=qemu-aarch64-static -DCMAKE_BUILD_TYPE=Release -DSTOWRA_CORPORA_DIR=/corpora
  quiet cmake --build /build
fi
