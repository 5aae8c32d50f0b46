#!/usr/bin/env bash
# Builds the fuzzers and runs each, or those that are named, for some seconds: fuzz/run.sh [SECONDS] [TARGET…]. What a
# fuzzer finds is kept in build/fuzz/findings/TARGET, what is worth keeping as a seed in build/fuzz/corpus/TARGET.
set -euo pipefail
cd "$(dirname "$0")/.."

source scripts/install-packages.sh
source scripts/build.sh
install_packages "${build_packages[@]}" "${fuzz_packages[@]}"
seconds=${1:-60}
shift || true
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=($(ls fuzz/corpus))
build_preset fuzz "${targets[@]/#/fuzz-}"

run_fuzzer() {
  local target=$1 seconds=$2 log=build/fuzz/$1.log
  mkdir -p build/fuzz/corpus/"$target" build/fuzz/findings/"$target"
  # A machine that is busy may hold a fuzzer up for a while, so that only minutes count as a hang.
  build/fuzz/bin/fuzz-"$target" -dict=fuzz/dictionaries/"$target" -max_total_time="$seconds" -timeout=120 \
    -rss_limit_mb=4096 -print_final_stats=1 -artifact_prefix=build/fuzz/findings/"$target"/ \
    build/fuzz/corpus/"$target" fuzz/corpus/"$target" >"$log" 2>&1 || { cat "$log"; echo "$target: found something"; return 1; }
  echo "$target: $(sed -n 's/^stat::number_of_executed_units: *//p' "$log") executions," \
    "$(grep -o 'cov: [0-9]*' "$log" | tail -1 | cut -d' ' -f2) points covered"
}
export -f run_fuzzer

printf '%s\n' "${targets[@]}" | xargs -P 2 -I '{}' bash -c "run_fuzzer {} $seconds"
