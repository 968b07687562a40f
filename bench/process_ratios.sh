#!/usr/bin/env bash
# Whole-process figures on the demo fullflash, each against its baseline in the same run,
# printed as ratios (median of several runs):
#   korvatek-cli info            vs  cat FLASH > /dev/null
#   korvatek-cli pictures        vs  cat FLASH > /dev/null
#   export all --format bmp      vs  cp -r of the folder it produced
#   export all --format gpf2     vs  cp -r of the folder it produced
# usage: bench/process_ratios.sh [path/to/korvatek-cli] [runs]
set -euo pipefail
cli=${1:-build/cli/korvatek-cli}
runs=${2:-7}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
flash="$work/demo.bin"
"$cli" demo-flash "$flash"

now() { date +%s%N; }
# median of the run times (ns) of a command
median() {
  local times=() t0 t1
  for _ in $(seq "$runs"); do
    [ -n "${before:-}" ] && eval "$before"
    t0=$(now); eval "$1" >/dev/null 2>&1; t1=$(now)
    times+=($((t1 - t0)))
  done
  printf '%s\n' "${times[@]}" | sort -n | sed -n "$(( (runs + 1) / 2 ))p"
}
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", a / b }'; }
row() { printf '%-28s %10.2f ms %-28s %10.2f ms  ratio %s  %s\n' "$1" "$(awk -v t="$2" 'BEGIN{print t/1e6}')" \
        "$3" "$(awk -v t="$4" 'BEGIN{print t/1e6}')" "$(ratio "$2" "$4")" "$5"; }
verdict() { awk -v r="$1" -v lim="$2" 'BEGIN { print (r <= lim) ? "within target" : "OVER target" }'; }

cat "$flash" >/dev/null  # warm the page cache for both sides
before=""
t_cat=$(median "cat '$flash'")
t_info=$(median "'$cli' info '$flash'")
t_list=$(median "'$cli' pictures '$flash'")
r=$(ratio "$t_info" "$t_cat"); row "info" "$t_info" "cat FLASH" "$t_cat" "$(verdict "$r" 1.0) (<= 1.0)"
r=$(ratio "$t_list" "$t_cat"); row "pictures" "$t_list" "cat FLASH" "$t_cat" "$(verdict "$r" 1.5) (<= 1.5)"

# The export and its copy alternate, so that both see the same state of the machine.
for format in bmp gpf2; do
  exports=() copies=()
  for _ in $(seq "$runs"); do
    rm -rf "$work/$format" "$work/copy"; sync
    t0=$(now); "$cli" export "$flash" all --dir "$work/$format" --format "$format" >/dev/null 2>&1; t1=$(now)
    exports+=($((t1 - t0)))
    sync
    t0=$(now); cp -r "$work/$format" "$work/copy"; t1=$(now)
    copies+=($((t1 - t0)))
  done
  t_export=$(printf '%s\n' "${exports[@]}" | sort -n | sed -n "$(( (runs + 1) / 2 ))p")
  t_copy=$(printf '%s\n' "${copies[@]}" | sort -n | sed -n "$(( (runs + 1) / 2 ))p")
  r=$(ratio "$t_export" "$t_copy")
  row "export all --format $format" "$t_export" "cp -r of the result" "$t_copy" "$(verdict "$r" 1.5) (<= 1.5)"
done
