#!/usr/bin/env bash
# use_library.sh CMAKE PREFIX EXAMPLES: a program of somebody else's, built against the installed library by CMake and by
# pkg-config, with warnings of its own choosing, solves the shipped measurements.
set -euo pipefail
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
"$1" -S "$3/library" -B "$scratch/build" -D CMAKE_PREFIX_PATH="$2" -D CMAKE_BUILD_TYPE=Release >/dev/null
"$1" --build "$scratch/build" >/dev/null
said=$("$scratch/build/gray_axis" "$3/gray_axis/measurements.txt")
echo "$said"
[[ $said == *"white after:   6498.3 K"* ]]  # what the formula reads for a black body of 6500 K
if command -v pkg-config >/dev/null; then
  PKG_CONFIG_PATH=$(find "$2" -name pkgconfig)
  export PKG_CONFIG_PATH
  flags=()
  eval "flags=($(pkg-config --cflags --libs corvantile))"  # blanks in names come escaped
  "${CXX:-c++}" -std=c++20 "$3/library/gray_axis.cpp" -o "$scratch/again" "${flags[@]}"
  [[ $("$scratch/again" "$3/gray_axis/measurements.txt") == "$said" ]]
fi
