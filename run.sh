#!/usr/bin/env bash
# Builds the box and shows it at work: a script makes a list, reads the General MIDI instruments from a resource file,
# steps through them, edits them, and prints what comes out of the outlets.
set -euo pipefail
cd "$(dirname "$0")"

source scripts/install-packages.sh
source scripts/build.sh
install_packages "${build_packages[@]}"
build_preset release

script=package/examples/general-midi.script
echo
echo "--- $script"
cat "$script"
echo
echo "--- what it says"
exec build/release/bin/vrk-run --search package/examples --script "$script"
