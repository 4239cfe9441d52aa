#!/usr/bin/env bash
# Each verb as a user runs it, on files made here of a simulated display.
# Usage: verbs_test.sh CORVANTILE_KIT CORVANTILE SIMULATE_DISPLAY
set -u
kit=$(realpath "$1")
program=$(realpath "$2")
simulate=$(realpath "$3")
root=$(cd "$(dirname "$0")/../.." && pwd)
. "$root/tests/expect.sh"
. "$root/tests/kit/instrument_files.sh"
work=$(mktemp -d "${TMPDIR:-/tmp}/corvantile-verbs-XXXXXX")
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
PATH=$(dirname "$kit"):$PATH
locale -a 2>/dev/null | grep -qx de_DE.utf8 && export LC_ALL=de_DE.UTF-8
ends() {  # STATUS MESSAGE ARGUMENT...: the kit ends so, with this on standard error and nothing on standard output
  local status=$1 message=$2
  shift 2
  is "$*" "$(timeout 60 "$kit" "$@" 2>stderr </dev/null; echo "$?: $(cat stderr)")" "$status: $message"
}
refuses() { ends "$1" "corvantile-kit: $2" "${@:3}"; }
object() {  # NAME TEXT: one JSON object
  python3 -c 'import json' 2>/dev/null || return
  is "$1: JSON" "$(python3 -c 'import json, sys; print(type(json.load(sys.stdin)).__name__)' <<<"$2" 2>&1)" dict
}
near() {  # NAME TOLERANCE FILE FILE: numbers of two files, in per cent of the largest
  is "$1" "$(paste -d' ' "$3" "$4" | awk -v tol="$2" '
    { for (i = 1; i <= NF / 2; ++i) { d = $i - $(i + NF / 2); if (d < 0) d = -d; if (d > worst) worst = d
                                      if ($i > top) top = $i } }
    END { off = top > 0 ? 100 * worst / top : 999; print (NR > 0 && off <= tol ? "near" : "off by " off " %") }')" near
}

"$simulate" extra=40 levels=33 >m.txt || exit 1
as_ti3 <m.txt >display.ti3
as_csv <m.txt >display.csv
as_gray_scale_sheet <m.txt >gray.csv
as_primaries_sheet <m.txt >primaries.csv

# --- All verbs ---
for verb in make import check chart solve export report verify refine predict; do
  is "$verb --version" "$("$kit" $verb --version; echo $?)" $'corvantile-kit 2.0.0\n0'
  is "$verb --help" "$("$kit" $verb --help | grep -A1 '^Example:')" $'Example:\n  *corvantile-kit '"$verb *"
  is "$verb --help in 80 columns" "$("$kit" $verb --help | awk 'length > 80')" ""
  for option in --output --quiet --json --force; do
    is "$verb $option" "$("$kit" $verb --help | grep -c -- "$option\b")" "[1-9]"
  done
done
for wrong in "" "nonsense" "import" "check m.txt --nonsense" "export . --format nonsense"; do
  ends 2 "*" $wrong
done
: >taken
for verb in "import display.ti3" "import display.ti3 --calibration taken" "check m.txt" "chart" "predict m.txt"; do
  how=-o
  [[ $verb == *calibration* ]] && how=-q
  refuses 6 "taken exists already; --force replaces it" $verb $how taken
done
for verb in "import" "check" "predict" "solve" "export --format clf" "make"; do
  refuses 5 "*nowhere*" $verb nowhere
done

# --- import ---
ends 0 $'display.ti3: Argyll .ti3, 169 readings in cd/m2\nmeasured ramps of 33 levels (*), 40 further samples*' \
  import display.ti3 -o measurements.txt
ends 0 "" import display.ti3 -o measurements.txt --force -q
is "through pipes" "$("$kit" import - <display.ti3 2>&1 >piped; grep -v '^;' piped | cksum)" \
  "*"$'\n'"$(grep -v '^;' measurements.txt | cksum)"
near "the readings" 0 <(rows_of <m.txt | cut -d' ' -f4-) <(rows_of <measurements.txt | cut -d' ' -f4-)
object "import" "$("$kit" import display.csv --json -o csv.txt 2>stderr)"
near "of a table" 0.00001 <(rows_of <measurements.txt) <(rows_of <csv.txt)
ends 0 "*derived ramps of 33 levels*" import primaries.csv gray.csv -o sheets.txt
near "ramps derived from sheets" 0.001 <(rows_of <m.txt | head -132 | cut -d' ' -f4-) \
  <(rows_of <sheets.txt | head -132 | cut -d' ' -f4-)
ends 2 "--json: *standard output*" import display.ti3 --json
ends 2 "--json: *standard output*" chart --json
refuses 5 "display.ti3: no calibration was in effect*" import display.ti3 -o none.txt --calibration none.cal

