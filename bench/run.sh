#!/usr/bin/env bash
# Builds the benchmarks, prints their table and writes it to bench/RESULTS.md.
set -euo pipefail
cd "$(dirname "$0")/.."

source scripts/install-packages.sh
source scripts/build.sh
install_packages "${build_packages[@]}" libbenchmark-dev libpugixml-dev xmlstarlet libxml2-utils python3-lxml
build_preset bench

{
  echo "# Benchmarks"
  echo
  echo "$(date +%F), $(nproc) cores of $(sed -n 's/^model name[^:]*: //p' /proc/cpuinfo | head -1), $(. /etc/os-release; echo "$PRETTY_NAME"), release build. Medians of one run; a ratio compares two times of that run."
  echo
  build/bench/bin/vrk-bench --benchmark_min_time=0.2
  echo
  build/bench/bin/window-bench
} | tee bench/RESULTS.md
