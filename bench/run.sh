#!/usr/bin/env bash
# Builds the benchmarks and prints their table.
set -euo pipefail
cd "$(dirname "$0")/.."

source scripts/install-packages.sh
source scripts/build.sh
install_packages "${build_packages[@]}" libbenchmark-dev
build_preset release
cmake -B build/release -DVRK_BENCH=ON >/dev/null
cmake --build build/release --target vrk-bench >/dev/null
build/release/bin/vrk-bench --benchmark_min_time=0.2
