#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# coverage.sh BUILD_DIR: runs the tests of a build with the preset "coverage" and judges their coverage with judge.py.
set -euo pipefail
folder=$(cd "$(dirname "$0")" && pwd)
source=$(cd "$folder/../.." && pwd)
build=$1

# Leaves out tests that execute no code of the rooms. Also leaves out tests of cost, since counting would distort it.
left_out='^(architecture|benchmarks|install|readme)\.|^(Sizes|Attributes|Namespaces)/XmlHostileTest\.'
left_out+='|^XmlHostile(Attributes|Hash|Name|Namespaces|Nesting|Order)Test\.|^XmlModelTest\.EveryElement|^LargeTextTest\.MayHave'

export PYTHONDONTWRITEBYTECODE=1
python3 "$folder/judge_test.py"
find "$build" -name '*.gcda' -delete
ctest --test-dir "$build" -j "$(getconf _NPROCESSORS_ONLN)" --output-on-failure --no-tests=error -E "$left_out"
gcovr -j "$(getconf _NPROCESSORS_ONLN)" -r "$source" \
  --filter "$source/common_stowraapi/(platform|json|request|services|content)/" \
  --exclude-throw-branches --exclude-unreachable-branches --json "$build/coverage.json" "$build"
python3 "$folder/judge.py" "$source" "$build/coverage.json" "$folder/uncovered.txt"
