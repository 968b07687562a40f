#!/usr/bin/env bash
# The Windows build in every test run: cross-builds both programs and the tests for 64-bit
# Windows with Debian's mingw-w64 against a static Qt, and runs them under wine: the unit and
# command tests, the window's tests (offscreen), every command-line test script against
# korvatek-cli.exe, a session in a folder named in Cyrillic with a blank, the installer (silent
# install, then the installed CLI), and the window on a virtual X display (a screenshot).
#
# The Windows libraries (static Qt 6, libpng, GoogleTest) come from
# ../shared/windows-sdk/korvatek-windows-sdk.tar.xz beside the repository when it is there, and
# are otherwise built from Debian's source packages by scripts/windows-sdk/build-sdk.sh (about
# 50 minutes once). Usage: test-windows.sh [BUILD_FOLDER]   (default: build-windows)
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
out=$(realpath -m "${1:-$root/build-windows}")
jobs=${KORVATEK_JOBS:-2}
started=$(date +%s)
mkdir -p "$out"

# ---------------------------------------------------------------- tools from Debian
bash "$root/scripts/setup.sh" libcli11-dev nlohmann-json3-dev g++-mingw-w64-x86-64-posix libz-mingw-w64-dev mingw-w64-tools wine64 nsis \
  qt6-base-dev-tools cmake ninja-build python3 xvfb x11-apps netpbm xz-utils

# ---------------------------------------------------------------- the Windows libraries
sdk_archive=$root/../shared/windows-sdk/korvatek-windows-sdk.tar.xz
sdk_sha256=fe7f57e0cb13fa18a53205699a8d0a26d1e156d0c7b39e3d506fb8c5f7681175
sdk=$out/korvatek-windows-sdk
if [ -f "$sdk_archive" ]; then
  if [ "$(cat "$sdk/.archive-sha256" 2>/dev/null)" != "$sdk_sha256" ]; then
    echo "test-windows: unpacking $(realpath "$sdk_archive")"
    actual=$(sha256sum "$sdk_archive" | cut -d' ' -f1)
    if [ "$actual" != "$sdk_sha256" ]; then
      echo "test-windows: $sdk_archive has sha256 $actual, expected $sdk_sha256" >&2
      exit 1
    fi
    rm -rf "$sdk"
    tar -xJf "$sdk_archive" -C "$out"
    echo "$sdk_sha256" > "$sdk/.archive-sha256"
  fi
elif [ ! -f "$sdk/.built" ]; then
  echo "test-windows: no prepared Windows libraries; building them from Debian's sources (about 50 minutes)"
  rm -rf "$sdk"
  bash "$root/scripts/windows-sdk/build-sdk.sh" "$out/sdk-build"
  tar -xJf "$out/sdk-build/korvatek-windows-sdk.tar.xz" -C "$out"
  touch "$sdk/.built"
fi

# ---------------------------------------------------------------- wine: private prefix, one server
wine=$(command -v /usr/lib/wine/wine64 wine64 wine | head -n 1 || true)
wineserver=$(command -v /usr/lib/wine/wineserver64 wineserver64 wineserver | head -n 1 || true)
export WINEPREFIX=$out/wineprefix WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=" WINEARCH=win64
unset DISPLAY  # nothing but the screenshot below needs a display
# The emulator CMake and the command-line scripts call: wine with this prefix, whatever the
# caller's environment holds.
cat > "$out/wine-run" <<EOF
#!/bin/sh
export WINEPREFIX='$WINEPREFIX' WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml='
exec '$wine' "\$@"
EOF
chmod +x "$out/wine-run"
# One persistent server for the whole run: each start then costs a few hundredths of a second
# instead of about three, and no program meets a server that is just ending (which reads as
# "recvmsg: Connection reset by peer"). One left over from an earlier run of this prefix goes.
mkdir -p "$WINEPREFIX"
"$wineserver" -k 2>/dev/null || true
"$wineserver" -p
trap '"$wineserver" -k 2>/dev/null || true' EXIT
if [ ! -f "$WINEPREFIX/system.reg" ]; then
  echo "test-windows: creating the wine prefix"
  "$wine" wineboot --init >/dev/null 2>&1 || true
fi
"$wine" cmd /c exit >/dev/null 2>&1 || true

