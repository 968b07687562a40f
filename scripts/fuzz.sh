#!/usr/bin/env bash
# Builds the libFuzzer targets with AddressSanitizer and UndefinedBehaviorSanitizer and runs
# each for a given number of seconds:
#   scripts/fuzz.sh SECONDS [TARGET...]        (all targets when none is named)
# Installs clang and its sanitizer and fuzzer runtimes with apt-get when they are missing.
# The build lives in build-fuzz; seeds are made there from the demonstration fullflash
# (fuzz/make_seeds.sh), the corpus grows in build-fuzz/corpus/TARGET between runs, crash
# inputs are kept in build-fuzz/crashes/TARGET and whole logs in build-fuzz/logs. Inputs under
# tests/regressions/TARGET are run first. FUZZ_JOBS=N runs N targets at a time (default 1).
# Every allocation above 256 MB counts as a crash: no input may make a reader ask for that much.
# Exits non-zero when any target crashed.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
all_targets=(flash_pictures flash_fonts gpf dat bmp png vkp lumbra encoder keyfile)

if [ $# -lt 1 ] || ! [[ $1 =~ ^[0-9]+$ ]]; then
  echo "usage: $0 SECONDS [TARGET...]   targets: ${all_targets[*]}" >&2
  exit 2
fi
seconds=$1
shift
targets=("$@")
[ ${#targets[@]} -eq 0 ] && targets=("${all_targets[@]}")
for t in "${targets[@]}"; do
  if [[ " ${all_targets[*]} " != *" $t "* ]]; then
    echo "unknown target: $t (targets: ${all_targets[*]})" >&2
    exit 2
  fi
done
jobs=${FUZZ_JOBS:-1}

# Longest input each target is given.
max_len() {
  case $1 in
    flash_pictures|flash_fonts) echo 20000 ;;
    bmp) echo 32768 ;;
    gpf|dat|png) echo 16384 ;;
    keyfile) echo 4096 ;;
    *) echo 8192 ;;
  esac
}

# ---- tools: clang with the fuzzer runtime, cmake, ninja, libpng
as_root() {
  if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}
apt_install() {
  echo "fuzz: installing $*"
  export DEBIAN_FRONTEND=noninteractive
  as_root apt-get update -qq
  as_root apt-get install -y -qq --no-install-recommends "$@"
}
have_fuzzer_runtime() {
  command -v clang++ >/dev/null 2>&1 || return 1
  local lib
  lib=$(clang++ -print-file-name=libclang_rt.fuzzer-x86_64.a 2>/dev/null)
  [ -f "$lib" ] && return 0
  lib=$(clang++ -print-file-name=libclang_rt.fuzzer.a 2>/dev/null)
  [ -f "$lib" ]
}
missing=()
for p in cmake ninja-build pkg-config libpng-dev python3; do
  dpkg -s "$p" >/dev/null 2>&1 || missing+=("$p")
done
command -v clang++ >/dev/null 2>&1 || missing+=(clang)
[ ${#missing[@]} -gt 0 ] && apt_install "${missing[@]}"
if ! have_fuzzer_runtime; then
  major=$(clang++ -dumpversion | cut -d. -f1)
  if apt-cache show "libclang-rt-$major-dev" >/dev/null 2>&1; then
    apt_install "libclang-rt-$major-dev"
  else
    apt_install libclang-rt-dev
  fi
  have_fuzzer_runtime || { echo "fuzz: clang's fuzzer runtime is still missing" >&2; exit 1; }
fi

# ---- build
build=$root/build-fuzz
flags="-fsanitize=address,undefined -fno-sanitize-recover=undefined -fsanitize=fuzzer-no-link -fno-omit-frame-pointer"
CC=clang CXX=clang++ cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DKORVATEK_BUILD_FUZZ=ON -DKORVATEK_BUILD_TESTS=OFF -DKORVATEK_BUILD_BENCH=OFF -DKORVATEK_BUILD_GUI=OFF \
  "-DKORVATEK_WERROR=${KORVATEK_WERROR:-OFF}" \
  "-DCMAKE_CXX_FLAGS=$flags" >/dev/null
build_targets=(korvatek-cli)
for t in "${targets[@]}"; do build_targets+=("${t}_fuzz"); done
cmake --build "$build" --target "${build_targets[@]}"

# ---- seeds, made again whenever the seed script changed
seeds=$build/seeds
if [ ! -f "$seeds/.made" ] || [ "$root/fuzz/make_seeds.sh" -nt "$seeds/.made" ]; then
  rm -rf "$seeds"
  ASAN_OPTIONS=detect_leaks=0 bash "$root/fuzz/make_seeds.sh" "$build/cli/korvatek-cli" "$seeds" >/dev/null
  touch "$seeds/.made"
fi

# ---- runs
mkdir -p "$build/logs" "$build/crashes"
run_one() {
  local t=$1
  local corpus=$build/corpus/$t crashes=$build/crashes/$t
  mkdir -p "$corpus" "$crashes"
  local dirs=("$corpus" "$seeds/$t")
  [ -d "$root/tests/regressions/$t" ] && dirs+=("$root/tests/regressions/$t")
  local status=0
  "$build/fuzz/${t}_fuzz" -max_total_time="$seconds" -print_final_stats=1 -max_len="$(max_len "$t")" \
    -timeout=30 -rss_limit_mb=3072 -malloc_limit_mb=256 -artifact_prefix="$crashes/" "${dirs[@]}" \
    >"$build/logs/$t.log" 2>&1 || status=$?
  echo "$status" >"$build/logs/$t.status"
}

pids=()
for t in "${targets[@]}"; do
  echo "fuzz: $t for ${seconds}s"
  run_one "$t" &
  pids+=($!)
  while [ "$(jobs -rp | wc -l)" -ge "$jobs" ]; do wait -n || true; done
done
wait

# ---- report
failed=0
printf '\n%-16s %12s %8s %8s %8s  %s\n' target executions exec/s cov ft result
for t in "${targets[@]}"; do
  log=$build/logs/$t.log
  status=$(cat "$build/logs/$t.status" 2>/dev/null || echo 1)
  execs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)
  rate=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log" | tail -n 1)
  last=$(grep -E '^#[0-9]+.*cov: ' "$log" | tail -n 1 || true)
  cov=$(sed -n 's/.*cov: \([0-9]*\).*/\1/p' <<<"$last")
  ft=$(sed -n 's/.* ft: \([0-9]*\).*/\1/p' <<<"$last")
  result=ok
  if [ "$status" != 0 ]; then
    result="CRASH (exit $status)"
    failed=1
  fi
  printf '%-16s %12s %8s %8s %8s  %s\n' "$t" "${execs:--}" "${rate:--}" "${cov:--}" "${ft:--}" "$result"
  if [ "$status" != 0 ]; then
    grep -m 1 -E '^SUMMARY|ERROR: libFuzzer|invariant violated|runtime error' "$log" | sed 's/^/    /' || true
    # The first frames of the crash that lie outside libFuzzer, the sanitizers and libc.
    { grep -E '^ +#[0-9]+ ' "$log" || true; } |
      { grep -vE ' in (fuzzer::|__sanitizer|__asan|__ubsan|__pthread|raise|abort|__libc|main |_start)|libc\.so' || true; } |
      head -n 6 | sed 's/^/    /'
    sed -n 's/.*Test unit written to /    input: /p' "$log"
    echo "    log: $log"
  fi
done
exit $failed
