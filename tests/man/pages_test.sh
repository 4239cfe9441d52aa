#!/usr/bin/env bash
# pages_test.sh SOURCE BIN: the manual pages tell of every verb, option, format and setting that the programs have, and
# of no other option; and mandoc, where it is installed, finds nothing to complain of.
set -u
. "$(dirname "$0")/../expect.sh"
export LC_ALL=C
source=$1
bin=$2
cd "$source/man" || exit 1
same() {  # PAGE LIST LIST: sorted words, those of the program and those of the page
  [ "$2" == "$3" ] || wrong "$1" "does not tell of:" "$(comm -23 <(echo "$2") <(echo "$3") | xargs)" \
    "- and tells of what is not there:" "$(comm -13 <(echo "$2") <(echo "$3") | xargs)"
}
# The first column of a help text, and all options that stand in a page's macros, a word a line.
options_of() { sed -n 's/^  \(-[^ ]*\).*/\1/p' | tr -d ' ' | tr ',' '\n' | sort -u; }
options_in() {
  grep -hE '^\.(It |Op )?Fl ' "$1" | grep -oE '(Fl|,|\|) -?[a-z]+(-[a-z]+)*' | sed -E 's/^(Fl|,|\|) /-/' | sort -u
}
items_in() { sed -n "s/^\.It $2 \([a-z0-9_-]*\)$/\1/p" "$1" | sort; }

keys=$(sed -n '/^constexpr key keys/,/^};/s/^ *{"\([a-z_]*\)".*/\1/p' ../src/corvantile/documents/settings_text.cpp | sort)
same Corvantile.1 "$keys" "$(sed '/^\.Sh FILES/,$d' Corvantile.1 | items_in /dev/stdin Cm)"
same Corvantile.1 "$("$bin/Corvantile" --help | sed 's/^  -v, /  -v,/' | options_of)" "$(options_in Corvantile.1)"

if [ -x "$bin/corvantile-kit" ]; then
  verbs=$("$bin/corvantile-kit" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z]\+\).*/\1/p')
  [ -n "$verbs" ] || wrong corvantile-kit "has no verbs"
  for verb in $verbs; do
    page=corvantile-kit-$verb.1
    [ -f "$page" ] || { wrong "$page" "is missing"; continue; }
    grep -qx ".It Cm $verb" corvantile-kit.1 || wrong corvantile-kit.1 "does not tell of $verb"
    grep -q "^.Xr corvantile-kit-$verb 1" corvantile-kit.1 || wrong corvantile-kit.1 "does not refer to $page"
    same "$page" "$("$bin/corvantile-kit" "$verb" --help | options_of)" "$(options_in "$page")"
  done
  same corvantile-kit-export.1 "$("$bin/corvantile-kit" export --help |
    sed -n '/^Formats:/,/^$/s/^  \([^ ]*\) .*/\1/p' | sort)" "$(items_in corvantile-kit-export.1 Cm)"
fi

if command -v mandoc >/dev/null; then
  mandoc -T lint -W style ./*.1 || failures=$((failures + 1))
fi
[ $failures -eq 0 ] && echo "every verb, option, format and setting has its place"
