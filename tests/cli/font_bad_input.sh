#!/usr/bin/env bash
# The font commands of korvatek-cli on inputs they must refuse or treat with care:
#   tables  - descriptor pointers outside the image, a table that ends before it starts, a
#             table outside the image, a glyph reference past the end;
#   glyphs  - records that the 101 x 101 glyph grid cannot hold (wide, shifted, tall, a
#             negative shift that widens the cell past the grid);
#   patches - a BMP larger than the grid, the room check at its exact edge ("Pic" and the
#             glyph number), the last glyph of a font, a glyph given twice, missing and
#             broken BMPs, font and glyph numbers that do not exist;
#   rebuild - make-font whose glyphs outgrow the span of the font's records (the figures
#             checked), a broken BMP in the folder, a font the table cannot re-point.
# Never a crash, a clear message on stderr, no output written by a refused command, the
# fullflash never changed.
#
# usage: font_bad_input.sh PATH/TO/korvatek-cli
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
expect_no_crash() {  # WHAT: any status below 128 will do, with a message on stderr
    if [ "$RC" -lt 128 ]; then pass; else fail "$1: status $RC"; fi
    if [ -s cmd.err ]; then pass; else fail "$1: no message on stderr"; fi
}
expect_err_line() {  # LINE WHAT: stderr holds exactly this line
    if grep -Fqx -- "$1" cmd.err; then pass; else fail "$2: no line '$1' on stderr, got '$(head -n 3 cmd.err | tr '\n' '|')'"; fi
}
expect_err_has() {  # TEXT WHAT
    if grep -Fqi -- "$1" cmd.err; then pass; else fail "$2: stderr does not mention '$1': '$(head -n 4 cmd.err | tr '\n' '|')'"; fi
}
expect_missing() {  # PATH WHAT
    if [ ! -e "$1" ]; then pass; else fail "$2: $1 was written"; fi
}
GRID_MSG="This glyph does not fit the 101x101 glyph grid!"
TOO_BIG="Слишком большая bmp, попробуйте сделать разрешение поменьше;)"
ALREADY="This picture is already replaced. Reboot program or complete commenced patch"

FLASH=$WORK/demo.bin
"$CLI" demo-flash "$FLASH" >/dev/null 2>&1 || { fail "demo-flash failed"; finish; }
flash_sum=$(sha256sum <"$FLASH")
"$CLI" glyphs "$FLASH" 0 >glyphs0.txt 2>/dev/null || fail "glyphs 0"
"$CLI" glyphs "$FLASH" 2 >glyphs2.txt 2>/dev/null || fail "glyphs 2"

# Damaged copies of the demo fullflash, and the bitmaps the cases feed in.
"$PY" - "$FLASH" <<'PY' || fail "making the test inputs"
import struct, sys
d = open(sys.argv[1], "rb").read()
u32 = lambda b, at: struct.unpack_from("<I", b, at)[0]
arr = u32(d, 0x15C001C) & 0x0FFFFFFF
desc = [arr + 24 * i for i in range(3)]

def variant(name, edits):
    b = bytearray(d)
    for at, value, width in edits:
        b[at:at + width] = value.to_bytes(width, "little")
    open(name, "wb").write(b)

def rows(font):
    return [l.split("\t") for l in open("glyphs%d.txt" % font).read().split("\n") if l]

g2 = rows(2)
rec65 = int(g2[64][6], 16)       # font 2, glyph 65: a record to spoil
table2 = u32(d, desc[2]) & 0x0FFFFFFF
variant("outside.bin", [(0x15C001C, 0xA3000000, 4)])                                   # descriptors past the end
variant("reversed.bin", [(desc[1] + 8, u32(d, desc[1]) - 16, 4)])                      # end before start
variant("table_out.bin", [(desc[1], 0xA3000000, 4), (desc[1] + 8, 0xA3000040, 4)])     # table past the end
variant("ref_out.bin", [(table2 + 4 + 8 * 64, 0x7FFFFFF0, 4)])                         # a record far past the end
variant("wide.bin", [(rec65 + 1, 200, 1)])                                             # w = 200
variant("shifted.bin", [(rec65 + 3, 90, 1)])                                           # sL = 90: past column 100
variant("tall.bin", [(rec65 + 2, 150, 1)])                                             # h = 150
variant("cell.bin", [(rec65, 120, 1)])                                                 # W = 120: margin past the grid
variant("negshift.bin", [(rec65 + 3, 0x80, 1)])                                        # sL = -128: cell 129 wider
variant("model.bin", [(0x8FC70, 0, 4)])                                                # no model

