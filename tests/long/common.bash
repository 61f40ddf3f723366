# What the tiers share: sourced from the project's folder.
set -euo pipefail
export PAVO_ZORV_LOG=build/long.log
mkdir -p build

# Runs a command quietly; shows what it said when it fails.
quietly() {
  if ! "$@" > "$PAVO_ZORV_LOG" 2>&1; then
    tail -n 100 "$PAVO_ZORV_LOG"
    echo "failed: $*" >&2
    return 1
  fi
}

# configure FOLDER CMAKE-ARGUMENTS...
configure() {
  local folder=$1
  shift
  quietly cmake -S . -B "build/$folder" -G Ninja -DPAVO_ZORV_WERROR=ON "$@"
}

# build FOLDER TARGET...
build() {
  local folder=$1
  shift
  quietly cmake --build "build/$folder" --target "$@"
}
