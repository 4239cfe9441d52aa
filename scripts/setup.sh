#!/usr/bin/env bash
# Installs what the build needs and this machine lacks, from Debian packages, and says what it does.
# Usage: scripts/setup.sh [PACKAGE ...]   extra packages for a special job (clang, clang-tidy, ...)
set -euo pipefail

packages=(g++ cmake make libgtest-dev "$@")
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q '^install ok installed$' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing missing Debian packages: ${missing[*]}"
sudo=()
[ "$(id -u)" -eq 0 ] || sudo=(sudo)
"${sudo[@]}" apt-get update -q
"${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "${missing[@]}"
