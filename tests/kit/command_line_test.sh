#!/usr/bin/env bash
# What all verbs have in common: help, usage errors, files that are there already or not at all; and completion.
. "$(dirname "$0")/kit.sh"
measure
as_ti3 <m.txt >display.ti3
as_csv <m.txt >display.csv
verbs="make import check chart solve export report verify refine predict"

for verb in $verbs; do
  is "$verb --version" "$("$kit" $verb --version; echo $?)" $'corvantile-kit 2.0.0\n0'
  help=$("$kit" $verb --help)
  is "$verb --help" "$help" $'*\nExample:\n  *corvantile-kit '"$verb *"
  is "$verb --help in 80 columns" "$(awk 'length > 80' <<<"$help")" ""
  for option in --output --quiet --json --force; do
    is "$verb $option" "$(grep -c -- "$option\b" <<<"$help")" "[1-9]"
  done
done
for wrong in "" "nonsense" "import" "check m.txt --nonsense" "export . --format nonsense"; do
  ends 2 "*" $wrong
done
: >taken
for verb in "import display.ti3 -o" "import display.ti3 --calibration taken -q" "check m.txt -o" "chart -o" \
  "predict m.txt -o"; do
  refuses 6 "taken exists already; --force replaces it" $verb taken
done
for verb in "import" "check" "predict" "solve" "export --format clf" "make"; do
  refuses 5 "*nowhere*" $verb nowhere
done
for verb in "import display.ti3" "chart"; do ends 2 "--json: *standard output*" $verb --json; done

# --- Completion ---
. "$root/completion/corvantile-kit.bash"
completes() {  # WORD...: what may stand for the last of them
  COMP_WORDS=("$kit" "$@") COMP_CWORD=$#
  _corvantile_kit
  echo "${COMPREPLY[@]}"
}
is "verbs" "$(completes p) $(completes ver) $(completes ch)" "predict verify check chart"
is "all that may come first" "$(completes "" | wc -w)" 13
is "options of refine" "$(completes refine --a)" "--anyway"
is "options" "$(completes import --c)" "--calibration"
is "formats" "$(completes export job --format c)" "clf cube cube3d cal coe c"
is "words behind =" "$(completes make --target = ad)" "adobe-rgb"
is "files" "$(completes import display)" "display.@(csv display.ti3|ti3 display.csv)"
for verb in make import check chart export; do
  help=$("$kit" $verb --help)
  for option in --from --ramps --target --gamma --white --for --matrix --layout --format; do
    about=$(grep -A2 -- "^ *$option " <<<"$help") || continue
    for word in $(cd / && completes $verb "$option" ""); do
      [[ $option == --format && $verb == export || -e /$word ]] ||
        is "$verb $option $word" "$about" "*[ :,=]$word*"
    done
  done
done
passed
