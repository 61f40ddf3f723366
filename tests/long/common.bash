# What the tiers share: sourced from the project's folder.
set -euo pipefail
export PAVO_ZORV_LOG=build/long-${0##*/}.log  # one for each tier
mkdir -p build

# Those that need no other library.
fuzz_targets=(decode encode round_trip copy_and_compare short_buffers failing_memory unwritten
  changing_input)

# Runs a command quietly. When it fails, shows what it said, but for the tests that passed, and where all of it is.
quietly() {
  if ! "$@" > "$PAVO_ZORV_LOG" 2>&1; then
    grep -vE '^ +Start +[0-9]+:|^ *[0-9]+/[0-9]+ Test +#[0-9]+: .* Passed |^\[ RUN  |^\[       OK' "$PAVO_ZORV_LOG" |
      tail -n 300
    echo "failed: $* (all of it: $PAVO_ZORV_LOG)" >&2
    return 1
  fi
}

# configure FOLDER CMAKE-ARGUMENTS...
configure() {
  local folder=$1
  shift
  quietly cmake -S . -B "build/$folder" -G Ninja -DPAVO_ZORV_WERROR=ON -DPAVO_ZORV_TESTS=ON "$@"
}

# build FOLDER TARGET...
build() {
  local folder=$1
  shift
  quietly cmake --build "build/$folder" --target "$@"
}

# Whether the processor runs what is compiled for x86-64-v3. Where it does not, says so.
runs_x86_64_v3() { tests/x86_64_v3/run "$(type -P true)"; }

# configure_for MACHINE CMAKE-ARGUMENTS...: for a machine of cmake/machines, with GoogleTest built for it, of which the
# distribution has the sources.
configure_for() {
  local name=$1 folder=$PWD/build/long-$1 machine=$PWD/cmake/machines/$1.cmake
  shift
  scripts/install-packages googletest
  quietly cmake -S /usr/src/googletest -B "$folder/googletest" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    --toolchain "$machine" "-DCMAKE_INSTALL_PREFIX=$folder/gtest" -DCMAKE_INSTALL_LIBDIR=lib -DBUILD_GMOCK=OFF
  quietly cmake --build "$folder/googletest" --target install
  configure "long-$name" --toolchain "$machine" -DCMAKE_BUILD_TYPE=Release -DPAVO_ZORV_TOOLS=OFF -DPAVO_ZORV_INSTALL=OFF \
    -DPAVO_ZORV_X86_64_V3=OFF "-DGTest_DIR=$folder/gtest/lib/cmake/GTest" -DCMAKE_DISABLE_FIND_PACKAGE_Protobuf=ON "$@"
  [[ -d $folder/tests ]] || { echo "no tests for $name:"; cat "$PAVO_ZORV_LOG"; return 1; }
}
