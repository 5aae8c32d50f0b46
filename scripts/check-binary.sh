#!/usr/bin/env bash
# Reads plug-ins that were built for macOS (.mxo) or Windows (.mxe64), and fails on anything that their host would
# stumble over: type, architectures, exports, imports, signature. Usage: check-binary.sh FILE…
# Needs llvm-16 and, for bundles, libxml2-utils.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
failures=0

# What is told of a file, and what it has to be.
expect() {
  local what=$1 found=$2 wanted=$3
  if [ "$found" = "$wanted" ]; then
    echo "  $what: $found"
  else
    echo "  $what: $found, which should be: $wanted" >&2
    failures=$((failures + 1))
  fi
}

# One line of words, sorted; "none" when there are none.
words() { sort -u | paste -sd' ' | grep . || echo none; }

# How many of the names on standard input are the host's, and which are not.
host_names() {
  local names foreign
  names=$(sort -u)
  foreign=$(comm -23 <(echo "$names") <(printf '%s\n' $(cat "$here/host/exports.txt") "$@" | sort -u) | words)
  expect "imports that the host has not" "$foreign" none
  echo "  imports from the host: $(echo "$names" | wc -l)"
}

# ---- Windows

check_windows() {
  local file=$1
  expect format "$(llvm-readobj-16 --file-headers "$file" | sed -n 's/^Format: //p')" COFF-x86-64
  expect library "$(llvm-readobj-16 --file-headers "$file" | grep -o 'IMAGE_FILE_DLL' | words)" IMAGE_FILE_DLL
  expect exports "$(llvm-readobj-16 --coff-exports "$file" | sed -n 's/^  Name: //p' | words)" ext_main
  expect "imports from" "$(llvm-readobj-16 --coff-imports "$file" | sed -n 's/^  Name: //p' | words)" \
    "KERNEL32.dll MaxAPI.dll msvcrt.dll"
  host_names < <(llvm-readobj-16 --coff-imports "$file" |
    awk '/^  Name:/ { host = $2 == "MaxAPI.dll" } /^  Symbol:/ && host { print $2 }')
}

# ---- macOS

plist_value() { xmllint --nonet --xpath "string(//key[.='$2']/following-sibling::*[1])" "$1"; }

check_bundle() {
  local bundle=$1 name plist
  name=$(basename "$bundle" .mxo)
  plist=$bundle/Contents/Info.plist
  expect PkgInfo "$(od -An -c "$bundle/Contents/PkgInfo" | tr -d ' ')" "iLaX????"
  expect executable "$(plist_value "$plist" CFBundleExecutable)" "$name"
  expect identifier "$(plist_value "$plist" CFBundleIdentifier)" "$(package_info reverse_domain).$name"
  expect version "$(plist_value "$plist" CFBundleVersion)" "$(package_info version)"
  expect "package type" "$(plist_value "$plist" CFBundlePackageType)" iLaX
  expect signature "$(plist_value "$plist" CFBundleSignature)" max2
  expect architectures "$(llvm-lipo-16 -archs "$bundle/Contents/MacOS/$name" | tr ' ' '\n' | grep . | words)" "arm64 x86_64"
  check_slice "$bundle/Contents/MacOS/$name" x86_64 10.11
  check_slice "$bundle/Contents/MacOS/$name" arm64 11.0
}

package_info() { sed -n "s/^ *\"$1\": \"\(.*\)\".*/\1/p" "$here/package/package-info.json" | head -1; }

check_slice() {
  local file=$1 arch=$2 oldest=$3 slice headers
  echo " $arch"
  slice=$(mktemp)
  llvm-lipo-16 "$file" -thin "$arch" -output "$slice"
  headers=$(llvm-objdump-16 --macho --private-headers "$slice")
  expect type "$(echo "$headers" | grep -oE '\b(BUNDLE|DYLIB|EXECUTE)\b' | words)" BUNDLE
  expect "oldest system" "$(echo "$headers" | sed -nE 's/^ +(minos|version) ([0-9]+\.[0-9]+)$/\2/p' | words)" "$oldest"
  expect exports "$(llvm-objdump-16 --macho --exports-trie "$slice" | sed -n 's/^0x[0-9A-F]*  _//p' | words)" "ext_main main"
  expect "imports from" "$(llvm-nm-16 -mu "$slice" | sed -nE 's/.*\(from ([^)]*)\)$/\1/p' | words)" \
    "CoreServices libSystem libc++ libxml2"
  host_names path_fromfsref < <(llvm-nm-16 -mu "$slice" | sed -nE 's/.* external _([^ ]+) \(dynamically looked up\)$/\1/p')
  check_signature "$slice"
  rm "$slice"
}

# Big-endian integers of 32 bits in a file: its position, how many.
integers() { od -An -v --endian=big -t u4 -w4 -j "$2" -N $((4 * $3)) "$1" | tr -d ' '; }

# The signature names nobody; what it holds are SHA-256 hashes of the pages of the file, which are computed anew.
check_signature() {
  local file=$1 at code_limit slots page directory hashes
  at=$(llvm-objdump-16 --macho --private-headers "$file" | awk '/LC_CODE_SIGNATURE/ { found = 1 } found && /dataoff/ { print $2; exit }')
  if [ -z "$at" ]; then
    expect "code signature" none "ad hoc"
    return
  fi
  directory=$((at + $(integers "$file" $((at + 16)) 1))) # the first blob is the code directory
  expect "code directory" "$(integers "$file" "$directory" 1)" $((0xfade0c02))
  expect "code signature" "$((($(integers "$file" $((directory + 12)) 1) & 2) != 0 ? 1 : 0)) ad hoc" "1 ad hoc"
  hashes=$((directory + $(integers "$file" $((directory + 16)) 1)))
  slots=$(integers "$file" $((directory + 28)) 1)
  code_limit=$(integers "$file" $((directory + 32)) 1)
  page=$((1 << $(od -An -t u1 -j $((directory + 39)) -N 1 "$file")))
  expect "signed bytes" "$code_limit" "$at"
  expect "pages that differ from their hashes" "$(diff \
    <(head -c "$code_limit" "$file" | split -b "$page" --filter='sha256sum | cut -d" " -f1') \
    <(od -An -v -t x1 -w32 -j "$hashes" -N $((32 * slots)) "$file" | tr -d ' ') | grep -c '^>' || true)" 0
}

for file in "$@"; do
  echo "$file"
  case $file in
  *.mxe64) check_windows "$file" ;;
  *.mxo | *.mxo/) check_bundle "${file%/}" ;;
  *) echo "  is neither .mxo nor .mxe64" >&2; failures=$((failures + 1)) ;;
  esac
done
[ $failures -eq 0 ]
