#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Searches all states of deliveries.pml with spin. Fails on any error and on a search that does not reach every state.
# Then breaks the waiting rule in two ways, and fails unless spin finds the fault.
set -euo pipefail
model=$(cd "$(dirname "$0")" && pwd)/deliveries.pml
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"

# search [MACRO]: leaves spin's report in report.txt.
search() {
  spin -a ${1+"-D$1"} "$model"
  cc -O2 -w -DSAFETY -o pan pan.c  # The generated code has warnings.
  ./pan -m1000000 >report.txt
}

fail() {
  echo "check_model: $1" >&2
  cat report.txt >&2
  exit 1
}

# expect TEXT FAULT: fails unless TEXT is in the report.
expect() {
  grep -q "$1" report.txt || fail "$2"
}

number() {
  sed -n "s/$1/\1/p" report.txt
}

search
expect '^Full statespace search' 'not every state was searched'
expect 'errors: 0$' 'the model has an error'
! grep -qE 'not completed|too small|out of memory' report.txt || fail 'the search was cut off'
! grep -q '([1-9][0-9]* of [0-9]* states)' report.txt || fail 'part of the model is never reached'
echo "deliveries: $(number ' *\([0-9]*\) states, stored.*') states," \
  "depth $(number '.*depth reached \([0-9]*\),.*'), $(number '.*elapsed time \([0-9.]* seconds\)')"

search WAIT_ALWAYS
expect '^pan:1: invalid end state' 'no deadlock although threads always wait'
echo "threads always wait: deadlock found"

search WAIT_NEVER
expect '^pan:1: assertion violated .*in_call' 'no call outlives its removal although threads never wait'
echo "threads never wait: call after a removal found"