head -c 3000 display.ti3 >cut.ti3
refuses 5 "cut.ti3: line [0-9]*: *it was cut short*" import cut.ti3
refuses 5 "gray.csv: a gray ramp alone; give HCFR's PrimariesSheet*" import gray.csv
head -c 5000 "$program" >binary.ti3
refuses 5 "binary.ti3: not a text file*" import binary.ti3
awk -F, 'NR == 1 || $1 == $2 && $2 == $3' display.csv >grays.csv
refuses 5 "grays.csv: holds a gray ramp alone*corvantile-kit chart --ramps derived*" import grays.csv
awk -F, 'NR == 1 || $1 != $2 || $1 == 0' display.csv >no_grays.csv
refuses 5 "no_grays.csv: holds no gray ramp*corvantile-kit chart*" import no_grays.csv
sed '9s/,[^,]*$/,bright/' display.csv >typo.csv
refuses 5 "typo.csv: line 9: *'bright'*" import typo.csv
cp display.csv "$(printf 'b\xfcro.csv')"
object "a name that is no UTF-8" "$("$kit" import "$(printf 'b\xfcro.csv')" --json -q -o latin.txt)"
sed 's/^255,255,255,.*/255,255,255,0,0,0/' display.csv >failed.csv
refuses 5 "failed.csv: the brightest gray*line 2: the reading 0 0 0 * failed.)" import failed.csv
awk -F, -v OFS=, 'NR > 1 { $5 = -$5 } { print }' display.csv >negative.csv
refuses 5 "negative.csv: white reads Y = -*" import negative.csv
ends 2 "--layout: rgb*" import display.csv --layout rgb

# --- chart ---
for format in ti1 csv hcfr; do
  ends 0 "* patches; *" chart --levels 9 --verify 12 --format $format -o chart.$format
done
is "counts" "$(grep -c '^[0-9]' chart.ti1) $(grep -c '^[0-9]' chart.csv) $(wc -l <chart.hcfr)" "51 51 51"
is "derived" "$("$kit" chart --ramps derived -q | grep -c '^[0-9]')" 22
object "chart" "$("$kit" chart --json -q -o chart.json.ti1)"
refuses 5 "chart.ti1: line 1: *still to be measured*" import chart.ti1
refuses 5 "chart.csv: none of its rows holds a reading*" import chart.csv
for levels in -1 4 257 many; do ends 2 "--levels: *$levels*" chart --levels $levels; done
# What a display of gamma 2.2 would show, behind the names and the drives of both.
awk -F, 'NR == 1 { print; next } { for (i = 1; i <= 3; ++i) l[i] = ($i / 255) ^ 2.2
  print $1 "," $2 "," $3 "," 41 * l[1] + 36 * l[2] + 18 * l[3] + 0.1 "," 21 * l[1] + 72 * l[2] + 7 * l[3] + 0.1 "," \
        2 * l[1] + 12 * l[2] + 95 * l[3] + 0.1 }' chart.csv >shown.csv
ends 0 "*measured ramps of 9 levels*12 further samples*" import shown.csv --ramps measured -o shown.txt
awk -F, 'BEGIN { print "\"Color\";\"X\";\"Y\";\"Z\";\"R\";\"G\";\"B\";\"deltaE\"" }
  { for (i = 1; i <= 3; ++i) l[i] = (($i - 16) / 219) ^ 2.2
    print "\"" $4 "\";" 41 * l[1] + 36 * l[2] + 18 * l[3] + 0.1 ";" 21 * l[1] + 72 * l[2] + 7 * l[3] + 0.1 ";" \
          2 * l[1] + 12 * l[2] + 95 * l[3] + 0.1 ";1;1;1;0" }' chart.hcfr >sheet.csv
ends 0 "*measured ramps of 9 levels*12 further samples*" import sheet.csv --ramps measured -o sheet.txt

# --- check ---
is "sound" "$("$kit" check measurements.txt --strict | grep -E '^(warning|error):'; echo "${PIPESTATUS[0]}")" 0
awk '/^0 0 0/ && ++darks == 2 { $5 += 3 } { print }' measurements.txt >uneven.txt
is "uneven darks" "$("$kit" check uneven.txt --strict; echo $?)" "warning: dark-spread"$'\n*\n1'
is "without --strict" "$("$kit" check uneven.txt >findings; echo $?)" 0
report=$("$kit" check uneven.txt --json -o findings --force)
object "check" "$report"
for key in additivity dark_spread repeat_spread accuracy unseen near_gray white_ramp n mean p95 max findings id \
  severity message action; do
  is "check --json: $key" "$report" "*\"$key\": *"
