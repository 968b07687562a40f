#!/usr/bin/env bash
# Sets up what is missing, builds, and runs the main job on the demo fullflash: the window
# where there is a display, otherwise the command line.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
bash "$root/scripts/setup.sh"
build="$root/build"
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DKORVATEK_BUILD_TESTS=OFF \
  -DKORVATEK_BUILD_BENCH=OFF >/dev/null
window=0
if { [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; }; then window=1; fi
# Only what is run is built.
targets=(korvatek-cli)
[ "$window" = 1 ] && targets+=(korvatek)
cmake --build "$build" --target "${targets[@]}"
cli="$build/cli/korvatek-cli"
flash="$build/demo-flash.bin"
[ -f "$flash" ] || "$cli" demo-flash "$flash"
if [ "$window" = 1 ] && [ -x "$build/gui/korvatek" ]; then
  exec "$build/gui/korvatek" "$flash"
fi
"$cli" info "$flash"
echo "first pictures:"
# The whole list goes into a variable first: nothing here can end early on a closed pipe.
list=$("$cli" pictures "$flash")
printf '%s\n' "$list" | sed -n '1,5p'
"$cli" picture "$flash" 0
