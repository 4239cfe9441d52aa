#!/usr/bin/env bash
# Installs what the build needs and this machine lacks, from Debian packages, and says what it does.
# Usage: scripts/setup.sh [PACKAGE ...]   extra packages for a special job (clang, clang-tidy, ...)
set -euo pipefail

packages=(g++ cmake make libgtest-dev libcli11-dev libfmt-dev nlohmann-json3-dev liblcms2-dev libxxhash-dev libeigen3-dev python3 "$@")
if ! command -v dpkg-query >/dev/null; then
  echo "Not a Debian system: nothing is installed here. Needed, by their Debian names: ${packages[*]}" >&2
  exit 0
fi

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q '^install ok installed$' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing missing Debian packages: ${missing[*]}"
as_root=()
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || { echo "This needs root: apt-get install ${missing[*]}" >&2; exit 1; }
  as_root=(sudo)
fi
"${as_root[@]}" apt-get update -q
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
  apt-get install -y -q --no-install-recommends -o DPkg::Lock::Timeout=300 "${missing[@]}"
