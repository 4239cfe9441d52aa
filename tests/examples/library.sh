#!/usr/bin/env bash
# library.sh CMAKE BUILD EXAMPLES: what `cmake --install` makes of the library, in folders with a blank in their name and
# beneath DESTDIR, serves somebody else's program.
set -euo pipefail
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
DESTDIR="$scratch/a root" "$1" --install "$2" --prefix "/a prefix" --component development >/dev/null
"$(dirname "$0")/use_library.sh" "$1" "$scratch/a root/a prefix" "$3"
