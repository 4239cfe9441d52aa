#!/usr/bin/env bash
# Runs `corvantile-kit make` on spoilt measurement files of a simulated display: cut short, bytes changed, lines
# exchanged, numbers replaced; every fifth on a disk with room for small files only. Whatever the damage, make ends
# within 10 seconds and leaves either no folder or a whole one that `corvantile-kit export` accepts.
# Usage: make_survives_test.sh BIN KEEP [RUNS, default 300] [SEED, default 1]
#   BIN   the folder of the built programs
#   KEEP  a folder for the files that fail
# The same seed gives the same files.
set -euo pipefail
bin=$1 keep=$2 runs=${3:-300} seed=${4:-1}
export LC_ALL=C

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

"$bin/simulate_display" levels=9 extra=30 noise=0.002 red=0.66,0.33 gamma=2.1,2.2,2.4 black_luminance=0.5 >"$scratch/own.txt"
awk 'BEGIN { print "CTI3\n\nDESCRIPTOR \"simulated\"\nDEVICE_CLASS \"DISPLAY\"\nCOLOR_REP \"RGB_XYZ\"\n"
             print "NUMBER_OF_FIELDS 7\nBEGIN_DATA_FORMAT\nSAMPLE_ID RGB_R RGB_G RGB_B XYZ_X XYZ_Y XYZ_Z\nEND_DATA_FORMAT\n" }
     NF == 6 { row[++n] = n " " $1 / 2.55 " " $2 / 2.55 " " $3 / 2.55 " " $4 " " $5 " " $6 }
     END { print "NUMBER_OF_SETS " n "\nBEGIN_DATA"; for (i = 1; i <= n; ++i) print row[i]; print "END_DATA" }' \
  "$scratch/own.txt" >"$scratch/own.ti3"
awk 'BEGIN { print "R,G,B,X,Y,Z" } NF == 6 { OFS = ","; $1 = $1; print }' "$scratch/own.txt" >"$scratch/own.csv"

spoil() {  # FILE SEED: one to three kinds of damage
  awk -v seed="$2" '
    function below(n) { return int(rand() * n) }
    function some_line() { return 1 + below(n) }
    function number(words, count) {
      if (below(2)) return sprintf("%.6f", 250 * rand() * rand())
      count = split("nan inf 1e400 -1 -0 0 1e-320 -99999.99 1e308 65536 0x10 1,5 1e", words, " ")
      return words[1 + below(count)]
    }
    function damage(kind, i, j, k, t, words) {
      i = some_line(); j = some_line()
      if (kind == 0) { t = line[i]; line[i] = line[j]; line[j] = t }
      if (kind == 1) line[i] = line[j]
      if (kind == 2) { n = i; line[i] = substr(line[i], 1, below(length(line[i]) + 1)) }
      if (kind == 3 && length(line[i])) {
        k = 1 + below(length(line[i]))
        line[i] = substr(line[i], 1, k - 1) sprintf("%c", below(256)) substr(line[i], k + 1)
      }
      if (kind == 4 || kind == 5) {  # a word of a line, in one line or in all
        k = split(line[i], words, /[ ,]+/)
        t = number()
        k = k ? 1 + below(k) : 1
        for (j = kind == 4 ? i : 1; j <= (kind == 4 ? i : n); ++j) {
          separator = line[j] ~ /,/ ? "," : " "
          count = split(line[j], words, /[ ,]+/)
          words[k] = t
          line[j] = words[1]
          for (m = 2; m <= count; ++m) line[j] = line[j] separator words[m]
        }
      }
      if (kind == 6) { for (; i < n; ++i) line[i] = line[i + 1]; --n }
    }
    { line[++n] = $0 }
    END {
      srand(seed); below(2)
      for (times = 1 + below(3); times > 0; --times) damage(below(7) == 5 && below(4) ? 4 : below(7))
      for (i = 1; i <= n; ++i) print line[i]
    }' "$1"
}

one_of() { shift $(($1 % ($# - 1) + 1)); echo "$1"; }  # NUMBER WORD...

failed=0 done=0 refused=0
blame() {  # WHY: in $name, with what came before
  mkdir -p "$keep"
  cp "$spoilt" "$keep/$name"
  echo "$name: $1; make $keep/$name ${options[*]}: $(tail -c 300 "$scratch/said")"
  failed=$((failed + 1))
}
for ((i = 0; i < runs; ++i)); do
  case $((i % 3)) in 0) ending=txt ;; 1) ending=ti3 ;; *) ending=csv ;; esac
  name=$seed-$i.$ending spoilt=$scratch/spoilt.$ending
  spoil "$scratch/own.$ending" $((seed * 100003 + i)) >"$spoilt"
  options=(--target "$(one_of $i srgb native display-p3)" --gamma "$(one_of $((i / 3)) 2.2 bt1886 lstar)"
           --ramps "$(one_of $((i / 7)) auto measured derived)" --for "$(one_of $((i / 2)) linux x11 video fpga all)")
  [ $((i % 4)) = 0 ] || options+=(--anyway)
  status=0
  room=unlimited
  [ $((i % 5)) != 4 ] || room=$((10 + i % 120))
  (
    ulimit -f $room
    exec timeout 10 "$bin/corvantile-kit" make "$spoilt" "${options[@]}" -o "$scratch/out"
  ) >"$scratch/said" 2>&1 || status=$?
  if [ $status = 0 ]; then done=$((done + 1)); else refused=$((refused + 1)); fi
  if [ $status = 124 ]; then blame "a hang"
  elif [ $status -ge 128 ]; then blame "a crash ($status)"
  elif [ $status = 0 ] && [ ! -d "$scratch/out" ]; then blame "nothing was made"
  elif [ $status != 0 ] && [ ! -s "$scratch/said" ]; then blame "refused without a word ($status)"
  elif [ -e "$scratch/out" ] && ! "$bin/corvantile-kit" export "$scratch/out" --format json -o - >"$scratch/json" 2>&1; then
    blame "half a folder: $(head -c 200 "$scratch/json")"
  elif [ -n "$(find "$scratch/out" -name '*.tmp' 2>/dev/null)" ]; then blame "a temporary file stays"
  fi
  rm -rf "$scratch/out"
done
echo "$runs spoilt files: $done made, $refused refused, $failed failed"
[ $failed = 0 ]
