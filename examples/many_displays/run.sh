#!/bin/sh
# Corrects many displays: a measurement of each in, a folder of each out, and a table of verdicts at the end.
# Usage: run.sh SOURCES RESULTS [OPTION of corvantile-kit make ...]
#   SOURCES  a folder with a file for each display, as its instrument's program wrote it; the file's name without its
#            ending is the display's
#   RESULTS  gets for each a folder DISPLAY and DISPLAY.log, the words that belong to it; and summary.tsv
# JOBS (default: as many as there are cores) says how many run at a time. What is done is not done again: a display is
# solved only where it has no result yet, or its measurement or the options have changed since.
# Ends with status 0 where every display has its correction, else with 1.
set -eu
if [ $# -lt 2 ]; then
  sed -n '3,9s/^# \{0,1\}//p' "$0" >&2
  exit 2
fi
sources=$1 results=$2
shift 2
jobs=${JOBS:-$(getconf _NPROCESSORS_ONLN 2>/dev/null || echo 1)}
[ -d "$sources" ] || { echo "No folder $sources" >&2; exit 2; }
command -v corvantile-kit >/dev/null || { echo "corvantile-kit is not in the PATH" >&2; exit 2; }

# list SEPARATOR: the sources, in one order.
list() { find "$sources" -maxdepth 1 -type f ! -name '.*' | sort | tr '\n' "$1"; }

twice=$(list '\n' | sed 's:.*/::; s:\.[^.]*$::' | sort | uniq -d)
[ -z "$twice" ] || { echo "Several files of one display: $twice" >&2; exit 2; }

# Options that are others than last time make every result too old.
mkdir -p "$results"
options=$(for option in "$@"; do echo "$option"; done)
[ -e "$results/.options" ] && [ "$options" = "$(cat "$results/.options")" ] || echo "$options" >"$results/.options"

# One display. Its folder is complete once it holds job.json: `make` writes all of its files or none.
# shellcheck disable=SC2016  # for the shell that xargs starts
one='
  source=$1 results=$2
  shift 2
  name=$(basename "$source")
  name=${name%.*}
  record=$results/$name/job.json
  [ -e "$record" ] && ! [ "$source" -nt "$record" ] && ! [ "$results/.options" -nt "$record" ] && exit
  rm -f "$record"
  corvantile-kit check "$source" --json >"$results/$name.check.json" 2>/dev/null
  corvantile-kit make "$source" "$@" --display "$name" -o "$results/$name" --force >"$results/$name.log" 2>&1 || exit 1
'
list '\0' | xargs -0 -P "$jobs" -I {} sh -c "$one" one {} "$results" "$@" || true  # the summary tells who failed

# A line a display: how well the model predicts patches that it has not seen (CIEDE2000), what the white keeps of its
# luminance, how many warnings there were.
summary() {
  printf 'display\tverdict\tunseen mean\tunseen max\tluminance\twarnings\n'
  list '\n' | while IFS= read -r source; do
    name=$(basename "$source")
    name=${name%.*}
    if ! [ -e "$results/$name/job.json" ]; then
      printf '%s\tfailed\t-\t-\t-\t%s\n' "$name" "$(tail -n 1 "$results/$name.log")"
      continue
    fi
    awk -v name="$name" -v warnings="$(grep -c -i '^warning: ' "$results/$name.log")" '
      /"(unseen|luminance)": / { part = $1 }
      /"(n|mean|max|before|after)": / && part { figure[$1] = $2 + 0 }
      /}/ { part = "" }
      function shown(key) { return figure["\"n\":"] ? sprintf("%.2f", figure["\"" key "\":"]) : "-" }
      END {
        printf "%s\t%s\t%s\t%s\t%.0f %%\t%d\n", name, (warnings ? "look" : "good"), shown("mean"), shown("max"),
               100 * figure["\"after\":"] / figure["\"before\":"], warnings
      }' "$results/$name.check.json" "$results/$name/job.json"
  done
}
summary >"$results/summary.tsv.new"
mv "$results/summary.tsv.new" "$results/summary.tsv"
awk -F '\t' '
  NR > 1 { ++of[$2] }
  $2 == "failed" { print $1 ": " $6 }
  END {
    printf "%d good, %d to look at, %d failed: see summary.tsv\n", of["good"], of["look"], of["failed"]
    exit (of["failed"] > 0)
  }' "$results/summary.tsv"