def bmp(name, ink, bits=24, magic=b"BM", comp=0):
    H, W = len(ink), len(ink[0])
    step = bits // 8
    stride = (W * step + 3) // 4 * 4
    body = bytearray()
    for y in range(H - 1, -1, -1):
        row = bytearray()
        for x in range(W):
            row += (b"\0" if ink[y][x] else b"\xff") * step
        body += row + bytes(stride - len(row))
    head = magic + struct.pack("<IIIIiiHHIIiiII", 54 + len(body), 0, 54, 40, W, H, 1, bits, comp, len(body), 0, 0, 0, 0)
    open(name, "wb").write(head + body)

def block(w, h, W=None, H=None):
    """w x h ink in the bottom left corner of a W x H paper."""
    W, H = W or w, H or h
    return [[1 if x < w and y >= H - h else 0 for x in range(W)] for y in range(H)]

def valhex(t):
    v = int(t, 16)
    bits = 16 if len(t) <= 4 else 32
    return v - (1 << bits) if v >= 1 << (bits - 1) else v

bmp("grid_wide.bmp", block(120, 10))            # wider than the grid
bmp("grid_tall.bmp", block(10, 120))            # taller than the grid
bmp("sixteen.bmp", block(6, 6), bits=16)
bmp("not_bmp.bmp", block(6, 6), magic=b"XX")
bmp("rle.bmp", block(6, 6), comp=1)
bmp("small.bmp", block(5, 5, 9, 12))

