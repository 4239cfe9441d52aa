#!/usr/bin/env bash
# What the built program does when its surroundings fail it: streams, statuses, disks, limits, strange files.
# Usage: faults_test.sh PROGRAM SIMULATE_DISPLAY
# Checks that this machine cannot make are skipped, and it says so.
set -u
. "$(dirname "$0")/../expect.sh"
program=$(realpath "$1")
simulate=$(realpath "$2")
work=$(mktemp -d "${TMPDIR:-/tmp}/corvantile-faults-XXXXXX")
aside=$work.aside
trap 'chmod -R u+w "$work"; rm -rf "$work" "$aside"' EXIT
chmod 755 "$work" && cd "$work" && umask 022 || exit 1
job() {  # OPTIONS: an empty folder out/, and the settings of a job that writes into it
  rm -rf out && mkdir out
  printf "&opts wgfile='m.txt' outdir='out' %s /\n" "$1" >settings
}
ends() {  # NAME STATUS MESSAGE COMMAND...: the command, given the settings, ends so and prints nothing else
  local name=$1 status=$2 message=$3
  shift 3
  is "$name" "$(timeout 60 "$@" <settings 2>&1; echo $?)" " Corvantile 1.09"$'\n'"$message"$'\n'"$status"
  is "$name: temporary files" "$(find . -name '*.tmp')" ""
  case $status in [1-57]) is "$name: nothing is written" "$(ls out)" "" ;; esac
}
tables() { (cd out && cksum -- *); }
writes() {  # like `ends`, and the tables are those of the latest job that was known to be good
  ends "$@"
  is "$1: tables" "$(tables)" "$good"
}
skip() { echo "skipped: $1: $2"; }

"$simulate" white_luminance=100 >m.txt || exit 1
printf '5\n0 0.05\n64 3.1\n128 22\n192 83\n255 180\n' >gamma.txt
# These wait for seconds, meanwhile the others run: nobody reads the pipe, and the folder stays locked.
mkdir -p "$aside"/{pipe,locked} && mkfifo "$aside/pipe/postLUT.txt"
exec 8<"$aside/locked" && flock 8
for how in pipe locked; do
  echo "&opts cvmode='CV2' wgfile='m.txt' outdir='$aside/$how' /" |
    (timeout 60 "$program"; echo $?) >"$aside/$how.log" 2>&1 8<&- &
done

gray="cvmode='CV1'"
both="cvmode='CV2_1' temp=6500 gamfile='gamma.txt'"

job "$both"
is "quiet run: standard output" "$("$program" <settings 2>stderr; echo $?)" 0
good=$(tables)
is "verbose report" "$("$program" x -v <settings 2>&1; echo $?)" \
  $' Corvantile 1.09\nCorvantile 1.09\nCVMode = CV2_1\noutdir = out/\n*chroma*\nCV2 execution time = *\n\nCV1 execution time = *\n normal exit\n0'
is "--version" "$("$program" x --version 2>&1 >&-; "$program" --version 2>stderr; echo $?)" \
  $'Cannot write standard output\nCorvantile 2.0.0, tables as of 1.09\n0'
is "--help" "$("$program" --help 2>&1; echo $?)" $'Corvantile turns*--version *\n0'
job "$gray"
is "a caller that keeps the pipe open" "$({ cat settings; sleep 5; } | timeout 4 "$program" 2>&1; echo $?)" \
  $'*\n normal exit\n0'
job "$gray wgfile='out'"
is "a folder as measurements" "$("$program" <settings 2>stderr; echo $?)" $' Cannot open out\n0'
is "a folder as settings" "$("$program" <. 2>&1; echo $?)" $'*\nCannot read standard input: Is a directory\n4'

# --- The folder and the files in it ---
cannot="Cannot write out/postLUT.txt"

