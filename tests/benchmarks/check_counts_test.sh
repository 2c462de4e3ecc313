#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check_counts_test.sh CHECK_COUNTS
#
# Tests which instruction counts check_counts.sh accepts and which it rejects.
set -uo pipefail

check=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
record="$folder/record"
counts="$folder/counts"
failed=0

# expect STATUS TEXT CASE: the check of $record and $counts ends with STATUS and prints TEXT.
expect() {
  local said status=0
  said=$("$check" "$record" "$counts" 2>&1) || status=$?
  if [ "$status" != "$1" ] || [[ $said != *"$2"* ]]; then
    printf '%s: status %s, output:\n%s\n' "$3" "$status" "$said"
    failed=1
  fi
}

write_counts() { printf '%s\n' "$@" >"$counts"; }

write_counts 'Load/200 2000' 'Aside/1 100'
"$check" --update "$record" "$counts" || exit 1

[ "$(grep -v '^#' "$record")" = $'Aside/1 100\nLoad/200 2000' ] || { echo 'the record is not sorted'; failed=1; }
expect 0 'no case takes 5 % more' 'the recorded counts'

write_counts 'Load/200 2100' 'Aside/1 100'
expect 0 'no case takes 5 % more' '5 % more'
write_counts 'Load/200 2101' 'Aside/1 100'
expect 1 'Load/200: 2101, recorded 2000 (+5.0 %)' 'over 5 % more'
write_counts 'Load/200 1000' 'Aside/1 100'
expect 0 'less than recorded: Load/200: 1000, recorded 2000 (-50.0 %)' 'half the count'
write_counts 'Load/200 2000'
expect 1 'Aside/1: not counted' 'a missing case'
write_counts 'Load/200 2000' 'Aside/1 100' 'New/1 5'
expect 1 'New/1: not recorded' 'a new case'
write_counts 'Load/200' 'Aside/1 100'
expect 1 'not a case and its count: Load/200' 'a case without a count'
: >"$counts"
expect 1 'no counts' 'an empty file of counts'

write_counts 'Load/200 2000' 'Aside/1 100'
sed -i.old 's/Load\/200 2000/Load\/200 1900/' "$record"
expect 1 'recorded 1900' 'a changed record'
: >"$record"
expect 1 'does not name its machine' 'an empty record'
printf '# machine: other\nLoad/200 1\n' >"$record"
expect 0 'the record is from other' 'the record of another machine'

[ "$failed" = 0 ] && echo 'check_counts.sh: ok'
exit "$failed"
