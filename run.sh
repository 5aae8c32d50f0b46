#!/usr/bin/env bash
# Builds the box and shows it at work: opens the help patcher, clicks in its tabs, and prints what comes out of the
# boxes.
set -euo pipefail
cd "$(dirname "$0")"

source scripts/install-packages.sh
source scripts/build.sh
install_packages "${build_packages[@]}"
build_preset release

patcher=package/help/vrk.tessaroll.maxhelp
script=package/examples/help-patcher.script
echo
echo "--- $script"
cat "$script"
echo
echo "--- what it says"
exec build/release/bin/vrk-run --search package/examples --script "$script" "$patcher"
