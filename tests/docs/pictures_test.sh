#!/usr/bin/env bash
# docs/pictures/*.svg are the pictures of the report about the shipped example, as the programs draw them today.
# Usage: pictures_test.sh BIN [--update]
#   BIN       the folder of the built programs
#   --update  puts today's pictures in their place
set -euo pipefail
bin=$(realpath "$1")
cd "$(dirname "$0")/../.."
work=$(mktemp -d "${TMPDIR:-/tmp}/corvantile-pictures-XXXXXX")
trap 'rm -rf "$work"' EXIT

"$bin/corvantile-kit" make -q examples/two_table/measurements.txt --for linux -o "$work/job"
mkdir "$work/pictures"
for id in gray-cct gray-distance balance-before balance-after local-gamma gamut-uv ramp-gray ramp-red ramp-green \
  ramp-blue; do
  "$bin/report_picture" "$work/job" "$id" >"$work/pictures/$id.svg"
done

if [ "${2:-}" = --update ]; then
  rm -rf docs/pictures
  cp -r "$work/pictures" docs/pictures
else
  diff -rq docs/pictures "$work/pictures" || { echo "docs/pictures is stale: remake it with --update" >&2; exit 1; }
fi
