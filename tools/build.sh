# Building for ./test and ./run. Sourced, in the folder of the clone.

# build_preset NAME [TARGET...]: configures when needed and builds. Says one line; all output on failure. On a terminal
# Ninja shows its progress.
build_preset() {
  local preset=$1 log=build/$1/build.log started=$SECONDS
  shift
  mkdir -p "build/$preset"
  if [ ! -e "build/$preset/build.ninja" ] || [ CMakePresets.json -nt "build/$preset/build.ninja" ]; then
    cmake --preset "$preset" >"$log" 2>&1 || {
      cat "$log"
      echo "Configuring $preset failed: see above."
      return 1
    }
  fi
  if [ -t 1 ]; then
    ninja -C "build/$preset" --quiet "$@" && ninja -C "build/$preset" "$@" >/dev/null
  else
    ninja -C "build/$preset" "$@" >"$log" 2>&1 || { grep -v '^\[' "$log"; false; }
  fi || {
    echo "Building $preset failed: see above."
    return 1
  }
  echo "built $preset in $((SECONDS - started)) s"
}

build_presets() {
  local preset
  for preset in "$@"; do build_preset "$preset" || return 1; done
}
