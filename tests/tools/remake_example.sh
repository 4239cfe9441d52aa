#!/usr/bin/env bash
# remake_example.sh TOOL FILE: runs the command in the comments of a shipped measurement file; it must make that file.
set -euo pipefail
read -ra words < <(sed -n 's/^; Made by: simulate_display//p' "$2")
"$1" "${words[@]}" | cmp - "$2"
