#!/usr/bin/env bash
# Runs the commands that the guide shows: every block fenced as ```sh in docs/*.md, a page's blocks one after the
# other in a folder of their own. Blocks that need an instrument, a desktop or another machine are fenced as
# ```sh device and passed over. A failing command is told with its page and line.
# Usage: scripts/check_docs.sh [BIN [PAGE ...]]     BIN: the folder of the built programs, default build/release/bin
# A page finds the files that its reader would have by then: see `prepare`.
set -euo pipefail
cd "$(dirname "$0")/.."
bin=$(realpath "${1:-build/release/bin}")
pages=("${@:2}")
[ ${#pages[@]} -gt 0 ] || pages=(docs/*.md)
work=$(mktemp -d "${TMPDIR:-/tmp}/corvantile-docs-XXXXXX")
trap 'rm -rf "$work"' EXIT
export PATH=$bin:$PATH
. tests/kit/instrument_files.sh

prepare() {  # in the page's folder, readings of a simulated display: 17 levels a ramp, 60 further patches
  simulate_display extra=60 noise=0.001 white=0.305,0.325 gamma=2.3,2.2,2.1 >"$work/simulated"
  as_ti3 <"$work/simulated" >display.ti3
  as_csv <"$work/simulated" >display.csv
  as_gray_scale_sheet <"$work/simulated" >display.GrayScaleSheet.csv
  as_primaries_sheet <"$work/simulated" >display.PrimariesSheet.csv
}

commands_of() {  # PAGE: its blocks as one script that knows where it is
  awk -v page="$1" '
    /^ *```/ && !inside { inside = 1; runs = ($0 ~ /^ *```sh *$/); next }
    /^ *```/ { inside = runs = more = 0; end = ""; print ""; next }
    !runs { next }
    end != "" { print; if ($0 == end) end = ""; next }
    !more && NF { printf "at=\"%s:%d\"\n", page, NR }
    { print; more = /\\$/ }
    match($0, /<<.?[A-Z]+/) { end = substr($0, RSTART, RLENGTH); gsub(/[^A-Z]/, "", end) }' "$1"
}

failed=0
for page in "${pages[@]}"; do
  folder=$work/$(basename "$page" .md)
  mkdir "$folder"
  { echo 'trap "echo \"FAILED: \$at\" >&2" ERR; set -eEo pipefail'; commands_of "$page"; } >"$folder.sh"
  if (cd "$folder" && prepare && bash "$folder.sh" </dev/null) >"$folder.log" 2>&1; then
    echo "$page: $(grep -c '^at=' "$folder.sh" || true) commands ran"
  else
    failed=1
    tail -n 20 "$folder.log"
    echo "$page: a command failed"
  fi
done
exit $failed
