#!/usr/bin/env bash
# Shows whether the tables depend on compiler or optimisation: builds with GCC and clang at -O0 and -O3, runs the same
# jobs with each, and compares all tables byte for byte. Everything is left under build/portability/.
# Usage: scripts/portability.sh [FILE ...]
#   FILE  a settings file, to be run as it is in a copy of its folder (its outdir must be '.'), or
#         a measurement file, for which a dozen jobs in all modes are made
#   default: the shipped examples and a few simulated displays
set -euo pipefail
cd "$(dirname "$0")/.."
files=()
for f in "$@"; do files+=("$(realpath "$f")"); done

scripts/setup.sh clang
top=$PWD/build/portability
builds=(g++-O3 g++-O0 clang++-O3 clang++-O0)  # the first is what the others are compared with
for b in "${builds[@]}"; do
  cmake -S . -B "$top/$b" -D CMAKE_CXX_COMPILER="${b%-O*}" -D CMAKE_BUILD_TYPE=Release \
    -D CMAKE_CXX_FLAGS_RELEASE="-O${b##*-O}" -D CORVANTILE_TESTS=OFF >/dev/null
  cmake --build "$top/$b" --target Corvantile simulate_display --parallel "$(nproc)" >"$top/$b.log" ||
    { cat "$top/$b.log"; exit 1; }
done

if [ ${#files[@]} -eq 0 ]; then
  files=("$PWD"/examples/*/settings.txt)
  for display in "levels=17 white_luminance=100" "levels=64 white_luminance=400 toe=0.03 noise=0.002 nZ=0.1,0.05,0.1" \
    "levels=33 s_shape=0.5 red=0.7,0.3 green=0.19,0.75 dark_red_z=1" "levels=256 noise=0.005 digits=4 version=1"; do
    name=$top/${display//[ =,]/_}.txt
    # shellcheck disable=SC2086  # words
    "$top/${builds[0]}/bin/simulate_display" $display >"$name"
    files+=("$name")
  done
fi
jobs_of_a_display=(
  "cvmode='CV1'" "cvmode='CV1' temp=6500" "cvmode='CV1' temp=5000 gamma=1.8 tlen=1024" "cvmode='CV1' minslope=0.02"
  "cvmode='CV1' temp=6500 wptemp=0" "cvmode='CV1' temp=6500 hwid=0.005" "cvmode='CV1' temp=6500 nbits=10"
  "cvmode='CV2'" "cvmode='CV2' tlen=4096" "cvmode='CV2' minslope=0.01 nbits=12"
  "cvmode='CV2_1'" "cvmode='CV2_1' temp=6500 tlen=1024")

rm -rf "$top/jobs"
mkdir -p "$top/jobs"
count=0
for f in "${files[@]}"; do
  [ -r "$f" ] || { echo "Cannot read $f" >&2; exit 2; }
  if grep -qi '^ *&opts' "$f"; then
    count=$((count + 1))
    mkdir "$top/jobs/$count"
    cp "$(dirname "$f")"/*.txt "$top/jobs/$count"
    rm -f "$top/jobs/$count"/{preLUT,matrix,postLUT}.txt
    [ "$(basename "$f")" = settings.txt ] || cp "$f" "$top/jobs/$count/settings.txt"
    echo "$f" >"$top/jobs/$count/job"
  else
    for options in "${jobs_of_a_display[@]}"; do
      count=$((count + 1))
      mkdir "$top/jobs/$count"
      cp "$f" "$top/jobs/$count/measurements.txt"
      echo "&opts wgfile='measurements.txt' $options /" >"$top/jobs/$count/settings.txt"
      echo "$(basename "$f"): $options" >"$top/jobs/$count/job"
    done
  fi
done

tables=0
different=()
for ((n = 1; n <= count; ++n)); do
  for b in "${builds[@]}"; do
    folder=$top/jobs/$n/$b
    mkdir "$folder"
    cp "$top/jobs/$n"/*.txt "$folder"
    (cd "$folder" && "$top/$b/bin/Corvantile" <settings.txt >report.txt 2>&1) ||
      { echo "$(cat "$top/jobs/$n/job"), $b: $(tail -1 "$folder/report.txt")" >&2; exit 1; }
    for table in preLUT.txt matrix.txt postLUT.txt; do
      of_first=$top/jobs/$n/${builds[0]}/$table
      [ "$b" != "${builds[0]}" ] || continue
      [ -e "$folder/$table" ] || [ -e "$of_first" ] || continue
      tables=$((tables + 1))
      cmp -s "$of_first" "$folder/$table" && continue
      different+=("$(cat "$top/jobs/$n/job"), $table by $b: $(diff "$of_first" "$folder/$table" | grep -c '^>') rows differ, by up to $(
        paste -d' ' "$of_first" "$folder/$table" | awk '{ for (i = 1; i <= 3; ++i) { d = $i - $(i + 3); if (d < 0) d = -d
          if (d > most) most = d } } END { print most + 0 }')")
    done
  done
done

echo "$count jobs by ${builds[*]}: of $tables tables ${#different[@]} differ from those of ${builds[0]}"
[ ${#different[@]} -eq 0 ] && exit 0
printf '  %s\n' "${different[@]}"
exit 1
