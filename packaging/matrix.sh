#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# matrix.sh BUILD_DIR [COMPILER:STANDARD_LIBRARY:BUILD_TYPE|static...]
#
# Builds the library and the programs with each combination and prints a line for each. Debian's fmt, cpp-httplib and
# GoogleTest are built with libstdc++: with it the programs are linked and some tests run, with libc++ a small program
# that uses the library runs. Sources are joined, which the compilers read several times faster. Run it in the project's
# folder.
set -uo pipefail
mkdir -p "$1"
build=$(cd "$1" && pwd)
shift
if [ $# -eq 0 ]; then
  set -- static
  for type in Release Debug; do
    set -- "$@" "g++-12:libstdc++:$type" "clang++-14:libstdc++:$type" "clang++-14:libc++:$type" \
      "clang++-19:libstdc++:$type"
  done
fi
failed=0

# refuse_static TREE: there is no static library, and configuring must say so.
refuse_static() {
  ! cmake --preset release -B "$1" -DBUILD_SHARED_LIBS=OFF >"$1.log" 2>&1 && grep -q 'has shared libraries only' "$1.log"
}

# try ROW TREE: builds one row. Prints what ran.
try() {
  local compiler library type tests=ON targets=(CommonStowraapi stowra stowra-emulator json_test text_test)
  IFS=: read -r compiler library type <<<"$1"
  local flags=()
  if [ "$library" = libc++ ]; then
    flags=(-DCMAKE_CXX_FLAGS=-stdlib=libc++)
    tests=OFF targets=(CommonStowraapi stowra_host stowra_emulator_services)
  fi
  cmake --preset release -B "$2" -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_BUILD_TYPE="$type" \
    -DCMAKE_UNITY_BUILD=ON -DSTOWRA_BUILD_TESTS="$tests" "${flags[@]}" >"$2.log" 2>&1 || return 1
  cmake --build "$2" --target "${targets[@]}" >>"$2.log" 2>&1 || return 1
  if [ "$tests" = ON ]; then
    "$2/tests/json/json_test" >>"$2.log" 2>&1 && "$2/tests/platform/text/text_test" >>"$2.log" 2>&1 || return 1
    grep '\[  PASSED  \]' "$2.log" | sed 's/.*\] //; s/\.$//' | paste -sd ' '
  else
    "$compiler" -std=c++17 -stdlib=libc++ -I. tests/install/consumer/consumer.cc -o "$2/consumer" \
      -L"$2/common_stowraapi" -Wl,-rpath,"$2/common_stowraapi" -lCommonStowraapi -lCommonStowraapiPlatform \
      >>"$2.log" 2>&1 && "$2/consumer" >>"$2.log" 2>&1 || return 1
    echo "a program that uses it ran"
  fi
}

for row in "$@"; do
  tree=$build/$(tr ':+' '-x' <<<"$row")
  if [ "$row" = static ]; then
    refuse_static "$tree" && echo "static: refused, with the reason" || { echo "static: failed, see $tree.log"; failed=1; }
  elif ran=$(try "$row" "$tree"); then
    echo "$row: built, $ran"
  else
    echo "$row: failed, see $tree.log"
    failed=1
  fi
done
exit "$failed"
