#!/usr/bin/env bash
# Seed corpora for the fuzz targets, one folder per target under OUT_DIR, all made here from
# the demonstration fullflash and small generated files:
#   fuzz/make_seeds.sh PATH/TO/korvatek-cli OUT_DIR
# Pictures of every encoding exported as GPF2, GPF, DAT and BMP; PNG files of every colour
# type; a picture patch made by the command line and hand-written V_Klay and Lumbra-style
# patches; records and data of the picture table and glyph tables in the flash targets' input
# layout (see flash_pictures_fuzz.cpp and flash_fonts_fuzz.cpp).
set -euo pipefail

if [ $# -ne 2 ]; then
  echo "usage: $0 KORVATEK_CLI OUT_DIR" >&2
  exit 2
fi
cli=$1
out=$2
python=/usr/bin/python3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

mkdir -p "$out"
for t in flash_pictures flash_fonts gpf dat bmp png vkp lumbra encoder keyfile; do mkdir -p "$out/$t"; done

flash=$work/demo.bin
"$cli" demo-flash "$flash" >/dev/null
"$cli" pictures "$flash" >"$work/pictures.txt"
"$cli" fonts "$flash" >"$work/fonts.txt"
for f in 0 1 2; do "$cli" glyphs "$flash" "$f" | awk "NR == 1" >"$work/glyphs$f.txt"; done

# Pictures: the first forty (every encoding, small), the odd records, and a few large ones.
numbers="$(seq 0 40) 211 640 977 978 1333 1334 100 500 1000 1500 1700"
for n in $numbers; do
  name=$(printf '%04d' "$n")
  "$cli" export "$flash" "$n" -o "$work/$name.gpf2" >/dev/null 2>&1 || continue
  cp "$work/$name.gpf2" "$out/gpf/"
  "$cli" convert "$work/$name.gpf2" -o "$work/$name.gpf" >/dev/null 2>&1 && cp "$work/$name.gpf" "$out/gpf/" || true
  "$cli" convert "$work/$name.gpf2" -o "$work/$name.dat" >/dev/null 2>&1 && cp "$work/$name.dat" "$out/dat/" || true
  "$cli" decode "$work/$name.gpf2" -o "$out/bmp/$name.bmp" >/dev/null 2>&1 || true
done
# 32-bit bitmaps: pictures with alpha exported with it.
for n in 2 11 20 29; do
  "$cli" export "$flash" "$n" -o "$out/bmp/alpha_$n.bmp" --alpha >/dev/null 2>&1 || true
done
# Glyph bitmaps, as the glyph replacement reads them.
for f in 0 1 2; do
  for code in 65 103 200; do
    "$cli" glyph "$flash" "$f" "$code" -o "$out/bmp/glyph_${f}_$code.bmp" >/dev/null 2>&1 || true
  done
done

# A picture patch of the command line: in place, and grown into free space.
"$cli" patch "$flash" -o "$work/made.vkp" 3="$work/0012.gpf2" 5="$work/0001.gpf2" >/dev/null 2>&1 || true
if [ -s "$work/made.vkp" ]; then
  cp "$work/made.vkp" "$out/vkp/made.vkp"
  cp "$work/made.vkp" "$out/lumbra/made.vkp"
fi

"$python" - "$flash" "$work/pictures.txt" "$work/fonts.txt" "$work" "$out" <<'PY'
import os, struct, sys, zlib

flash_path, pictures_path, fonts_path, work, out = sys.argv[1:]
flash = open(flash_path, "rb").read()

def put(target, name, data):
    with open(os.path.join(out, target, name), "wb") as f:
        f.write(data)

# ---- flash_pictures: flags, first record K, count N, [identification], records, data of K
TABLE = 0x1B01958
rows = [l.split("\t") for l in open(pictures_path).read().splitlines() if l.strip()]
def data_offset(k):
    return int(rows[k][6], 16)
offsets = sorted({data_offset(k) for k in range(len(rows))})
def data_length(k):
    start = data_offset(k)
    later = [o for o in offsets if o > start]
    return min((later[0] if later else start + 64) - start, 12000)
ident = flash[0x8FC70:0x8FC74] + flash[0x81081:0x81083] + flash[0x15C001C:0x15C0025]
for k in list(range(0, 40)) + [211, 640, 977, 978, 1333, 1334, 1700]:
    for n in (1, 3):
        records = flash[TABLE + 12 * k: TABLE + 12 * (k + n)]
        start = data_offset(k)
        data = flash[start:start + data_length(k)] if 0 < start < len(flash) else b""
        put("flash_pictures", "pic_%04d_%d" % (k, n), bytes([0]) + struct.pack("<HB", k, n) + records + data)
    if k % 8 == 0:
        put("flash_pictures", "ident_%04d" % k, bytes([1]) + struct.pack("<HB", k, 1) + ident +
            flash[TABLE + 12 * k: TABLE + 12 * (k + 1)])

# ---- flash_fonts: font, flags, D, [pointers], descriptors, T, table, records
fonts = [l.split("\t") for l in open(fonts_path).read().splitlines() if l.strip()]
descriptors = flash[0x18B5A64:0x18B5A64 + 72]
for f, row in enumerate(fonts[:3]):
    d = int(row[1], 16)
    table = struct.unpack_from("<I", flash, d)[0] & 0x0FFFFFFF
    end = struct.unpack_from("<I", flash, d + 8)[0] & 0x0FFFFFFF
    first = int(open(os.path.join(work, "glyphs%d.txt" % f)).read().split("\t")[6], 16)
    for entries, records in ((16, 512), (64, 2048), (256, 8192)):
        t = flash[table:min(table + 8 * entries, end)]
        r = flash[first:first + records]
        put("flash_fonts", "font%d_%d" % (f, entries), bytes([f, 0, 0]) + struct.pack("<H", len(t)) + t + r)
    put("flash_fonts", "font%d_descriptors" % f, bytes([f, 0, 72]) + descriptors + struct.pack("<H", 0))
    put("flash_fonts", "font%d_pointers" % f, bytes([f, 3, 0]) + flash[0x15C001C:0x15C0025] + struct.pack("<H", 0))

# ---- png: every colour type and depth, interlaced, with pHYs and tRNS
def chunk(kind, body):
    return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body) & 0xFFFFFFFF)
