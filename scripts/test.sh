#!/usr/bin/env bash
# Sets up what is missing, builds everything and runs every test: the ordinary build with the
# window's tests, the same unit and command tests under AddressSanitizer and
# UndefinedBehaviorSanitizer, and a short run of every fuzz target.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
bash "$root/scripts/setup.sh"
jobs=$(nproc 2>/dev/null || echo 2)

echo "== ordinary build and tests"
build="$root/build-test"
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DKORVATEK_BUILD_BENCH=OFF >/dev/null
cmake --build "$build" -j "$jobs"
(cd "$build" && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j "$jobs")

echo "== sanitizer build and tests"
asan="$root/build-asan"
cmake -S "$root" -B "$asan" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DKORVATEK_BUILD_BENCH=OFF -DKORVATEK_BUILD_GUI=OFF \
  -DCMAKE_CXX_FLAGS="-O1 -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer" \
  -DCMAKE_EXE_LINKER_FLAGS="-fsanitize=address,undefined" >/dev/null
cmake --build "$asan" -j "$jobs"
(cd "$asan" && ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
  ctest --output-on-failure -j "$jobs")

if [ -f "$root/scripts/fuzz.sh" ]; then
  echo "== fuzz targets, a short run each"
  bash "$root/scripts/fuzz.sh" 7
fi
