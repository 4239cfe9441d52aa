#!/usr/bin/env bash
# Remakes the documentation's pictures, docs/pictures/*.svg, from the shipped example.
# Usage: scripts/pictures.sh [BIN]     BIN: the folder of the built programs, default build/release/bin
set -euo pipefail
cd "$(dirname "$0")/.."
tests/docs/pictures_test.sh "${1:-build/release/bin}" --update
