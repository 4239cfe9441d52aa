#!/usr/bin/env bash
# many_displays.sh RUN BIN: the script for many displays solves each once, names those that fail, and takes up what is
# left, newer or asked for with other options.
set -euo pipefail
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export PATH=$2:$PATH
cd "$scratch"
mkdir measured
for unit in 1 2 3; do simulate_display extra=5 seed="$unit" >"measured/unit $unit.txt"; done
head -n 30 "measured/unit 2.txt" >"measured/unit 4.txt"  # cut short
touch -d '1 hour ago' measured/*
records() { stat -c '%n %y' corrected/*/job.json; }

! "$1" measured corrected --for fpga >said || exit 1
grep -q '^unit 4: .*unit 4.txt' said
grep -q '^3 good, 0 to look at, 1 failed' said
[ "$(cut -f 1,2 corrected/summary.tsv | tr '\t\n' ' ,')" = \
  'display verdict,unit 1 good,unit 2 good,unit 3 good,unit 4 failed,' ]
cmp corrected/unit\ 1/measurements.txt corrected/unit\ 2/measurements.txt && exit 1  # each its own

records >before
cp "measured/unit 3.txt" "measured/unit 4.txt"
"$1" measured corrected --for fpga >said
grep -q '^4 good' said
records >after
[ "$(comm -13 before after | wc -l)" = 1 ]  # unit 4, and none again
[ -z "$(comm -23 before after)" ]

head -n 30 "measured/unit 2.txt" >"measured/unit 1.txt"
touch -d '1 hour' "measured/unit 1.txt"  # newer than its result
! "$1" measured corrected --for fpga >said || exit 1
grep -q '^3 good, 0 to look at, 1 failed' said  # not the verdict of its old result

sleep 1
rm "measured/unit 1.txt"
"$1" measured corrected --for video >said
[ -e "corrected/unit 2/exports/correction-3d.cube" ]
touch measured/unit\ 2.csv
! "$1" measured corrected --for video 2>said || exit 1
grep -q 'Several files of one display: unit 2' said
