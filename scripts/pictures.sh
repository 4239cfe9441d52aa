#!/usr/bin/env bash
# Makes the documentation's pictures, docs/pictures/*.svg, from the shipped example: those of the report about it.
# Usage: scripts/pictures.sh [--check] [BIN]
#   --check  changes nothing, and fails where a picture is not what would be made today
#   BIN      the folder of the built programs, default build/release/bin
set -euo pipefail
cd "$(dirname "$0")/.."
check=false
[ "${1:-}" != --check ] || { check=true; shift; }
bin=$(realpath "${1:-build/release/bin}")
work=$(mktemp -d "${TMPDIR:-/tmp}/corvantile-pictures-XXXXXX")
trap 'rm -rf "$work"' EXIT

pictures=(gray-cct gray-distance balance-before balance-after local-gamma gamut-uv ramp-gray
  ramp-red ramp-green ramp-blue)

"$bin/corvantile-kit" make -q examples/two_table/measurements.txt --for linux -o "$work/job"
mkdir "$work/pictures"
for id in "${pictures[@]}"; do
  "$bin/report_picture" "$work/job" "$id" >"$work/pictures/$id.svg"
done

if $check; then
  diff -rq docs/pictures "$work/pictures" || { echo "docs/pictures: stale; run scripts/pictures.sh" >&2; exit 1; }
else
  rm -rf docs/pictures
  cp -r "$work/pictures" docs/pictures
fi
