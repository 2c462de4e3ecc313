#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# shows_the_example_test.sh PROJECT_DIR
# The only C++ in README.md is the code of the first example, and README.md names every example.
set -euo pipefail
cd "$1"

diff <(sed -n '/^```cpp$/,/^```$/{/^```/!p}' README.md) <(sed '1,/^$/d' examples/01_who_is_signed_in.cc)
for example in examples/[0-9]*; do
  grep -qF "]($example)" README.md || { echo "README.md does not name $example" >&2; exit 1; }
done