done
is "each thing is told once" "$(grep -o '"id": "[a-z-]*"' <<<"$report" | sort | uniq -d)" ""
cat >settings.txt <<'EOF'
&opts cvmode='CV2_1' wgfile='measurements.txt' temp=6500 tlen=512 outdir='plain' nbits=0 /
EOF
is "with settings" "$("$kit" check measurements.txt --settings settings.txt)" "*luminance-loss*"
sed 's/temp=6500 tlen=512/tlen=256/' settings.txt >short.txt
is "with unwise settings" "$("$kit" check measurements.txt --settings short.txt)" "*short-tables*"
refuses 4 "*" check measurements.txt --settings measurements.txt
is "through pipes" "$("$kit" check - <measurements.txt)" "$("$kit" check measurements.txt -o /dev/stdout | cat)"

# --- predict ---
drives() { rows_of <"$1" | cut -d' ' -f1-3 | awk '{ print $1 / 255, $2 / 255, $3 / 255 }'; }
drives m.txt >drives
"$kit" predict measurements.txt <drives >predicted
near "the simulated display" 0.05 <(rows_of <m.txt | cut -d' ' -f4-) predicted
"$kit" predict measurements.txt --invert <predicted >inverted
near "and back" 0.001 drives <(cut -d' ' -f1-3 inverted)
is "nothing is left out" "$(awk '$4 > 1e-5' inverted)" ""
object "predict" "$(head -2 drives | "$kit" predict measurements.txt --json)"
while IFS=: read -r line found; do
  is "predict '$line'" "$(printf '0 0 0\n%s\n' "$line" | "$kit" predict m.txt 2>&1 >answers; echo $?)" \
    "corvantile-kit: standard input: line 2: expected * found $found"$'\n5'
done <<'EOF'
0.5 0.5:the end
0.5 x 0:'x'
0.5 1.5 0:'1.5'
0.5 0.5 0.5 1:'1'
EOF
ends 2 "*standard input*" predict -
refuses 5 "Cannot open *" predict m.txt --tables "$(printf 'a%.0s' {1..300})"
refuses 4 "*numsegs*" predict m.txt --numsegs 1
refuses 5 "display.ti3: line 1: *corvantile-kit import*" predict display.ti3

# --- solve, and what the folder is good for ---
mkdir plain && "$program" <settings.txt 2>stderr
ends 0 "*CV2_1 solved into job: *" solve settings.txt -o job
tables() { (cd "$1" && cksum preLUT.txt matrix.txt postLUT.txt); }
is "tables" "$(tables job)" "$(tables plain)"
is "and from the folder's settings" "$(cp -r job again && cd again && rm -- *LUT.txt matrix.txt && "$program" <settings.txt \
  2>&1; tables .)" "*"$'\n'"$(tables plain)"
refuses 6 "job/job.json exists already*" solve settings.txt -o job
refuses 6 "./settings.txt exists already*" solve settings.txt -o .
mkdir with-measurements && cp measurements.txt with-measurements
ends 0 "*" solve settings.txt -o with-measurements
object "solve" "$("$kit" solve settings.txt -o job --force --json -q)"
is "standard input" "$("$kit" solve - -o piped-job -q <settings.txt; tables piped-job)" "$(tables plain)"
refuses 4 "Settings, line 1: *" solve display.csv -o none
for folder in job plain; do "$kit" predict measurements.txt --tables $folder <drives >through-$folder; done
near "tables with a record and without" 0.0001 through-job through-plain
is "a white of 6500 K" "$(echo 1 1 1 | "$kit" predict m.txt --tables job | awk '{ s = $1 + $2 + $3
  printf "%.3f %.3f", $1 / s, $2 / s }')" "0.314 0.324"
refuses 5 "*plain/job.json*" export plain --format clf
refuses 9 "*two*" export job --format cal
ends 2 "--json: *standard output*" export job --format clf -o - --json
ends 2 "--output: *several files*" export job --format kms -o -
ends 2 "--size: *" export job --format clf --size 17
"$kit" make - --for video --white native -q <display.ti3
is "made of a stream" "$(ls display-corrected/exports; rm -r display-corrected)" "*correction-3d.cube*"
refuses 5 "display.csv: line 1: *" make display.ti3 --gamma display.csv -o curved
ends 0 "job/*.clf" export job --format clf
refuses 6 "job/*.clf exists already*" export job --format clf
object "export" "$("$kit" export job --format json -o job.tables.json --json -q)"
is "to standard output" "$("$kit" export job --format clf -o - -q)" "<[?]xml*"

cp -r job changed && sed -i '7s/.*/0.5 0.5 0.5/' changed/postLUT.txt
refuses 5 "changed/postLUT.txt*" export changed --format clf
sed "s/CV2_1/CV1/; s/tlen=512//" settings.txt >gray_settings.txt
ends 0 "*CV1 solved*" solve gray_settings.txt -o job --force
is "CV1 after CV2_1" "$("$kit" export job --format cube -o gray.cube 2>&1; echo $?)" "gray.cube*0"

