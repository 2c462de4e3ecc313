#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# demo.sh STOWRA EMULATOR
# Starts a local emulator and calls every service: three in both modes, then the content service.
set -euo pipefail
stowra=$1 emulator=$2

work=$(mktemp -d)
mkfifo "$work/url"
"$emulator" --quiet >"$work/url" &
emulator_pid=$!
trap 'kill "$emulator_pid"; wait "$emulator_pid" 2>/dev/null || true; rm -rf "$work"' EXIT
read -r url <"$work/url"
echo "emulator at $url"

# Notifications go to stderr. One stream keeps them in order with the results.
exec 2>&1
show() {
  echo
  echo "\$ stowra $*"
  "$stowra" "$@" --notifications
}

body='{"extensions":[{"id":"roof-tools","version":"1.0"},{"id":"stair-maker","version":"9.0"}]}'
for mode in "" --async; do
  show user-info "$url/user-info" $mode
  show update "$url/update" $mode
  show extensions "$url/extensions" --body - $mode <<<"$body"
done

"$stowra" demo "$url"