def png(w, h, depth, ctype, interlace=0, extra=b"", palette=None):
    channels = {0: 1, 2: 3, 3: 1, 4: 2, 6: 4}[ctype]
    def row(y, width):
        bits = width * channels * depth
        raw = bytearray((bits + 7) // 8)
        for i in range(len(raw)):
            raw[i] = (i * 37 + y * 11) & 0xFF
        if ctype == 3:   # indices within the palette
            per = 8 // depth if depth < 8 else 1
            for i in range(len(raw)):
                raw[i] = 0 if depth < 8 else raw[i] % len(palette)
        return bytes([y % 5]) + bytes(raw)
    if interlace:
        passes = [(0, 0, 8, 8), (4, 0, 8, 8), (0, 4, 4, 8), (2, 0, 4, 4), (0, 2, 2, 4), (1, 0, 2, 2), (0, 1, 1, 2)]
        raw = b""
        for x0, y0, dx, dy in passes:
            pw = len(range(x0, w, dx)); ph = len(range(y0, h, dy))
            if pw and ph:
                raw += b"".join(row(y, pw) for y in range(ph))
    else:
        raw = b"".join(row(y, w) for y in range(h))
    body = b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", w, h, depth, ctype, 0, 0, interlace))
    if palette:
        body += chunk(b"PLTE", b"".join(palette))
    body += extra + chunk(b"IDAT", zlib.compress(raw)) + chunk(b"IEND", b"")
    return body
pal = [bytes([i * 40 % 256, i * 90 % 256, i * 20 % 256]) for i in range(6)]
phys = chunk(b"pHYs", struct.pack(">IIB", 2835, 2835, 1))
aspect = chunk(b"pHYs", struct.pack(">IIB", 1, 2, 0))
for depth in (1, 2, 4, 8, 16):
    put("png", "grey_%d.png" % depth, png(9, 7, depth, 0))
for depth in (8, 16):
    put("png", "rgb_%d.png" % depth, png(10, 6, depth, 2, extra=phys))
    put("png", "grey_alpha_%d.png" % depth, png(5, 5, depth, 4))
    put("png", "rgba_%d.png" % depth, png(12, 9, depth, 6, extra=aspect))
for depth in (1, 2, 4, 8):
    put("png", "palette_%d.png" % depth, png(11, 4, depth, 3, palette=pal))
put("png", "palette_trns.png", png(8, 8, 8, 3, palette=pal, extra=chunk(b"tRNS", bytes([0, 128, 255]))))
put("png", "interlaced.png", png(13, 11, 8, 6, interlace=1))
put("png", "largest.png", png(240, 320, 8, 2))
put("png", "too_wide.png", png(241, 2, 8, 2))

# ---- vkp: against the fuzz target's 4 KiB image (zeros, then i * 7 % 251 from 0x800)
image = bytearray(4096)
for i in range(2048, 4096):
    image[i] = i * 7 % 251
def edit(at, new):
    return "%08X: %s %s" % (at, image[at:at + len(new)].hex().upper(), new.hex().upper())
lines = ["; patch of the fuzz image", "", edit(0x10, bytes([1, 2, 3, 4])), edit(0x800, bytes(range(16))),
         "+100", "00000700: %s AABB" % image[0x800:0x802].hex().upper(), "-0",
         edit(0xFFC, b"\x01\x02\x03\x04"), "0x20: 00 11 ;comment", "30: 0000 FFFF", "bad line",
         "40: 00 0011", "+zz", "FFFFF: 00 01"]
put("vkp", "small.vkp", ("\r\n".join(lines) + "\r\n").encode())
put("vkp", "lf_only.vkp", ("\n".join(lines)).encode())
# The widest numbers the reader takes, each alone in range.
put("vkp", "wide_numbers.vkp", b"+7FFFFFFFFFFFFFF0\r\n-0\r\nFFFFFFFFFFFFFFF0: 00 00\r\n-7FFFFFFFFFFFFFFF\r\n+0\r\n0: 00 00\r\n")

# ---- lumbra: 12-byte and 8-byte records, marker-ended and line-ended sections
def lumbra_section(n, record_new, data, old_width):
    out = ["; ##### Picture %d #####" % n]
    out.append("01B01958: %s %s" % ("00" * old_width, record_new.hex().upper()))
    out.append("")
    for k in range(0, len(data), 16):
        part = data[k:k + 16]
        out.append("0%07X: %s %s" % (0x1B07068 + k, "FF" * len(part), part.hex().upper()))
    return out
pic = flash[data_offset(1):data_offset(1) + 0xE0]
l12 = lumbra_section(1, struct.pack("<HHBBHI", 16, 16, 0x88, 0, 0, 0xA1B07068), pic, 12) + \
      ["01FFFFF0: " + "FF" * 16 + " " + "0F" * 16, "", ""]
l8 = lumbra_section(7, bytes([16, 16, 0x07, 0, 0x68, 0x70, 0xB0, 0xA1]), flash[data_offset(7):data_offset(7) + 0x60], 8) + [""]
put("lumbra", "twelve.vkp", ("\r\n".join(l12) + "\r\n").encode())
put("lumbra", "eight.vkp", ("\r\n".join(l8) + "\r\n").encode())
put("lumbra", "both.vkp", ("\n".join(l12 + l8)).encode())

# ---- encoder: width, height (u16), target, palette size, palette, cell choices
def enc(w, h, target, pal, cells):
    return bytes([w]) + struct.pack("<H", h) + bytes([target, len(pal) - 1]) + b"".join(pal) + bytes(cells)
transparent = bytes([0xA9, 0xAB, 0xA9, 0x00])
colours = [bytes([0, 0, 0, 0xFF]), bytes([255, 255, 255, 0xFF]), transparent, bytes([10, 200, 30, 0x80])]
for target in range(4):
    put("encoder", "runs_%d" % target, enc(16, 16, target, colours, [i // 7 % 4 for i in range(256)]))
    put("encoder", "literals_%d" % target, enc(13, 11, target, colours, [i * 5 % 4 for i in range(143)]))
    put("encoder", "one_%d" % target, enc(1, 1, target, colours[:1], [0]))
    put("encoder", "wide_%d" % target, enc(240, 2, target, colours[:2], [i // 130 for i in range(480)]))

# ---- keyfile: a desktop entry and a mimeapps.list
put("keyfile", "desktop", b"[Desktop Entry]\nType=Application\nName=Korvatek\nExec=korvatek %f\n"
    b"MimeType=application/x-gpf;\n\n[Desktop Action new]\nExec=x\n")
put("keyfile", "mimeapps", b"# comment\r\n[Added Associations]\r\nimage/png=a.desktop;\r\n\r\n"
    b"[Default Applications]\r\napplication/x-gpf2 = other.desktop;\r\n")
PY

for t in "$out"/*/; do
  printf '%s: %s seeds\n' "$(basename "$t")" "$(ls "$t" | wc -l)"
done
