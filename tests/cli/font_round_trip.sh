#!/usr/bin/env bash
# The font commands of korvatek-cli on the demo fullflash, checked against the raw bytes by
# the font reader and glyph decoder of korvatek_testlib:
#   fonts, glyphs  - every line of every font, cell for cell (the font 0 lift of entries
#                    375..783, the FF references, the "len" figure, the padding rules);
#   glyph          - the information text, and every glyph of every font as a BMP;
#   font-patch     - glyphs exported, edited (bolder, wider, blank), loaded one by one and by
#                    folder, the patch text line for line, applied, the patched flash read back;
#   make-font      - a font rebuilt from edited bitmaps that outgrow their single-glyph room,
#                    applied and read back, also for the font with 0xFFFFxxxx references;
#   font-size      - the four lines, the answers the input box accepts, applied.
#
# usage: font_round_trip.sh PATH/TO/korvatek-cli
set -u
source "$(dirname "$0")/common.sh" "$@"
run() {  # stdout in cmd.out, stderr in cmd.err, the status in RC
    "$CLI" "$@" >cmd.out 2>cmd.err
    RC=$?
    [ $RC -lt 128 ] || fail "korvatek-cli $* crashed (status $RC)"
}
expect_rc() { [ "$RC" -eq "$1" ] && pass || fail "$2: exit $RC, expected $1 (stderr: $(head -n 3 cmd.err | tr '\n' '|'))"; }
# Adds a checker's "N passed, M failed" and shows its FAIL lines.
add_counts() {  # OUTPUT WHAT
    grep '^FAIL' "$1" | head -n 30
    # shellcheck disable=SC2046  # the summary line split into its words
    set -- "$2" $(grep -E '^[0-9]+ passed, [0-9]+ failed$' "$1" | tail -n 1)
    [ $# -eq 5 ] && passed=$((passed + $2)) failed=$((failed + $4)) || fail "$1 printed no summary"
}
check() {  # WHAT ARGS...: runs the checker
    local what=$1
    shift
    "$PY" fontcheck.py "$@" >check.out 2>&1
    add_counts check.out "$what"
}

cat >fontcheck.py <<'PY'
import os, sys
import korvatek_testlib as t

tally = t.Tally(25)

def lines_of(path):
    return [line for line in open(path, encoding="latin-1").read().split("\n") if line]

def pairs(repl):  # CODE=PATH,...
    return [(int(item.split("=")[0]), item.split("=", 1)[1]) for item in repl.split(",") if item]

def fonts(flash, listing):
    d = t.read(flash)
    want = ["Font %d\t%X\t%d" % (i, t.font_descriptor(d, i), d[t.font_descriptor(d, i) + 4]) for i in range(d[0x15C0024])]
    tally.ok(lines_of(listing) == want, "fonts: %r, want %r" % (lines_of(listing)[:4], want[:4]))

def glyphs(flash, font, listing):
    want, got = ["\t".join(r[0]) for r in t.font_rows(t.read(flash), int(font))], lines_of(listing)
    tally.ok(len(got) == len(want), "glyphs %s: %d rows, want %d" % (font, len(got), len(want)))
    for g, w in zip(got, want):
        tally.ok(g == w, "glyphs %s: row %r, want %r" % (font, g, w))

def bmps(flash, font, folder):
    """Every glyph's BMP is the decode of its record; a glyph the grid cannot hold has none."""
    d = t.read(flash)
    rows = t.font_rows(d, int(font))
    for cells, at, _, hdr in rows:
        path = os.path.join(folder, cells[0] + ".bmp")
        try:
            W, H, cell = t.glyph_cell(d, hdr, at)
        except t.OutsideCanvas:
            tally.ok(not os.path.exists(path), "%s written although the glyph leaves the grid" % path)
            continue
        blob = t.read(path) or b""
        problems = t.bmp_header_problems(blob, W, H, 24)
        want = [(0, 0, 0) if v else (255, 255, 255) if v == 0 else None for row in cell for v in row]
        tally.ok(not problems and t.read_bmp(blob)[3] == want, "%s (header %s): %s" % (path, list(hdr), problems or "pixels differ"))
    extra = set(os.listdir(folder)) - {r[0][0] + ".bmp" for r in rows}
    tally.ok(not extra, "font %s: unexpected files %s" % (font, sorted(extra)[:5]))

def edit(src, dst, plan):
    """Edited copies of exported glyphs: bold (ink one column further right inside the ink
    box), wider or grow (one or three more columns of ink at the right), white (no ink), keep."""
    os.makedirs(dst, exist_ok=True)
    for code, kind in (item.split(":") for item in plan.split(",")):
        name = "%04d.bmp" % int(code)
        ink = t.ink_of(t.read(os.path.join(src, name)))
        ys = [y for y, row in enumerate(ink) if any(row)]
        xs = [x for x in range(len(ink[0])) if any(row[x] for row in ink)]
        box = range(ys[0], ys[-1] + 1)
        new = [row[:] for row in ink]
        if kind == "bold":
            for y in box:
                for x in range(xs[0], xs[-1]):
                    new[y][x + 1] |= ink[y][x]
            tally.ok(new != ink, "edit %s: making it bolder changed nothing" % name)
        elif kind in ("wider", "grow"):
            new = [row + [int(y in box)] * (1 if kind == "wider" else 3) for y, row in enumerate(ink)]
        elif kind == "white":
            new = [[0] * len(row) for row in ink]
        t.write(os.path.join(dst, name), t.glyph_bmp(new))

def patch_text(flash, font, vkp, repl):
    """The glyph patch line for line: the header, then one section per glyph in the order given
    ("-": the header alone)."""
    d = t.read(flash)
    rows = t.font_rows(d, int(font))
    fid = {0x18B5A64: "lg91_E71_v42", 0x185E184: "lg03_El71_v41"}.get(t.font_descriptor(d, 0), "Unknown LngPack")
    want = [";Change font %X for %s" % (int(font), fid), ";This file was generated by Korvatek", None]
    want += {"lg03_El71_v41": [";+578E0 ;if install on lg91_E71_v42"],
             "lg91_E71_v42": [";-578E0 ;if install on lg03_El71_v41"]}.get(fid, [])
    for code, path in pairs(repl if repl != "-" else ""):
        record, _ = t.glyph_record(t.ink_of(t.read(path)))
        at = rows[code - 1][1]
        want += ["", ";symbol %05d" % code] + [t.patch_line(at + k, d[at + k:at + k + len(record[k:k + 16])], record[k:k + 16])
                                               for k in range(0, len(record), 16)]
    got = t.vkp_lines(t.read(vkp) or b"")
    if not tally.ok(got is not None, "%s: lines do not all end in CR LF" % vkp):
        return
    if repl == "-":
        got = got[:len(want)]
    tally.ok(len(got) == len(want), "%s: %d lines, want %d" % (vkp, len(got), len(want)))
    for k, (g, w) in enumerate(zip(got, want)):
        tally.ok(g == w if w is not None else g.startswith(";") and len(g) > 1, "%s line %d: %r, want %r" % (vkp, k + 1, g, w))

def read_back(kind, orig, patched, font, listing, old_dir, new_dir, repl):
    """The patched fullflash read back: its glyph list, the records (in place for 'patch',
    packed anew from the lowest for 'make'), the bytes that changed, the glyph bitmaps."""
    d0, d1, font = t.read(orig), t.read(patched), int(font)
    rows0, rows1 = t.font_rows(d0, font), t.font_rows(d1, font)
    glyphs(patched, font, listing)
    if not tally.ok(len(rows0) == len(rows1) and len(d0) == len(d1), "%s: rows or image size changed" % kind):
        return
    replaced = {}
    for code, path in pairs(repl):
        ink = t.ink_of(t.read(path))
        replaced[code - 1] = (t.glyph_record(ink)[0], ink)
    records = [replaced[i][0] if i in replaced else r[3] + d0[r[1] + 5:r[1] + 5 + (r[3][1] + 7) // 8 * r[3][2]]
               for i, r in enumerate(rows0)]
    at = lowest = min(r[1] for r in rows0)
    for i, (r0, r1) in enumerate(zip(rows0, rows1)):
        tally.ok(d1[r1[1]:r1[1] + len(records[i])] == records[i], "%s glyph %d: record %s, want %s" % (
            kind, i + 1, d1[r1[1]:r1[1] + len(records[i])].hex(), records[i].hex()))
        tally.ok(r1[1] == (r0[1] if kind == "patch" else at), "%s glyph %d moved to %X" % (kind, i + 1, r1[1]))
        tally.ok(kind == "patch" or r0[2] >> 24 != 0xFF or r1[2] >> 24 == 0xFF, "make glyph %d: reference %08X lost its FFFF form" % (i + 1, r1[2]))
        at += len(records[i])
    if kind == "patch":
        allowed = sorted((rows0[i][1], rows0[i][1] + len(records[i])) for i in replaced)
    else:
        desc = t.font_descriptor(d0, font)
        tally.ok(len({r[1] for r in rows0}) == len(rows0), "make: the font shares records; this test expects none")
        allowed = sorted([(t.u32(d0, desc) & 0x0FFFFFFF, t.u32(d0, desc + 8) & 0x0FFFFFFF), (lowest, at)])
    edges = [0] + [e for span in allowed for e in span] + [len(d0)]
    tally.ok(all(d0[a:b] == d1[a:b] for a, b in zip(edges[::2], edges[1::2])), "%s: bytes changed outside the glyph records and table" % kind)
    # Replaced glyphs show the edited ink (both trimmed, compared from the bottom left), every
    # other glyph is the very same BMP as before.
    def from_bottom(ink):
        return {(x, len(ink) - 1 - y) for y, row in enumerate(ink) for x, v in enumerate(row) if v}
    for i, r in enumerate(rows1):
        new, old = (t.read(os.path.join(folder, r[0][0] + ".bmp")) for folder in (new_dir, old_dir))
        if i in replaced:
            ink = t.ink_of(new or t.glyph_bmp([[0]]))
            tally.ok(len(ink[0]) == len(replaced[i][1][0]) and from_bottom(ink) == from_bottom(replaced[i][1]),
                     "%s glyph %d: the BMP read back is not the edited one" % (kind, i + 1))
        elif old is not None:
            tally.ok(new == old, "%s glyph %d: untouched glyph changed" % (kind, i + 1))

globals()[sys.argv[1].replace("-", "_")](*sys.argv[2:])
sys.exit(tally.summary())
PY

FLASH=$WORK/demo.bin
run demo-flash "$FLASH"
[ "$RC" -eq 0 ] && [ -s "$FLASH" ] && pass || { fail "demo-flash: exit $RC"; finish; }
flash_sum=$(sha256sum <"$FLASH")

# ---- the font selector, the glyph lists, all glyphs as BMP
run fonts "$FLASH"
expect_rc 0 "fonts"
cp cmd.out fonts.txt
check "fonts" fonts "$FLASH" fonts.txt
for font in $(seq 0 $(($(wc -l <fonts.txt) - 1))); do
    run glyphs "$FLASH" "$font"
    expect_rc 0 "glyphs $font"
    cp cmd.out "glyphs$font.txt"
    check "glyphs $font" glyphs "$FLASH" "$font" "glyphs$font.txt"
    run glyph "$FLASH" "$font" all --dir "orig$font"
    expect_rc 0 "glyph $font all"
    check "glyph $font all" bmps "$FLASH" "$font" "orig$font"
done
# Rows the checker covers too, written out so that a shared misreading cannot hide: the
# font line, the len figure of an 8-pixel-wide glyph, the lift of font 0 at entries 375 and
# 783 only, the FF references of font 1.
while read -r file line want; do
    got=$(sed -n "$((10#$line))p" "$file")
    [ "$got" = "$(printf "$want")" ] && pass || fail "$file line $line: '$got', want '$want'"
done <<'EOF'
fonts.txt   1    Font 0\t18B5A64\t16
glyphs0.txt 0001 0001\t10\t8\t10\t00\t04\t1860000\t20000\t14
glyphs0.txt 0375 0375\t12\t10\t14\t00\t04\t1863690\t23690\t1C
glyphs0.txt 0376 0376\t12\t10\t14\t00\t04\t18736B4\t236B4\t1C
glyphs0.txt 0784 0784\t12\t10\t18\t00\t00\t1877398\t27398\t24
glyphs0.txt 0785 0785\t12\t10\t18\t00\t04\t18673C4\t273C4\t24
glyphs1.txt 0193 0193\t06\t5\t9\t00\t02\t1840100\t0100\t09
EOF

# ---- one glyph as BMP: the same file as in the batch, the information text
for pick in "0 65" "0 376" "1 193" "2 1"; do
    set -- $pick
    run glyph "$FLASH" "$1" "$2" -o one.bmp
    expect_rc 0 "glyph $1 $2"
    cmp -s one.bmp "orig$1/$(printf '%04d' "$2").bmp" && pass || fail "glyph $1 $2: the single save differs from the batch"
    [ "$pick" != "0 65" ] || [ "$(cat cmd.out)" = "$(printf 'Width: 12\nHeight: 18\n\nSymbolCode: 0x41\n\nLenght: 0x1C')" ] &&
        pass || fail "glyph 0 65 information: $(tr '\n' '|' <cmd.out)"
done

# ---- font-patch and make-font round trips: edit, patch, apply, read back
# The edits of PLAN (CODE:KIND,...) go to edit$FONT, those of FOLDER (codes, or -) are copied
# to folder$FONT as well; ARGS are the replacements of font-patch.
round_trip() {  # patch|make FONT PLAN FOLDER [ARGS...]
    local kind=$1 font=$2 plan=$3 folder=$4 repl="" code
    shift 4
    check "edit font $font" edit "orig$font" "edit$font" "$plan"
    for code in $(echo "$plan" | tr ',' '\n' | cut -d: -f1); do repl="$repl,$code=edit$font/$(printf '%04d' "$code").bmp"; done
    mkdir -p "folder$font"
    for code in ${folder//,/ }; do [ "$code" = - ] || cp "edit$font/$(printf '%04d' "$code").bmp" "folder$font/"; done
    if [ "$kind" = make ]; then
        run make-font "$FLASH" "$font" "edit$font" -o "$kind$font.vkp"
        repl_text=-
    else
        run font-patch "$FLASH" "$font" -o "$kind$font.vkp" "$@"
        repl_text=${repl#,}
    fi
    expect_rc 0 "$kind of font $font"
    check "$kind$font.vkp" patch-text "$FLASH" "$font" "$kind$font.vkp" "$repl_text"
    run apply "$FLASH" "$kind$font.vkp" -o "$kind$font.bin"
    expect_rc 0 "apply $kind$font.vkp"
    run glyphs "$kind$font.bin" "$font"
    cp cmd.out "$kind$font.glyphs"
    run glyph "$kind$font.bin" "$font" all --dir "$kind$font.new"
    expect_rc 0 "glyph all of the patched font $font"
    check "$kind font $font read back" read-back "$kind" "$FLASH" "$kind$font.bin" "$font" "$kind$font.glyphs" \
        "orig$font" "$kind$font.new" "${repl#,}"
    check "$kind font $font bitmaps" bmps "$kind$font.bin" "$font" "$kind$font.new"
}
# Font 0: glyphs on both sides of the lifted entries, one made blank; some given one by one,
# the others by folder, in that order.
round_trip patch 0 "65:bold,376:bold,102:bold,90:white,66:wider,375:wider,784:bold,785:wider,800:bold" \
    66,375,784,785,800 65=edit0/0065.bmp 376=edit0/0376.bmp 102=edit0/0102.bmp 90=edit0/0090.bmp --bmp-folder folder0
# Font 1 by folder alone, around its 0xFFFFxxxx references.
round_trip patch 1 "65:bold,193:bold,195:wider,198:wider,199:white,256:bold" - --bmp-folder edit1
# Font 2 rebuilt with glyphs that outgrow the room a single replacement has, the first and
# the last glyph among them, plus unedited bitmaps that are merely trimmed; the other fonts
# stay as they were.
check "edit font 2" edit orig2 edit2 "1:grow,65:grow,66:grow,77:grow"
run font-patch "$FLASH" 2 -o single.vkp 1=edit2/0001.bmp 65=edit2/0065.bmp 66=edit2/0066.bmp 77=edit2/0077.bmp
[ "$RC" -eq 1 ] && [ "$(grep -c '^Pic ' cmd.err)" -eq 4 ] && [ ! -e single.vkp ] && pass ||
    fail "the grown glyphs of font 2 should not fit one by one: exit $RC, $(head -n 4 cmd.err | tr '\n' '|')"
round_trip make 2 "1:grow,65:grow,66:grow,77:grow,72:bold,100:bold,88:white,70:keep,71:keep,224:grow" -
for font in 0 1; do
    run glyph make2.bin "$font" all --dir "make2_other$font"
    diff -rq "orig$font" "make2_other$font" >/dev/null && pass || fail "make-font 2 changed glyphs of font $font"
done
# Font 1 rebuilt: its 0xFFFFxxxx entries must keep reaching their records once repacked.
rm -rf edit1
round_trip make 1 "2:grow,192:grow,194:grow,197:white,240:bold" -

# ---- font-size: the exact file, the answers the input box takes, the patch applied
while read -r font answer want; do
    rm -f size.vkp
    run font-size "$FLASH" "$font" "$answer" -o size.vkp
    l3=$(sed -n 3p size.vkp | tr -d '\r')
    printf ';Change font %s size for lg91_E71_v42\r\n;This file was generated by Korvatek\r\n%s\r\n%s\r\n' \
        "$font" "$l3" "$want" >want.vkp
    [ "$RC" -eq 0 ] && cmp -s size.vkp want.vkp && [ "${l3:0:1}" = ";" ] && [ ${#l3} -gt 1 ] && pass ||
        fail "font-size $font $answer: exit $RC, $(tr '\r\n' '~|' <size.vkp)"
done <<'EOF'
0 6   18B5A68: 10 06
0 64  18B5A68: 10 40
0 16  18B5A68: 10 10
0 5.5 18B5A68: 10 06
0 6.5 18B5A68: 10 06
0 7.5 18B5A68: 10 08
1 20  18B5A80: 0B 14
2 9   18B5A98: 1A 09
0 12  18B5A68: 10 0C
EOF
# Answers the box asks again for: exit 2, nothing written.
for answer in 5 65 -3 0 abc ""; do
    run font-size "$FLASH" 0 "$answer" -o refused.vkp
    [ "$RC" -eq 2 ] && [ ! -e refused.vkp ] && [ -s cmd.err ] && pass ||
        fail "font-size answer '$answer': exit $RC, stderr '$(cat cmd.err)', $(ls refused.vkp 2>&1)"
done
run apply "$FLASH" size.vkp -o sized.bin
expect_rc 0 "apply size.vkp"
[ "$(cmp -l "$FLASH" sized.bin | awk '{ print $1, $2, $3 }')" = "$((0x18B5A68 + 1)) 20 14" ] && pass ||
    fail "applying the size patch changed $(cmp -l "$FLASH" sized.bin | head -n 3 | tr '\n' '|')"
run fonts sized.bin
[ "$(head -n 1 cmd.out)" = "$(printf 'Font 0\t18B5A64\t12')" ] && pass || fail "fonts after the size patch: $(head -n 1 cmd.out)"

[ "$(sha256sum <"$FLASH")" = "$flash_sum" ] && pass || fail "the demo fullflash was changed"
finish