# ---------------------------------------------------------------- cross build
echo "== Windows: cross build"
build=$out/build
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DKORVATEK_BUILD_BENCH=OFF \
  -DCMAKE_TOOLCHAIN_FILE="$sdk/qt6/lib/cmake/Qt6/qt.toolchain.cmake" \
  -DQT_CHAINLOAD_TOOLCHAIN_FILE="$root/cmake/mingw-w64-x86_64.cmake" -DKORVATEK_WINDOWS_SDK="$sdk" \
  -DCMAKE_CROSSCOMPILING_EMULATOR="$out/wine-run" >/dev/null
cmake --build "$build" -j "$jobs"
built=$(date +%s)

# ---------------------------------------------------------------- tests under wine
echo "== Windows: unit, command, window and command-line tests under wine"
ctest_log=$out/ctest.log
status=0
(cd "$build" && ctest --output-on-failure -j "$jobs" --timeout 900) > "$ctest_log" 2>&1 || status=1
grep -E "tests passed|Failed|Not Run|\*\*\*" "$ctest_log" || true
for f in "$build"/tests/gui/gui_*.txt; do
  [ -f "$f" ] || continue
  if grep -q "^FAIL" "$f"; then grep -E "^FAIL|^   Loc" "$f"; fi
done
gtests=$(grep -cE "^ *add_test" "$build"/tests/korvatek_tests*_tests.cmake 2>/dev/null || echo 0)
qt_totals=$(cat "$build"/tests/gui/gui_*.txt 2>/dev/null |
            awk '/^Totals:/ {p += $2; f += $4; s += $6} END {printf "%d passed, %d failed, %d skipped", p, f, s}' || true)
# Each command-line script ends with "N passed, M failed"; CTest keeps every test's output here.
cli_totals=$(grep -hE '^[0-9]+ passed, [0-9]+ failed$' "$build/Testing/Temporary/LastTest.log" |
             awk '{p += $1; f += $3; n++} END {printf "%d scripts, %d checks passed, %d failed", n, p, f}' || true)

# ---------------------------------------------------------------- a folder named in Cyrillic, with a blank
echo "== Windows: a session in 'Прошивка E71/'"
cli=$build/tests/korvatek-cli
session_failed=0
session() {  # DIR PROGRAM: the commands run in DIR; what they print goes to DIR.log
  local dir=$1 program=$2
  rm -rf "$dir" && mkdir -p "$dir" && cd "$dir"
  step() { "$program" "$@" || echo "exit $? from $1"; }
  {
    step demo-flash "демо прошивка.bin"
    step info "демо прошивка.bin"
    step pictures "демо прошивка.bin" | md5sum
    step export "демо прошивка.bin" all --dir "картинки" --format bmp | md5sum
    step export "демо прошивка.bin" 1 -o "один.gpf2"
    step patch "демо прошивка.bin" -o "замена.vkp" 12="один.gpf2"
    step apply "демо прошивка.bin" "замена.vkp" -o "прошивка с заменой.bin"
    step info "$dir/прошивка с заменой.bin"
  } > "$dir.log" 2>&1
  cd "$root"
}
cyrillic=$out/session/Прошивка\ E71
session "$out/session/plain" "$cli"
session "$cyrillic" "$cli"
session_summary() {  # every file name and content, and what was printed, without the folder name
  (cd "$1" && find . -type f | LC_ALL=C sort | xargs -d '\n' md5sum)
  sed "s#$1#FOLDER#g" "$1.log"
}
if ! diff <(session_summary "$out/session/plain") <(session_summary "$cyrillic") >/dev/null; then
  echo "FAIL: the session in '$cyrillic' differs from the one in an ASCII folder:"
  diff <(session_summary "$out/session/plain") <(session_summary "$cyrillic") | head -n 20 || true
  session_failed=1
fi
if [ "$(find "$cyrillic" -type f | wc -l)" -lt 1703 ]; then  # 1699 pictures that decode, and four files
  echo "FAIL: files missing in '$cyrillic'; the programs said:"
  head -n 5 "$cyrillic.log"
  session_failed=1
fi
linux_cli=${KORVATEK_LINUX_CLI:-$root/build-test/cli/korvatek-cli}
if [ -x "$linux_cli" ]; then
  session "$out/session/linux" "$linux_cli"
  if ! diff <(session_summary "$out/session/linux") <(session_summary "$cyrillic") >/dev/null; then
    echo "FAIL: Windows and Linux give different files or output:"
    diff <(session_summary "$out/session/linux") <(session_summary "$cyrillic") | head -n 20 || true
    session_failed=1
  else
    echo "same files and output as the Linux build ($(find "$cyrillic" -type f | wc -l) files)"
  fi
fi
[ $session_failed -eq 0 ] || status=1

