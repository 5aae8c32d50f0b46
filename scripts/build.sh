# Sourced: configures and builds a preset, quietly unless something goes wrong.
build_preset() {
  local preset=$1
  shift
  mkdir -p build
  local log=build/$preset.log
  if [ ! -f "build/$preset/build.ninja" ]; then
    cmake --preset "$preset" "$@" >"$log" 2>&1 || { cat "$log"; return 1; }
  fi
  echo "building $preset"
  cmake --build --preset "$preset" >"$log" 2>&1 || { cat "$log"; return 1; }
}
