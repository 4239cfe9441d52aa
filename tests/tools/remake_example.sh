#!/usr/bin/env bash
# remake_example.sh TOOL FILE: the command that a shipped measurement file names in its comments makes that very file.
set -euo pipefail
read -ra words < <(sed -n 's/^; Made by: simulate_display//p' "$2")
"$1" "${words[@]}" | cmp - "$2"
