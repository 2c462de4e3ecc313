#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check_licences.sh PROJECT_DIR
#
# Prints each source file that does not name its licence, and fails if there is one.
set -euo pipefail
cd "$1"

mapfile -t sources < <(find . \( -path ./build -o -name .git -o -name node_modules \) -prune -o -type f \
  \( -name '*.cc' -o -name '*.h' -o -name '*.mjs' -o -name '*.sh' -o -name '*.zsh' -o -name '*.py' -o -name '*.rb' -o -name '*.pml' \
  -o -name '*.gp' -o -name '*.cmake' -o -name '*.cmake.in' -o -name '*.pc.in' -o -name '*.tbd' -o -name CMakeLists.txt \
  -o -path ./run -o -path ./.ci/run \) -print)

without=$(grep -L 'SPDX-License-Identifier: MIT' "${sources[@]}" || true)
if [ -n "$without" ]; then
  printf '%s\nthese files do not name their licence\n' "$without" >&2
  exit 1
fi
echo "licences: ${#sources[@]} files name theirs"
