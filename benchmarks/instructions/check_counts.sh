#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check_counts.sh [--update] RECORD COUNTS
#
# Compares COUNTS, the output of count.sh, with RECORD. Fails if a case takes over 5 % more instructions than recorded,
# was not counted, or is not recorded. With --update, rewrites RECORD instead.
set -euo pipefail

update=
if [ "${1-}" = --update ]; then
  update=yes
  shift
fi
record=$1
counts=$2
machine=$(uname -m)

fail() { echo "instructions: $1" >&2; exit 1; }

[ -s "$counts" ] || fail "$counts: no counts"
if [ -n "$update" ]; then
  {
    echo "# Instructions of each case in the release preset, from count.sh; check_counts.sh --update rewrites this file."
    echo "# machine: $machine"
    LC_ALL=C sort "$counts"
  } >"$record.new"
  mv "$record.new" "$record"
  exit
fi

recorded_machine=$(sed -n 's/^# machine: //p' "$record")
[ -n "$recorded_machine" ] || fail "$record: does not name its machine"
if [ "$recorded_machine" != "$machine" ]; then
  echo "instructions: not compared, since the record is from $recorded_machine and this is $machine"
  exit
fi

awk -v record="$record" -v counts="$counts" '
  function complain(text) { print "instructions: " text; failed = 1 }

  /^#/ || /^$/ { next }
  NF != 2 || $2 !~ /^[1-9][0-9]*$/ { complain(FILENAME ": not a case and its count: " $0); next }
  FILENAME == record { recorded[$1] = $2; next }
  { counted[$1] = $2 }

  END {
    for (name in recorded) {
      if (!(name in counted)) { complain(name ": not counted"); continue }
      change = counted[name] / recorded[name] - 1
      text = sprintf("%s: %d, recorded %d (%+.1f %%)", name, counted[name], recorded[name], change * 100)
      if (counted[name] * 100 > recorded[name] * 105) complain(text)
      else if (counted[name] * 100 < recorded[name] * 95) print "instructions: less than recorded: " text
    }
    for (name in counted) if (!(name in recorded)) complain(name ": not recorded")
    if (failed) print "instructions: if this is intended, run check_counts.sh --update " record " " counts
    else print "instructions: no case takes 5 % more than recorded"
    exit failed
  }
' "$record" "$counts"
