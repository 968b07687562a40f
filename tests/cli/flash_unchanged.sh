#!/usr/bin/env bash
# Every command that reads a fullflash leaves it byte for byte as it was, whatever it writes.
set -uo pipefail
cli=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
"$cli" demo-flash flash.bin 2>/dev/null || { echo "FAIL demo-flash"; exit 1; }
before=$(sha256sum flash.bin | cut -d' ' -f1)
passed=0 failed=0
check() {
  local name=$1; shift
  "$@" >/dev/null 2>&1
  local rc=$?
  if [ "$rc" -ge 128 ]; then echo "FAIL $name crashed ($rc)"; failed=$((failed + 1)); return; fi
  if [ "$(sha256sum flash.bin | cut -d' ' -f1)" != "$before" ]; then
    echo "FAIL $name changed the fullflash"; failed=$((failed + 1)); return
  fi
  passed=$((passed + 1))
}
"$cli" export flash.bin 1 -o one.gpf2 >/dev/null 2>&1
"$cli" export flash.bin 0 -o zero.bmp >/dev/null 2>&1
"$cli" glyph flash.bin 1 65 -o a.bmp >/dev/null 2>&1
check info "$cli" info flash.bin
check pictures "$cli" pictures flash.bin
check picture "$cli" picture flash.bin 0
check export-one "$cli" export flash.bin 2 -o two.gpf2
check export-bmp "$cli" export flash.bin 2 -o two.bmp --alpha
check export-all "$cli" export flash.bin all --dir all --format gpf2
check patch "$cli" patch flash.bin -o p.vkp 3=one.gpf2 4=zero.bmp:16
check apply "$cli" apply flash.bin p.vkp -o patched.bin
check apply-self "$cli" apply flash.bin p.vkp -o flash.bin
check fonts "$cli" fonts flash.bin
check glyphs "$cli" glyphs flash.bin 0
check glyph "$cli" glyph flash.bin 0 65 -o g.bmp
check glyph-all "$cli" glyph flash.bin 2 all --dir glyphs
check font-size "$cli" font-size flash.bin 0 12 -o size.vkp
check font-patch "$cli" font-patch flash.bin 1 -o f.vkp 65=a.bmp
check make-font "$cli" make-font flash.bin 2 glyphs -o mf.vkp
echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
