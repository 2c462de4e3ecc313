#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# fuzz.sh BUILD_DIR SECONDS [TARGET...]
#
# Runs all fuzzers of BUILD_DIR, or the named ones, each for SECONDS. One fuzzer runs on each processor. A fuzzer
# collects useful inputs in BUILD_DIR/fuzz/corpus and starts from them next time. A failing input is copied to the
# target's findings folder, where the tests run it from then on. Prints a table and fails if there is a finding.
set -uo pipefail
build=$1
seconds=$2
shift 2
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=($(ls "$build/fuzz/targets"))
logs=$build/fuzz/logs
mkdir -p "$logs"

fuzz_one() {
  local target=$1 program folder corpus artifacts
  read -r program folder <"$build/fuzz/targets/$target"
  corpus=$build/fuzz/corpus/$target
  artifacts=$build/fuzz/artifacts/$target
  rm -rf "$artifacts"
  mkdir -p "$corpus" "$artifacts" "$folder/findings"
  "$program" -max_total_time="$seconds" -max_len=4096 -timeout=20 -rss_limit_mb=2048 -dict="$folder.dict" \
    -artifact_prefix="$artifacts/" -print_final_stats=1 "$corpus" "$folder/seeds" "$folder/findings" \
    >"$logs/$target" 2>&1 || touch "$artifacts/failed"
  find "$artifacts" -type f ! -name failed -exec cp {} "$folder/findings/" \;
  rmdir --ignore-fail-on-non-empty "$folder/findings"
}

stat_of() { sed -n "s/^stat::$2: *//p" "$logs/$1"; }

processors=$(getconf _NPROCESSORS_ONLN)
for target in "${targets[@]}"; do
  while [ "$(jobs -pr | wc -l)" -ge "$processors" ]; do wait -n; done
  fuzz_one "$target" &
done
wait

failed=0
total=0
printf '%-28s %12s %12s %9s %9s\n' target executions per-second peak-MB findings
for target in "${targets[@]}"; do
  executions=$(stat_of "$target" number_of_executed_units)
  artifacts=$build/fuzz/artifacts/$target
  findings=$(find "$artifacts" -type f ! -name failed | wc -l)
  printf '%-28s %12s %12s %9s %9s\n' "$target" "${executions:-none}" "$(stat_of "$target" average_exec_per_sec)" \
    "$(stat_of "$target" peak_rss_mb)" "$findings"
  total=$((total + ${executions:-0}))
  if [ -e "$artifacts/failed" ]; then
    failed=1
    echo "  failed: see $logs/$target"
  fi
done
printf '%-28s %12s\n' all "$total"
exit "$failed"
