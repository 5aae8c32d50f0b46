#!/usr/bin/env bash
# Lets the tests that go on for long run on: a million messages on two threads under ThreadSanitizer, then ten million
# edits and ten thousand reads in the release build, whose memory in use is told.
set -euo pipefail
cd "$(dirname "$0")/.."

source scripts/install-packages.sh
source scripts/build.sh
install_packages "${build_packages[@]}" libgtest-dev
build_preset tsan soak-tests
VRK_SOAK=1000000 build/tsan/bin/soak-tests --gtest_filter='TwoThreads.*'
build_preset soak soak-tests
VRK_SOAK=10000000 build/soak/bin/soak-tests --gtest_filter='LongLife.*'
