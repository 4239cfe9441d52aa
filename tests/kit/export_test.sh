#!/usr/bin/env bash
# corvantile-kit export: where its files go, what a job cannot be exported as, and jobs that somebody has edited.
. "$(dirname "$0")/kit.sh"
measure
settings
"$kit" solve settings.txt -q -o job
mkdir plain && Corvantile <settings.txt 2>stderr

ends 0 "job/*.clf" export job --format clf
refuses 6 "job/*.clf exists already*" export job --format clf
is "to standard output" "$("$kit" export job --format clf -o - -q)" "<[?]xml*"
record "one file" "$("$kit" export job --format json -o tables.json --json -q)" <<'EOF'
format = json
files/# = 1
files/0 = tables.json
clamped = 0
EOF
record "its tables" "$(<tables.json)" <<EOF
pre/axis/# = 512
matrix/# = 3
$(awk 'NR == 2 { for (i = 0; i < 3; ++i) print "matrix/1/" i " = " $(i + 1) " +- 1e-12" }' job/matrix.txt)
EOF
record "several files" "$("$kit" export job --format kms --json -q -o blobs)" <<EOF
files/# = $(find blobs -type f | wc -l)
files/0 = blobs/degamma_lut.bin
EOF
refuses 5 "*plain/job.json*" export plain --format clf
refuses 9 "*two*" export job --format cal
ends 2 "--json: *standard output*" export job --format clf -o - --json
ends 2 "--output: *several files*" export job --format kms -o -
ends 2 "--size: *" export job --format clf --size 17
cp -r job changed && sed -i '7s/.*/0.5 0.5 0.5/' changed/postLUT.txt
refuses 5 "changed/postLUT.txt*" export changed --format clf
passed
