#!/usr/bin/env bash
# corvantile-kit report: where the page goes, and that it says of a measurement what verify says.
. "$(dirname "$0")/kit.sh"
measure
settings
"$kit" solve settings.txt -q -o job
awk 'BEGIN { for (i = 0; i <= 24; ++i) print i / 24, i / 24, i / 24 }' >grays
simulate_display gamma=2.25,2.2,2.2 --show --tables job <grays >behind.txt

ends 0 "job/report.html" report job
is "a page to standard output" "$("$kit" report job -o - -q)" "*<html*</html>"
record "report" "$("$kit" report job -o again.html --json -q)" <<<"report = again.html"
refuses 6 "again.html exists already*" report job -o again.html

"$kit" report job --measured behind.txt -q -o measured.html
words=$(tr '\n' ' ' <measured.html | sed 's/<[^>]*>/ /g')
verified=$("$kit" verify job behind.txt)
figures=$(grep -A 3 '^CIEDE2000 of 25 patches' <<<"$verified" | grep -oE 'mean [0-9.]+, largest [0-9.]+')
is "figures of verify" "$(wc -l <<<"$figures")" 3
while IFS=' ,' read -r _ mean _ largest; do
  is "on the page: mean $mean, largest $largest" "$words" "* $mean  *$largest *"
done <<<"$figures"
passed
