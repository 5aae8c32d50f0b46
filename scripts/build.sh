# Sourced: configures a preset and builds targets of it (all when none is named), quietly unless something goes wrong.
build_preset() {
  local preset=$1
  shift
  mkdir -p build
  local log=build/$preset.log
  cmake --preset "$preset" >"$log" 2>&1 || { cat "$log"; return 1; }
  echo "building $preset"
  cmake --build --preset "$preset" ${1:+--target "$@"} >"$log" 2>&1 || { cat "$log"; return 1; }
}
