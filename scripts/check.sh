#!/usr/bin/env bash
# What there is to check beyond the tests. Installs what a step lacks and prints how long each took.
# Usage: scripts/check.sh [STEP ...]     default: every step but readers, in this order
#   format     clang-format finds nothing to change
#   clang      clang builds without a warning and passes the tests
#   sanitize   the tests under the address and undefined-behaviour sanitizers
#   readers    of these, what reads the files of others only: built in a third of the time
#   tidy       clang-tidy finds nothing (.clang-tidy says what it looks for)
#   cppcheck   cppcheck finds nothing (.cppcheck-suppressions says what is let pass)
#   coverage   lines of src/ that the tests reach; reports, judges nothing
#   interop    other people's programs read what the format writers write (scripts/interop.sh)
#   loop       from a chart to a corrected display and back, with other people's tools at both ends (scripts/loop.sh)
#   speed      the benchmarks build, and the usual jobs take no more instructions than scripts/bench_counts.txt says
#   package    the Debian packages build, lintian finds nothing, and they work where they are installed (scripts/package.sh)
#   fuzz       each fuzz target for FUZZ_SECONDS (default 20) seconds
set -euo pipefail
cd "$(dirname "$0")/.."
jobs=$(nproc)

build_and_test() {  # PRESET [ARGUMENT of ctest ...]
  cmake --preset "$1" >/dev/null &&
    cmake --build --preset "$1" --parallel "$jobs" &&
    ctest --preset "$1" --parallel "$jobs" "${@:2}"
}

sources() {  # PATTERN...: tracked files, and new ones that git would track
  git ls-files -z --cached --others --exclude-standard -- "$@"
}

format() {
  scripts/setup.sh clang-format
  sources '*.cpp' '*.hpp' | xargs -0 clang-format --dry-run -Werror
}

clang() {
  scripts/setup.sh clang
  build_and_test clang
}

sanitize() {
  scripts/setup.sh
  build_and_test debug
}

readers() {
  scripts/setup.sh
  cmake --preset debug >/dev/null
  cmake --build --preset debug --parallel "$jobs" --target formats_tests readings_tests
  ctest --preset debug --parallel "$jobs" -R '^(formats|readings)/'
}

tidy() {
  scripts/setup.sh clang clang-tidy
  cmake --preset clang >/dev/null
  # One file each, so that no core waits for a slow one. The count of suppressed system warnings is noise.
  sources 'src/*.cpp' 'tools/*.cpp' | xargs -0 -n 1 -P "$jobs" clang-tidy --quiet -p build/clang 2> >(
    grep -v -E '^[0-9]+ warnings?( and [0-9]+ errors?)? generated\.$' >&2)
}

cppcheck() {
  scripts/setup.sh cppcheck
  mkdir -p build/cppcheck
  command cppcheck --std=c++20 --language=c++ --enable=warning,performance,portability,style --inline-suppr \
    --suppressions-list=.cppcheck-suppressions --cppcheck-build-dir=build/cppcheck --error-exitcode=1 --quiet \
    -j "$jobs" -I src -I . src tools
}

coverage() {
  scripts/setup.sh clang libclang-rt-dev llvm
  local profiles=$PWD/build/coverage/profiles
  rm -rf "$profiles"
  # Two files a program, into which its runs are added. (Not gcov: it has one for each object, and cannot add what two
  # programs count there in inline functions.)
  export LLVM_PROFILE_FILE=$profiles/%2m.profraw
  # Full disks and other users' rights hurt the counting, too, which then complains where a test expects the program's
  # own words only: those two are run for their coverage and not judged here.
  build_and_test coverage -E '^(driver|kit)/faults$' >build/coverage.log || { tail -40 build/coverage.log; return 1; }
  ctest --preset coverage -R '^(driver|kit)/faults$' >/dev/null 2>&1 || true
  llvm-profdata merge -failure-mode=all -o "$profiles/all" "$profiles"/*.profraw
  # llvm-cov warns of mismatched data where a program has no use for an inline function.
  local programs=(build/coverage/bin/*)
  llvm-cov report "${programs[0]}" "${programs[@]/#/-object=}" "$PWD/src" -instr-profile="$profiles/all" \
    -show-region-summary=false -show-branch-summary=false 2> >(
    grep -v ' functions have mismatched data$' >&2)
}

interop() {
  scripts/interop.sh
}

loop() {
  scripts/loop.sh
}

speed() {
  scripts/setup.sh libbenchmark-dev
  cmake --preset bench >/dev/null
  cmake --build --preset bench --parallel "$jobs"
  scripts/bench.sh --check
}

package() {
  scripts/package.sh
}

fuzz() {
  scripts/fuzz.sh "${FUZZ_SECONDS:-20}"
}

all=(format clang sanitize tidy cppcheck coverage interop loop speed package fuzz)
steps=("$@")
[ ${#steps[@]} -gt 0 ] || steps=("${all[@]}")
for step in "${steps[@]}"; do
  [[ " ${all[*]} readers " == *" $step "* ]] || { echo "no such step: $step (there are: ${all[*]} readers)" >&2; exit 2; }
done

failed=()
times=()
for step in "${steps[@]}"; do
  echo "== $step"
  started=$SECONDS
  # A shell of its own: errexit would be off in a function called as a condition.
  status=0
  (set -e; "$step") & wait $! || status=$?
  times+=("$step: $((SECONDS - started)) s")
  [ $status -eq 0 ] || { failed+=("$step"); echo "== $step FAILED"; }
done

echo "== ${times[*]}"
if [ ${#failed[@]} -gt 0 ]; then
  echo "== failed: ${failed[*]}"
  exit 1
fi
echo "== all checks passed"
