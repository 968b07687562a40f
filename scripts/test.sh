#!/usr/bin/env bash
# Sets up what is missing, builds everything and runs every test: the ordinary build with the
# window's tests; every fuzz target for a few seconds (clang, AddressSanitizer and
# UndefinedBehaviorSanitizer); the unit and command tests again in that sanitized build; and the
# Windows build under wine (scripts/test-windows.sh; KORVATEK_SKIP_WINDOWS=1 leaves it out).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
bash "$root/scripts/setup.sh"
jobs=$(nproc 2>/dev/null || echo 2)

echo "== ordinary build and tests"
build="$root/build-test"
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DKORVATEK_BUILD_BENCH=OFF -DKORVATEK_WERROR=ON >/dev/null
cmake --build "$build" -j "$jobs"
(cd "$build" && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j "$jobs")

echo "== the Linux package: lintian, the unpacked programs, the desktop entry, metainfo, MIME types, manual pages"
bash "$root/scripts/test-package.sh" "$build"

echo "== fuzz targets, a short run each"
KORVATEK_WERROR=ON bash "$root/scripts/fuzz.sh" "${KORVATEK_FUZZ_SECONDS:-6}"

echo "== the unit and command tests under AddressSanitizer and UndefinedBehaviorSanitizer"
# The fuzz build already carries both sanitizers on the whole core: the tests join it there.
san="$root/build-fuzz"
cmake -S "$root" -B "$san" -DKORVATEK_BUILD_TESTS=ON -DKORVATEK_WERROR=ON >/dev/null
cmake --build "$san" -j "$jobs"
(cd "$san" && ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
  ctest --output-on-failure -j "$jobs")

if [ "${KORVATEK_SKIP_WINDOWS:-0}" != 1 ]; then
  echo "== the Windows build under wine"
  KORVATEK_LINUX_CLI="$build/cli/korvatek-cli" bash "$root/scripts/test-windows.sh"
fi
