#!/usr/bin/env bash
# Copies the built package into the Packages folder of the newest Max that this user has. Asks before it replaces one.
# Usage: install-package.sh [--to FOLDER] [--yes] [PACKAGE]
set -euo pipefail

usage() {
  echo "usage: install-package.sh [--to FOLDER] [--yes] [PACKAGE]" >&2
  echo "  PACKAGE is a folder vrk.tessaroll, build/package/vrk.tessaroll unless it is given;" >&2
  echo "  FOLDER is a Packages folder; --yes replaces a package without asking" >&2
  exit 2
}

fail() {
  echo "install-package.sh: $*" >&2
  exit 1
}

to='' yes='' package=''
while [ $# -gt 0 ]; do
  case $1 in
  --to) [ $# -ge 2 ] || usage; to=$2; shift ;;
  --yes) yes=1 ;;
  -*) usage ;;
  *) [ -z "$package" ] || usage; package=$1 ;;
  esac
  shift
done
package=${package:-$(dirname "$0")/build/package/vrk.tessaroll}
[ -f "$package/package-info.json" ] || fail "$package is no package; docs/building-for-max.md tells how to build one"

if [ -z "$to" ]; then
  for version in 9 8 7; do
    [ -d "$HOME/Documents/Max $version" ] || continue
    to=$HOME/Documents/Max\ $version/Packages
    break
  done
  [ -n "$to" ] || fail "no folder \"Max 9\", \"Max 8\" or \"Max 7\" in $HOME/Documents; name a Packages folder with --to"
fi

place=$to/vrk.tessaroll
if [ -e "$place" ] && [ -z "$yes" ]; then
  printf '%s is there already. Replace it? [y/N] ' "$place"
  answer=''
  read -r answer || true
  case $answer in
  y | Y | yes) ;;
  *) echo "left as it is"; exit 1 ;;
  esac
fi

# The old package goes only when all of the new one is there.
mkdir -p "$to"
coming=$(mktemp -d "$to/.vrk.tessaroll-XXXXXX")
trap 'rm -rf "$coming"' EXIT
cp -R "$package/." "$coming"
chmod 755 "$coming"
rm -rf "$place"
mv "$coming" "$place"
echo "installed $place"
