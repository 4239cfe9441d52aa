#!/usr/bin/env bash
# What the usual jobs cost: instructions, as callgrind counts them, and peak memory. They work on a simulated display;
# "start" is a run that finds no settings. Everything is left under build/speed/.
# Usage: scripts/bench.sh [PROGRAM | COMMIT]
#          also compares processor time with that of another program, or of the program at a commit: jobs of both in
#          turn, medians
#        scripts/bench.sh --check
#          holds the instructions to scripts/bench_counts.txt
# shellcheck disable=SC2046  # a job's arguments are words
set -euo pipefail
cd "$(dirname "$0")/.."
other=${1:-}
within=3  # per cent of the pinned count
rounds=${BENCH_ROUNDS:-31}

scripts/setup.sh valgrind time >&2
# build FOLDER [OPTION ...]: the release build of the sources there; the programs then are in FOLDER/build/release/bin.
build() {
  (cd "$1" && cmake --preset release "${@:2}" >/dev/null &&
    cmake --build --preset release --target Corvantile simulate_display --parallel "$(nproc)" >/dev/null)
}
build .
bin=$PWD/build/release/bin
folder=$PWD/build/speed
mkdir -p "$folder"
if [ -n "$other" ] && [ "$other" != --check ] && [ ! -x "$other" ]; then
  commit=$(git rev-parse --verify --quiet "$other^{commit}") || { echo "neither program nor commit: $other" >&2; exit 2; }
  tree=$folder/$commit
  [ -d "$tree" ] || { mkdir -p "$tree" && git archive "$commit" | tar -x -C "$tree"; }
  build "$tree" -D CORVANTILE_TESTS=OFF -D CORVANTILE_KIT=OFF 2>/dev/null
  other=$tree/build/release/bin/Corvantile
fi
[ -z "$other" ] || [ "$other" = --check ] || other=$(realpath "$other")

display="white_luminance=100 black_luminance=0.1 red=0.66,0.32 white=0.31,0.325 gamma=2.1,2.2,2.3 toe=0.02
  nX=0.01,-0.01,0.05 nZ=-0.1,0.05,0.02 noise=0.001"
cd "$folder"
for levels in 17 64 256; do
  # shellcheck disable=SC2086  # words
  "$bin/simulate_display" levels=$levels $display >$levels.txt
done
jobs=()
# job NAME LEVELS SETTINGS [ARGUMENT]
job() {
  jobs+=("$1")
  echo "&opts wgfile='$2.txt' $3 /" >"$1.settings"
  echo "${4:-}" >"$1.arguments"
}
job CV1 17 "cvmode='CV1'"
job CV1_64_levels 64 "cvmode='CV1'"
job CV1_256_levels 256 "cvmode='CV1'"
job CV1_swath 17 "cvmode='CV1' temp=6500 hwid=0.005"
job CV1_4096_rows 17 "cvmode='CV1' tlen=4096"
job CV1_12_pieces 17 "cvmode='CV1' numsegs=12"
job CV1_report 17 "cvmode='CV1'" -v
job CV2 17 "cvmode='CV2'"
job CV2_1 17 "cvmode='CV2_1' temp=6500"
jobs+=(start)
: >start.settings
: >start.arguments

# run PROGRAM JOB: whatever its status.
run() { "$1" $(<"$2.arguments") <"$2.settings" >/dev/null 2>&1 || true; }
count() { # JOB
  valgrind --tool=callgrind --callgrind-out-file=/dev/null --log-file="$1.log" \
    "$bin/Corvantile" $(<"$1.arguments") <"$1.settings" >/dev/null 2>&1 || true
}
export -f count
export bin
printf '%s\n' "${jobs[@]}" | xargs -P "$(nproc)" -I{} bash -c 'count {}'

pinned=../../scripts/bench_counts.txt
built_for=$(sed -n 's/^# for //p' "$pinned")
here="g++ $(g++ -dumpversion | cut -d. -f1), $(uname -m)$(grep -qw fma /proc/cpuinfo && echo ' with FMA')"
failed=0
printf '%-16s %12s %10s\n' job 'instructions' 'peak'
for j in "${jobs[@]}"; do
  millions=$(awk '/Collected/ { printf "%.2f", $4 / 1e6 }' "$j.log")
  kilobytes=$(/usr/bin/time -f %M -o peak "$bin/Corvantile" $(<"$j.arguments") <"$j.settings" >/dev/null 2>&1; tail -1 peak)
  verdict=
  if [ "$other" = --check ]; then
    verdict=$(awk -v job="$j" -v now="$millions" -v within=$within '
      $1 == job { found = 1; if (now > $2 * (1 + within / 100)) print "MORE than the pinned " $2 " M"
        else if (now < $2 * (1 - within / 100)) print "fewer than the pinned " $2 " M: lower the pin" }
      END { if (!found) print "MORE: it has no pinned count" }' "$pinned")
  fi
  printf '%-16s %10s M %7s kB  %s\n' "$j" "$millions" "$kilobytes" "$verdict"
  [[ $verdict != MORE* ]] || failed=1
done
if [ "$other" = --check ]; then
  [ "$here" = "$built_for" ] || { echo "Counts are pinned for $built_for; this is $here: not judged."; exit 0; }
  exit $failed
fi
[ -n "$other" ] || exit 0

# Milliseconds of user and system time of each of RUNS runs of PROGRAM on JOB.
cpu() {
  local TIMEFORMAT='%3U %3S' i
  { time for ((i = 0; i < $3; ++i)); do run "$1" "$2"; done; } 2>&1 | awk -v runs="$3" '{ print ($1 + $2) * 1000 / runs }'
}
# The programs take turns every tenth of a second: what else the machine does changes within seconds.
echo
printf '%-16s %10s %10s %8s   medians of %d rounds\n' 'CPU time' this other ratio "$rounds"
for j in "${jobs[@]}"; do
  runs=$(cpu "$other" "$j" 10 | awk '{ runs = int(100 / ($1 + 0.1)); print (runs > 1 ? runs : 1) }')
  for ((i = 0; i < rounds; ++i)); do echo "$(cpu "$bin/Corvantile" "$j" "$runs") $(cpu "$other" "$j" "$runs")"; done |
    awk -v job="$j" '
      function median(v, n,   i, k, t) {
        for (i = 2; i <= n; ++i) for (k = i; k > 1 && v[k - 1] > v[k]; --k) { t = v[k]; v[k] = v[k - 1]; v[k - 1] = t }
        return v[int((n + 1) / 2)]
      }
      { a[NR] = $1; b[NR] = $2; r[NR] = $1 / $2 }
      END { printf "%-16s %7.2f ms %7.2f ms %8.3f\n", job, median(a, NR), median(b, NR), median(r, NR) }'
done
