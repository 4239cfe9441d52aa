#!/usr/bin/env bash
# What the built program does when its surroundings fail it: streams, statuses, disks, limits, strange files.
# Usage: faults_test.sh PROGRAM SIMULATE_DISPLAY
# Checks that this machine cannot make are skipped, and it says so.
set -u
program=$(realpath "$1")
simulate=$(realpath "$2")
work=$(mktemp -d "${TMPDIR:-/tmp}/corvantile-faults-XXXXXX")
trap 'chmod -R u+w "$work"; rm -rf "$work"' EXIT
cd "$work" || exit 1
umask 022
failures=0
checks=0

banner=' Corvantile 1.09'
exit_line=' normal exit'
opts() { printf "&opts wgfile='%s/m.txt' outdir='out' %s /\n" "$work" "$*"; }

# run OPTIONS [ARGUMENT...]: one job; leaves `status` and the files stdout and stderr.
run() {
  opts "$1" >settings
  shift
  timeout 60 "$program" "$@" <settings >stdout 2>stderr
  status=$?
}
fail() {
  echo "FAILED: $1"
  failures=$((failures + 1))
}
is() {  # NAME GOT WANTED
  checks=$((checks + 1))
  [ "$2" = "$3" ] || fail "$1: got '$2', expected '$3'"
}
stops() {  # NAME STATUS MESSAGE: the latest run stopped so, and left nothing on standard output
  is "$1: status" "$status" "$2"
  is "$1: standard error" "$(cat stderr)" "$banner"$'\n'"$3"
}
same() {  # NAME FILE...: tables in out/ are those of the folder good/
  local name=$1 file
  shift
  for file in "$@"; do
    checks=$((checks + 1))
    cmp "out/$file" "good/$file" || fail "$name: $file differs"
  done
}
afresh() { rm -rf out && mkdir out; }
skip() { echo "skipped: $1: $2"; }

"$simulate" white_luminance=100 >m.txt || exit 1
printf '5\n0 0.05\n64 3.1\n128 22\n192 83\n255 180\n' >gamma.txt
all=(preLUT.txt matrix.txt postLUT.txt)
afresh
run "cvmode='CV2_1' temp=6500"
is "quiet run: status" "$status" 0
is "quiet run: standard output" "$(cat stdout)" ""
is "quiet run: standard error" "$(cat stderr)" "$banner"$'\n'"$exit_line"
mv out good

# --- Statuses, messages, streams ---
afresh
both() { timeout 60 "$program" "$@" 2>&1; }
is "no mode" "$(both <<<'&opts /'; echo $?)" "$banner"$'\n CVMode unspecified\n1'
is "no such mode" "$(both <<<"&opts cvmode='Cv1' /"; echo $?)" "$banner"$'\n illegal CVMode: Cv1\n2'
is "no measurements" "$(both <<<"&opts cvmode='CV2_1' /"; echo $?)" "$banner"$'\n profile file not specified\n3'
is "verbose, in order" "$(both x -v <<<"&opts cvmode='CV1' /"; echo $?)" \
  "$banner"$'\nCorvantile 1.09\n profile file not specified\n3'
is "unreadable settings" "$(both <<<"&opts tlen=x /" | sed -n 2p | grep -c 'tlen')" 1
is "no settings" "$(both </dev/null >/dev/null; echo $?)" 4
is "a folder as settings" "$(both <.; echo $?)" "$banner"$'\nCannot read standard input: Is a directory\n4'
is "verbose report ends last" "$(opts "cvmode='CV1' tlen=9" | both -verbose | sed -n '1p;2p;$p')" \
  "$banner"$'\nCorvantile 1.09\n'"$exit_line"
for arguments in '-v' 'a -v' '-x -verbose b'; do
  run "cvmode='CV1' tlen=9" $arguments
  is "verbose with $arguments" "$(head -1 stdout)" "Corvantile 1.09"
