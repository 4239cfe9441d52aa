#!/usr/bin/env bash
# corvantile-kit import: one display by every way in, and files that are refused.
. "$(dirname "$0")/kit.sh"
measure
as_ti3 <m.txt >display.ti3
as_csv <m.txt >display.csv
as_gray_scale_sheet <m.txt >gray.csv
as_primaries_sheet <m.txt >primaries.csv
readings_in() { rows_of <"$1" | cut -d' ' -f4-; }

ends 0 $'display.ti3: Argyll .ti3, 169 readings in cd/m2\nmeasured ramps of 33 levels (*), 40 further samples*' \
  import display.ti3 -o measurements.txt
ends 0 "" import display.ti3 -o measurements.txt --force -q
is "through pipes" "$("$kit" import - <display.ti3 2>&1 >piped; grep -v '^;' piped | cksum)" \
  "*"$'\n'"$(grep -v '^;' measurements.txt | cksum)"
near "the readings" 0 <(readings_in m.txt) <(readings_in measurements.txt)
ends 0 "*derived ramps of 33 levels*" import primaries.csv gray.csv -o sheets.txt
near "ramps derived from sheets" 0.001 <(readings_in m.txt | head -132) <(readings_in sheets.txt | head -132)
"$kit" import sheets.txt --ramps derived -q -o again.txt
is "derived ramps are no readings" "$(rows_of <again.txt | cksum)" "$(rows_of <sheets.txt | cksum)"

# 4 ramps of 33 levels and 40 patches; the table has each row, and white and black four times.
found=$("$kit" import display.csv --json -o csv.txt 2>said)
record "a table" "$found" <<EOF
source = display.csv
readings = 172
levels = 33
extra = 40
absolute = true
calibration_in_effect = false
ramps = measured
additivity = 0 +- 0.00001
measured_predicts/all/n = 40
measured_predicts/near_gray/n = 0
measured_predicts/all/mean = $(number "$(<said)" 'measured ramps predict 40 other patches to CIEDE2000 ([0-9.]+)') +- 0.005
derived_predicts/all/mean = $(number "$(<said)" 'derived ramps predict 40 other patches to CIEDE2000 ([0-9.]+)') +- 0.005
EOF
near "of a table" 0.00001 <(rows_of <measurements.txt) <(rows_of <csv.txt)
cp display.csv "$(printf 'b\xfcro.csv')"
record "a name that is no UTF-8" "$("$kit" import "$(printf 'b\xfcro.csv')" --json -q -o latin.txt)" <<<$'source = b\ufffdro.csv'

head -c 3000 display.ti3 >cut.ti3
head -c 5000 "$bin/Corvantile" >binary.ti3
awk -F, 'NR == 1 || $1 == $2 && $2 == $3' display.csv >grays.csv
awk -F, 'NR == 1 || $1 != $2 || $1 == 0' display.csv >no_grays.csv
sed '9s/,[^,]*$/,bright/' display.csv >typo.csv
sed 's/^255,255,255,.*/255,255,255,0,0,0/' display.csv >failed.csv
awk -F, -v OFS=, 'NR > 1 { $5 = -$5 } { print }' display.csv >negative.csv
while IFS=: read -r file message; do
  refuses 5 "$file: $message" import "$file"
done <<'EOF'
cut.ti3:line [0-9]*: *it was cut short*
binary.ti3:not a text file*
gray.csv:a gray ramp alone; give HCFR's PrimariesSheet*
grays.csv:holds a gray ramp alone*corvantile-kit chart --ramps derived*
no_grays.csv:holds no gray ramp*corvantile-kit chart*
typo.csv:line 9: *'bright'*
failed.csv:the brightest gray*line 2: the reading 0 0 0 * failed.)
negative.csv:white reads Y = -*
EOF
refuses 5 "display.ti3: no calibration was in effect*" import display.ti3 -o none.txt --calibration none.cal
ends 2 "--layout: rgb*" import display.csv --layout rgb
passed
