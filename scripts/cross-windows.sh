#!/usr/bin/env bash
# Builds the plug-in for Windows on Debian, against the API of the embedded host laid out like the SDK, and checks the
# file. Packages: g++-mingw-w64-x86-64-posix, dpkg-dev, cmake, ninja-build, llvm-16. What
# comes out shows that everything fits together; it is not for Max, see docs/building-for-max.md.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/cross.sh
need_programs cmake ninja x86_64-w64-mingw32-g++-posix x86_64-w64-mingw32-dlltool apt-get dpkg-source llvm-readobj-16

# libxml2 from Debian's own source, as a static library without what would need other libraries or the network.
build_libxml2() {
  local source=$cross/libxml2-source
  [ -e "$cross/libxml2/lib/libxml2.a" ] && return
  step "libxml2: fetching" fetch_libxml2 "$source"
  step "libxml2: configuring" cmake -S "$source" -B "$cross/libxml2-build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/windows.cmake" -DCMAKE_INSTALL_PREFIX="$cross/libxml2" \
    -DCMAKE_C_FLAGS=-DLIBXML_STATIC -DBUILD_SHARED_LIBS=OFF -DHAVE_PTHREAD_H=OFF \
    -DLIBXML2_WITH_{ICONV,LZMA,ZLIB,THREADS,HTTP,FTP,MODULES,PYTHON,PROGRAMS,TESTS}=OFF
  step "libxml2: building" cmake --build "$cross/libxml2-build" --parallel 2
  step "libxml2: installing" cmake --install "$cross/libxml2-build"
}

fetch_libxml2() {
  source_apt update
  (cd "$cross/apt" && source_apt source --download-only libxml2)
  rm -rf "$1"
  dpkg-source --extract "$cross"/apt/libxml2_*.dsc "$1"
}

# The import library of the host, as its SDK has one.
make_import_library() {
  { echo "LIBRARY MaxAPI.dll"; echo EXPORTS; cat host/exports.txt; } >"$cross/MaxAPI.def"
  x86_64-w64-mingw32-dlltool --input-def "$cross/MaxAPI.def" \
    --output-lib "$cross/sdk/source/c74support/max-includes/x64/MaxAPI.lib"
}

build_libxml2
make_sdk "$cross/sdk"
make_import_library
build_plugin windows -DLIBXML2_INCLUDE_DIR="$cross/libxml2/include/libxml2" -DLIBXML2_LIBRARY="$cross/libxml2/lib/libxml2.a"
scripts/check-binary.sh build/cross/package/vrk.tessaroll/externals/vrk.tessaroll.mxe64
