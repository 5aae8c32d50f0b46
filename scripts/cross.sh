# Sourced: what the two cross-builds share. Nothing is installed, and everything that is fetched or made stays below
# build/cross.
source scripts/apt-sources.sh
cross=$PWD/build/cross
mkdir -p "$cross"

# Ends the script, with success and a line that says why, unless all the programs are there.
need_programs() {
  for program in "$@"; do
    command -v "$program" >/dev/null && continue
    echo "skipped: $program is not here"
    exit 0
  done
}

# Says what is done, and shows what a command prints only when it fails.
step() {
  local log=$cross/step.log
  echo "$1"
  shift
  "$@" >"$log" 2>&1 || { cat "$log"; return 1; }
}

# A folder laid out like the host's SDK, from the API that the embedded host has.
make_sdk() {
  local includes=$1/source/c74support/max-includes
  rm -rf "$1"
  mkdir -p "$includes/common" "$includes/x64"
  cp host/api/*.h "$includes"
  cp host/api/commonsyms.c "$includes/common"
}

# apt with lists of its own, which know the sources of the packages that this machine has.
source_apt() {
  local state=$cross/apt
  rm -rf "$state/sources"
  mkdir -p "$state/lists/partial" "$state/sources"
  write_package_sources /etc/apt "$(. /etc/os-release && echo "$VERSION_CODENAME")" "$state/sources"
  apt-get -o Dir::Etc::sourcelist=- -o Dir::Etc::sourceparts="$state/sources" -o Dir::State::lists="$state/lists" \
    -o APT::Sandbox::User="$(id -un)" "$@"
}

# Configures the plug-in against that SDK, builds it and puts it into the package in build/cross/package.
build_plugin() {
  local system=$1
  shift
  step "$system: configuring" cmake -S . -B "$cross/$system" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/$system.cmake" -DMAX_SDK_DIR="$cross/sdk" -DCMAKE_COMPILE_WARNING_AS_ERROR=ON "$@"
  step "$system: building" cmake --build "$cross/$system" --parallel 2
  step "$system: installing" cmake --install "$cross/$system" --component package --prefix "$cross/package"
}
