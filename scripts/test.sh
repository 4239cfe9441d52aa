#!/usr/bin/env bash
# Sets up, builds and runs all tests.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
cmake --preset release -D CORVANTILE_TESTS=ON
cmake --build --preset release --parallel "$(nproc)"
ctest --preset release --parallel "$(nproc)"