done
run "cvmode='CV1' tlen=9" -V --verbose -verb v
is "not verbose" "$status$(cat stdout)" 0

# --- The folder and the files in it ---
rm -rf out
run "cvmode='CV1'"
stops "missing folder" 6 "Cannot write out/postLUT.txt: No such file or directory"
is "missing folder is not made" "$(find . -name out)" ""
touch out
run "cvmode='CV1'"
stops "file as folder" 6 "Cannot write out/postLUT.txt: Not a directory"
rm out && afresh && mkdir out/postLUT.txt
run "cvmode='CV1'"
stops "folder as table" 6 "Cannot write out/postLUT.txt: Is a directory"
afresh
ln -s /dev/full out/postLUT.txt
run "cvmode='CV2'"
stops "full device as table" 6 "Cannot write out/postLUT.txt: No space left on device"
is "earlier table is whole, later is not begun" "$(ls out | tr '\n' ' ')" "postLUT.txt preLUT.txt "
is "link to the device stays" "$(readlink out/postLUT.txt)" /dev/full
afresh
echo old >real.txt
chmod 640 real.txt
ln -s ../real.txt out/postLUT.txt
ln -s ../new.txt out/matrix.txt
(umask 027; run "cvmode='CV2_1' temp=6500")
same "through links" "${all[@]}"
is "links stay" "$(readlink out/postLUT.txt out/matrix.txt | tr '\n' ' ')" "../real.txt ../new.txt "
chmod 604 real.txt
run "cvmode='CV2_1' temp=6500"
is "permissions kept, new files ordinary" "$(stat -c %a real.txt new.txt out/preLUT.txt | tr '\n' ' ')" "604 640 640 "

# Permissions bind nobody but ordinary users.
as_user=()
[ "$(id -u)" -ne 0 ] || as_user=(setpriv --reuid=65534 --regid=65534 --clear-groups)
chmod 755 "$work"
afresh
opts "cvmode='CV1'" >settings
if "${as_user[@]}" test -x "$program" 2>/dev/null; then
  chmod 555 out
  "${as_user[@]}" "$program" <settings >stdout 2>stderr
  status=$?
  stops "unwritable folder" 6 "Cannot write out/postLUT.txt: Permission denied"
  chmod 755 out
  echo old >out/postLUT.txt
  chmod 444 out/postLUT.txt
  chmod 777 out
  "${as_user[@]}" "$program" <settings >stdout 2>stderr
  status=$?
  stops "read-only table" 6 "Cannot write out/postLUT.txt: Permission denied"
  is "read-only table stays" "$(cat out/postLUT.txt)" old
else
  skip "permissions" "cannot run the program as an ordinary user"
fi

