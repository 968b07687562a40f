#!/usr/bin/env bash
# Every command that reads a fullflash leaves it byte for byte as it was, whatever it writes.
#
# usage: flash_unchanged.sh PATH/TO/korvatek-cli
set -u
if [ $# -ne 1 ] || [ ! -x "$1" ]; then echo "usage: $0 PATH/TO/korvatek-cli" >&2; exit 2; fi
cli=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
"$cli" demo-flash flash.bin 2>/dev/null || { echo "FAIL demo-flash"; exit 1; }
before=$(sha256sum <flash.bin)
"$cli" export flash.bin 1 -o one.gpf2 >/dev/null 2>&1
"$cli" export flash.bin 0 -o zero.bmp >/dev/null 2>&1
"$cli" glyph flash.bin 1 65 -o a.bmp >/dev/null 2>&1
passed=0 failed=0
while read -r args; do
    # shellcheck disable=SC2086
    "$cli" $args >/dev/null 2>&1
    rc=$?
    if [ $rc -ge 128 ]; then echo "FAIL $args crashed ($rc)"; failed=$((failed + 1))
    elif [ "$(sha256sum <flash.bin)" != "$before" ]; then echo "FAIL $args changed the fullflash"; failed=$((failed + 1))
    else passed=$((passed + 1)); fi
done <<'EOF'
info flash.bin
pictures flash.bin
picture flash.bin 0
export flash.bin 2 -o two.gpf2
export flash.bin 2 -o two.bmp --alpha
export flash.bin all --dir all --format gpf2
patch flash.bin -o p.vkp 3=one.gpf2 4=zero.bmp:16
apply flash.bin p.vkp -o patched.bin
apply flash.bin p.vkp -o flash.bin
fonts flash.bin
glyphs flash.bin 0
glyph flash.bin 0 65 -o g.bmp
glyph flash.bin 2 all --dir glyphs
font-size flash.bin 0 12 -o size.vkp
font-patch flash.bin 1 -o f.vkp 65=a.bmp
make-font flash.bin 2 glyphs -o mf.vkp
EOF
echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
