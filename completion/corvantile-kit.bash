# Bash completion for corvantile-kit. Verbs, options and formats come from the program's own help; the words that an
# option takes are listed here.

_corvantile_kit_words() {  # OPTION
  case $1 in
    --from) echo ti3 cgats csv hcfr corvantile ;;
    --ramps) echo measured derived auto ;;
    --target) echo native srgb rec709 display-p3 adobe-rgb bt2020 ;;
    --gamma) echo 2.2 srgb bt1886 lstar ;;
    --white) echo native d65 d50 ;;
    --gamut-mapping) echo clip compress ;;
    --for) echo linux x11 windows video fpga all ;;
    --matrix) echo q2.14 q15.16 ;;
  esac
}

_corvantile_kit() {
  local program=${COMP_WORDS[0]} verb=${COMP_WORDS[1]-} now=${COMP_WORDS[COMP_CWORD]} before words=
  before=${COMP_WORDS[COMP_CWORD - 1]}
  [ "$now" != = ] || now=
  [ "$before" != = ] || before=${COMP_WORDS[COMP_CWORD - 2]}  # --option=word comes as three words
  COMPREPLY=()
  if [ "$COMP_CWORD" -eq 1 ]; then
    words=$("$program" --help 2>/dev/null |
      awk '/^  -/ { print $1 } /^Subcommands:/ { on = 1 } /^$/ { on = 0 } on && /^  [a-z]/ { print $1 }' | tr ',' '\n')
  elif [[ $verb:$before == chart:--format ]]; then
    words="ti1 csv hcfr"
  elif [[ $before == --format ]]; then
    words=$("$program" "$verb" --help 2>/dev/null | awk '/^Formats:/ { on = 1; next } /^$/ { on = 0 } on { print $1 }')
  elif [[ $verb:$before == export:--layout ]]; then
    words="packed planar interleaved"
  elif [[ $before == -* && -n $(_corvantile_kit_words "$before") ]]; then
    words=$(_corvantile_kit_words "$before")
    [ "$verb" != chart ] || words=${words% auto}
  elif [[ $now == -* ]]; then
    words=$("$program" "$verb" --help 2>/dev/null | awk '/^  -/ { print $1 }' | tr ',' '\n')
  fi
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$now")
  [[ -n $words && $before != --gamma ]] && return
  mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -f -- "$now")
  compopt -o filenames 2>/dev/null
  return 0
}

complete -F _corvantile_kit corvantile-kit
