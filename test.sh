#!/usr/bin/env bash
# Builds with AddressSanitizer and UndefinedBehaviorSanitizer and runs every test; then the tests of the two threads
# under ThreadSanitizer; then every fuzzer for some seconds.
set -euo pipefail
cd "$(dirname "$0")"

source scripts/install-packages.sh
source scripts/build.sh
install_packages "${build_packages[@]}" libgtest-dev locales xvfb fonts-dejavu-core fonts-wqy-microhei
source scripts/comma-locale.sh
build_preset dev
ctest --preset dev
build_preset tsan thread-tests soak-tests
ctest --preset tsan
fuzz/run.sh 5
