# shellcheck shell=bash
# Usage: source scripts/common.sh - what the other scripts share: the folder of the checkout and how to build in it.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
readonly root

# quietly NAME COMMAND...: runs the command with its output kept in build/NAME.log, which is shown only on failure.
quietly() {
  local log=$root/build/$1.log status=0
  shift
  mkdir -p "$root/build"
  "$@" >"$log" 2>&1 </dev/null || status=$?
  if ((status != 0)); then
    cat "$log" >&2
    echo "Failed with status $status: $* (the log above is ${log#"$root"/})" >&2
  fi
  return "$status"
}

# configure PRESET [CMAKE OPTION...]: prepares build/PRESET; ccache is used where it is installed.
configure() {
  local preset=$1
  shift
  if command -v ccache >/dev/null; then
    export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER:-ccache}
  fi
  (cd "$root" && quietly "configure-$preset" cmake --preset "$preset" "$@")
}

# build PRESET [TARGET...]: builds the targets, or everything.
build() {
  local preset=$1 targets=()
  shift
  if (($# > 0)); then targets=(--target "$@"); fi
  (cd "$root" && quietly "build-$preset" cmake --build --preset "$preset" "${targets[@]}")
}
