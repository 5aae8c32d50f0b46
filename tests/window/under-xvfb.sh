#!/usr/bin/env bash
# Runs a command as a client of an X server without a screen.
set -euo pipefail
exec {numbers}< <(exec Xvfb -displayfd 1 -screen 0 1280x1024x24 -nolisten tcp 2>/dev/null)
server=$!
trap 'kill "$server" 2>/dev/null || true' EXIT
read -r number <&"$numbers"
DISPLAY=:$number QT_QPA_PLATFORM=xcb "$@"
