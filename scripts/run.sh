#!/usr/bin/env bash
# Sets up what is missing, builds, and runs the main job on the demo fullflash: the window
# where there is a display, otherwise the command line.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
bash "$root/scripts/setup.sh"
build="$root/build"
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DKORVATEK_BUILD_TESTS=OFF >/dev/null
cmake --build "$build"
flash="$build/demo-flash.bin"
[ -f "$flash" ] || "$build/cli/korvatek-cli" demo-flash "$flash"
if { [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; } && [ -x "$build/gui/korvatek" ]; then
  exec "$build/gui/korvatek" "$flash"
fi
"$build/cli/korvatek-cli" info "$flash"
echo "first pictures:"
"$build/cli/korvatek-cli" pictures "$flash" | head -n 5
"$build/cli/korvatek-cli" picture "$flash" 0
