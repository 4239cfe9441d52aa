# Sourced by the shell tests: counts checks and what fails of them.
failures=0
checks=0

is() {  # NAME GOT PATTERN
  checks=$((checks + 1))
  [[ "$2" == $3 ]] && return
  wrong "$1: got '$2', expected '$3'"
}
wrong() {  # WORD...
  echo "FAILED: $*"
  failures=$((failures + 1))
}
all_passed() {  # says how many failed, and fails if any did
  echo "$checks checks, $failures failed"
  [ "$failures" -eq 0 ]
}
until_temporaries() {  # PATTERN FOLDER: there are so many of them; 10 seconds at most
  for _ in {1..1000}; do
    [[ "$(find "$2" -name '*.tmp' | wc -l)" == $1 ]] && return
    sleep 0.01
  done
}
