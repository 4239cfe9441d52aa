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

# A folder that another processor solved may differ in the last digits (the pre-tables of linux and windows do, where
# the line below has an effect); its checksums vouch for it.
simulate_display extra=40 levels=33 white=0.30,0.315 gamma=2.25,2.2,2.13 >uneven.txt
for device in linux windows x11; do
  GLIBC_TUNABLES=glibc.cpu.hwcaps=-AVX2,-FMA,-FMA4,-AVX,-AVX512F "$kit" make uneven.txt --for $device -q -o far-$device
  is "a report on $device from afar" "$("$kit" report far-$device -q -o $device.html 2>&1; echo $?)" 0
  is "an export for $device from afar" "$("$kit" export far-$device --format json -q -o $device.json 2>&1; echo $?)" 0
done
sed -i '3s/[.]0/.1/' far-x11/postLUT.txt
refuses 5 "far-x11*postLUT.txt*" report far-x11 -o page.html
passed
