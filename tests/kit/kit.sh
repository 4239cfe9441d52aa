# shellcheck shell=bash
# Sourced by the tests of corvantile-kit, whose argument is the folder of the built programs. They then stand in a
# scratch folder of their own, with the programs on the path.
set -u
bin=$(realpath "$1")
root=$(cd "$(dirname "$0")/../.." && pwd)
. "$root/tests/expect.sh"
. "$root/tests/kit/instrument_files.sh"
work=$(mktemp -d "${TMPDIR:-/tmp}/corvantile-kit-XXXXXX")
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
PATH=$bin:$PATH
kit=$bin/corvantile-kit
locale -a 2>/dev/null | grep -qx de_DE.utf8 && export LC_ALL=de_DE.UTF-8  # a comma for the decimal point

ends() {  # STATUS MESSAGE ARGUMENT...: the kit ends so, with this on standard error and nothing on standard output
  local status=$1 message=$2
  shift 2
  is "$*" "$(timeout 60 "$kit" "$@" 2>stderr </dev/null; echo "$?: $(cat stderr)")" "$status: $message"
}
refuses() { ends "$1" "corvantile-kit: $2" "${@:3}"; }
near() {  # NAME TOLERANCE FILE FILE: numbers of two files, in per cent of the largest
  is "$1" "$(paste -d' ' "$3" "$4" | awk -v tol="$2" '
    { for (i = 1; i <= NF / 2; ++i) { d = $i - $(i + NF / 2); if (d < 0) d = -d; if (d > worst) worst = d
                                      if ($i > top) top = $i } }
    END { off = top > 0 ? 100 * worst / top : 999; print (NR > 0 && off <= tol ? "near" : "off by " off " %") }')" near
}
record() {  # NAME RECORD: the JSON object holds what the lines of standard input say; see record.py
  is "$1: record" "$("$root/tests/kit/record.py" "$2" 2>&1)" "as expected"
}
number() {  # TEXT REGEX: what (...) matches there
  sed -nE "s/.*$2.*/\1/p" <<<"$1" | head -n 1
}
tables_in() { (cd "$1" && cksum preLUT.txt matrix.txt postLUT.txt); }

# The usual display: sRGB primaries and white, gamma 2.2, 250 cd/m2 and a thousandth of it as black; 33 levels a ramp
# and 40 further patches.
measure() { simulate_display extra=40 levels=33 >m.txt; }
settings() {  # of a CV2_1 job on it
  echo "&opts cvmode='CV2_1' wgfile='m.txt' temp=6500 tlen=512 outdir='plain' nbits=0 /" >settings.txt
}
passed() {
  is "temporary files" "$(find . -name '*.tmp')" ""
  all_passed
}
