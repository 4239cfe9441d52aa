#!/usr/bin/env bash
# settings_test.sh BIN EXAMPLES: every settings template gives the tables of its mode for the shipped two-table display,
# without a warning; and behind them, as the kit predicts it, white and mid gray are those that its comment promises.
set -u
. "$(dirname "$0")/../expect.sh"
shopt -s nullglob
bin=$1
examples=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch" || exit 1
cp "$examples"/gamma/*.txt "$examples/two_table/measurements.txt" .
checked=()
one="postLUT.txt"
three="matrix.txt postLUT.txt preLUT.txt"

shown_as_promised() {  # X Y HALF DRIVE: chromaticity of the gray at DRIVE, light of half drive as a fraction of white's
  printf '%s\n' "$4 $4 $4" '1 1 1' '.5 .5 .5' | "$bin/corvantile-kit" predict measurements.txt --tables job |
    awk -v x="$1" -v y="$2" -v half="$3" '
      function off(a, b, most) { return a - b > most || b - a > most }
      NR == 1 { sum = $1 + $2 + $3; bad = off($1 / sum, x, 0.0015) || off($2 / sum, y, 0.0015) }
      NR == 2 { white = $2 }
      NR == 3 { bad = bad || half != "any" && off($2 / white, half, 0.001) }
      END { exit NR != 3 || bad }'
}

check() {  # NAME TABLES X Y HALF [DRIVE]
  local settings=$examples/settings/$1.txt said
  checked+=("$settings")
  rm -rf job ./*LUT.txt matrix.txt
  said=$("$bin/Corvantile" 2>&1 <"$settings")
  [ "$said" == $' Corvantile 1.09\n normal exit' ] || wrong "$1: $said"
  written=(matri[x].txt *LUT.txt)
  [ "${written[*]}" == "$2" ] || wrong "$1: not the tables $2"
  [ -x "$bin/corvantile-kit" ] || return
  "$bin/corvantile-kit" solve -q "$settings" -o job || wrong "$1: not solved by the kit"
  shown_as_promised "$3" "$4" "$5" "${6:-1}" || wrong "$1: grays are not as promised"
}

# White: D65; the display's own as it was simulated, x 0.3005, y 0.3142; a black body's of 5000 K after Planck.
check native_grays "$one" 0.3005 0.3142 0.2176  # 0.5 ^ 2.2
check d65_grays "$one" 0.3127 0.3290 0.2176
check shading "$one" 0.3451 0.3516 any 0.5
check gamma_file "$one" 0.3005 0.3142 0.1842  # lightness 50
for wide in srgb display_p3 adobe_rgb fpga_12bit; do check $wide "$three" 0.3127 0.3290 0.2176; done
check bt2020 "$three" 0.3127 0.3290 0.1895   # 0.5 ^ 2.4
check video "$three" 0.3127 0.3290 0.2153    # BT.1886, above its black
check windows "$three" 0.3127 0.3290 0.2140  # sRGB
[ ! -d job ] || "$bin/corvantile-kit" export -q job --format mhc2 || wrong "windows: not what Windows can load"

"$bin/Corvantile" 2>messages <"$examples/settings/fpga_12bit.txt"
cat ./*LUT.txt | awk '/[.-]/ || $1 > 4095 { exit 1 }' || wrong "fpga_12bit: not integers of 12 bits"
all=("$examples"/settings/*.txt)
[ ${#checked[@]} -eq ${#all[@]} ] || wrong "checked only ${checked[*]}"
[ $failures -eq 0 ]
