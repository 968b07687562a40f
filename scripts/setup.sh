#!/usr/bin/env bash
# Installs Debian packages this machine lacks, with apt-get (as root, or through sudo).
#   scripts/setup.sh                 what the build and the ordinary tests need
#   scripts/setup.sh PACKAGE...      those packages (the package and Windows checks name theirs)
set -euo pipefail

packages=("$@")
if [ ${#packages[@]} -eq 0 ]; then
  packages=(cmake ninja-build g++ pkg-config libpng-dev libgtest-dev googletest libbenchmark-dev
            qt6-base-dev libcli11-dev nlohmann-json3-dev python3 python3-pil help2man strace)
fi
missing=()
for p in "${packages[@]}"; do
  dpkg -s "$p" >/dev/null 2>&1 || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "setup: installing ${missing[*]}"
  SUDO=""
  [ "$(id -u)" -ne 0 ] && SUDO="sudo"
  export DEBIAN_FRONTEND=noninteractive
  $SUDO apt-get update -qq
  $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
