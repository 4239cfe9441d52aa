#!/usr/bin/env bash
# Sets up, builds and runs all tests.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
cmake --preset release
cmake --build --preset release --parallel "$(nproc)"
ctest --preset release --parallel "$(nproc)"
