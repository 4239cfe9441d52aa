#!/usr/bin/env bash
# corvantile-kit verify: measurements behind the tables of a display whose channels do not add up.
. "$(dirname "$0")/kit.sh"
display="white=0.29,0.305 crosstalk=0.15,0.15,0.15 levels=33 extra=40"
simulate_display $display >m.txt
awk 'BEGIN { for (i = 0; i <= 24; ++i) print i / 24, i / 24, i / 24 }' >grays
"$kit" make m.txt --ramps measured --for video --anyway -q -o job
simulate_display $display --show --tables job <grays >behind.txt

said=$("$kit" verify job behind.txt)
is "the verdict" "$said" "*once*"
# The figures of the text; all 25 patches are gray.
figure() { number "$(grep "^  $1" <<<"$said")" "$2 ([0-9.]+)"; }
record "verify" "$("$kit" verify job behind.txt --json)" <<EOF
patches = 25
grays/mean = $(figure "grays, from the target" mean) +- 0.005
grays/max = $(figure "grays, from the target" largest) +- 0.005
all/mean = $(figure "grays, from the target" mean) +- 0.005
from_prediction/mean = $(figure "all, from the prediction" mean) +- 0.005
from_prediction/max = $(figure "all, from the prediction" largest) +- 0.005
EOF
for limit in 0.1:1 5:0; do
  is "--strict --limit $limit" "$("$kit" verify job behind.txt --strict --limit ${limit%:*} >said; echo $?)" "${limit#*:}"
done

simulate_display $display white_luminance=225 --show --tables job <grays >darker.txt
is "darker since then" "$("$kit" verify job darker.txt)" "*White is [0-9]*% darker*"
simulate_display >mild.txt
"$kit" make mild.txt --target native --gamma 2.2 --for x11 --anyway -q -o mild
"$kit" predict mild.txt --tables mild <grays | paste -d' ' grays - | sed '1i R G B X Y Z' >as-predicted.txt
record "a display that does what was predicted" "$("$kit" verify mild as-predicted.txt --json)" <<'EOF'
from_prediction/mean = 0 +- 0.000001
all/mean = 0 +- 0.01
EOF
is "too mild to tell" "$("$kit" verify mild mild.txt | tr '\n' ' ')" "*nobody can tell*"
passed
