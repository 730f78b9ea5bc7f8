# SPDX-License-Identifier: MIT
# Copyright (c) 2026 The Corvin developers
#
# What the scripts of this folder and .ci/run share: packages of a Debian system, and builds by
# preset. To be sourced by bash; sets $root to the source tree.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build_packages="g++ cmake ninja-build pkgconf libsndfile1-dev libtag1-dev libflac-dev libwavpack-dev libsoxr-dev libebur128-dev libkissfft-dev libxxhash-dev
  libcli11-dev nlohmann-json3-dev scdoc"
test_packages="libgtest-dev libbenchmark-dev python3 python3-mutagen mediainfo wavpack flac sox parallel
  frozen-bubble-data librsvg2-bin"

say() { printf '%s\n' "$*" >&2; }

# quietly LOG COMMAND...: keeps the output in LOG and shows it only when the command fails.
quietly() {
  local log=$1
  shift
  mkdir -p "$(dirname "$log")"
  "$@" >"$log" 2>&1 </dev/null && return
  local code=$?
  cat "$log" >&2
  return $code
}

# need PACKAGE...: installs the packages that are missing.
need() {
  local package missing=() as_root=()
  if ! command -v dpkg-query >/dev/null; then
    say "Not a Debian system: going on without looking for the packages $*"
    return
  fi
  for package in "$@"; do
    dpkg-query -W -f='${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed ||
      missing+=("$package")
  done
  [ ${#missing[@]} -gt 0 ] || return 0
  say "Installing ${missing[*]}"
  if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
      say "Installing takes root or sudo"
      return 1
    fi
    # Asks for the password now, if it must, while the terminal is still there to ask.
    sudo -v || return
    as_root=(sudo)
  fi
  quietly "$root/build/apt-update.log" "${as_root[@]}" apt-get -q update &&
    quietly "$root/build/apt-install.log" "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
      apt-get -q -y --no-install-recommends install "${missing[@]}"
}

# build PRESET [TARGET]
build() {
  local started=$SECONDS target=${2:-all}
  quietly "$root/build/configure-$1.log" cmake -S "$root" --preset "$1" || return
  if [ -t 2 ]; then
    cmake --build "$root/build/$1" --target "$target" >&2 || return
  else
    say "Building ($1)"
    quietly "$root/build/build-$1.log" cmake --build "$root/build/$1" --target "$target" || return
  fi
  say "Built $1 in $((SECONDS - started)) s"
}

# run_tests PRESET [CTEST_ARGUMENT...]
run_tests() {
  local preset=$1
  shift
  (cd "$root" && ctest --preset "$preset" "$@")
}
