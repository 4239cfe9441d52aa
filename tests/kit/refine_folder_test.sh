#!/usr/bin/env bash
# corvantile-kit refine: what it leaves in the folder, round by round, and readings that it refuses.
. "$(dirname "$0")/kit.sh"
display="white=0.29,0.305 crosstalk=0.15,0.15,0.15 levels=33 extra=40"
simulate_display $display >m.txt
awk 'BEGIN { for (i = 0; i <= 24; ++i) print i / 24, i / 24, i / 24 }' >grays
shown() { simulate_display $display --show --tables "$1" <grays; }
"$kit" make m.txt --ramps measured --for video --anyway -q -o dim
cp -r dim first
shown dim >behind.txt

refined=$("$kit" refine dim behind.txt --json 2>said)
said=$(<said)
is "what it tells" "$said" "gray CIEDE2000 1.* as measured, 0.0*dim/round-1 the old ones with exports, report.html*verify dim*"
before=$("$kit" verify first behind.txt --json)
record "refine" "$refined" <<EOF
refined/round = 2
refined/before/folder = round-1
refined/measured/file = round-1/after.txt
refined/gray_ciede2000/measured = $(number "$(tr -d '\n' <<<"$before")" '"grays": \{ *"mean": ([0-9.]+)') +- 1e-9
refined/gray_ciede2000/measured = $(number "$said" 'CIEDE2000 ([0-9.]+) as measured') +- 0.005
refined/gray_ciede2000/expected = $(number "$said" 'measured, ([0-9.]+) expected') +- 0.005
refined/gray_ciede2000/scatter = $(number "$said" 'scatter by ([0-9.]+)') +- 0.005
EOF
is "round 1 is what was" "$(diff -r first dim/round-1)" "Only in dim/round-1: after.txt"
is "Corvantile makes round 2 again" "$(cp -r dim remade && cd remade && rm -- *LUT.txt matrix.txt && Corvantile <settings.txt \
  2>/dev/null; tables_in .)" "$(tables_in dim)"
is "the comments stay" "$(grep -c '! ' dim/settings.txt)" $(($(grep -c '! ' first/settings.txt) + 1))
is "measured again" "$(shown dim >again.txt; "$kit" verify dim again.txt)" "*very closely*loaded, once*"
is "the report" "$("$kit" report dim -o - -q)" "*Grays should follow the target very closely*"
ends 0 "*" export dim --format cube3d -o dim.cube
ends 0 "*" refine dim again.txt -q
is "third round" "$(ls dim | tr '\n' ' ')" "gray_factors.txt*round-1 round-2 settings.txt "

ends 0 "*" refine first behind.txt -o elsewhere
is "elsewhere" "$(cksum <elsewhere/preLUT.txt) $(ls first)" "$(cksum <dim/round-2/preLUT.txt) exports*"
refuses 6 "elsewhere exists already*" refine first behind.txt -o elsewhere
sed 's/X(cd.m2)/X/; s/Y(.*) Z.*/Y Z/' behind.txt >relative.txt
ends 0 "*" refine first relative.txt -o relative
near "a measurement in no unit" 0.5 relative/preLUT.txt dim/round-2/preLUT.txt
simulate_display $display --show <grays >bare.txt
refuses 5 "bare.txt: The tables seem not to have been loaded*--anyway*" refine first bare.txt
ends 0 "*" refine first bare.txt --anyway -o anyway
awk 'NR < 4' behind.txt >short.txt
refuses 5 "short.txt: holds no gray ramp*corvantile-kit chart*" refine first short.txt
cp -r first changed && sed -i '7s/.*/0.5 0.5 0.5/' changed/postLUT.txt
refuses 5 "changed/postLUT.txt*" refine changed behind.txt
echo "&opts cvmode='CV2' wgfile='m.txt' /" >no_gray.txt
"$kit" solve no_gray.txt -q -o no_gray
refuses 9 "a CV2 job has no gray step*CV2_1*" refine no_gray again.txt --anyway
passed
