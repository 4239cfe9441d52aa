#!/usr/bin/env bash
# Prints docs/figures.md: the figures that change with the program, all measured now. Takes some two minutes.
# Usage: scripts/figures.sh > docs/figures.md
# FIGURES_DISPLAYS (default 40) displays are corrected for each time, FIGURES_ROUNDS (default 3) times; the fastest
# round counts. Progress goes to standard error. Intermediate files stay in build/figures.
set -euo pipefail
shopt -s inherit_errexit
cd "$(dirname "$0")/.."
top=$PWD
displays=${FIGURES_DISPLAYS:-40}
rounds=${FIGURES_ROUNDS:-3}

scripts/setup.sh time >&2
{ cmake --preset release -D CORVANTILE_TESTS=ON && cmake --build --preset release --parallel "$(nproc)"; } >&2
scripts/loop.sh >&2  # leaves the displays and targets that the 3D LUTs are judged by
export PATH=$top/build/release/bin:$PATH LC_ALL=C
rm -rf build/figures
mkdir -p build/figures
cd build/figures

said() { echo "figures.sh: $*" >&2; }

simulate() {  # displays of which no two are alike
  local i
  for ((i = 1; i <= displays; ++i)); do
    awk -v i="$i" 'BEGIN { f = i % 10
      printf "white=%.4f,%.4f gamma=%.2f,2.2,%.2f nX=%.3f,0,0 nZ=0,0,%.3f seed=%d\n", 0.3 + 0.002 * f,
             0.32 + 0.002 * f, 2.1 + 0.03 * f, 2.4 - 0.03 * f, 0.002 * f, -0.004 * f, i }' |
      xargs simulate_display levels=17 extra=50 noise=0.001 >"display-$i.txt"
  done
}

core() {  # FILE SETTINGS
  echo "&opts wgfile='$1' outdir='tables' $2 /" | Corvantile 2>/dev/null
}
kit() {  # FILE VERB [OPTION...]
  corvantile-kit "$2" "$1" "${@:3}" >/dev/null 2>&1
}
corrected() {  # FILE [OPTION...]
  kit "$1" make -q --force -o job "${@:2}"
}
over_all() {  # COMMAND FILE-TO-COME [ARGUMENT...]
  local i
  for ((i = 1; i <= displays; ++i)); do "$1" "display-$i.txt" "${@:2}"; done
}

least_seconds() {  # COMMAND...: user and system time of a round
  local TIMEFORMAT='%3U %3S' i
  for ((i = 0; i < rounds; ++i)); do { time over_all "$@"; } 2>&1; done | awk '{ print $1 + $2 }' | sort -g | head -n 1
}
peak_megabytes() {  # COMMAND...
  export -f core kit corrected
  /usr/bin/time -f %M -o peak bash -c '"$@"' - "$1" display-1.txt "${@:2}"
  awk '{ m = $1 / 1024 } END { printf "%.0f", m }' peak
}
timed() {  # NAME COMMAND...: a row of the table of times
  local seconds peak
  said "$1"
  seconds=$(least_seconds "${@:2}")
  peak=$(peak_megabytes "${@:2}")
  awk -v name="$1" -v seconds="$seconds" -v n="$displays" -v peak="$peak" '
    function rounded(v,   unit) { unit = v < 100 ? 1 : v < 1000 ? 10 : 100; return unit * int(v / unit + 0.5) }
    BEGIN {
      ms = 1000 * seconds / n
      printf "| %s | %.*f | %d | %d |\n", name, ms < 10, ms, rounded(60 * n / seconds), peak
    }'
}
# shellcheck disable=SC2016  # these are backquotes of Markdown
jobs_table() {
  mkdir -p tables
  timed '`Corvantile`, CV1, 256 rows' core "cvmode='CV1' tlen=256"
  timed '`Corvantile`, CV2, 4096 rows' core "cvmode='CV2' tlen=4096"
  timed '`Corvantile`, CV2_1, 4096 rows' core "cvmode='CV2_1' tlen=4096 white=0.3127,0.3290"
  timed '`check`' kit check
  timed '`make --target native --white d65 --for x11`' corrected --target native --white d65 --for x11
  timed '`make --for windows`' corrected --for windows
  timed '`make --for fpga`' corrected --for fpga
  timed '`make --for all`' corrected --for all
}

