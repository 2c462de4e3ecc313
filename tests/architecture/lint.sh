#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# lint.sh BUILD_DIR: runs clang-tidy on the sources that are configured in BUILD_DIR, which CMake has joined, as the
# headers are then read once for many. Its analyzer skips what a source includes, so the sources are copied in. A public
# header is linted with the sources that include it, not once more alone.
set -euo pipefail
build=$1

while read -r joined; do
  awk -F'"' '
    /^#include/ { print "#line 1 \"" $2 "\""; while ((getline line < $2) > 0) print line; next }
    { print }' "$joined" >"$joined.whole"
  mv "$joined.whole" "$joined"
done < <(find "$build" -name 'unity_*.cxx')

sed -n 's/^ *"file": "\(.*\)".*/\1/p' "$build/compile_commands.json" |
  grep -v '_verify_interface_header_sets/' |
  xargs -P "$(getconf _NPROCESSORS_ONLN)" -n 1 clang-tidy -p "$build" --quiet
