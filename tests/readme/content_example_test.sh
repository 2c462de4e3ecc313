#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# content_example_test.sh EXAMPLE EMULATOR
set -euo pipefail
source "$(dirname "$0")/with_emulator.sh" "$2"

"$1" "$url" >"$work/output"
cat "$work/output"
grep -qx 'Oak Chair' "$work/output"
grep -qx "show $url/upload-succeeded" "$work/output"
