#!/usr/bin/env bash
# corvantile-kit make: what it makes of a known display, for which targets, and what it tells.
. "$(dirname "$0")/kit.sh"
simulate_display extra=40 levels=17 white=0.30,0.315 >m.txt
as_ti3 <m.txt >display.ti3
as_csv <m.txt >display.csv

made=$("$kit" make display.ti3 --for video --json -o job 2>said)
said=$(<said)
kept=$(number "$said" 'white keeps ([0-9]+) %')
record "make" "$made" <<EOF
folder = job
settings/xytable/white/0 = 0.3127 +- 0
settings/xytable/red/0 = 0.64 +- 0
settings/gamma = 2.2
figures/white/measured/xy/0 = 0.30 +- 0.00001
figures/white/measured/xy/1 = 0.315 +- 0.00001
figures/white/wanted_xy/0 = 0.3127 +- 0.00001
figures/white/wanted_xy/1 = 0.3290 +- 0.00001
figures/luminance/before = 250 +- 0.001
figures/luminance/after = $((kept * 250 / 100)) +- 2
figures/gray_ciede2000/mean = $(number "$said" 'CIEDE2000 ([0-9.]+) of their target') +- 0.005
figures/gray_ciede2000/max = $(number "$said" '\(([0-9.]+) at most\)') +- 0.005
files/# = $(find job -type f | wc -l)
left_out/# = 0
EOF
is "the page says so, too" "$(sed 's/<[^>]*>//g; s/&#xa0;/ /g' job/report.html)" \
  "*Grays should follow the target very closely*at $kept % of the luminance*"

"$kit" make - --for video --white native -q <display.ti3
is "made of a stream" "$(ls display-corrected/exports)" "*correction-3d.cube*"
record "its white stays" "$(<display-corrected/job.json)" <<'EOF'
figures/white/corrected/xy/0 = 0.30 +- 0.00005
figures/white/corrected/xy/1 = 0.315 +- 0.00005
EOF
refuses 6 "display-corrected exists already*" make - --for video
refuses 5 "display.csv: line 1: *" make display.ti3 --gamma display.csv -o curved
is "nothing is left of it" "$(ls -d curved 2>&1)" "*No such file*"
# A target with primaries far outside of the display's gamut: either colours within reach come out right, or all move.
ends 0 "Mean CIEDE2000*primaries out of reach miss by*" make display.ti3 --for fpga --target bt2020 -o wide
ends 0 "This correction is not better than none.*were moved by*" make display.ti3 --for video --target bt2020 \
  --gamut-mapping compress -o narrow
record "wide" "$(<wide/job.json)" <<EOF
settings/gamut_mapping = clip
figures/primaries/asked/green/1 = 0.797
figures/primaries/reached/green/1 = 0.6 +- 0.001
figures/primaries/missed_uv1976/0 = 0.106 +- 0.001
verdict/better = true
verdict/coverage/before = 0.580 +- 0.005
verdict/coverage/after = 0.580 +- 0.005
EOF
record "narrow" "$(<narrow/job.json)" <<'EOF'
settings/gamut_mapping = compress
verdict/better = false
EOF
is "why" "$(<wide/settings.txt)" "*gamut_mapping = 'clip' *! colours that the display can show are right*"
# A muted green, by the primaries of ITU-R BT.2020 and an exponent of 2.2.
is "a colour within reach" "$(echo .5 .6 .55 | simulate_display white=0.30,0.315 --show --tables wide |
  awk 'NR == 2 { s = $4 + $5 + $6; d = $4 / s - 0.2822; e = $5 / s - 0.3586; print (d * d + e * e < 1e-6 ? "right" : $0) }')" "right"
passed
