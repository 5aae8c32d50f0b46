#!/usr/bin/env bash
# Runs cppcheck and clang-tidy over every source but the tests; ends with failure when either finds something.
set -euo pipefail
cd "$(dirname "$0")/.."

source scripts/install-packages.sh
install_packages "${build_packages[@]}" clang-tidy cppcheck libbenchmark-dev libpugixml-dev
parts=(tessaroll vrk-includes apps/window apps/script apps/run apps/xml fuzz host bench)
failed=0

# The system's headers are told by the libraries' descriptions, which is quicker than reading them.
echo "cppcheck"
cppcheck -j2 --quiet --error-exitcode=1 --enable=warning,performance,portability --std=c++20 \
  --library=posix --library=qt --inline-suppr --suppressions-list=.cppcheck-suppressions \
  -Ihost -Ihost/api -Ivrk-includes -Iapps -Iapps/window -Itests "${parts[@]}" || failed=1

# How each source is compiled; one that is not compiled here (another system's) is not in the list. What Qt generates is
# in the build folder, and so is not of the parts.
echo "clang-tidy"
mkdir -p build
cmake --preset tidy >build/tidy.log 2>&1 || { cat build/tidy.log; exit 1; }
for part in "${parts[@]}"; do
  sed -n "s|^ *\"file\": \"$PWD/\($part/.*\)\",\?\$|\1|p" build/tidy/compile_commands.json | sort -u
done | xargs -P2 -n1 clang-tidy -p build/tidy --quiet 2>build/tidy.log || failed=1

exit $failed
