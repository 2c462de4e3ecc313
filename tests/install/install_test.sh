#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# install_test.sh find_package|pkg_config BUILD_DIR CONSUMER_DIR COMPILER SANITIZERS
set -euo pipefail

way=$1 build=$2 consumer=$3 compiler=$4 sanitizers=$5
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix
flags=${sanitizers:+-fsanitize=$sanitizers}

cmake --install "$build" --prefix "$prefix" >/dev/null

if [ "$way" = find_package ]; then
  cmake -G Ninja -S "$consumer" -B "$work/build" -DCMAKE_PREFIX_PATH="$prefix" \
        -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_CXX_FLAGS="$flags" >/dev/null
  cmake --build "$work/build" >/dev/null
  "$work/build/consumer"
else
  libdir=$(cd "$(dirname "$(find "$prefix" -name common_stowraapi.pc)")/.." && pwd)
  export PKG_CONFIG_PATH=$libdir/pkgconfig
  # shellcheck disable=SC2046
  "$compiler" -std=c++17 $flags $(pkg-config --cflags common_stowraapi) "$consumer/consumer.cc" -o "$work/consumer" \
      $(pkg-config --libs common_stowraapi) -Wl,-rpath,"$libdir"
  version=$(sed -n 's/^#define COMMON_STOWRAAPI_VERSION_[A-Z]* //p' "$prefix/include/common_stowraapi/version.h" | paste -sd.)
  [ "$(pkg-config --modversion common_stowraapi)" = "$version" ] || { echo "the .pc file has another version" >&2; exit 1; }
  "$work/consumer"
fi
