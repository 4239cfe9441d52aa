#!/usr/bin/env bash
# The whole way with other people's tools at both ends. ArgyllCMS plays the display (reference profiles that are not
# ours) and the instrument; corvantile-kit imports, solves and exports; OpenColorIO applies the correction to a second
# chart, ArgyllCMS shows it, and its colverify judges it against a target computed from published figures alone.
# Without noise each mode must reach CIEDE2000 0.10 on average and 1.0 at most, full white the luminance that the job
# promised to 0.1 %, and a correction with a transposed matrix must not. Everything is left in build/loop/.
# Usage: scripts/loop.sh
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh argyll argyll-ref python3-pyopencolorio
cmake --preset release >/dev/null
cmake --build --preset release --target corvantile-kit --parallel "$(nproc)" >/dev/null
kit=$PWD/build/release/bin/corvantile-kit
profiles=/usr/share/color/argyll/ref
top=$PWD/build/loop
colours() { /usr/bin/python3 "$OLDPWD/scripts/loop/colours.py" "$@"; }
rm -rf "$top"
mkdir -p "$top"
cd "$top"

"$kit" chart -q --levels 33 --verify 100 -o ramps.ti1
targen -d3 -e1 -B1 -g21 -f300 second >/dev/null 2>&1

measure() {  # NAME PROFILE OPTION of fakeread...: NAME.txt, the measurements of a display
  cp ramps.ti1 "$1.ti1"
  fakeread "${@:3}" "$profiles/$2.icm" "$1" >/dev/null
  "$kit" import -q "$1.ti3" -o "$1.txt"
}

show() {  # JOB PROFILE CORRECTION: JOB.ti3, what the display makes of the second chart behind the correction
  colours correct second.ti1 "$3" "$1.ti1"
  fakeread "${lifted[@]}" "$profiles/$2.icm" "$1" >/dev/null 2>&1
}

judged() {  # TARGET SHOWN: mean and peak CIEDE2000, and by how many percent the luminance of white is off
  # -n takes the white as reference: without it, colverify's reference white is a hundredth of a display's.
  colverify -k -n -v "$1" "$2" | tr -d , | awk '
    /Chose patch/         { white[$2] = $(NF - 1) }
    /Total errors/        { peak = $(NF - 3); mean = $NF }
    END { off = 100 * (white[1] / white[0] - 1); printf "%.3f %.3f %.3f\n", mean, peak, off < 0 ? -off : off }'
}
good() {  # MEAN PEAK LUMINANCE
  awk '{ exit !(NF == 3 && $1 <= 0.10 && $2 <= 1.0 && $3 <= 0.1) }' <<<"$*"
}

failed=0
lifted=()  # options of fakeread for a black above 0
black=0,0,0
play() {  # MEASUREMENTS PROFILE MODE GAMUT WHITE SETTINGS [noisy]
  local job=$1-$3 figures spoilt verdict=""
  echo "&opts wgfile='$1.txt' cvmode='$3' tlen=4096 numsegs=12 boundary_tol=0 $6 /" >"$job.settings"
  "$kit" solve -q "$job.settings" -o "$job"
  "$kit" export -q "$job" --format clf -o "$job.clf"
  colours target second.ti1 "$job/job.json" "$4" "$5" 2.2 "$black" "$job-target.ti3"
  show "$job" "$2" "$job.clf"
  read -ra figures <<<"$(judged "$job-target.ti3" "$job.ti3")"
  if [ "${7:-}" != noisy ]; then
    colours spoil "$job.clf" "$job-spoilt.clf"
    show "$job-spoilt" "$2" "$job-spoilt.clf"
    read -ra spoilt <<<"$(judged "$job-target.ti3" "$job-spoilt.ti3")"
    good "${figures[@]}" || { verdict="  TOO FAR"; failed=1; }
    if good "${spoilt[@]}"; then verdict="$verdict  A SPOILT CORRECTION PASSES"; failed=1; fi
  fi
  printf '%-20s %-6s %6s %6s %11s %%   %6s%s\n' "$1" "$3" "${figures[@]}" "${spoilt[0]:--}" "$verdict"
}

modes() {  # MEASUREMENTS PROFILE GAMUT of the display [noisy]
  play "$1" "$2" CV1 "$3" 0.3457,0.3585 "white=0.3457,0.3585" "${@:4}"
  play "$1" "$2" CV2 srgb 0.3127,0.3290 "" "${@:4}"
  play "$1" "$2" CV2_1 srgb 0.3127,0.3290 "white=0.3127,0.3290" "${@:4}"
}

echo "display              mode     mean   peak  white off by   spoilt: mean"
measure DisplayP3 DisplayP3
measure ClayRGB1998 ClayRGB1998
measure Rec2020 Rec2020
measure DisplayP3-noisy DisplayP3 -r 0.1 -S 1
modes DisplayP3 DisplayP3 display-p3
modes ClayRGB1998 ClayRGB1998 adobe-rgb
modes Rec2020 Rec2020 bt2020
modes DisplayP3-noisy DisplayP3 display-p3 noisy
lifted=(-A 3,0,0)
measure DisplayP3-black DisplayP3 "${lifted[@]}" 2>/dev/null
black=$(awk '/^BEGIN_DATA *$/ { data = 1 } data && $2 + $3 + $4 == 0 && NF == 7 { print $5 "," $6 "," $7; exit }' \
  DisplayP3-black.ti3)
play DisplayP3-black DisplayP3 CV2 srgb 0.3127,0.3290 ""
[ $failed = 0 ] || exit 1
echo "the loop closes"
