#!/usr/bin/env bash
# What corvantile-kit does when a signal ends it, a disk is full, or nobody reads its output: it leaves all of a folder
# or nothing, says what went wrong, and the next run goes well.
. "$(dirname "$0")/kit.sh"
simulate_display extra=10 >m.txt
settings
"$kit" solve settings.txt -q -o job
good=$(tables_in job)
stops() {  # STATUS MESSAGE COMMAND...: the command says this and no more
  is "${*:3}" "$(timeout 60 "${@:3}" 2>&1; echo $?)" "$2"$'\n'"$1"
}

# --- Signals: make waits for a reader of the page, when all its other files are written under temporary names ---
for signal in HUP:129 INT:130 TERM:143; do
  rm -rf out && mkdir out && mkfifo out/report.html
  env --default-signal=INT "$kit" make m.txt --for fpga -q --force -o out 2>stderr &
  until_temporaries "[1-9]*" out
  kill "-${signal%:*}" $!
  wait $! 2>stderr
  is "$signal" "$?: $(cd out && echo *)" "${signal#*:}: report.html"
done
# At any moment, into folders that are new: all of them or none.
for i in 02 05 08 11 14 17 20 25 30; do
  rm -rf new
  timeout "0.$i" "$kit" make m.txt --for fpga -q -o new/job 2>stderr
  [ ! -e new ] || is "ended after 0.$i s" "$("$kit" export new/job --format json -o - 2>&1 >json; cat new/job/report.html)" "*</html>"
done
for i in 1 2 3 4 5 6 7 8; do
  timeout "0.00$i" "$kit" export job --format kms -q -o blobs/new 2>stderr
  [ ! -e blobs ] || is "ended after 0.00$i s" "$(cd blobs/new && echo *)" "README.txt ctm.bin degamma_lut.bin gamma_lut.bin"
  rm -rf blobs
done
mkfifo pipe
"$kit" report job -q --force -o pipe 2>stderr &
waiting=$!
sleep 0.3
kill $waiting
wait $waiting 2>stderr
is "a page into a pipe" $? 143

rm -rf new

# --- A disk that fills up, as a limit on file sizes ---
limited() { bash -c 'ulimit -f 4 && exec "$0" "$@"' "$kit" "$@"; }
export -f limited
echo old >page.html
while IFS=: read -r stays command; do
  read -ra words <<<"$command"
  is "$command" "$(limited "${words[@]}" 2>&1; echo $?)" "corvantile-kit: Cannot write *: File too large"$'\n6'
  is "$command: left" "$(cat "$stays" 2>&1)" "@(old|*No such file or directory)"
done <<'EOF'
new:solve settings.txt -o new/job
new:make m.txt --for video -q -o new/job
new:export job --format spi -o new/spi
new:report job -o new
page.html:report job -o page.html --force
EOF
stops 6 "corvantile-kit: Cannot write /dev/full: No space left on device" "$kit" report job -o /dev/full
stops 6 "corvantile-kit: Cannot make the folder m.txt/new: Not a directory" "$kit" solve settings.txt -o m.txt/new

# --- Standard output fails, behind the files ---
cannot="corvantile-kit: Cannot write standard output"
for command in "predict m.txt" "report job -o - -q" "export job --format clf -o - -q" "verify job m.txt" \
  "solve settings.txt -o job --force --json -q" "make m.txt --for x11 --force --json -q -o made"; do
  read -ra words <<<"$command"
  yes '0.5 0.5 0.5' | head -n 20000 >lines
  is "$command, full device" "$("$kit" "${words[@]}" 2>&1 >/dev/full <lines; echo $?)" "$cannot"$'\n6'
  is "$command, no reader" "$({ sleep 0.1; "$kit" "${words[@]}" 2>stderr <lines; echo $? >status; } | true; cat stderr status)" \
    "$cannot"$'\n6'
  is "$command, closed" "$("$kit" "${words[@]}" 2>&1 >&- <lines; echo $?)" "$cannot"$'\n6'
  is "$command: tables" "$(tables_in job)" "$good"
done
is "all closed" "$("$kit" solve settings.txt -o closed <&- >&- 2>&-; echo $?; tables_in closed)" $'0\n'"$good"
is "a page, all closed" "$("$kit" report job -o closed.html <&- >&- 2>&-; echo $?; tail -c 8 closed.html)" $'0\n</html>'
passed