# --- Full disk ---
afresh
echo old >out/postLUT.txt
opts "cvmode='CV1'" >settings
(ulimit -f 4 && exec "$program" <settings >stdout 2>stderr)
status=$?
stops "file size limit" 6 "Cannot write out/postLUT.txt: File too large"
is "old table survives" "$(cat out/*)" old
afresh
spaces=(unshare -m)
[ "$(id -u)" -eq 0 ] || spaces=(unshare -rm)
if "${spaces[@]}" mount -t tmpfs -o size=16k none out 2>/dev/null; then
  is "full disk" "$("${spaces[@]}" sh -c 'mount -t tmpfs -o size=16k none out; echo old >out/postLUT.txt
      "$0" <settings 2>&1; echo $?; ls out; cat out/*' "$program")" \
    "$banner"$'\nCannot write out/postLUT.txt: No space left on device\n6\npostLUT.txt\nold'
else
  skip "full disk" "no small file system can be mounted"
fi

# --- Standard output ---
job="cvmode='CV2_1' temp=6500"
opts "$job" >settings
afresh
"$program" -v <settings 2>stderr | head -1 >stdout
status=${PIPESTATUS[0]}
stops "closed pipe" 6 "Cannot write standard output: Broken pipe"
same "closed pipe" "${all[@]}"
afresh
"$program" -v <settings >/dev/full 2>stderr
status=$?
stops "full device" 6 "Cannot write standard output: No space left on device"
same "full device" "${all[@]}"
afresh
"$program" -v <settings >&- 2>stderr
status=$?
stops "closed standard output" 6 "Cannot write standard output: Bad file descriptor"
same "closed standard output" "${all[@]}"
afresh
"$program" <settings >&- 2>&-
is "quiet, all closed: status" $? 0
same "quiet, all closed" "${all[@]}"

# --- Memory ---
afresh
if grep -q __asan_init "$program"; then
  skip "memory limits" "the address sanitizer reserves more than any limit"
else
  opts "cvmode='CV1' tlen=2000000000" >settings
  (ulimit -v 500000 && exec "$program" <settings >stdout 2>stderr)
  status=$?
  stops "memory limit" 7 "Allocation would exceed memory limit"
  # A count that no file could hold is refused without room for it.
  { grep '^;' m.txt; echo "2000000000 0 2"; sed '1,/^[0-9]* 0 2/d' m.txt; } >huge.txt
  opts "cvmode='CV1' wgfile='huge.txt'" >settings
  (ulimit -v 32000 && exec "$program" <settings >stdout 2>stderr)
  status=$?
  is "huge header" "$status $(grep -c 'huge.txt: line [0-9]*: 2000000000 levels' stderr)" "5 1"
  echo "2000000000 0 0 1 1" >huge.txt
  opts "cvmode='CV1' gamfile='huge.txt'" >settings
  (ulimit -v 32000 && exec "$program" <settings >stdout 2>stderr)
  status=$?
  is "huge gamma file" "$status $(grep -c 'huge.txt: 2000000000 points' stderr)" "5 1"
fi
is "nothing was written" "$(ls out)" ""

# --- Strange files ---
head -c 100000 "$program" >garbage
timeout 60 "$program" <garbage >stdout 2>stderr
is "garbage as settings" $? 4
for key in wgfile gamfile; do
  run "cvmode='CV1' $key='garbage'"
  is "garbage as $key" "$status $(grep -c '^garbage: ' stderr)" "5 1"
done
run "cvmode='CV1' wgfile='good'"
is "a folder as measurements" "$status$(cat stdout)" "0 Cannot open good"
is "nothing was written" "$(ls out)" ""

bom=$'\xef\xbb\xbf'
run "$job gamfile='gamma.txt'"
rm -rf good && mv out good && afresh
{ printf '%s' "$bom" && sed 's/$/\r/' m.txt; } >m_dos.txt
{ printf '%s' "$bom" && sed 's/$/\r/' gamma.txt; } >gamma_dos.txt
{ printf '%s' "$bom" && opts "$job gamfile='gamma_dos.txt' wgfile='m_dos.txt'" | sed 's/ /\r\n/g'; } >settings
timeout 60 "$program" <settings >stdout 2>stderr
is "CR LF and byte order marks: status" $? 0
same "CR LF and byte order marks" "${all[@]}"

afresh
{ yes '; a comment' | head -c 50000004 && cat m.txt; } >m_long.txt
{ yes '! a comment' | head -c 50000004 && opts "$job gamfile='gamma.txt' wgfile='m_long.txt'"; } >settings
timeout 60 "$program" <settings >stdout 2>stderr
is "50 MB of comments: status" $? 0
same "50 MB of comments" "${all[@]}"

# --- A terminal ---
if command -v script >/dev/null; then
  is "a terminal is told what is awaited" "$(script -qec "'$program'" /dev/null <<<"&opts /" | grep -c '&opts cvmode=')" 1
else
  skip "terminal" "no script(1) here"
fi

is "temporary files left behind" "$(find . -name '*.tmp')" ""
echo "$checks checks, $failures failed"
[ "$failures" -eq 0 ]
