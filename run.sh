#!/usr/bin/env bash
# Builds the box and shows it at work: a script opens the help patcher, clicks in its tabs, and prints what comes out of
# the boxes. Then the help patcher opens in a window; without a display, a picture of it is written to a file.
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
build/release/bin/vrk-run --search package/examples --script "$script" "$patcher"

echo
if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
  echo "--- $patcher is open in a window"
  exec build/release/bin/vrk-window --search package/examples "$patcher"
fi
picture=build/help-patcher.png
build/release/bin/vrk-window --search package/examples --picture "$picture" "$patcher" 2>build/picture.log ||
  { cat build/picture.log; exit 1; }
echo "--- there is no display: what $patcher looks like is in $PWD/$picture"
