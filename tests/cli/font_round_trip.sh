#!/usr/bin/env bash
# The font commands of korvatek-cli on the demo fullflash, checked against the raw bytes by a
# decoder written here from the firmware's font layout:
#   fonts, glyphs  - every line of every font, cell for cell (the font 0 lift of entries
#                    375..783, the FF references, the "len" figure, the padding rules);
#   glyph          - the information text, and every glyph of every font as a BMP (cell size,
#                    the negative shift, margins, bitmap bits);
#   font-patch     - glyphs exported, edited (bolder, wider, blank), loaded one by one and by
#                    folder, the patch text line for line, applied, the patched flash read back;
#   make-font      - a font rebuilt from edited bitmaps that outgrow their single-glyph room,
#                    applied and read back, also for the font with 0xFFFFxxxx references;
#   font-size      - the four lines, the answers the input box accepts, applied.
#
# usage: font_round_trip.sh PATH/TO/korvatek-cli
set -u

if [ $# -ne 1 ] || [ ! -x "$1" ]; then
    echo "usage: $0 PATH/TO/korvatek-cli" >&2
    exit 2
fi
CLI=$(realpath "$1")
exec 2>&1
PY=/usr/bin/python3
[ -x "$PY" ] || PY=python3
WORK=$(mktemp -d)
trap 'rm -rf "$WORK"' EXIT
cd "$WORK" || exit 1
mkdir tmp
export TMP=$WORK/tmp

passed=0
failed=0
pass() { passed=$((passed + 1)); }
fail() {
    failed=$((failed + 1))
    echo "FAIL: $*"
}
finish() {
    echo "$passed passed, $failed failed"
    [ "$failed" -eq 0 ] && exit 0
    exit 1
}
run() {
    "$CLI" "$@" >cmd.out 2>cmd.err
    RC=$?
    if [ $RC -ge 128 ]; then fail "korvatek-cli $* crashed (status $RC)"; fi
}
expect_rc() {  # WANT WHAT
    if [ "$RC" -eq "$1" ]; then pass; else fail "$2: exit $RC, expected $1 (stderr: $(head -n 3 cmd.err | tr '\n' '|'))"; fi
}
# Adds the counts of a checker's output (its "FAIL:" lines and "N passed, M failed").
fold() {  # OUTPUT_FILE WHAT
    local line m
    grep '^FAIL' "$1" | head -n 15
    line=$(grep -E '^[0-9]+ passed, [0-9]+ failed$' "$1" | tail -n 1)
    if [ -z "$line" ]; then
        fail "$2 printed no summary: $(tail -n 3 "$1" | tr '\n' '|')"
        return
    fi
    passed=$((passed + ${line%% passed*}))
    m=${line#*, }
    failed=$((failed + ${m%% failed}))
}
check() {  # WHAT ARGS...: runs the checker, folds its counts
    local what=$1
    shift
    "$PY" "$WORK/fontcheck.py" "$@" >check.out 2>&1
    fold check.out "$what"
}

cat >"$WORK/fontcheck.py" <<'PY'
"""Reads fonts and glyphs straight from fullflash bytes and compares the CLI's output."""
import os
import struct
import sys

passed = 0
failed = 0
shown = 0

def ok(cond, what):
    global passed, failed, shown
    if cond:
        passed += 1
    else:
        failed += 1
        shown += 1
        if shown <= 25:
            print("FAIL: " + what)
    return cond

def summary():
    print("%d passed, %d failed" % (passed, failed))

class Outside(Exception):
    pass

# ---- the firmware's font layout
def u32(d, at):
    return int.from_bytes((bytes(d[at:at + 4]) + bytes(4))[:4], "little")

def off7(v):
    return v & 0x0FFFFFFF

def valhex(text):
    """Hex text as the hex helper reads it: four digits or fewer are 16-bit signed."""
    if not text:
        return 0
    v = int(text, 16)
    bits = 16 if len(text) <= 4 else 32
    return v - (1 << bits) if v >= 1 << (bits - 1) else v

def pad2(n):
    return "%02d" % n

def len_text(w, h):
    t = "%X" % ((w // 8 + 1) * h)
    return "0" + t if len(t) < 2 else t

def descriptor(d, font):
    return off7(u32(d, 0x15C001C)) + 24 * font

def font_area(d):
    return off7(u32(d, 0x15C0020))

def table(d, font):
    """The glyph rows of a font: the nine cells, the record offset and the raw reference."""
    D = descriptor(d, font)
    S, E = off7(u32(d, D)), off7(u32(d, D + 8))
    last = round((E - S) / 8 - 1)
    A = font_area(d)
    rows = []
    for i in range(last + 1):
        raw = u32(d, S + 4 + 8 * i)
        R = "%X" % raw
        if R.startswith("FF"):
            R = R[-4:]
        G = A + valhex(R) + (0x10000 if font == 0 and 374 < i < 784 else 0)
        b = (bytes(d[G:G + 5]) + bytes(5))[:5]
        cells = ["%04d" % (i + 1), pad2(b[0]), str(b[1]), str(b[2]), pad2(b[3]), pad2(b[4]),
                 "%X" % G, R, len_text(b[1], b[2])]
        rows.append({"cells": cells, "G": G, "raw": raw, "entry": S + 4 + 8 * i, "hdr": b})
    return rows

def stored(w, h):
    return (w + 7) // 8 * h

def decode(d, hdr, G):
    """The glyph cell as the glyph decoder fills it: (W, H, rows of 1 = ink, 0 = paper)."""
    W, w, h, sL, sB = hdr
    H = h + sB
    if sL > 127:
        W, sL = W + 257 - sL, 0
    if w == 0:
        h = 0
    if h == 0:
        w = 0
    grid = {}
    def put(x, y, v):
        if not (0 <= x <= 100 and 0 <= y <= 100):
            raise Outside()
        grid[(x, y)] = v
    pos, x, y = G + 5, sL, 0
    while True:
        byte = d[pos] if pos < len(d) else 0
        pos += 1
        for bit in range(7, -1, -1):
            put(x, y, (byte >> bit) & 1)
            x += 1
            if x == sL + w:
                x, y = sL, y + 1
                break
        if y == h:
            break
        if y > 101:
            raise Outside()
    def fill(count, x, y, frm, to):
        for _ in range(count):
            put(x, y, 0)
            x += 1
            if x == to:
                x, y = frm, y + 1
    if sL > 0:
        fill(sL * h, 0, 0, 0, sL)
    if W - w - sL > 0:
        fill((W - w - sL) * h, sL + w, 0, sL + w, W)
    if H - h > 0:
        fill(W * (H - h), 0, h, 0, W)
    return W, H, [[grid.get((x, y)) for x in range(W)] for y in range(H)]

def info_text(row):
    W, H = int(row[1]), int(row[3]) + int(row[5])
    if int(row[4]) > 127:
        W += 257 - int(row[4])
    return "Width: %d\nHeight: %d\n\nSymbolCode: 0x%X\n\nLenght: 0x%s\n" % (W, H, int(row[0]), row[8])

# ---- BMP files
def read_bmp(path, what):
    """(width, height, rows of (b, g, r) top row first), checking the 24-bit header."""
    b = open(path, "rb").read()
    if not ok(len(b) >= 54 and b[:2] == b"BM", "%s: not a BMP" % what):
        return None
    size, _, off, info, W, H, planes, bpp, comp, image = struct.unpack_from("<IIIIiiHHII", b, 2)
    stride = (W * 3 + 3) // 4 * 4
    good = (size == len(b) and off == 54 and info == 40 and planes == 1 and bpp == 24 and comp == 0
            and image == len(b) - 54 and H >= 0 and len(b) == 54 + stride * H)
    if not ok(good, "%s: header size %d off %d bpp %d %dx%d image %d, file %d bytes"
              % (what, size, off, bpp, W, H, image, len(b))):
        return None
    rows = []
    for y in range(H):
        at = 54 + (H - 1 - y) * stride
        rows.append([tuple(b[at + 3 * x:at + 3 * x + 3]) for x in range(W)])
    return W, H, rows

def write_bmp(path, ink):
    """A 24-bit BMP of black ink on white paper."""
    H, W = len(ink), len(ink[0]) if ink else 0
    stride = (W * 3 + 3) // 4 * 4
    body = bytearray()
    for y in range(H - 1, -1, -1):
        row = bytearray()
        for x in range(W):
            row += b"\0\0\0" if ink[y][x] else b"\xff\xff\xff"
        body += row + bytes(stride - len(row))
    head = b"BM" + struct.pack("<IIIIiiHHIIiiII", 54 + len(body), 0, 54, 40, W, H, 1, 24, 0, len(body), 0, 0, 0, 0)
    open(path, "wb").write(head + body)

def ink_of(pix):
    return [[1 if sum(p) / 3 < 127 else 0 for p in row] for row in pix]

def trim(ink, Wb, Hb):
    """The ink rectangle as the glyph loader finds it: W, w, h, left, bottom, top."""
    row_ink = [any(ink[y]) for y in range(Hb)]
    col_ink = [any(ink[y][x] for y in range(Hb)) for x in range(Wb)]
    def count(flags):
        n = 0
        while n < len(flags) and not flags[n]:
            n += 1
        return n
    top, bottom = count(row_ink), count(row_ink[::-1])
    left, right = count(col_ink), count(col_ink[::-1])
    return {"W": Wb, "w": max(0, Wb - left - right), "h": max(0, Hb - top - bottom),
            "left": left, "bottom": bottom, "top": top}

def encode(ink, t):
    """The firmware bitmap of the trimmed rectangle: rows byte-aligned, padding bits set."""
    out = bytearray()
    for y in range(t["top"], t["top"] + t["h"]):
        bits = [ink[y][x] for x in range(t["left"], t["left"] + t["w"])]
        bits += [1] * (-len(bits) % 8)
        for k in range(0, len(bits), 8):
            out.append(int("".join(map(str, bits[k:k + 8])), 2))
    return bytes(out)

def new_glyph(path):
    """Header and bitmap that a BMP becomes when it replaces a glyph."""
    W, H, pix = read_bmp(path, path)
    ink = ink_of(pix)
    t = trim(ink, W, H)
    hdr = bytes([t["W"], t["w"], t["h"], t["left"], t["bottom"]])
    return hdr, encode(ink, t), ink, t

def ink_from_bottom(ink):
    H = len(ink)
    return {(x, H - 1 - y) for y in range(H) for x in range(len(ink[y])) if ink[y][x]}

def lines_of(path):
    return [l for l in open(path, encoding="latin-1").read().split("\n") if l]

# ---- checks
def check_fonts(flash, listing):
    d = open(flash, "rb").read()
    n = d[0x15C0024]
    want = ["Font %d\t%X\t%d" % (i, descriptor(d, i), d[descriptor(d, i) + 4]) for i in range(n)]
    got = lines_of(listing)
    ok(got == want, "fonts: got %r, want %r" % (got[:4], want[:4]))

def check_glyphs(flash, font, listing):
    d = open(flash, "rb").read()
    want = ["\t".join(r["cells"]) for r in table(d, font)]
    got = lines_of(listing)
    ok(len(got) == len(want), "glyphs %s: %d rows, want %d" % (font, len(got), len(want)))
    for g, w in zip(got, want):
        ok(g == w, "glyphs %s: row %r, want %r" % (font, g, w))

def check_bmps(flash, font, folder):
    """Every glyph's BMP is the decode of its record; a glyph the grid cannot hold has none."""
    d = open(flash, "rb").read()
    rows = table(d, font)
    names = sorted(os.listdir(folder))
    for r in rows:
        name = r["cells"][0] + ".bmp"
        path = os.path.join(folder, name)
        try:
            W, H, cell = decode(d, r["hdr"], r["G"])
        except Outside:
            ok(not os.path.exists(path), "font %s: %s written although the glyph leaves the grid" % (font, name))
            continue
        if not ok(os.path.exists(path), "font %s: %s missing" % (font, name)):
            continue
        got = read_bmp(path, "font %s %s" % (font, name))
        if got is None:
            continue
        gw, gh, pix = got
        if not ok((gw, gh) == (W, H), "font %s %s: %dx%d, want %dx%d (header %s)"
                  % (font, name, gw, gh, W, H, list(r["hdr"]))):
            continue
        bad = [(x, y) for y in range(H) for x in range(W)
               if cell[y][x] is None or pix[y][x] != ((0, 0, 0) if cell[y][x] else (255, 255, 255))]
        ok(not bad, "font %s %s: %d pixels differ, first at %s" % (font, name, len(bad), bad[:1]))
    want = {r["cells"][0] + ".bmp" for r in rows}
    ok(set(names) <= want, "font %s: unexpected files %s" % (font, sorted(set(names) - want)[:5]))

def check_info(flash, font, code, text):
    d = open(flash, "rb").read()
    row = table(d, int(font))[int(code) - 1]["cells"]
    got = open(text, encoding="latin-1").read()
    ok(got == info_text(row), "glyph %s %s info %r, want %r" % (font, code, got, info_text(row)))

# ---- edits for the round trips
def edit(src_dir, dst_dir, plan):
    """Writes edited copies of exported glyphs. plan: CODE:KIND,... with KIND bold (ink one
    column further right inside the ink box), wider (one more column of ink at the right),
    grow (three more columns of ink), white (no ink), keep (unchanged)."""
    os.makedirs(dst_dir, exist_ok=True)
    for item in plan.split(","):
        code, kind = item.split(":")
        name = "%04d.bmp" % int(code)
        W, H, pix = read_bmp(os.path.join(src_dir, name), name)
        ink = ink_of(pix)
        t = trim(ink, W, H)
        rows = range(t["top"], t["top"] + t["h"])
        if kind == "bold":
            new = [row[:] for row in ink]
            for y in rows:
                for x in range(t["left"], t["left"] + t["w"] - 1):
                    if ink[y][x]:
                        new[y][x + 1] = 1
            ok(new != ink, "edit %s: making it bolder changed nothing" % name)
        elif kind in ("wider", "grow"):
            extra = 1 if kind == "wider" else 3
            new = [row[:] + [1 if y in rows else 0] * extra for y, row in enumerate(ink)]
        elif kind == "white":
            new = [[0] * W for _ in range(H)]
        else:
            new = ink
        write_bmp(os.path.join(dst_dir, name), new)
    summary()

def room(rows, i):
    """The room the single replacement allows glyph i (from 0), or None for the last one."""
    if i + 1 >= len(rows):
        return None
    return valhex(rows[i + 1]["cells"][7]) - valhex(rows[i]["cells"][7]) - 5

def need(t):
    return (t["w"] // 8 + 1) * t["h"]

def check_room(flash, font, folder, codes, fits):
    """The chosen edits do (fits=1) or do not (fits=0) pass the single replacement's room check."""
    rows = table(open(flash, "rb").read(), int(font))
    for code in codes.split(","):
        _, _, _, t = new_glyph(os.path.join(folder, "%04d.bmp" % int(code)))
        i = int(code) - 1
        r = room(rows, i)
        if r is None:  # the last glyph may not outgrow the bitmap it has
            n, r = stored(t["w"], t["h"]), stored(rows[i]["hdr"][1], rows[i]["hdr"][2])
        else:
            n = need(t)
        ok((n <= r) == (fits == "1"), "glyph %s needs %d bytes, room %d: the test expects it to %s"
           % (code, n, r, "fit" if fits == "1" else "not fit"))
    summary()

def check_patch_text(flash, font, vkp, repl):
    """The glyph patch, line for line: header, then one section per glyph in the order given."""
    d = open(flash, "rb").read()
    rows = table(d, int(font))
    fid = {0x18B5A64: "lg91_E71_v42", 0x185E184: "lg03_El71_v41"}.get(descriptor(d, 0), "Unknown LngPack")
    want = [";Change font %X for %s" % (int(font), fid), ";This file was generated by Korvatek", None]
    if fid == "lg03_El71_v41":
        want.append(";+578E0 ;if install on lg91_E71_v42")
    if fid == "lg91_E71_v42":
        want.append(";-578E0 ;if install on lg03_El71_v41")
    for item in repl.split(","):
        code, path = item.split("=", 1)
        hdr, bitmap, _, _ = new_glyph(path)
        G = rows[int(code) - 1]["G"]
        record = hdr + bitmap
        want += ["", ";symbol %05d" % int(code)]
        for at in range(0, len(record), 16):
            new = record[at:at + 16]
            want.append("0%X: %s %s" % (G + at, d[G + at:G + at + len(new)].hex().upper(), new.hex().upper()))
    raw = open(vkp, "rb").read()
    ok(raw.endswith(b"\r\n") and raw.count(b"\n") == raw.count(b"\r\n"), "%s: lines do not all end in CR LF" % vkp)
    got = raw.decode("latin-1").split("\r\n")[:-1]
    ok(len(got) == len(want), "%s: %d lines, want %d" % (vkp, len(got), len(want)))
    for k, (g, w) in enumerate(zip(got, want)):
        if w is None:
            ok(g.startswith(";") and len(g) > 1, "%s line %d: credit line %r does not start with ';'" % (vkp, k + 1, g))
        else:
            ok(g == w, "%s line %d: %r, want %r" % (vkp, k + 1, g, w))
    summary()

def check_read_back(kind, orig, patched, font, listing, old_dir, new_dir, repl):
    """The patched fullflash read back: its glyph list, its glyph bitmaps and the bytes that
    changed. kind is 'patch' (records rewritten in place) or 'make' (font packed anew)."""
    d0 = open(orig, "rb").read()
    d1 = open(patched, "rb").read()
    font = int(font)
    rows0, rows1 = table(d0, font), table(d1, font)
    check_glyphs(patched, font, listing)
    if not ok(len(rows0) == len(rows1), "%s: %d rows after, %d before" % (kind, len(rows1), len(rows0))):
        return summary()
    replaced = {}
    for item in repl.split(","):
        if item:
            code, path = item.split("=", 1)
            replaced[int(code) - 1] = new_glyph(path)
    # Headers: the trimmed bitmap's for replaced glyphs, the old one for every other.
    records = []
    for i, (r0, r1) in enumerate(zip(rows0, rows1)):
        if i in replaced:
            hdr, bitmap = replaced[i][0], replaced[i][1]
        else:
            hdr = r0["hdr"]
            bitmap = d0[r0["G"] + 5:r0["G"] + 5 + stored(hdr[1], hdr[2])]
        records.append(hdr + bitmap)
        want = [r0["cells"][0], pad2(hdr[0]), str(hdr[1]), str(hdr[2]), pad2(hdr[3]), pad2(hdr[4])]
        ok(r1["cells"][:6] == want, "%s glyph %d: header cells %s, want %s" % (kind, i + 1, r1["cells"][:6], want))
        ok(r1["cells"][8] == len_text(hdr[1], hdr[2]), "%s glyph %d: len %s" % (kind, i + 1, r1["cells"][8]))
        if kind == "patch":
            ok(r1["cells"][6:8] == r0["cells"][6:8], "patch glyph %d moved: %s, was %s"
               % (i + 1, r1["cells"][6:8], r0["cells"][6:8]))
    # Where the records are now, and which bytes of the fullflash changed.
    allowed = []
    if kind == "patch":
        for i in replaced:
            G = rows0[i]["G"]
            allowed.append((G, G + len(records[i])))
            ok(d1[G:G + len(records[i])] == records[i], "patch glyph %d: record bytes differ" % (i + 1))
    else:
        starts = [r["G"] for r in rows0]
        ok(len(set(starts)) == len(starts), "make: the font shares records; this test expects none")
        lowest = min(starts)
        at = lowest
        for i, r1 in enumerate(rows1):
            ok(r1["G"] == at, "make glyph %d: record at %X, want %X" % (i + 1, r1["G"], at))
            at += len(records[i])
        packed = b"".join(records)
        ok(d1[lowest:lowest + len(packed)] == packed, "make: the packed records differ from the expected bytes")
        D = descriptor(d0, font)
        allowed += [(off7(u32(d0, D)), off7(u32(d0, D + 8))), (lowest, lowest + len(packed))]
        for r0, r1 in zip(rows0, rows1):
            if r0["raw"] >> 24 == 0xFF:
                ok(r1["raw"] >> 24 == 0xFF, "make glyph %s: reference %08X lost its FFFF form" % (r1["cells"][0], r1["raw"]))
    ok(len(d0) == len(d1), "%s: patched fullflash is %d bytes, was %d" % (kind, len(d1), len(d0)))
    outside = [k for k in range(min(len(d0), len(d1))) if d0[k] != d1[k]
               and not any(a <= k < b for a, b in allowed)] if len(d0) == len(d1) else []
    ok(not outside, "%s: %d bytes changed outside the glyph records and table, first at %X"
       % (kind, len(outside), outside[0] if outside else 0))
    # Pixels: replaced glyphs show the edited ink (both trimmed, compared from the bottom left),
    # every other glyph is the very same BMP as before.
    for i, r in enumerate(rows1):
        name = r["cells"][0] + ".bmp"
        new_path, old_path = os.path.join(new_dir, name), os.path.join(old_dir, name)
        if i in replaced:
            got = read_bmp(new_path, "%s %s" % (kind, name))
            if got is None:
                continue
            ink = ink_of(got[2])
            ok(got[0] == replaced[i][3]["W"], "%s %s: width %d, edited %d" % (kind, name, got[0], replaced[i][3]["W"]))
            ok(ink_from_bottom(ink) == ink_from_bottom(replaced[i][2]), "%s %s: ink differs from the edited BMP" % (kind, name))
        elif os.path.exists(old_path):
            ok(os.path.exists(new_path) and open(new_path, "rb").read() == open(old_path, "rb").read(),
               "%s %s: untouched glyph changed" % (kind, name))
    summary()

def main():
    mode, args = sys.argv[1], sys.argv[2:]
    if mode == "fonts":
        check_fonts(*args)
    elif mode == "glyphs":
        check_glyphs(args[0], int(args[1]), args[2])
    elif mode == "bmps":
        check_bmps(args[0], int(args[1]), args[2])
    elif mode == "info":
        check_info(*args)
    elif mode == "edit":
        return edit(*args)
    elif mode == "room":
        return check_room(*args)
    elif mode == "patch-text":
        return check_patch_text(*args)
    elif mode == "read-back":
        return check_read_back(*args)
    summary()

main()
PY

FLASH=$WORK/demo.bin
run demo-flash "$FLASH"
expect_rc 0 "demo-flash"
[ -s "$FLASH" ] || { fail "demo-flash wrote nothing"; finish; }
flash_sum=$(sha256sum <"$FLASH")

# ---- the font selector and the glyph lists
run fonts "$FLASH"
expect_rc 0 "fonts"
cp cmd.out fonts.txt
if [ "$(head -n 1 fonts.txt)" = "$(printf 'Font 0\t18B5A64\t16')" ]; then pass; else fail "fonts: first line '$(head -n 1 fonts.txt)'"; fi
check "fonts" fonts "$FLASH" fonts.txt
nfonts=$(wc -l <fonts.txt)
for font in $(seq 0 $((nfonts - 1))); do
    run glyphs "$FLASH" "$font"
    expect_rc 0 "glyphs $font"
    cp cmd.out "glyphs$font.txt"
    check "glyphs $font" glyphs "$FLASH" "$font" "glyphs$font.txt"
done
# Rows the checker covers too, written out so that a shared misreading cannot hide: the
# len figure of an 8-pixel-wide glyph, the lift of font 0 at entries 375 and 783 only, the
# FF references of font 1.
want_row() {  # FILE CODE ROW
    local got
    got=$(sed -n "$(( 10#$2 ))p" "$1")
    if [ "$got" = "$3" ]; then pass; else fail "$1 row $2: '$got', want '$3'"; fi
}
want_row glyphs0.txt 0001 "$(printf '0001\t10\t8\t10\t00\t04\t1860000\t20000\t14')"
want_row glyphs0.txt 0375 "$(printf '0375\t12\t10\t14\t00\t04\t1863690\t23690\t1C')"
want_row glyphs0.txt 0376 "$(printf '0376\t12\t10\t14\t00\t04\t18736B4\t236B4\t1C')"
want_row glyphs0.txt 0784 "$(printf '0784\t12\t10\t18\t00\t00\t1877398\t27398\t24')"
want_row glyphs0.txt 0785 "$(printf '0785\t12\t10\t18\t00\t04\t18673C4\t273C4\t24')"
want_row glyphs1.txt 0193 "$(printf '0193\t06\t5\t9\t00\t02\t1840100\t0100\t09')"
if grep -q "$(printf '^1000\t')" glyphs0.txt; then fail "font 0 has no code 1000, yet a row says so"; else pass; fi

# ---- glyphs as BMP: the information text, one glyph, all glyphs
for pick in "0 65" "0 102" "0 32" "1 193" "2 1" "2 224"; do
    set -- $pick
    run glyph "$FLASH" "$1" "$2" -o "one_$1_$2.bmp"
    expect_rc 0 "glyph $1 $2"
    cp cmd.out "info_$1_$2.txt"
    check "glyph $1 $2 info" info "$FLASH" "$1" "$2" "info_$1_$2.txt"
done
if [ "$(cat info_0_65.txt)" = "$(printf 'Width: 12\nHeight: 18\n\nSymbolCode: 0x41\n\nLenght: 0x1C')" ]; then pass
else fail "glyph 0 65 information: $(tr '\n' '|' <info_0_65.txt)"; fi
for font in $(seq 0 $((nfonts - 1))); do
    run glyph "$FLASH" "$font" all --dir "orig$font"
    expect_rc 0 "glyph $font all"
    check "glyph $font all" bmps "$FLASH" "$font" "orig$font"
done
for pick in "0 65" "0 102" "0 32" "1 193" "2 1" "2 224"; do
    set -- $pick
    if cmp -s "one_$1_$2.bmp" "orig$1/$(printf '%04d' "$2").bmp"; then pass; else fail "glyph $1 $2: the single save differs from the batch"; fi
done

# ---- font-patch round trip on font 0: glyphs of both sides of the lifted entries, one with
# a negative shift, one made blank; some given one by one, the others by folder.
check "edit font 0" edit orig0 edit0 "65:bold,376:bold,102:bold,90:white,66:wider,375:wider,784:bold,785:wider,800:bold"
check "room font 0" room "$FLASH" 0 edit0 "65,376,102,90,66,375,784,785,800" 1
mkdir folder0
for code in 0066 0375 0784 0785 0800; do cp "edit0/$code.bmp" folder0/; done
run font-patch "$FLASH" 0 -o font0.vkp 65=edit0/0065.bmp 376=edit0/0376.bmp 102=edit0/0102.bmp 90=edit0/0090.bmp --bmp-folder folder0
expect_rc 0 "font-patch 0"
order=""
for code in 0065 0376 0102 0090 0066 0375 0784 0785 0800; do order="$order,$((10#$code))=edit0/$code.bmp"; done
order=${order#,}
[ -f font0.vkp ] && check "font0.vkp" patch-text "$FLASH" 0 font0.vkp "$order"
run apply "$FLASH" font0.vkp -o patched0.bin
expect_rc 0 "apply font0.vkp"
run glyphs patched0.bin 0
expect_rc 0 "glyphs of the patched fullflash"
cp cmd.out patched_glyphs0.txt
run glyph patched0.bin 0 all --dir new0
expect_rc 0 "glyph all of the patched fullflash"
check "patched font 0 read back" read-back patch "$FLASH" patched0.bin 0 patched_glyphs0.txt orig0 new0 "$order"
check "patched font 0 bitmaps" bmps patched0.bin 0 new0

# The same on font 1 by folder alone, around its 0xFFFFxxxx references.
check "edit font 1" edit orig1 folder1 "65:bold,193:bold,195:wider,198:wider,199:white,256:bold"
check "room font 1" room "$FLASH" 1 folder1 "65,193,195,198,199,256" 1
run font-patch "$FLASH" 1 -o font1.vkp --bmp-folder folder1
expect_rc 0 "font-patch 1 --bmp-folder"
order1="65=folder1/0065.bmp,193=folder1/0193.bmp,195=folder1/0195.bmp,198=folder1/0198.bmp,199=folder1/0199.bmp,256=folder1/0256.bmp"
[ -f font1.vkp ] && check "font1.vkp" patch-text "$FLASH" 1 font1.vkp "$order1"
run apply "$FLASH" font1.vkp -o patched1.bin
expect_rc 0 "apply font1.vkp"
run glyphs patched1.bin 1
cp cmd.out patched_glyphs1.txt
run glyph patched1.bin 1 all --dir new1
expect_rc 0 "glyph all of patched font 1"
check "patched font 1 read back" read-back patch "$FLASH" patched1.bin 1 patched_glyphs1.txt orig1 new1 "$order1"

# ---- make-font: font 2 with glyphs that outgrow the room a single replacement has, the
# first and the last glyph among them, plus unedited bitmaps that are merely trimmed.
check "edit font 2" edit orig2 make2 "1:grow,65:grow,66:grow,77:grow,72:bold,100:bold,88:white,70:keep,71:keep,224:grow"
check "room font 2" room "$FLASH" 2 make2 "1,65,66,77" 0
run make-font "$FLASH" 2 make2 -o make2.vkp
expect_rc 0 "make-font 2"
line_of() { sed -n "$2p" "$1" | tr -d '\r'; }  # FILE N
if [ "$(line_of make2.vkp 1)" = ";Change font 2 for lg91_E71_v42" ] &&
    [ "$(line_of make2.vkp 2)" = ";This file was generated by Korvatek" ] &&
    [[ "$(line_of make2.vkp 3)" == ";"?* ]] &&
    [ "$(line_of make2.vkp 4)" = ";-578E0 ;if install on lg03_El71_v41" ]; then pass
else fail "make2.vkp header: $(head -n 4 make2.vkp 2>/dev/null | tr '\r\n' '~|')"; fi
if [ -s make2.vkp ] && [ "$(grep -c $'\r$' make2.vkp)" -eq "$(wc -l <make2.vkp)" ]; then pass; else fail "make2.vkp: lines without CR"; fi
repl2=""
for code in 1 65 66 77 72 100 88 70 71 224; do repl2="$repl2,$code=make2/$(printf '%04d' $code).bmp"; done
repl2=${repl2#,}
run apply "$FLASH" make2.vkp -o made2.bin
expect_rc 0 "apply make2.vkp"
run glyphs made2.bin 2
cp cmd.out made_glyphs2.txt
run glyph made2.bin 2 all --dir new2
expect_rc 0 "glyph all of the rebuilt font 2"
check "rebuilt font 2 read back" read-back make "$FLASH" made2.bin 2 made_glyphs2.txt orig2 new2 "$repl2"
check "rebuilt font 2 bitmaps" bmps made2.bin 2 new2
for font in 0 1; do  # the other fonts are untouched
    run glyph made2.bin "$font" all --dir "made2_other$font"
    if diff -rq "orig$font" "made2_other$font" >/dev/null; then pass; else fail "make-font 2 changed glyphs of font $font"; fi
done

# Font 1, whose 0xFFFFxxxx entries must keep reaching their records once repacked.
check "edit font 1 for make" edit orig1 make1 "2:grow,192:grow,194:grow,197:white,240:bold"
run make-font "$FLASH" 1 make1 -o make1.vkp
expect_rc 0 "make-font 1"
run apply "$FLASH" make1.vkp -o made1.bin
expect_rc 0 "apply make1.vkp"
run glyphs made1.bin 1
cp cmd.out made_glyphs1.txt
run glyph made1.bin 1 all --dir made1_1
check "rebuilt font 1 read back" read-back make "$FLASH" made1.bin 1 made_glyphs1.txt orig1 made1_1 \
    "2=make1/0002.bmp,192=make1/0192.bmp,194=make1/0194.bmp,197=make1/0197.bmp,240=make1/0240.bmp"

# ---- font-size: the exact file, the answers the input box takes, the patch applied
run font-size "$FLASH" 0 12 -o size12.vkp
expect_rc 0 "font-size 0 12"
if [ -f size12.vkp ]; then
    l3=$(sed -n 3p size12.vkp | tr -d '\r')
    printf ';Change font 0 size for lg91_E71_v42\r\n;This file was generated by Korvatek\r\n%s\r\n18B5A68: 10 0C\r\n' "$l3" >want12.vkp
    if cmp -s size12.vkp want12.vkp && [ "${l3:0:1}" = ";" ] && [ ${#l3} -gt 1 ]; then pass
    else fail "size12.vkp: $(tr '\r\n' '~|' <size12.vkp)"; fi
fi
size_line() {  # FONT ANSWER WANT_LINE
    rm -f size.vkp
    run font-size "$FLASH" "$1" "$2" -o size.vkp
    expect_rc 0 "font-size $1 $2"
    local got
    got=$(sed -n 4p size.vkp 2>/dev/null | tr -d '\r')
    if [ "$got" = "$3" ]; then pass; else fail "font-size $1 $2: line '$got', want '$3'"; fi
    if [ "$(wc -l <size.vkp 2>/dev/null)" = 4 ]; then pass; else fail "font-size $1 $2: not four lines"; fi
}
size_line 0 6 "18B5A68: 10 06"
size_line 0 64 "18B5A68: 10 40"
size_line 0 16 "18B5A68: 10 10"
size_line 0 5.5 "18B5A68: 10 06"
size_line 0 6.5 "18B5A68: 10 06"
size_line 0 7.5 "18B5A68: 10 08"
size_line 1 20 "18B5A80: 0B 14"
size_line 2 9 "18B5A98: 1A 09"
if [ "$(head -n 1 size.vkp | tr -d '\r')" = ";Change font 2 size for lg91_E71_v42" ]; then pass; else fail "font-size 2: first line $(head -n 1 size.vkp)"; fi
for answer in 5 65 -3 0 abc ""; do
    rm -f refused.vkp
    run font-size "$FLASH" 0 "$answer" -o refused.vkp
    expect_rc 2 "font-size answer '$answer'"
    if [ ! -e refused.vkp ]; then pass; else fail "font-size answer '$answer' wrote a file"; fi
    if [ -s cmd.err ]; then pass; else fail "font-size answer '$answer': no usage line"; fi
done
run apply "$FLASH" size12.vkp -o sized.bin
expect_rc 0 "apply size12.vkp"
byte=$(od -An -tu1 -j $((0x18B5A68)) -N1 sized.bin 2>/dev/null | tr -d ' ')
if [ "$byte" = 12 ]; then pass; else fail "size byte after apply: '$byte'"; fi
cmp -l "$FLASH" sized.bin 2>/dev/null | wc -l | grep -qx 1 && pass || fail "applying the size patch changed more than one byte"
run fonts sized.bin
if [ "$(head -n 1 cmd.out)" = "$(printf 'Font 0\t18B5A64\t12')" ]; then pass; else fail "fonts after the size patch: $(head -n 1 cmd.out)"; fi

if [ "$(sha256sum <"$FLASH")" = "$flash_sum" ]; then pass; else fail "the demo fullflash was changed"; fi
finish
