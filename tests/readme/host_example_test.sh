#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# host_example_test.sh EXAMPLE EMULATOR
set -euo pipefail
source "$(dirname "$0")/with_emulator.sh" "$2"

"$1" "$url/update" | grep -E '^[0-9.]+ is current$'
