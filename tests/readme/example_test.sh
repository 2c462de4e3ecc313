#!/usr/bin/env bash
# example_test.sh EXAMPLE EMULATOR
set -euo pipefail

coproc emulator { exec "$2" --quiet; }
trap 'kill "$emulator_PID"' EXIT
read -r url <&"${emulator[0]}"
"$1" "$url/user-info"
