#!/usr/bin/env bash
# Builds the fuzz targets with clang and its sanitizers and runs each, two at a time. What they find stays under
# build/fuzz: inputs that reach something new in corpus/, those that fail in crashes/, what was said in logs/.
# Usage: scripts/fuzz.sh [SECONDS for each target, default 20] [TARGET ...]     default: every target
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=20
if [[ ${1:-} =~ ^[0-9]+$ ]]; then
  seconds=$1
  shift
fi
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
  for file in fuzz/fuzz_*.cpp; do
    file=${file##*/fuzz_}
    targets+=("${file%.cpp}")
  done
fi

scripts/setup.sh clang libclang-rt-dev
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz --parallel "$(nproc)" --target "${targets[@]/#/fuzz_}" >/dev/null

# Jobs write many small files: into memory where that can be.
export TMPDIR
TMPDIR=$(mktemp -d -p "$([ -w /dev/shm ] && echo /dev/shm || echo "${TMPDIR:-/tmp}")")
trap 'rm -rf "$TMPDIR"' EXIT

found=build/fuzz/corpus crashes=build/fuzz/crashes logs=build/fuzz/logs
mkdir -p "$crashes" "$logs"
fuzz() {  # TARGET
  mkdir -p "$found/$1"
  "build/fuzz/bin/fuzz_$1" -max_total_time="$seconds" -timeout=20 -rss_limit_mb=2048 -max_len=4096 \
    -dict=fuzz/words.dict -print_final_stats=1 -artifact_prefix="$crashes/$1-" \
    "$found/$1" "fuzz/corpus/$1" >"$logs/$1.log" 2>&1
}
summary() {  # TARGET
  local log=$logs/$1.log
  awk -v target="$1" -v inputs="$(find "$found/$1" -type f | wc -l)" '
    /cov: /                        { for (i = 1; i < NF; ++i) if ($i == "cov:") edges = $(i + 1) }
    /number_of_executed_units/     { runs = $2 }
    /slowest_unit_time_sec/        { slowest = $2 }
    END { printf "%-13s %9d runs, %5d edges, %5d inputs kept, slowest %d s\n", target, runs, edges, inputs, slowest }
  ' "$log"
}

failed=()
running=()
wait_for_first() {
  local target=${running[0]%:*}
  if wait "${running[0]#*:}"; then
    summary "$target"
  else
    failed+=("$target")
    echo "$target FAILED; its log ends with:"
    tail -30 "$logs/$target.log"
  fi
  running=("${running[@]:1}")
}
for target in "${targets[@]}"; do
  [ ${#running[@]} -lt 2 ] || wait_for_first
  fuzz "$target" &
  running+=("$target:$!")
done
while [ ${#running[@]} -gt 0 ]; do wait_for_first; done
[ ${#failed[@]} -eq 0 ] || { echo "failed: ${failed[*]} (inputs in $crashes)"; exit 1; }
