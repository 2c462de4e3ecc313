#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check_abi.sh BUILD_DIR [--update]
#
# Compares the layouts, virtual functions and signatures of the public headers with the record beside this script.
# Additions are fine. --update makes the record anew. Builds the libraries in BUILD_DIR with debugging information. The
# record is for x86-64 Linux and g++. Run it in the project's folder. Needs abidw and abidiff (abigail-tools).
set -euo pipefail
build=$1
records=$(cd "$(dirname "$0")" && pwd)

cmake --preset release -B "$build" -DCMAKE_CXX_COMPILER=g++ -DCMAKE_BUILD_TYPE= -DCMAKE_CXX_FLAGS=-g -DCMAKE_UNITY_BUILD=ON \
  -DSTOWRA_BUILD_TESTS=OFF -DSTOWRA_BUILD_PROGRAMS=OFF >"$build.log" || { cat "$build.log" >&2; exit 1; }
rm "$build.log"
cmake --build "$build" >&2
cmake --install "$build" --prefix "$build/installed" --component dev >/dev/null

failed=0
for library in CommonStowraapiPlatform CommonStowraapi; do
  record=$records/$library.abi
  abidw --headers-dir "$build/installed/include" --drop-private-types --exported-interfaces-only --no-show-locs \
    --no-corpus-path --no-comp-dir-path --type-id-style hash --suppressions "$records/abi.suppressions" \
    --out-file "$build/$library.abi" "$build/common_stowraapi/lib$library.so"
  if [ "${2-}" = --update ]; then
    cp "$build/$library.abi" "$record"
  elif abidiff --no-added-syms "$record" "$build/$library.abi"; then
    echo "binary contract: lib$library.so keeps what $library.abi records"
  else
    failed=1
  fi
done
exit "$failed"
