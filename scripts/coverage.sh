#!/usr/bin/env bash
# Runs every test in a build that counts, and prints how many lines and branches of the plug-in they run through; ends
# with failure when a line is left out, or more than one branch in a hundred.
# Branches that only an exception takes are left out: g++ makes one of nearly every call.
set -euo pipefail
cd "$(dirname "$0")/.."

source scripts/install-packages.sh
source scripts/build.sh
install_packages "${build_packages[@]}" libgtest-dev locales gcovr
source scripts/comma-locale.sh
build_preset coverage
find build/coverage -name '*.gcda' -delete # what an earlier run counted
export GCOV_ERROR_FILE=/dev/null # a program that a test lets write no file says nothing of its counts
# What is left out builds the plug-in once more and runs nothing of it.
ctest --preset coverage --exclude-regex BuildsAgainstAnotherSdk
count=(gcovr --root . --filter tessaroll/ --filter vrk-includes/ --exclude-throw-branches --exclude-unreachable-branches)
"${count[@]}" build/coverage --json build/coverage/coverage.json
count+=(--add-tracefile build/coverage/coverage.json)
"${count[@]}" --txt --fail-under-line 100
"${count[@]}" --txt --branches --fail-under-branch 99