# --- refine ---
limited="white=0.29,0.305 crosstalk=0.15,0.15,0.15"
"$simulate" $limited levels=33 extra=40 >limited.txt
"$kit" import limited.txt --ramps derived -q -o derived.txt
"$kit" import derived.txt --ramps derived -q -o derived-again.txt
is "derived ramps are no readings" "$(rows_of <derived-again.txt | cksum)" "$(rows_of <derived.txt | cksum)"
awk 'BEGIN { for (i = 0; i <= 24; ++i) print i / 24, i / 24, i / 24 }' >grays
shown() { "$simulate" $limited "${@:2}" --show --tables "$1" <grays; }
"$kit" make limited.txt --ramps measured --for video --anyway -q -o dim
cp -r dim first
shown dim >behind.txt
ends 0 "gray CIEDE2000 1.* as measured, 0.0*dim/round-1 the old ones with exports, report.html*verify dim*" refine dim behind.txt
is "round 1 is what was" "$(diff -r first dim/round-1)" "Only in dim/round-1: after.txt"
is "Corvantile makes round 2 again" "$(cp -r dim remade && cd remade && rm -- *LUT.txt matrix.txt && "$program" <settings.txt \
  2>/dev/null; tables .)" "$(tables dim)"
is "the comments stay" "$(grep -c '! ' dim/settings.txt)" $(($(grep -c '! ' first/settings.txt) + 1))
is "measured again" "$(shown dim >again.txt; "$kit" verify dim again.txt)" "*very closely*loaded, once*"
is "darker since then" "$(shown dim white_luminance=225 >darker.txt; "$kit" verify dim darker.txt)" "*White is [0-9]*% darker*"
is "too mild to tell" "$("$kit" make m.txt --target native --gamma 2.2 --for x11 --anyway -q -o mild
  "$kit" verify mild m.txt | tr '\n' ' ')" "*nobody can tell*"
is "the report" "$("$kit" report dim -o - -q)" "*Grays should follow the target very closely*"
"$kit" export dim --format cube3d -q -o dim.cube || is "exports" failed done
object "refine" "$("$kit" refine dim again.txt --json -q)"
is "third round" "$(ls dim | tr '\n' ' ')" "gray_factors.txt*round-1 round-2 settings.txt "
ends 0 "*" refine first behind.txt -o elsewhere
is "elsewhere" "$(cksum <elsewhere/preLUT.txt) $(ls first)" "$(cksum <dim/round-2/preLUT.txt) exports*"
refuses 6 "elsewhere exists already*" refine first behind.txt -o elsewhere
sed 's/X(cd.m2)/X/; s/Y(.*) Z.*/Y Z/' behind.txt >relative.txt
ends 0 "*" refine first relative.txt -o relative
near "a measurement in no unit" 0.5 relative/preLUT.txt dim/round-2/preLUT.txt
"$simulate" $limited --show <grays >bare.txt
refuses 5 "bare.txt: The tables seem not to have been loaded*--anyway*" refine first bare.txt
ends 0 "*" refine first bare.txt --anyway -o anyway
awk 'NR < 4' behind.txt >short.txt
refuses 5 "short.txt: holds no gray ramp*corvantile-kit chart*" refine first short.txt
refuses 5 "changed/postLUT.txt*" refine changed behind.txt
sed "s/CV2_1/CV2/" settings.txt >no_gray.txt
"$kit" solve no_gray.txt -q -o no_gray
refuses 9 "a CV2 job has no gray step*CV2_1*" refine no_gray again.txt --anyway

# --- Completion ---
. "$root/completion/corvantile-kit.bash"
completes() {  # WORD...: what may stand for the last of them
  COMP_WORDS=("$kit" "$@") COMP_CWORD=$#
  _corvantile_kit
  echo "${COMPREPLY[@]}"
}
is "verbs" "$(completes p) $(completes ver) $(completes ch)" "predict verify check chart"
is "all that may come first" "$(completes "" | wc -w)" 13
is "options of refine" "$(completes refine --a)" "--anyway"
is "options" "$(completes import --c)" "--calibration"
is "formats" "$(completes export job --format c)" "clf cube cube3d cal coe c"
is "words behind =" "$(completes make --target = ad)" "adobe-rgb"
is "files" "$(completes import display)" "display.@(csv display.ti3|ti3 display.csv)"
for verb in make import check chart export; do
  for option in --from --ramps --target --gamma --white --for --matrix --layout --format; do
    about=$("$kit" $verb --help | grep -A2 -- "^ *$option " ) || continue
    for word in $(cd / && completes $verb "$option" ""); do
      [[ $option == --format && $verb == export || -e /$word ]] ||
        is "$verb $option $word" "$about" "*[ :,=]$word*"
    done
  done
done

is "temporary files" "$(find . -name '*.tmp')" ""
all_passed