# The room check of font 0, glyph 65: room = next reference - this reference - 5 bytes; a
# 7-pixel-wide glyph needs one byte a row.
g0 = rows(0)
room65 = valhex(g0[65][7]) - valhex(g0[64][7]) - 5
room66 = valhex(g0[66][7]) - valhex(g0[65][7]) - 5
bmp("fits65.bmp", block(7, room65, 9, room65 + 2))
bmp("over65.bmp", block(7, room65 + 1, 9, room65 + 3))
bmp("over66.bmp", block(7, room66 + 1, 9, room66 + 1))
# Same need, other shape: 9 columns take two bytes a row, so half the rows overflow.
bmp("wide65.bmp", block(9, room65 // 2 + 1))
# The last glyph of font 2 may keep the bytes its bitmap has: 8 columns, one byte a row.
last = g2[-1]
have = (int(last[2]) + 7) // 8 * int(last[3])
bmp("last_same.bmp", block(8, have))
bmp("last_over.bmp", block(8, have + 1))
open("last_code", "w").write(str(len(g2)))
PY

sha256sum outside.bin reversed.bin table_out.bin ref_out.bin wide.bin shifted.bin tall.bin cell.bin negshift.bin \
    model.bin >inputs.sha256 || fail "the damaged flashes are missing"

# ---- damaged font tables: a message, never a crash
# Descriptors past the end: every font reads as an empty table.
for font in 0 1 2; do
    run glyphs outside.bin "$font"
    expect_no_crash "glyphs outside.bin $font"
    if [ ! -s cmd.out ]; then pass; else fail "glyphs outside.bin $font listed rows: $(head -n 1 cmd.out)"; fi
done
run fonts outside.bin
expect_rc 0 "fonts outside.bin"
# The descriptors are listed where the pointer says; their size bytes read as zero.
if [ "$(cat cmd.out)" = "$(printf 'Font 0\t3000000\t0\nFont 1\t3000018\t0\nFont 2\t3000030\t0')" ]; then pass
else fail "fonts outside.bin: $(tr '\t\n' ' |' <cmd.out)"; fi
# Font 1's table ends before it starts: a message naming both ends, no rows; font 0 is sound.
run glyphs reversed.bin 1
expect_no_crash "glyphs of a table that ends before it starts"
expect_err_has "0x18B73B0 - 0x18B73A0" "glyphs of a table that ends before it starts"
if [ ! -s cmd.out ]; then pass; else fail "a table that ends before it starts listed rows"; fi
run glyphs reversed.bin 0
expect_rc 0 "glyphs of the sound font next to a damaged one"
# Font 1's table lies past the end of the image: its entries read as zeros.
run glyphs table_out.bin 1
if [ "$RC" -lt 128 ]; then pass; else fail "glyphs table_out.bin 1: status $RC"; fi
for f in outside reversed table_out; do
    run glyph "$f.bin" 1 all --dir "all_$f"
    if [ "$RC" -lt 128 ]; then pass; else fail "glyph $f.bin 1 all: status $RC"; fi
done
run glyph reversed.bin 1 1 -o rev.bmp
expect_rc 1 "glyph 1 of a font with no rows"
expect_missing rev.bmp "glyph 1 of a font with no rows"
run make-font reversed.bin 1 "$WORK" -o rev.vkp
expect_rc 1 "make-font of a font with no rows"
expect_missing rev.vkp "make-font of a font with no rows"
run font-patch reversed.bin 1 -o rev.vkp 1=small.bmp
expect_rc 1 "font-patch of a font with no rows"
expect_missing rev.vkp "font-patch of a font with no rows"

run glyphs ref_out.bin 2
expect_no_crash "glyphs with a record past the end of the image"
run glyph ref_out.bin 2 65 -o ref.bmp
if [ "$RC" -lt 128 ]; then pass; else fail "glyph of a record past the end: status $RC"; fi
run make-font ref_out.bin 2 "$WORK" -o ref.vkp
expect_rc 1 "make-font with a record past the end"
if [ -s cmd.err ]; then pass; else fail "make-font with a record past the end: no message"; fi
expect_missing ref.vkp "make-font with a record past the end"

run fonts model.bin
expect_rc 1 "fonts of an unsupported model"
expect_err_line "This phone model not supported: " "fonts of an unsupported model"

# ---- glyph records the grid cannot hold
for f in wide shifted tall cell negshift; do
    run glyph "$f.bin" 2 65 -o "$f.bmp"
    expect_rc 1 "glyph 65 of $f.bin"
    expect_err_line "$GRID_MSG" "glyph 65 of $f.bin"
    expect_missing "$f.bmp" "glyph 65 of $f.bin"
done
run glyphs wide.bin 2
expect_rc 0 "glyphs of wide.bin"
if [ "$(sed -n 65p cmd.out)" = "$(printf '0065\t18\t200\t21\t00\t06\t1851814\t11814\t222')" ]; then pass
else fail "the w = 200 row: '$(sed -n 65p cmd.out)'"; fi
run glyph wide.bin 2 all --dir all_wide
if [ "$RC" -lt 128 ]; then pass; else fail "glyph all of wide.bin: status $RC"; fi
expect_err_line "$GRID_MSG" "glyph all of wide.bin"
expect_missing all_wide/0065.bmp "glyph all of wide.bin"
if [ "$(ls all_wide 2>/dev/null | wc -l)" -eq "$(($(wc -l <glyphs2.txt) - 1))" ]; then pass; else fail "glyph all of wide.bin: the other glyphs were not all saved"; fi

# ---- bitmaps font-patch must refuse
reject() {  # WHAT MESSAGE_LINE ARGS...: refused, the line on stderr, no patch
    local what=$1 line=$2
    shift 2
    rm -f refused.vkp
    run font-patch "$FLASH" "$@" -o refused.vkp
    expect_rc 1 "$what"
    expect_err_line "$line" "$what"
    expect_missing refused.vkp "$what"
}
reject "a BMP wider than the grid" "$GRID_MSG" 0 65=grid_wide.bmp
reject "a BMP taller than the grid" "$GRID_MSG" 0 65=grid_tall.bmp
reject "a 16-bit BMP" "This is not 24 or 32bit bmp!" 0 65=sixteen.bmp
reject "not a BMP" "Unknown file!" 0 65=not_bmp.bmp
reject "a compressed BMP" "Compressed BMPs not supported!" 0 65=rle.bmp
reject "a missing BMP" "File not exist!" 0 65=missing.bmp
reject "a glyph one byte over its room" "Pic 65" 0 65=over65.bmp
expect_err_line "$TOO_BIG" "the room message's second line"
if grep -A1 -Fx "Pic 65" cmd.err | tail -n 1 | grep -Fqx "$TOO_BIG"; then pass; else fail "the room message is not 'Pic 65' then its text on the next line"; fi
reject "a glyph two bytes a row" "Pic 65" 0 65=wide65.bmp
last=$(cat last_code)
reject "the last glyph one byte longer" "Pic $last" 2 "$last=last_over.bmp"
reject "a font that does not exist" "No such font: 3" 3 65=small.bmp
reject "a glyph that does not exist" "No such glyph in the list: $((last + 1))" 2 "$((last + 1))=small.bmp"
rm -f refused.vkp
run font-patch "$FLASH" 2 -o refused.vkp 0=small.bmp
expect_rc 1 "glyph 0"
expect_err_line "No such glyph in the list: 0" "glyph 0"
expect_missing refused.vkp "glyph 0"

# A refused command keeps an existing output as it was.
printf 'old\r\n' >kept.vkp
run font-patch "$FLASH" 0 -o kept.vkp 65=over65.bmp
expect_rc 1 "refused patch over an existing file"
if [ "$(cat kept.vkp)" = "$(printf 'old\r')" ]; then pass; else fail "a refused font-patch replaced the existing output"; fi

# The edge of the room is inclusive, and the last glyph may keep its byte count even where
# the "len" column (one byte more a row) would call it too long.
rm -f edge.vkp
run font-patch "$FLASH" 0 -o edge.vkp 65=fits65.bmp
expect_rc 0 "a glyph that fills its room exactly"
grep -q '^;symbol 00065' edge.vkp 2>/dev/null && pass || fail "the exact-fit glyph is not in the patch"
rm -f edge.vkp
run font-patch "$FLASH" 2 -o edge.vkp "$last=last_same.bmp"
expect_rc 0 "the last glyph with as many bytes as before"
grep -q "^;symbol $(printf '%05d' "$last")" edge.vkp 2>/dev/null && pass || fail "the last glyph is not in the patch"

# Accepted and refused together: the refusal is reported, the patch holds the accepted one.
rm -f mixed.vkp
run font-patch "$FLASH" 0 -o mixed.vkp 65=fits65.bmp 66=over66.bmp 65=small.bmp
expect_rc 1 "one accepted, two refused"
expect_err_line "Pic 66" "one accepted, two refused"
expect_err_line "$ALREADY" "a glyph given twice"
if [ "$(grep -c '^;symbol' mixed.vkp 2>/dev/null)" = 1 ] && grep -q '^;symbol 00065' mixed.vkp; then pass
else fail "mixed.vkp should hold glyph 65 alone: $(grep '^;symbol' mixed.vkp 2>/dev/null | tr '\r\n' ' |')"; fi
run apply "$FLASH" mixed.vkp -o mixed.bin
expect_rc 0 "apply mixed.vkp"
# The same patch on a flash that already carries it: old bytes no longer match.
run apply mixed.bin mixed.vkp -o twice.bin
expect_rc 1 "apply a glyph patch twice"
expect_missing twice.bin "apply a glyph patch twice"

# Other refusals of the other commands.
run glyphs "$FLASH" 3
expect_rc 1 "glyphs of font 3"
run glyph "$FLASH" 3 1 -o nofont.bmp
expect_rc 1 "glyph of font 3"
expect_missing nofont.bmp "glyph of font 3"
run glyph "$FLASH" 2 "$((last + 1))" -o noglyph.bmp
expect_rc 1 "glyph past the last"
expect_missing noglyph.bmp "glyph past the last"
run font-size "$FLASH" 3 12 -o nosize.vkp
expect_rc 1 "font-size of font 3"
expect_missing nosize.vkp "font-size of font 3"
run glyph "$FLASH" 2 all --dir nofont_dir -o x.bmp
expect_rc 2 "glyph all with -o"

# ---- make-font refusals
mkdir -p empty broken grid grow
cp not_bmp.bmp broken/0065.bmp
cp grid_wide.bmp grid/0065.bmp
make_reject() {  # WHAT FONT DIR MESSAGE
    rm -f made.vkp
    run make-font "$FLASH" "$2" "$3" -o made.vkp
    expect_rc 1 "$1"
    expect_err_has "$4" "$1"
    expect_missing made.vkp "$1"
}
make_reject "make-font with a file that is no BMP" 2 broken "Unknown file!"
make_reject "make-font with a BMP wider than the grid" 2 grid "$GRID_MSG"
make_reject "make-font of font 3" 3 empty "No such font: 3"
rm -f made.vkp
run make-font "$FLASH" 2 missing_dir -o made.vkp
if [ "$RC" -ge 1 ] && [ "$RC" -lt 128 ]; then pass; else fail "make-font from a missing folder: exit $RC"; fi
expect_missing made.vkp "make-font from a missing folder"

# Every glyph of font 2 three columns wider: the records no longer fit the span they have.
"$CLI" glyph "$FLASH" 2 all --dir orig2 >/dev/null 2>&1 || fail "glyph 2 all"
"$PY" - orig2 grow glyphs2.txt <<'PY' >grow.txt || fail "growing the glyphs"
import os, struct, sys
src, dst, listing = sys.argv[1:4]
rows = [l.split("\t") for l in open(listing).read().split("\n") if l]
def read(path):
    b = open(path, "rb").read()
    W, H = struct.unpack_from("<ii", b, 18)
    stride = (W * 3 + 3) // 4 * 4
    return W, H, [[sum(b[54 + (H - 1 - y) * stride + 3 * x:][:3]) / 3 < 127 for x in range(W)] for y in range(H)]
def write(path, ink):
    H, W = len(ink), len(ink[0])
    stride = (W * 3 + 3) // 4 * 4
    body = b"".join(b"".join(b"\0\0\0" if ink[y][x] else b"\xff\xff\xff" for x in range(W)).ljust(stride, b"\0")
                    for y in range(H - 1, -1, -1))
    open(path, "wb").write(b"BM" + struct.pack("<IIIIiiHHIIiiII", 54 + len(body), 0, 54, 40, W, H, 1, 24, 0,
                                               len(body), 0, 0, 0, 0) + body)
def trim(ink, W, H):
    rows_ = [any(r) for r in ink]
    cols = [any(ink[y][x] for y in range(H)) for x in range(W)]
    def count(f):
        n = 0
        while n < len(f) and not f[n]:
            n += 1
        return n
    l, r, t, b = count(cols), count(cols[::-1]), count(rows_), count(rows_[::-1])
    return max(0, W - l - r), max(0, H - t - b), t
need, start, end = 0, None, 0
for row in rows:
    name = row[0] + ".bmp"
    W, H, ink = read(os.path.join(src, name))
    w, h, top = trim(ink, W, H)
    if h:
        ink = [r + [top <= y < top + h] * 3 for y, r in enumerate(ink)]
        w, h, top = trim(ink, W + 3, H)
        write(os.path.join(dst, name), ink)
    need += 5 + (w + 7) // 8 * h
    G, ow, oh = int(row[6], 16), int(row[2]), int(row[3])
    start = G if start is None else min(start, G)
    end = max(end, G + 5 + (ow + 7) // 8 * oh)
print(need, end - start)
PY
read -r grow_need grow_room <grow.txt
make_reject "make-font whose glyphs outgrow the span" 2 grow "needs $grow_need bytes"
expect_err_has "room for $grow_room bytes" "make-font whose glyphs outgrow the span"

# Font 0 of the demo keeps entries 375..783 0x10000 above their references; packed back to
# back, some of them would need references the table reader takes as negative.
rm -f made.vkp
run make-font "$FLASH" 0 empty -o made.vkp
if [ "$RC" -eq 0 ]; then
    [ -s made.vkp ] && pass || fail "make-font 0 succeeded without a patch"
else
    expect_rc 1 "make-font 0"
    [ -s cmd.err ] && pass || fail "make-font 0 refused without a message"
    expect_missing made.vkp "make-font 0"
fi

if [ "$(sha256sum <"$FLASH")" = "$flash_sum" ]; then pass; else fail "the demo fullflash was changed"; fi
if sha256sum --quiet -c inputs.sha256 >/dev/null 2>&1; then pass; else fail "a damaged input flash was changed"; fi
finish
