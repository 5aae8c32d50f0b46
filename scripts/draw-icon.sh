#!/usr/bin/env bash
# Draws the package's icon from the object's: 500 by 500, as the Package Manager wants it. Package: librsvg2-bin.
set -euo pipefail
cd "$(dirname "$0")/.."
rsvg-convert --width 500 --height 500 package/object-icons/vrk.tessaroll.svg --output package/icon.png
