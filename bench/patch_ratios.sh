#!/usr/bin/env bash
# Whole-process figures of the patch tools, each against its baseline in the same run,
# printed as ratios (median of several alternated runs):
#   patch with a free-space search over the whole image  vs  cat FLASH > /dev/null
#   make over 1701 containers                             vs  cat of those containers into one file
# usage: bench/patch_ratios.sh [path/to/korvatek-cli] [runs]
set -euo pipefail
cli=$(realpath "${1:-build/cli/korvatek-cli}")
runs=${2:-7}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export TMP=$work/tmp
mkdir "$TMP"
demo="$work/demo.bin"
"$cli" demo-flash "$demo"

now() { date +%s%N; }
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", a / b }'; }
row() { printf '%-28s %10.2f ms %-28s %10.2f ms  ratio %s  %s\n' "$1" "$(awk -v t="$2" 'BEGIN{print t/1e6}')" \
        "$3" "$(awk -v t="$4" 'BEGIN{print t/1e6}')" "$(ratio "$2" "$4")" "$5"; }
verdict() { awk -v r="$1" -v lim="$2" 'BEGIN { print (r <= lim) ? "within target" : "OVER target" }'; }
median_of() { printf '%s\n' "$@" | sort -n | sed -n "$(( ($# + 1) / 2 ))p"; }
# Runs the measured command and its baseline one after the other, RUNS times, so that both
# see the same state of the machine; sets T_CMD and T_BASE (median ns). PREP runs untimed
# before each of the two.
alternate() {  # PREP CMD BASE
    local cmds=() bases=() t0 t1
    for _ in $(seq "$runs"); do
        eval "$1"
        t0=$(now); eval "$2" >/dev/null 2>&1; t1=$(now)
        cmds+=($((t1 - t0)))
        eval "$1"
        t0=$(now); eval "$3" >/dev/null 2>&1; t1=$(now)
        bases+=($((t1 - t0)))
    done
    T_CMD=$(median_of "${cmds[@]}")
    T_BASE=$(median_of "${bases[@]}")
}

# ---- (a) a free-space search that meets erased flash only at the very end of the image.
# The erased areas of the demo fullflash get data; only the last 16 KiB stay 0xFF. The new
# picture (the 240 x 320 picture 0, about 9 KiB) is larger than picture 1, so the search
# walks from its start at 0x1320000 to the end of the image (skipping only the stretch that
# it always skips).
full="$work/full.bin"
/usr/bin/python3 - "$demo" "$full" <<'EOF'
import sys
data = bytearray(open(sys.argv[1], "rb").read())
fill = bytes((i * 7 + 1) % 255 for i in range(256))  # never 0xFF
for start, end in ((0x1300000, 0x1500000), (0x1FB0000, len(data) - 0x4000)):
    data[start:end] = fill * ((end - start) // 256)
open(sys.argv[2], "wb").write(data)
EOF
"$cli" export "$demo" 0 -o "$work/big.gpf2" >/dev/null
patch_cmd="'$cli' patch '$full' -o '$work/p.vkp' 1='$work/big.gpf2'"
eval "$patch_cmd" >/dev/null 2>&1 || { echo "patch failed on the filled fullflash" >&2; exit 1; }
# The data must have gone to the erased run at the end, or the figure measures nothing.
placed=$(grep -a -m1 -E '^01FF[C-F][0-9A-F]{3}:' "$work/p.vkp" | cut -d: -f1 || true)
[ -n "$placed" ] || { echo "the picture did not go to the end of the image" >&2; exit 1; }
cat "$full" >/dev/null  # warm the page cache for both sides
alternate "rm -f '$work/p.vkp'" "$patch_cmd" "cat '$full'"
r=$(ratio "$T_CMD" "$T_BASE")
row "patch, search to the end" "$T_CMD" "cat FLASH" "$T_BASE" "$(verdict "$r" 2.0) (<= 2.0)"

# ---- (b) Make over 1701 containers against concatenating them.
src="$work/gpf2"
"$cli" export "$demo" all --dir "$src" --format gpf2 >/dev/null 2>&1 || true
for n in $(seq 0 1700); do  # rows that cannot be saved get a small picture, so all 1701 exist
    name=$(printf '%s/%04d.gpf2' "$src" "$n")
    [ -e "$name" ] || cp "$src/0001.gpf2" "$name"
done
make_cmd="'$cli' make '$src' '$work/made'"
cat_cmd="cat '$src'/*.gpf2 > '$work/cat.bin'"
eval "$make_cmd" >/dev/null 2>&1 || { echo "make failed" >&2; exit 1; }
alternate "rm -rf '$work/made' '$work/cat.bin'; mkdir '$work/made'" "$make_cmd" "$cat_cmd"
r=$(ratio "$T_CMD" "$T_BASE")
row "make, 1701 containers" "$T_CMD" "cat of the containers" "$T_BASE" "$(verdict "$r" 1.5) (<= 1.5)"
