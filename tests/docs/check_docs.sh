#!/usr/bin/env bash
# Checks the documentation against what is built: README.md, CONTRIBUTING.md, docs/*.md and the examples' README.md.
#   commands   runs every block fenced as ```sh, the blocks of a page one after the other in their own folder. Blocks
#              that need an instrument, a desktop or another machine are fenced as ```sh device and skipped.
#   code       compiles the blocks fenced as ```cpp against the installed library. A block with a `main` is a program.
#              The other blocks of a page form the body of one program, in order; it must print what the blocks fenced
#              as ```text say.
#   python     runs the blocks fenced as ```python in the folder with the tables of examples/two_table
#   links      relative links must lead to files that exist, and to headings in them
# If a command fails, the message names its page and line.
# Usage: tests/docs/check_docs.sh [BIN [PAGE ...]]     BIN: the folder of the built programs, default build/release/bin
# A page finds the files that its reader would have by then: see `prepare_once`.
set -euo pipefail
cd "$(dirname "$0")/../.."
top=$PWD
bin=$(realpath "${1:-build/release/bin}")
pages=("${@:2}")
[ ${#pages[@]} -gt 0 ] || pages=(*.md docs/*.md examples/*/README.md)
work=$(mktemp -d "${TMPDIR:-/tmp}/corvantile-docs-XXXXXX")
trap 'rm -rf "$work"' EXIT
export PATH=$bin:$PATH
. tests/kit/instrument_files.sh

# Readings of a simulated display: 17 levels per ramp and 60 further patches. Then a second run, through the correction
# that `make display.ti3` computes.
prepare_once() {
  local display=("white=0.305,0.325" "gamma=2.3,2.2,2.1")
  simulate_display "${display[@]}" noise=0.001 extra=60 >simulated
  as_ti3 <simulated >display.ti3
  as_csv <simulated >display.csv
  as_gray_scale_sheet <simulated >display.GrayScaleSheet.csv
  as_primaries_sheet <simulated >display.PrimariesSheet.csv
  corvantile-kit make -q display.ti3 -o job
  corvantile-kit chart -q --ramps derived --levels 17 --verify 30 --format csv |
    awk -F, 'NR > 1 { print $1 / 255, $2 / 255, $3 / 255 }' |
    simulate_display "${display[@]}" noise=0.003 seed=2 --show --tables job |
    awk 'NR > 1 { print 255 * $1, 255 * $2, 255 * $3, $4, $5, $6 }' | as_ti3 >second.ti3
  rm -r job simulated
  cp -r "$top/examples" .
}

blocks() {  # PAGE LANGUAGE: the page with all lines blank except those of its blocks in that language
  awk -v fence="^ *\`\`\`$2 *\$" '
    /^ *```/ { inside = !inside; wanted = inside && $0 ~ fence; print ""; next }
    { print wanted ? $0 : "" }' "$1"
}

run_commands() {  # PAGE
  local name folder count
  name=$(tr / - <<<"${1%.md}")
  count=$(grep -c '^ *```sh *$' "$1" || true)
  [ "$count" -gt 0 ] || return 0
  folder=$work/$name-commands
  cp -r "$work/prepared" "$folder"
  blocks "$1" sh >"$folder.sh"
  # shellcheck disable=SC2016  # for the shell that runs them
  if (cd "$folder" && bash -eEo pipefail -c 'trap "echo \"FAILED: $0:\$LINENO\" >&2" ERR; . "$1"' "$1" "$folder.sh" \
    </dev/null) >"$folder.log" 2>&1; then
    echo "$1: $count blocks of commands ran"
  else
    tail -n 20 "$folder.log"
    echo "$1: a command failed"
    return 1
  fi
}

# Programs that use a sanitized library must be sanitized, too, so the code is not checked in that build.
build=$(dirname "$bin")
compiler=$(sed -n 's/^CMAKE_CXX_COMPILER:[A-Z]*=//p' "$build/CMakeCache.txt" 2>/dev/null || true)
if [ -z "$compiler" ] || grep -q '^CMAKE_BUILD_TYPE:[A-Z]*=Debug' "$build/CMakeCache.txt"; then compiler=; fi

compile() {  # SOURCE PROGRAM, against the installed library
  if ! [ -d "$work/usr" ]; then
    cmake --install "$build" --prefix "$work/usr" --component development >/dev/null
  fi
  local lib
  lib=$(dirname "$(find "$work/usr" -name 'libcorvantile.a')")
  "$compiler" -std=c++20 -Wall -Wextra -Wpedantic -Werror -I "$work/usr/include" "$1" -o "$2" \
    "$lib/libcorvantile.a"
}

check_code() {  # PAGE
  grep -q '^ *```cpp' "$1" && [ -n "$compiler" ] || return 0
  local folder
  folder=$work/$(tr / - <<<"${1%.md}")-code
  mkdir "$folder"
  # Each block with a main goes into its own file, the others into the body of one program.
  awk -v folder="$folder" -v page="$1" '
    /^ *```cpp *$/ { inside = 1; block = "#line " NR + 1 " \"" page "\"\n"; next }
    /^ *```/ {
      if (inside && block ~ /int main/) printf "%s", block >(folder "/program" ++programs ".cpp")
      else if (inside) body = body block
      inside = 0
      next
    }
    inside { block = block $0 "\n" }
    END {
      if (body == "") exit
      file = folder "/body.cpp"
      print "#include <corvantile.hpp>\n#include <cstdio>\nnamespace cv = corvantile;\nint main() {" >file
      printf "%s", body >file
      print "}" >file
    }' "$1"
  local source
  for source in "$folder"/*.cpp; do
    compile "$source" "${source%.cpp}" || { echo "$1: the code does not compile"; return 1; }
    (cd "$work/prepared" && "${source%.cpp}" examples/*/measurements.txt) >"${source%.cpp}.said" ||
      { echo "$1: a program ended with status $?"; return 1; }
  done
  if [ -e "$folder/body" ]; then
    blocks "$1" text | grep -v '^$' | diff - <(grep -v '^$' "$folder/body.said") ||
      { echo "$1: the code prints something else (>)"; return 1; }
  fi
  echo "$1: $(find "$folder" -name '*.cpp' | wc -l) programs compiled and ran"
}

run_python() {  # PAGE
  grep -q '^ *```python' "$1" && command -v python3 >/dev/null || return 0
  blocks "$1" python | (cd examples/two_table/expected && python3 -) >/dev/null ||
    { echo "$1: the Python code fails"; return 1; }
}

anchors() {  # PAGE: its headings, as links to them are spelled
  awk '/^ *```/ { inside = !inside } !inside && /^#+ / { sub(/^#+ */, ""); print tolower($0) }' "$1" |
    sed 's/[^a-z0-9 _-]//g; s/ /-/g'
}

check_links() {  # PAGE
  local link file anchor bad=0
  while IFS= read -r link; do
    case $link in http*:* | mailto:*) continue ;; esac
    file=${link%%#*} anchor=
    [[ $link != *'#'* ]] || anchor=${link#*#}
    file=$(dirname "$1")/$file
    [[ $link != '#'* ]] || file=$1
    if ! [ -e "$file" ]; then
      echo "$1: no file for the link $link"
      bad=1
    elif [ -n "$anchor" ] && ! anchors "$file" | grep -qxF -- "$anchor"; then
      echo "$1: no heading for the link $link"
      bad=1
    fi
  done < <(awk '/^ *```/ { inside = !inside } !inside' "$1" | tr '\n' ' ' |
    grep -oE '\]\([^) ]+\)|src="[^"]+"' | sed -E 's/^\]\(|^src="//; s/[")]$//')
  return $bad
}

mkdir "$work/prepared"
(cd "$work/prepared" && prepare_once)
failed=0
for page in "${pages[@]}"; do
  run_commands "$page" || failed=1
  check_code "$page" || failed=1
  run_python "$page" || failed=1
  check_links "$page" || failed=1
done
exit $failed