# ---------------------------------------------------------------- installer
echo "== Windows: installer"
installer_failed=0
(cd "$build" && cpack -G NSIS64 >/dev/null) || installer_failed=1
installer=$(ls -t "$build"/Korvatek-*-win64.exe 2>/dev/null | head -n 1 || true)
if [ -n "$installer" ]; then
  target='C:\Program Files\Korvatek'
  "$wine" "$installer" /S "/D=$target" || installer_failed=1
  installed=$WINEPREFIX/drive_c/Program\ Files/Korvatek
  for f in korvatek.exe korvatek-cli.exe Uninstall.exe; do
    [ -f "$installed/$f" ] || { echo "FAIL: the installer left no $f"; installer_failed=1; }
  done
  ls "$WINEPREFIX"/drive_c/ProgramData/Microsoft/Windows/Start\ Menu/Programs/Korvatek/Korvatek.lnk >/dev/null ||
    { echo "FAIL: no Start-menu entry"; installer_failed=1; }
  said=$("$wine" "$target\\korvatek-cli.exe" --help 2>&1 | head -n 1 || true)
  [ "$said" = "usage: korvatek-cli COMMAND [ARGS...]" ] || { echo "FAIL: the installed CLI said '$said'"; installer_failed=1; }
  # The association the Options dialog writes, so its boxes show it as set.
  open_command() { "$wine" reg query 'HKCU\Software\Classes\gpffile\shell\open\command' /ve 2>/dev/null |
                   tr -d '\r' | sed -n 's/^ *(Default) *REG_SZ *//p'; }
  [ "$(open_command)" = "$target\\korvatek.exe %1" ] ||
    { echo "FAIL: after installing, .gpf opens with '$(open_command)'"; installer_failed=1; }
  "$wine" "$installed/Uninstall.exe" /S "_?=$target" || installer_failed=1
  # The uninstaller may still be finishing when wine hands back: give it a few seconds.
  for _ in $(seq 20); do [ -z "$(open_command)" ] && break; sleep 0.5; done
  [ -z "$(open_command)" ] || { echo "FAIL: the uninstaller left the association"; installer_failed=1; }
else
  installer_failed=1
fi
[ $installer_failed -eq 0 ] || { echo "FAIL: installer"; status=1; }

# ---------------------------------------------------------------- the window on a virtual display
echo "== Windows: the window under wine on a virtual X display"
screenshot=$out/korvatek-window.png
rm -f "$screenshot"
display=:$((90 + RANDOM % 100))
Xvfb "$display" -screen 0 1280x900x24 -nolisten tcp >/dev/null 2>&1 &
xvfb=$!
sleep 1
DISPLAY=$display "$wine" "$build/gui/korvatek.exe" "$cyrillic/демо прошивка.bin" >/dev/null 2>&1 &
window=$!
sleep "${KORVATEK_WINDOW_SECONDS:-8}"
if kill -0 $window 2>/dev/null; then
  DISPLAY=$display xwd -root -silent | xwdtopnm 2>/dev/null | pnmtopng > "$screenshot" 2>/dev/null || true
else
  echo "FAIL: the window ended on its own"
  status=1
fi
kill $window 2>/dev/null || true
wait $window 2>/dev/null || true
kill $xvfb 2>/dev/null || true
wait $xvfb 2>/dev/null || true

# ---------------------------------------------------------------- what a start under wine costs
t0=$(date +%s%N)
for _ in 1 2 3 4 5 6 7 8 9 10; do "$cli" --help >/dev/null; done
start_ms=$(( ($(date +%s%N) - t0) / 10000000 ))

# ---------------------------------------------------------------- summary
size() { stat -c %s "$1" 2>/dev/null | awk '{printf "%.1f MB", $1 / 1048576}'; }
echo "== Windows summary"
echo "under wine: $gtests unit and command tests (GoogleTest), window tests $qt_totals (QtTest),"
echo "  command-line scripts $cli_totals; ctest: $(grep -E 'tests passed' "$ctest_log" || echo 'no result')"
echo "a korvatek-cli.exe start under wine (persistent server): $start_ms ms"
echo "korvatek.exe $(size "$build/gui/korvatek.exe"), korvatek-cli.exe $(size "$build/cli/korvatek-cli.exe"), installer ${installer:+$(basename "$installer") $(size "$installer")}"
[ -f "$screenshot" ] && echo "screenshot: $screenshot"
echo "Windows part: $(( $(date +%s) - started )) s (build $(( built - started )) s)"
exit $status
