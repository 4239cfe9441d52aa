#!/usr/bin/env bash
# Other people's programs judge what the format writers write: OpenColorIO, ArgyllCMS, colord, xcalib, Little CMS,
# libdrm's structures, Icarus Verilog, SRecord, GCC, libxml2. Each must accept what is right, with the numbers of the
# tables, and reject swapped channels, transposed matrices and files cut short. HTML Tidy, libxml2 and Chromium judge
# the report. Everything is left in build/interop/.
# Usage: scripts/interop.sh
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh gcc argyll argyll-ref chromium colord iverilog libdrm-dev liblcms2-2 libxml2-utils opencolorio-tools pkg-config \
  python3-pil python3-pyopencolorio srecord tidy xcalib
cmake --preset release >/dev/null
cmake --build --preset release --target Corvantile corvantile-kit simulate_display write_all --parallel "$(nproc)" >/dev/null
bin=$PWD/build/release/bin
top=$PWD/build/interop
rm -rf "$top"
mkdir -p "$top/jobs" "$top/scratch"
# shellcheck disable=SC2046  # flags
gcc -std=c99 -Wall -Wextra -Werror $(pkg-config --cflags libdrm) -o "$top/scratch/read_kms" scripts/interop/read_kms.c

new_job() {  # NAME PARAMETER...: a folder with the measurements of a simulated display
  mkdir "$top/jobs/$1"
  cd "$top/jobs/$1"
  "$bin/simulate_display" "${@:2}" >measurements.txt
}
solve() {  # OPTION...: in the current job's folder
  echo "&opts wgfile='measurements.txt' $* /" >settings.txt
  "$bin/Corvantile" <settings.txt >report.txt 2>&1 || { cat report.txt; exit 1; }
}
srgb_curve() {
  awk 'BEGIN { print 257; for (i = 0; i < 257; ++i) { v = i / 256
    printf "%.12f %.12f\n", v, v <= 0.04045 ? v / 12.92 : ((v + 0.055) / 1.055) ^ 2.4 } }'
}

display="levels=33 extra=200 red=0.68,0.32 green=0.265,0.69 blue=0.15,0.06 white=0.3,0.32"
for example in gray_axis two_table; do
  cp -r "examples/$example" "$top/jobs/$example"
  cp "examples/$example/expected/"*LUT.txt "$top/jobs/$example"
done
cp examples/two_table/expected/matrix.txt "$top/jobs/two_table"
# shellcheck disable=SC2086  # words
(
  new_job gray_4096 $display gamma=2.1,2.2,2.3
  solve "cvmode='CV1' temp=6500 tlen=4096"
  new_job srgb_4096 $display gamma=2.1,2.2,2.3
  srgb_curve >srgb.txt
  solve "cvmode='CV2' tlen=4096 gamfile='srgb.txt'"
  # Entries below 0 and sums above 1: where signs and clamping show.
  cp -r ../srgb_4096 ../harsh_4096
  printf '%s\n' ' 1.9 -0.5 -0.25' '-0.125 1.25 0.0625' '-0.003 -0.2 1.1' >../harsh_4096/matrix.txt
)

echo "Refused:"
for job in "$top"/jobs/*; do
  "$bin/write_all" "$job" "$job/measurements.txt" "$job/right" | sed "s|^|  ${job##*/}: |"
  for mistake in swapped transposed display_swapped display_transposed; do
    "$bin/write_all" "$job" "$job/measurements.txt" "$job/$mistake" $mistake >/dev/null
  done
done
/usr/bin/python3 scripts/interop/judge.py "$top/scratch" "$top"/jobs/*

echo "Reports:"
(
  mkdir "$top/reports"
  cd "$top/reports"
  "$bin/simulate_display" levels=17 extra=60 noise=0.003 red=0.64,0.34 >display.txt
  for target in native srgb bt2020; do
    "$bin/corvantile-kit" make display.txt --target $target --for linux --display "A <display> & its \"name\"" -q \
      -o $target
  done
  "$bin/corvantile-kit" report native --measured display.txt -q -o measured.html
  mkdir measured && mv measured.html measured/report.html
)
/usr/bin/python3 scripts/interop/judge_report.py "$top/scratch" "$top"/reports/*/report.html
echo "all formats were read by others as they were meant"
