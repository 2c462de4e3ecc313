#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# bench.sh BUILD_DIR DOCS_DIR
#
# Runs all benchmarks of a build, counts the instructions of the small cases, and writes performance.md,
# performance.json and performance.svg. Fails if a row of rows.json was not measured. Only reports a row that is not
# reached.
set -euo pipefail

build=$1
docs=$2
here=$(cd "$(dirname "$0")" && pwd)
results="$build/results"

# Enough for a stable median. All benchmarks take about six minutes.
rounds=5
seconds_each=0.1

processor() {
  local name
  name=$(sysctl -n machdep.cpu.brand_string 2>/dev/null || sed -n 's/^model name[[:space:]]*: //p' /proc/cpuinfo | head -n 1)
  echo "${name:-$(uname -m)}"
}

# The library's last commit. A "+" says that it has changed since.
commit() {
  local library=$here/../common_stowraapi changed=''
  git -C "$here" diff --quiet HEAD -- "$library" || changed=+
  echo "$(git -C "$here" log -1 --format=%h -- "$library")$changed"
}

# measure PROGRAM BENCHMARK OUTPUT: runs one benchmark in its own process. Another benchmark in the process could leave
# a fragmented heap or vector registers in use. Either makes a parser a tenth slower.
measure() {
  "$1" --benchmark_filter="^$2\$" --benchmark_min_time=$seconds_each --benchmark_out="$3.json" \
    --benchmark_out_format=json >"$3.log" 2>&1 || { cat "$3.log" >&2; exit 1; }
}

rm -rf "$results"
mkdir -p "$results"
for round in $(seq $rounds); do
  echo "== round $round of $rounds" >&2
  for program in $(find "$build/benchmarks" -name "*_bench" -type f | sort); do
    number=0
    while read -r benchmark; do
      number=$((number + 1))
      measure "$program" "$benchmark" "$results/$(basename "$program")-$number-$round"
    done < <("$program" --benchmark_list_tests)
  done
done

echo "== instructions" >&2
if command -v valgrind >/dev/null; then
  "$here/instructions/count.sh" "$build/benchmarks/instructions/stowra-instructions" >"$results/counts.txt"
else
  echo "valgrind is not installed: instructions are not counted" >&2
  : >"$results/counts.txt"
fi

status=0
"$build/benchmarks/report/stowra-bench-report" --rows "$here/rows.json" \
  --environment "$build/benchmarks/report/environment.json" --counts "$results/counts.txt" \
  --commit "$(commit)" --processor "$(processor)" --document "$docs/performance.md" --summary "$docs/performance.json" \
  --plot-data "$results/plot.tsv" "$results"/*.json || status=$?
[ "$status" -le 1 ] || exit "$status"
gnuplot -c "$here/report/plot.gp" "$results/plot.tsv" "$docs/performance.svg"
exit "$status"
