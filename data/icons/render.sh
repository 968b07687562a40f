#!/bin/sh
# Regenerates the hicolor PNG icons from korvatek.svg (needs rsvg-convert, Debian package librsvg2-bin).
set -eu
here=$(dirname "$0")
for size in 16 22 24 32 48 64 128 256; do
    mkdir -p "$here/hicolor/${size}x${size}/apps"
    rsvg-convert -w "$size" -h "$size" -o "$here/hicolor/${size}x${size}/apps/korvatek.png" "$here/korvatek.svg"
done
