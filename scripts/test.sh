#!/usr/bin/env bash
# Sets up what is missing, builds everything and runs every test.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
bash "$root/scripts/setup.sh"
build="$root/build-test"
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build"
cd "$build"
QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j2
