#!/usr/bin/env bash
# corvantile-kit solve: the tables of Corvantile, in a folder that gives them again and replaces nothing unasked.
. "$(dirname "$0")/kit.sh"
measure
settings
mkdir plain && Corvantile <settings.txt 2>stderr

ends 0 "*CV2_1 solved into job: *" solve settings.txt -o job
is "tables" "$(tables_in job)" "$(tables_in plain)"
is "and from the folder's settings" "$(cp -r job again && cd again && rm -- *LUT.txt matrix.txt && Corvantile <settings.txt \
  2>&1; tables_in .)" "*"$'\n'"$(tables_in plain)"
refuses 6 "job/job.json exists already*" solve settings.txt -o job
refuses 6 "./settings.txt exists already*" solve settings.txt -o .
mkdir with-measurements && cp m.txt with-measurements/measurements.txt
ends 0 "*" solve settings.txt -o with-measurements
is "standard input" "$("$kit" solve - -o piped-job -q <settings.txt; tables_in piped-job)" "$(tables_in plain)"
as_csv <m.txt >display.csv
refuses 4 "Settings, line 1: *" solve display.csv -o none

# White: that of the simulated display before, a black body of 6500 K after Planck wanted, 6498 K by the formula.
solved=$("$kit" solve settings.txt -o job --force --json 2>said)
said=$(<said)
record "solve" "$solved" <<EOF
mode = CV2_1
settings/temp = 6500
settings/tlen = 512
figures/white/measured/xy/0 = 0.3127 +- 0.00001
figures/white/measured/xy/1 = 0.3290 +- 0.00001
figures/white/wanted_xy/0 = 0.3136 +- 0.0001
figures/white/wanted_xy/1 = 0.3237 +- 0.0001
figures/white/corrected/xy/0 = 0.3136 +- 0.0001
figures/white/corrected/xy/1 = 0.3237 +- 0.0001
figures/white/corrected/CCT = 6498 +- 1
figures/black/before = 0.25 +- 0.000001
figures/black/after = 0.25 +- 0.0001
figures/luminance/before = $(number "$said" 'luminance ([0-9.]+) before') +- 0.05
figures/luminance/after = $(number "$said" 'before, ([0-9.]+) after') +- 0.05
figures/gray_ciede2000/mean = $(number "$said" 'mean ([0-9.]+)') +- 0.005
figures/gray_ciede2000/max = $(number "$said" 'largest ([0-9.]+)') +- 0.005
warnings/# = 0
EOF
is "on standard output what is in the folder" "$(cksum <<<"$solved")" "$(cksum <job/job.json)"

sed "s/CV2_1/CV1/; s/tlen=512//" settings.txt >gray_settings.txt
ends 0 "*CV1 solved*" solve gray_settings.txt -o job --force
is "CV1 after CV2_1" "$("$kit" export job --format cube -o gray.cube 2>&1; echo $?)" "gray.cube*0"
passed
