#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# credentials_test.sh PROGRAM EMULATOR
# Only one of the two requests of the example carries the credentials.
set -euo pipefail
source "$(dirname "$0")/with_emulator.sh" "$2"

"$1" "$url"
# The emulator's journal: one line of JSON for each request.
exec 3<>"/dev/tcp/127.0.0.1/${url##*:}"
printf 'GET /-/events HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n' >&3
requests=()
while [ ${#requests[@]} -lt 2 ] && read -r -t 20 line <&3; do
  if [[ $line == data:* ]]; then requests+=("$line"); fi
done
[[ ${requests[0]} == *'Authorization: Bearer 2f6a7b8c9d01'* ]] || { echo "no credentials: ${requests[0]}" >&2; exit 1; }
[[ ${requests[1]} == *'Host: localhost'* ]] || { echo "another request: ${requests[1]}" >&2; exit 1; }
[[ ${requests[1]} != *Authorization* ]] || { echo "credentials went elsewhere: ${requests[1]}" >&2; exit 1; }
