#!/usr/bin/env bash
# corvantile-kit chart: the patches of every format, and that import takes what is measured on them.
. "$(dirname "$0")/kit.sh"
for format in ti1 csv hcfr; do
  ends 0 "* patches; *" chart --levels 9 --verify 12 --format $format -o chart.$format
done
is "counts" "$(grep -c '^[0-9]' chart.ti1) $(grep -c '^[0-9]' chart.csv) $(wc -l <chart.hcfr)" "51 51 51"
is "derived" "$("$kit" chart --ramps derived -q | grep -c '^[0-9]')" 22
record "chart" "$("$kit" chart --levels 9 --verify 12 --json -q -o again.ti1)" <<<"patches = 51"
refuses 5 "chart.ti1: line 1: *still to be measured*" import chart.ti1
refuses 5 "chart.csv: none of its rows holds a reading*" import chart.csv
for levels in -1 4 257 many; do ends 2 "--levels: *$levels*" chart --levels $levels; done

# What a display of gamma 2.2 would show, behind the names and the drives of both.
awk -F, 'NR == 1 { print; next } { for (i = 1; i <= 3; ++i) l[i] = ($i / 255) ^ 2.2
  print $1 "," $2 "," $3 "," 41 * l[1] + 36 * l[2] + 18 * l[3] + 0.1 "," 21 * l[1] + 72 * l[2] + 7 * l[3] + 0.1 "," \
        2 * l[1] + 12 * l[2] + 95 * l[3] + 0.1 }' chart.csv >shown.csv
awk -F, 'BEGIN { print "\"Color\";\"X\";\"Y\";\"Z\";\"R\";\"G\";\"B\";\"deltaE\"" }
  { for (i = 1; i <= 3; ++i) l[i] = (($i - 16) / 219) ^ 2.2
    print "\"" $4 "\";" 41 * l[1] + 36 * l[2] + 18 * l[3] + 0.1 ";" 21 * l[1] + 72 * l[2] + 7 * l[3] + 0.1 ";" \
          2 * l[1] + 12 * l[2] + 95 * l[3] + 0.1 ";1;1;1;0" }' chart.hcfr >sheet.csv
for file in shown sheet; do
  ends 0 "*measured ramps of 9 levels*12 further samples*" import $file.csv --ramps measured -o $file.txt
done
passed
