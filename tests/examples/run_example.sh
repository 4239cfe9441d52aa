#!/usr/bin/env bash
# run_example.sh PROGRAM DIR: the job in DIR, run in a scratch folder, writes the tables in DIR/expected and no others.
set -euo pipefail
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cp "$2"/{settings,measurements}.txt "$scratch"
cd "$scratch"
[[ $("$1" 2>&1 <settings.txt) == $' Corvantile 1.09\n normal exit' ]]
rm settings.txt measurements.txt
diff <(ls) <(ls "$2/expected")
# Mathematical libraries differ in the last bit of a sine or a power, and the searches carry that on: tables agree to
# well below what a display of 16 bits can show, not to every digit.
for table in *; do
  paste "$table" "$2/expected/$table" | awk '{ for (c = 1; c <= 3; ++c) if (NF != 6 || ($c - $(c + 3)) ^ 2 > 1e-12) exit 1 }'
done
