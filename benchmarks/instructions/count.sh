#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# count.sh PROGRAM
#
# Prints each case of stowra-instructions and its number of instructions, sorted by name.
set -euo pipefail

program=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

valgrind --tool=callgrind --callgrind-out-file="$folder/counts" --toggle-collect=stowra_counted_case \
  --dump-after=stowra_counted_case "$program" >"$folder/cases" 2>"$folder/log" || { cat "$folder/log" >&2; exit 1; }

# callgrind writes one dump for each case: counts.1, counts.2 and so on.
number=0
while IFS= read -r name; do
  number=$((number + 1))
  printf '%s %s\n' "$name" "$(sed -n 's/^totals: //p' "$folder/counts.$number")"
done <"$folder/cases" | LC_ALL=C sort