# What the corrected white keeps of its luminance: of the record of a job on standard input.
kept() {
  awk '/"luminance": / { inside = 1 } /}/ { inside = 0 } inside && /"(before|after)": / { v[$1] = $2 + 0 }
    END { printf "%.1f %%", 100 * v["\"after\":"] / v["\"before\":"] }'
}
kept_with() {  # TARGET WHITE
  corvantile-kit make "$top/examples/two_table/measurements.txt" --target "$1" --white "$2" --for x11 --force -q \
    --json -o light 2>/dev/null | kept
}
light_table() {
  local name
  for name in native d65 6500 d50 9300 2856; do
    said "white $name"
    echo "| \`$name\` | $(kept_with native "$name") | $(kept_with srgb "$name") |"
  done
}
reserve_table() {
  local pair
  cp "$top/examples/two_table/measurements.txt" .
  for pair in "0.95 0.05" "1 0.05" "0.95 0" "1 0" "0.8 0.05"; do
    said "lumfrac, rowsum_margin $pair"
    echo "| ${pair/ / | } | $(echo "&opts cvmode='CV2_1' wgfile='measurements.txt' white=0.3127,0.3290 tlen=1024
      lumfrac=${pair% *} rowsum_margin=${pair#* } /" | corvantile-kit solve - -q --json --force -o reserve | kept) |"
  done
}

rows_table() {
  local n
  for n in 256 1024 4096; do
    said "$n rows"
    sed "s/tlen *= *256/tlen = $n/; s/outdir *= *'.'/outdir = 'tables'/" "$top/examples/two_table/settings.txt" |
      Corvantile -v 2>/dev/null | awk -v n="$n" '
        / comparing / { shown = / modified target/ }
        shown && /^ [a-z]+ ramp errmax = / { worst[$1] = $NF }
        END { printf "| %d | %.2f | %.2f | %.2f | %.2f |\n", n, worst["gray"], worst["red"], worst["green"],
                     worst["blue"] }'
  done
}

# The loop's second chart on its Display P3, behind the 3D LUT and behind the tables themselves.
grids_table() {
  local size name corrected
  pushd "$top/build/loop" >/dev/null
  for size in 17 33 65 none; do
    said "3D LUT: $size"
    name="the tables themselves" corrected=DisplayP3-CV2_1.clf
    if [ "$size" != none ]; then
      name="$size points" corrected=grid-$size.cube
      corvantile-kit export -q --force DisplayP3-CV2_1 --format cube3d --size "$size" -o "$corrected"
    fi
    /usr/bin/python3 "$top/scripts/loop/colours.py" correct second.ti1 "$corrected" "grid-$size.ti1"
    fakeread /usr/share/color/argyll/ref/DisplayP3.icm "grid-$size" >/dev/null 2>&1
    colverify -k -n DisplayP3-CV2_1-target.ti3 "grid-$size.ti3" | tr -d , |
      awk -v name="$name" '/Total errors/ { printf "| %s | %.3f | %.2f |\n", name, $NF, $(NF - 3) }'
  done
  popd >/dev/null
}

words_of() {  # VERB OPTION: how many words the option takes, by the help
  corvantile-kit "$1" --help | awk -v option="$2" '
    $1 ~ "^" option { on = 1; sub(/^ *[^ ]+ [^ ]+ +/, "") }
    on && /^  [-]/ && $1 !~ "^" option { exit }
    on { text = text " " $0 }
    END { sub(/^.*: /, "", text); gsub(/ or /, ", ", text); print split(text, words, /, */) }'
}
lines_in() {  # PATTERN...: lines that are not blank
  (cd "$top" && git ls-files -z -- "$@" | xargs -0 cat | grep -c '[^[:space:]]')
}
counts_table() {
  echo "| verbs of \`corvantile-kit\` | $(corvantile-kit --help | awk '/^Subcommands:/ { on = 1; next } /^$/ { on = 0 }
    on && /^  [a-z]/ { ++n } END { print n }') |"
  echo "| kinds of files that it reads | $(words_of import --from) |"
  echo "| formats that it writes | $(corvantile-kit export --help | awk '/^Formats:/ { on = 1; next } /^$/ { on = 0 }
    on { ++n } END { print n }') |"
  echo "| targets | $(words_of make --target) |"
  echo "| tests | $(cd "$top" && ctest --preset release -N | sed -n 's/^Total Tests: //p') |"
  echo "| lines of \`src\`, without blank ones | $(lines_in 'src/*.cpp' 'src/*.hpp') |"
  echo "| lines of \`tests\`, without blank ones | $(lines_in 'tests/*.cpp' 'tests/*.hpp' 'tests/*.sh' 'tests/*.py' 'tests/*.cmake') |"
}

simulate
for table in jobs light reserve rows grids counts; do "${table}_table" >"$table.md"; done
clock=$(lscpu | sed -n 's/.*@ *\([0-9.]*\) *GHz.*/\1/p')
[ -n "$clock" ] || clock=$(awk -F: '/^cpu MHz/ { printf "%.1f", $2 / 1000; exit }' /proc/cpuinfo)
cat <<END
# Figures

Figures that change with the program. \`scripts/figures.sh\` measures them and prints this page. It was last run for
version $(corvantile-kit --version | cut -d' ' -f2) on $(date -u +%F), built by g++ $(g++ -dumpversion).

## How long jobs take

Processor time per display on one core, an $(uname -m) at $clock GHz, including reading and writing the files. Each is a mean
over $displays simulated displays with 17 levels per ramp and 50 further patches. Two cores do twice as many displays.

| job | milliseconds | displays per minute | memory, MB |
|---|---|---|---|
$(<jobs.md)

The search for 4096 gray levels takes most of the time of CV2_1. \`scripts/bench.sh\` counts instructions.

## How much light a target costs

The luminance that white keeps on the display of [examples/two_table](../examples/two_table), which is simulated and has
a white of 7436 K.

| \`--white\` | \`--target native\` | \`--target srgb\` |
|---|---|---|
$(<light.md)

## What the reserve costs

The same display with sRGB's primaries and grays at D65. [Settings by hand](choosing-a-target.md#settings-by-hand)
explains the two keys.

| \`lumfrac\` | \`rowsum_margin\` | luminance kept |
|---|---|---|
$(<reserve.md)

## How many rows a table needs

The largest CIEDE2000 along four ramps, between the corrected display and the target that it can show, for the settings
of [examples/two_table](../examples/two_table). They are the figures of \`Corvantile -v\`, with its
[own reference white](mathematics.md#colour-differences).

| \`tlen\` | gray | red | green | blue |
|---|---|---|---|---|
$(<rows.md)

## How fine a 3D LUT should be

A Display P3 screen made to look like sRGB: CIEDE2000 of 300 colours, judged by ArgyllCMS as in
[the end-to-end test](trust-and-verification.md#does-it-work-end-to-end). The last row is the correction without a grid.

| grid | mean | largest |
|---|---|---|
$(<grids.md)

## How much there is

| what | how many |
|---|---|
$(<counts.md)
END
