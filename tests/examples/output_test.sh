#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# output_test.sh PROGRAM SOURCE EMULATOR [OPTION...]
# Runs an example against an emulator with these options, and compares what it prints with the lines below "Prints:"
# in its source. They give the emulator the port 8080.
set -euo pipefail
program=$1 source=$2
shift 2
source "$(dirname "$0")/with_emulator.sh" "$@"

# The options in the source are those of this test.
shift
grep -qxF "//   stowra-emulator --port 8080${*:+ $*}" "$source" || { echo "$source starts the emulator otherwise" >&2; exit 1; }

sed -n '/^\/\/ Prints:$/,/^$/ s|^//   ||p' "$source" | sed "s|http://127.0.0.1:8080|$url|" >"$work/expected"
[ -s "$work/expected" ] || { echo "$source does not say what it prints" >&2; exit 1; }
"$program" "$url" >"$work/printed"
diff "$work/expected" "$work/printed"
