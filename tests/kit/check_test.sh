#!/usr/bin/env bash
# corvantile-kit check: its figures for a display that is known, and what it finds in one that is not sound.
. "$(dirname "$0")/kit.sh"
measure
settings

is "sound" "$("$kit" check m.txt --strict >said; echo $?; grep -E '^(warning|error):' said)" 0
said=$(<said)
sound=$("$kit" check m.txt --json)
# The parameters of the simulated display; areas from the published chromaticities, in u'v'.
record "a known display" "$sound" <<EOF
white/x = 0.3127 +- 0.00001
white/y = 0.3290 +- 0.00001
white/cct = 6505 +- 10
white/from_d65 = 0 +- 0.00001
contrast = 1000 +- 0.01
additivity = 0 +- 0.00001
dark_spread = 0 +- 0
repeat_spread = null
noise/bright = 0 +- 0.001
accuracy/unseen/n = 40
accuracy/near_gray/n = 0
accuracy/white_ramp/n = 33
gamut/sRGB/coverage = 1 +- 0.0001
gamut/Display P3/coverage = 0.7964 +- 0.0001
gamut/Adobe RGB/coverage = 0.8571 +- 0.0001
gamut/BT.2020/coverage = 0.5803 +- 0.0001
EOF
for set in unseen "white ramp"; do
  line=$(grep "^  $set" <<<"$said")
  record "as the text says: $set" "$sound" <<EOF
accuracy/${set/ /_}/mean = $(number "$line" 'mean ([0-9.]+)') +- 0.005
accuracy/${set/ /_}/p95 = $(number "$line" 'within ([0-9.]+)') +- 0.005
accuracy/${set/ /_}/max = $(number "$line" 'largest ([0-9.]+)') +- 0.005
EOF
done

awk '/^ *0 0 0/ && ++darks == 2 { $5 += 3 } { print }' m.txt >uneven.txt
is "uneven darks" "$("$kit" check uneven.txt --strict; echo $?)" "warning: dark-spread"$'\n*\n1'
is "without --strict" "$("$kit" check uneven.txt >findings; echo $?)" 0
uneven=$("$kit" check uneven.txt --json -o findings --force)
first=$(awk '/^[a-z]+: / { if (++n == 2) exit; next } { $1 = $1; print }' findings | paste -sd ' ')
record "uneven darks" "$uneven" <<EOF
dark_spread = 0.012 +- 0.00001
findings/0/id = dark-spread
findings/0/severity = warning
findings/0/message = ${first% -> *}
findings/0/action = ${first#* -> }
findings/# = $(grep -cE '^(note|warning|error): ' findings)
EOF
is "each thing is told once" "$(grep -o '"id": "[a-z-]*"' <<<"$uneven" | sort | uniq -d)" ""

is "with settings" "$("$kit" check m.txt --settings settings.txt)" "*luminance-loss*"
sed 's/temp=6500 tlen=512/tlen=256/' settings.txt >short.txt
is "with unwise settings" "$("$kit" check m.txt --settings short.txt)" "*short-tables*"
refuses 4 "*" check m.txt --settings m.txt
is "through pipes" "$("$kit" check - <m.txt)" "$("$kit" check m.txt -o /dev/stdout | cat)"
passed
