#!/usr/bin/env bash
# example_test.sh EXAMPLE EMULATOR
set -euo pipefail

work=$(mktemp -d)
mkfifo "$work/url"
"$2" --quiet >"$work/url" &
emulator_pid=$!
trap 'kill "$emulator_pid"; rm -rf "$work"' EXIT
read -r url <"$work/url"
"$1" "$url/update" | grep -E '^[0-9.]+ is current$'
