#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# credentials_test.sh PROGRAM EMULATOR
# Only one of the two requests of the example carries the credentials.
set -euo pipefail
source "$(dirname "$0")/with_emulator.sh" "$2"

"$1" "$url"
# The emulator's journal: one line of JSON for each request. Each came on its own connection, so either may be first.
exec 3<>"/dev/tcp/127.0.0.1/${url##*:}"
printf 'GET /-/events HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n' >&3
with='' without='' count=0
while [ $count -lt 2 ] && read -r -t 20 line <&3; do
  [[ $line == data:* ]] || continue
  count=$((count + 1))
  if [[ $line == *'Host: localhost'* ]]; then without=$line; else with=$line; fi
done
[[ $with == *'Authorization: Bearer 2f6a7b8c9d01'* ]] || { echo "no credentials: $with" >&2; exit 1; }
[ -n "$without" ] || { echo "no request to another origin: $with" >&2; exit 1; }
[[ $without != *Authorization* ]] || { echo "credentials went elsewhere: $without" >&2; exit 1; }
