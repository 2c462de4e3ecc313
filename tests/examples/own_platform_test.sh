#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# own_platform_test.sh PROGRAM LIBRARY PLATFORM HEADER
# The header lists what LIBRARY takes from its platform, and PROGRAM runs on the library PLATFORM.
set -euo pipefail
program=$1 library=$2 platform=$3 header=$4

# Names without arguments: an overload counts once.
short() { sed -E 's/\[abi:cxx11\]//; /^vtable/! s/\(.*//' | sort; }
taken=$(nm -D --undefined-only "$library" | awk '{print $2}' | c++filt | grep -E '^((vtable for )?ovrant::|CNotification|Random)' |
  sort -u | short)
listed=$(sed -nE 's,^//   ((vtable for )?(ovrant|CNotification|Random).*),\1,p' "$header" | short)
diff <(echo "$taken") <(echo "$listed")
grep -q "$(($(wc -l <<<"$listed") - 1)) functions and one virtual table" "$header"

loaded=$(ldd "$program" | awk '/libCommonStowraapiPlatform/ {print $3}')
[ "$(realpath "$loaded")" = "$(realpath "$platform")" ] || { echo "loads $loaded" >&2; exit 1; }
