#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds the fuzz targets and runs each for SECONDS seconds. The seeds are in fuzz/corpus/NAME (for
# Touchstone files: tests/data); the corpus grows in build-sanitizers/corpus.
#   tools/fuzz.sh SECONDS
set -euo pipefail
cd "$(dirname "$0")/.."

mapfile -t targets < <(sed -n 's/^qk_fuzz(\([a-z_]*\).*/fuzz_\1/p' fuzz/CMakeLists.txt)
[ ${#targets[@]} -gt 0 ] || { echo "fuzz/CMakeLists.txt contains no target" >&2; exit 1; }
cmake --build build-sanitizers --target "${targets[@]}" >build-sanitizers/fuzz.log 2>&1 || {
  cat build-sanitizers/fuzz.log
  exit 1
}
run() {
  mkdir -p "build-sanitizers/corpus/$1"
  local seeds=fuzz/corpus/${1#fuzz_}
  [ -d "$seeds" ] || seeds=tests/data
  "build-sanitizers/$1" -max_total_time="$2" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
    -artifact_prefix="build-sanitizers/$1-" "build-sanitizers/corpus/$1" "$seeds" >"build-sanitizers/$1.log" 2>&1 || {
    tail -40 "build-sanitizers/$1.log"
    return 1
  }
  echo "$1: $(sed -n 's/^stat::number_of_executed_units: *//p' "build-sanitizers/$1.log") inputs, in order"
}
# Two at a time, one per core.
failed=0
for ((i = 0; i < ${#targets[@]}; i += 2)); do
  pids=()
  for target in "${targets[@]:i:2}"; do
    run "$target" "$1" &
    pids+=($!)
  done
  for pid in "${pids[@]}"; do wait "$pid" || failed=1; done
done
exit "$failed"