# Permissions bind nobody but ordinary users.
as_user=()
[ "$(id -u)" -ne 0 ] || as_user=(setpriv --reuid=65534 --regid=65534 --clear-groups)
job "$gray"
if "${as_user[@]}" test -x "$program" 2>/dev/null; then
  chmod 555 out
  ends "unwritable folder" 6 "$cannot: Permission denied" "${as_user[@]}" "$program"
  chmod 777 out && echo old >out/postLUT.txt && chmod 444 out/postLUT.txt
  ends "read-only table" 6 "$cannot: Permission denied" "${as_user[@]}" "$program"
  is "read-only table stays" "$(cat out/*)" old
  ln out/postLUT.txt same && chmod 555 out && chmod 666 same
  ends "table that can only be written in place" 0 ' normal exit' "${as_user[@]}" "$program"
  is "is written in place" "$(grep -c . same)" 256
  chmod 777 out
  if [ ${#as_user[@]} -gt 0 ]; then
    chmod 6646 same
    ends "another user's table" 0 ' normal exit' "${as_user[@]}" "$program"
    is "opens to nobody" "$(stat -c %a out/postLUT.txt)" 644
    job "cvmode='CV2'" && chmod 1777 out && echo old | tee out/preLUT.txt >out/postLUT.txt
    chmod 666 out/* && chown 65534 out/preLUT.txt
    ends "table that may not be renamed over" 6 "$cannot: Operation not permitted" "${as_user[@]}" "$program"
    is "the one before is taken back" "$(cd out && echo * && cat -- *)" $'postLUT.txt preLUT.txt\nold\nold'
  fi
else
  skip "permissions" "cannot run the program as an ordinary user"
fi

# --- A disk that fills up, as a limit on file sizes: the old table survives ---
job "$gray"
echo old >out/postLUT.txt
ends "file size limit" 6 "$cannot: File too large" bash -c 'ulimit -f 4 && exec "$0"' "$program"
is "file size limit: table" "$(cat out/*)" old

# --- All tables or none ---
for signal in HUP:129 INT:130 TERM:143; do
  job "cvmode='CV2'" && mkfifo out/postLUT.txt && echo old >out/preLUT.txt
  env --default-signal=INT "$program" <settings 2>stderr &
  until_temporaries 2 out
  kill "-${signal%:*}" $!
  wait $! 2>stderr
  is "$signal" "$?: $(cd out && echo * && cat preLUT.txt)" "${signal#*:}: postLUT.txt preLUT.txt"$'\nold'
done

job "$both" && exec 9<out && flock 9
"$program" <settings 2>stderr 9<&- &
until_temporaries 3 out
kill -INT $!  # ignored in what the shell starts in the background, and it stays so
is "locked folder" "$(cd out && echo *)" "*.tmp *.tmp *.tmp"
flock -u 9
wait $!
is "unlocked folder" "$?: $(tables)" "0: $good"

job "$both"
ln -sf /dev/full out/matrix.txt && echo old | tee out/postLUT.txt >out/preLUT.txt
ends "full device as a table" 6 "Cannot write out/matrix.txt: No space left on device" "$program"
is "full device: the others" "$(cat out/p*)" $'old\nold'

job "$both" && mkdir far && ln -s ../far/matrix.txt out/matrix.txt  # two folders, reached by a link
sed 's/6500/5000/' settings >other && "$program" <other 2>stderr
other=$(tables)
whole=0
for i in {12..23}; do
  "$program" <settings 2>stderr & "$program" <other 2>stderr
  wait $!
  [[ "$(tables)" == @("$good"|"$other") ]] && whole=$((whole + 1))
  timeout "0.0$i" "$program" <other 2>stderr
  [[ "$(tables)" == @("$good"|"$other") ]] && whole=$((whole + 1))
done
is "two jobs at a time, and jobs that are ended: whole sets" "$whole" 24

# --- Standard output fails: the tables are written first ---
cannot="Cannot write standard output"
late='{ sleep 0.2; "$0" -v; } | true; exit "${PIPESTATUS[0]}"'  # the reader has gone, as `head` would
job "$both" && writes "closed pipe" 6 "$cannot: Broken pipe" bash -c "$late" "$program"
job "$both" && writes "full device" 6 "$cannot: No space left on device" sh -c '"$0" -v >/dev/full' "$program"
job "$both" && is "quiet, all closed" "$("$program" <settings >&- 2>&-; echo $?; tables)" $'0\n'"$good"

if grep -q __asan_init "$program"; then
  skip "memory limits" "the address sanitizer reserves more than any limit"
else
  limited() { ends "$@" bash -c 'ulimit -v 32000 && exec "$0"' "$program"; }
  job "$gray tlen=1000000" && limited "memory limit" 7 "Allocation would exceed memory limit"
  # A count that no file could hold is refused without room for it.
  sed 's/^17 0 2/2000000000 0 2/' m.txt >huge.txt
  job "$gray wgfile='huge.txt'" && limited "huge header" 5 "huge.txt: line *: 2000000000 levels *"
fi

# --- Strange files ---
job "$gray"
{ yes '! a comment' | head -c 17000004 && cat settings; } >long && mv long settings
ends "17 MB of settings" 4 "Settings: no closing * within 16777216 bytes" "$program"

told=$(command -v script >/dev/null && script -qec "'$program'" /dev/null <<<"&opts /" || skip "terminal" "no script(1) here")
is "a terminal is told what is awaited" "$told" '@(*&opts cvmode=*|skipped*)'

wait
is "pipe without a reader" "$(cat "$aside/pipe.log")" "*/pipe/postLUT.txt: no program reads this pipe"$'\n6'
is "locked for too long" "$(cat "$aside/locked.log")" "*/locked/preLUT.txt: another program keeps its folder locked"$'\n6'

all_passed
