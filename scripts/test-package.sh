#!/usr/bin/env bash
# Checks what a Linux user installs: the .deb made by CPack from a build folder (lintian: no
# errors), its programs run from the unpacked package, and the desktop entry, AppStream
# metainfo, MIME types and manual pages through their validators.
#   scripts/test-package.sh BUILD_FOLDER
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:?usage: $0 BUILD_FOLDER}

bash "$root/scripts/setup.sh" lintian desktop-file-utils appstream libxml2-utils man-db help2man dpkg-dev
# The manual pages are made by the build once help2man is there.
cmake "$build" >/dev/null && cmake --build "$build" >/dev/null

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
(cd "$build" && rm -f korvatek_*.deb && cpack -G DEB >/dev/null)
deb=$(ls "$build"/korvatek_*.deb)
echo "package: $(basename "$deb"), $(stat -c %s "$deb") bytes"

echo "lintian:"
lintian --fail-on error "$deb" 2>&1 | grep -v 'running with root privileges' || true
lintian --fail-on error "$deb" >/dev/null 2>&1

dpkg-deb -x "$deb" "$scratch/root"
usr=$scratch/root/usr
"$usr/bin/korvatek-cli" --version
"$usr/bin/korvatek" --version
"$usr/bin/korvatek-cli" demo-flash "$scratch/demo.bin"
"$usr/bin/korvatek-cli" info "$scratch/demo.bin"

desktop-file-validate "$usr/share/applications/korvatek.desktop"
appstreamcli validate-tree --no-net "$scratch/root"
xmllint --noout "$usr/share/mime/packages/korvatek.xml"
for page in "$usr/share/man/man1/"*.1.gz; do
  MANWIDTH=80 man -l "$page" >"$scratch/page.txt" 2>"$scratch/page.err"
  if [ -s "$scratch/page.err" ] || ! grep -q "SYNOPSIS\|DESCRIPTION" "$scratch/page.txt"; then
    echo "manual page $(basename "$page") does not render:"; cat "$scratch/page.err"; exit 1
  fi
done
echo "package checks: passed ($(dpkg-deb -c "$deb" | grep -vc '/$') files)"
