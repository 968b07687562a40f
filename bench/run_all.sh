#!/usr/bin/env bash
# The performance record: every figure on the demo fullflash against its baseline, measured in
# the same run, printed as a ratio. Builds the benchmarks first (Release).
# usage: bench/run_all.sh [runs]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
runs=${1:-7}
build="$root/build-bench"
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DKORVATEK_BUILD_TESTS=OFF >/dev/null
cmake --build "$build" >/dev/null
cli="$build/cli/korvatek-cli"

echo "== whole processes"
bash "$root/bench/process_ratios.sh" "$cli" "$runs"
[ -f "$root/bench/patch_ratios.sh" ] && bash "$root/bench/patch_ratios.sh" "$cli" "$runs"

echo "== in process"
json=$(mktemp)
"$build/bench/korvatek_bench" --benchmark_format=json --benchmark_min_time=0.5 >"$json" 2>/dev/null
python3 - "$json" <<'PY'
import json, sys
runs = {b["name"]: b["real_time"] for b in json.load(open(sys.argv[1]))["benchmarks"]}
def row(name, base, limit):
    r = runs[name] / runs[base]
    print(f"{name:28s} {runs[name]:10.2f} ms  {base:28s} {runs[base]:10.2f} ms  ratio {r:.2f}  "
          + ("within target" if r <= limit else "OVER target") + f" (<= {limit})")
row("BM_DecodeEveryPicture", "BM_ReadPictureDataOnce", 1.5)
print(f"{'BM_OpenAndList':28s} {runs['BM_OpenAndList']:10.2f} ms")
PY
rm -f "$json"
if [ -x "$build/bench/korvatek_gui_bench" ]; then
  echo "== window (offscreen)"
  QT_QPA_PLATFORM=offscreen "$build/bench/korvatek_gui_bench"
fi
if [ -x "$build/bench/korvatek_editor_bench" ]; then
  echo "== editors and text preview (offscreen)"
  QT_QPA_PLATFORM=offscreen "$build/bench/korvatek_editor_bench" 2>/dev/null
fi
if [ -x "$build/bench/korvatek_gallery_bench" ]; then
  echo "== picture gallery (offscreen)"
  QT_QPA_PLATFORM=offscreen "$build/bench/korvatek_gallery_bench" 2>/dev/null
fi
