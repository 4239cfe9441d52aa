#!/usr/bin/env bash
# corvantile-kit predict: what the simulated display shows, the way back, and lines that are not three numbers.
. "$(dirname "$0")/kit.sh"
measure
settings
rows_of <m.txt | awk '{ print $1 / 255, $2 / 255, $3 / 255 }' >drives

"$kit" predict m.txt <drives >predicted
near "the simulated display" 0.05 <(rows_of <m.txt | cut -d' ' -f4-) predicted
"$kit" predict m.txt --invert <predicted >inverted
near "and back" 0.001 drives <(cut -d' ' -f1-3 inverted)
is "nothing is left out" "$(awk '$4 > 1e-5' inverted)" ""
# Black and white: a thousandth of the luminance, and x 0.3127, y 0.3290.
record "black and white" "$(printf '0 0 0\n1 1 1\n' | "$kit" predict m.txt --json)" <<'EOF'
answers/# = 2
answers/0/1 = 0.25 +- 0.000001
answers/1/0 = 237.614 +- 0.001
answers/1/1 = 250 +- 0.001
answers/1/2 = 272.264 +- 0.001
EOF

"$kit" solve settings.txt -q -o job
mkdir plain && Corvantile <settings.txt 2>stderr
for folder in job plain; do "$kit" predict m.txt --tables $folder <drives >through-$folder; done
near "tables with a record and without" 0.0001 through-job through-plain
is "a white of 6500 K" "$(echo 1 1 1 | "$kit" predict m.txt --tables job | awk '{ s = $1 + $2 + $3
  printf "%.3f %.3f", $1 / s, $2 / s }')" "0.314 0.324"

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
as_ti3 <m.txt >display.ti3
refuses 5 "display.ti3: line 1: *corvantile-kit import*" predict display.ti3
passed
