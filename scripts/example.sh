#!/usr/bin/env bash
# Sets up, builds the program, runs the two shipped example jobs and shows what came out.
# Everything is left under build/example/; the tree itself stays as it was.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
cmake --preset release
cmake --build --preset release --target Corvantile --parallel "$(nproc)"
program=$PWD/build/release/bin/Corvantile

# run JOB: copies the job's folder and runs it there, for its paths are relative. Leaves the report in report.txt.
run() {
  local folder=build/example/$1
  rm -rf "$folder"
  mkdir -p "$folder"
  cp "examples/$1/measurements.txt" "examples/$1/settings.txt" "$folder"
  echo
  echo "== $1: $(sed -n '1s/^! *//p' "$folder/settings.txt")"
  echo "   cd $folder && Corvantile -v < settings.txt > report.txt"
  (cd "$folder" && "$program" -v <settings.txt >report.txt)
}

# gray_report JOB: nine evenly spaced levels of the gray ramp, from the two columns at the end of the report.
gray_report() {
  awk '
    $0 == " CCT" { part = "cct"; next }
    $0 == " output luminance" { part = "lum"; next }
    NF == 1 && part == "cct" { cct[nc++] = $1 }
    NF == 1 && part == "lum" { lum[nl++] = $1 }
    END {
      if (nc < 2 || nc != nl) { print "the report holds no gray ramp" > "/dev/stderr"; exit 1 }
      print "   the corrected gray ramp:   level      CCT (K)    luminance"
      for (i = 0; i <= 8; ++i) {
        k = int(i * (nc - 1) / 8 + 0.5)
        printf "   %30d %12.2f %12.4f\n", k, cct[k], lum[k]
      }
    }' "build/example/$1/report.txt"
}

# tables JOB FILE...: says where the tables are.
tables() {
  local job=$1 file
  shift
  for file in "$@"; do
    printf '   %-46s %s lines\n' "build/example/$job/$file" "$(wc -l <"build/example/$job/$file")"
  done
}

run gray_axis
tables gray_axis postLUT.txt report.txt
gray_report gray_axis

run two_table
tables two_table preLUT.txt matrix.txt postLUT.txt report.txt
gray_report two_table
echo "   largest colour difference (CIEDE2000) from the target that the display can show:"
sed -n '/^ comparing .* modified target/,/^ comparing .* reference target/s/^ \(.* errmax = .*\)/      \1/p' \
  build/example/two_table/report.txt
