#!/usr/bin/env bash
# Installs what the build and the tests need and this machine lacks (Debian packages only).
set -euo pipefail

packages=(cmake ninja-build g++ pkg-config libpng-dev libgtest-dev googletest libbenchmark-dev
          qt6-base-dev python3 python3-pil help2man)
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
