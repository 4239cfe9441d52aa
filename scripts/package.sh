#!/usr/bin/env bash
# Builds the Debian packages, has lintian judge them, installs them in an empty root and tries them there: the shipped
# examples by the installed programs, a program on the installed library, manual pages and completion.
# Usage: scripts/package.sh       leaves the packages in build/package/ and ends with their list
set -euo pipefail
cd "$(dirname "$0")/.."
umask 022

scripts/setup.sh dpkg-dev fakeroot file gzip lintian man-db pkg-config
here=$PWD
build=$here/build/package
root=$build/root
doc=$root/usr/share/doc/corvantile
wrong() {
  echo "package.sh: $*" >&2
  exit 1
}

version=$(sed -n 's/^project(Corvantile VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
packaged=$(dpkg-parsechangelog -l packaging/changelog -S Version)
[ "${packaged%-*}" == "$version" ] || wrong "packaging/changelog is about $packaged, not $version"
grep -qF "## [$version] - " CHANGELOG.md || wrong "CHANGELOG.md has nothing about $version"

build_packages() {
  # The same sources give the same packages, byte for byte.
  SOURCE_DATE_EPOCH=$(dpkg-parsechangelog -l packaging/changelog -S Timestamp)
  export SOURCE_DATE_EPOCH
  cmake --preset package >/dev/null
  cmake --build --preset package --parallel "$(nproc)"
  rm -rf "$build"/*.deb "$build/_CPack_Packages" "$root"
  (cd "$build" && cpack) >"$build/cpack.log" 2>&1 || { cat "$build/cpack.log"; exit 1; }
}

install_in_an_empty_root() {
  mkdir -p "$root/var/lib/dpkg/updates" "$root/var/lib/dpkg/info"
  : >"$root/var/lib/dpkg/status"
  local package
  for package in "${packages[@]}"; do  # other people's packages are this machine's
    dpkg-checkbuilddeps -d "$(dpkg-deb -f "$package" Depends)" - </dev/null || wrong "$package does not fit this machine"
  done
  fakeroot dpkg --root="$root" --log=/dev/null --force-depends,bad-path -i "${packages[@]}" >"$build/dpkg.log" 2>&1 ||
    { cat "$build/dpkg.log"; exit 1; }
  local telling
  telling=$(grep -rlF "$here" "$root/usr" || true)
  [ -z "$telling" ] || wrong "tells where it was built: $telling"
}

try_programs() {
  [[ $(Corvantile --version) == "Corvantile $version, "* ]] || wrong "Corvantile is not $version"
  [ "$(corvantile-kit --version)" == "corvantile-kit $version" ] || wrong "corvantile-kit is not $version"
  local job
  for job in gray_axis two_table; do tests/examples/run_example.sh "$root/usr/bin/Corvantile" "$doc/examples/$job"; done
  tests/examples/settings_test.sh "$root/usr/bin" "$doc/examples"
  rm -rf "$build/tried"
  corvantile-kit make -q "$doc/examples/two_table/measurements.txt" --for video -o "$build/tried"
  [ -s "$build/tried/report.html" ] || wrong "make leaves no report"
}

try_library() {
  tests/examples/use_library.sh cmake "$root/usr" "$doc/examples"
}

try_pages_and_completion() {
  local page name
  for page in man/*.1; do
    name=$(basename "$page" .1)
    man -M "$root/usr/share/man" "$name" 2>&1 | grep -F "$name" >/dev/null || wrong "no manual page for $name"
  done
  bash -c '. "$1" && complete -p corvantile-kit' - "$root/usr/share/bash-completion/completions/corvantile-kit" >/dev/null
}

build_packages
packages=("$build"/corvantile_*.deb "$build"/libcorvantile-dev_*.deb)
# They are not for the Debian archive, whose first uploads close a bug.
lintian --fail-on error,warning --tag-display-limit 0 --suppress-tags initial-upload-closes-no-bugs "${packages[@]}"
install_in_an_empty_root
PATH=$root/usr/bin:$PATH
try_programs
try_library
try_pages_and_completion
for package in "${packages[@]}"; do
  depends=$(dpkg-deb -f "$package" Depends)
  echo "${package#"$here/"}: $(stat -c %s "$package") bytes, depends on ${depends:-nothing}"
done
