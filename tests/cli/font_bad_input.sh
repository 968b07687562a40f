#!/usr/bin/env bash
# The font commands of korvatek-cli on inputs they must refuse or treat with care:
#   tables  - descriptor pointers outside the image, a table that ends before it starts, a
#             table outside the image, a glyph reference past the end;
#   glyphs  - records that the 101 x 101 glyph grid cannot hold (wide, shifted, tall, a
#             negative shift that widens the cell past the grid);
#   patches - a BMP larger than the grid, the room check at its exact edge, also for ink 8 and
#             16 pixels wide, which needs a byte a row more than it stores ("Pic" and the
#             glyph number), the last glyph of a font, a glyph given twice, missing and
#             broken BMPs, font and glyph numbers that do not exist;
#   rebuild - make-font whose glyphs outgrow the span of the font's records (the figures
#             checked), a broken BMP in the folder, a font the table cannot re-point.
# Never a crash, a clear message on stderr, no output written by a refused command, the
# fullflash never changed.
#
# usage: font_bad_input.sh PATH/TO/korvatek-cli
set -u
source "$(dirname "$0")/common.sh" "$@"
GRID="This glyph does not fit the 101x101 glyph grid!"
# shellcheck disable=SC2034  # named in the table below
MODEL="This phone model not supported: "
TOO_BIG="Слишком большая bmp, попробуйте сделать разрешение поменьше;)"

make_demo
"$CLI" glyph "$FLASH" 2 all --dir orig2 >/dev/null 2>&1 || fail "glyph 2 all"

# Damaged copies of the demo fullflash, the bitmaps the cases feed in, and the figures of
# font 2 with every glyph three columns wider (grow/, for make-font).
"$PY" - "$FLASH" >figures.txt <<'PY' || fail "making the test inputs"
import os, struct, sys
import korvatek_testlib as t
d = t.read(sys.argv[1])
desc = [t.font_descriptor(d, i) for i in range(3)]
rows0, rows2 = t.font_rows(d, 0), t.font_rows(d, 2)
rec65 = rows2[64][1]  # font 2, glyph 65: a record to spoil
table2 = t.u32(d, desc[2]) & 0x0FFFFFFF
for name, edits in [
        ("outside", [(0x15C001C, 0xA3000000, 4)]),                              # descriptors past the end
        ("reversed", [(desc[1] + 8, t.u32(d, desc[1]) - 16, 4)]),               # end before start
        ("table_out", [(desc[1], 0xA3000000, 4), (desc[1] + 8, 0xA3000040, 4)]),  # table past the end
        ("ref_out", [(table2 + 4 + 8 * 64, 0x7FFFFFF0, 4)]),                    # a record far past the end
        ("wide", [(rec65 + 1, 200, 1)]), ("shifted", [(rec65 + 3, 90, 1)]),     # w = 200; sL = 90: past column 100
        ("tall", [(rec65 + 2, 150, 1)]), ("cell", [(rec65, 120, 1)]),           # h = 150; W = 120: margin past the grid
        ("negshift", [(rec65 + 3, 0x80, 1)]),                                   # sL = -128: a cell 129 wider
        ("model", [(0x8FC70, 0, 4)])]:                                          # no model
    b = bytearray(d)
    for at, value, width in edits:
        b[at:at + width] = value.to_bytes(width, "little")
    t.write(name + ".bin", bytes(b))

def block(w, h, W=None, H=None):
    """w x h ink in the bottom left corner of a W x H paper."""
    W, H = W or w, H or h
    return [[int(x < w and y >= H - h) for x in range(W)] for y in range(H)]
# The room of glyph N of font 0: next reference - this reference - 5 bytes; a glyph w pixels
# wide needs (w div 8 + 1) bytes a row there: 7 pixels one, 8 and 9 two, 16 three (so 8 and
# 16 take a byte a row more than they store). The last glyph of font 2 may keep the bytes its
# bitmap has.
room = [t.valhex(rows0[n][0][7]) - t.valhex(rows0[n - 1][0][7]) - 5 for n in (65, 66)]
last = rows2[-1][3]
have = (last[1] + 7) // 8 * last[2]
for name, ink in [("grid_wide", block(120, 10)), ("grid_tall", block(10, 120)), ("small", block(5, 5, 9, 12)),
                  ("fits65", block(7, room[0], 9, room[0] + 2)), ("over65", block(7, room[0] + 1, 9, room[0] + 3)),
                  ("over66", block(7, room[1] + 1, 9, room[1] + 1)), ("wide65", block(9, room[0] // 2 + 1)),
                  ("w8_fits65", block(8, room[0] // 2)), ("w8_over65", block(8, room[0] // 2 + 1)),
                  ("w16_fits65", block(16, room[0] // 3)), ("w16_over65", block(16, room[0] // 3 + 1)),
                  ("last_same", block(8, have)), ("last_over", block(8, have + 1))]:
    t.write(name + ".bmp", t.glyph_bmp(ink))
six = [(0, 0, 0)] * 36
t.write("sixteen.bmp", t.bmp_bytes(6, 6, 16, six))
t.write("not_bmp.bmp", t.bmp_bytes(6, 6, 24, six, magic=b"XX"))
t.write("rle.bmp", t.bmp_bytes(6, 6, 24, six, compression=1))

os.mkdir("grow")
need, start, end = 0, min(r[1] for r in rows2), max(r[1] + 5 + (r[3][1] + 7) // 8 * r[3][2] for r in rows2)
for r in rows2:
    ink = t.ink_of(t.read("orig2/%s.bmp" % r[0][0]))
    box = [y for y, row in enumerate(ink) if any(row)]
    if box:
        ink = [row + [int(box[0] <= y <= box[-1])] * 3 for y, row in enumerate(ink)]
        t.write("grow/%s.bmp" % r[0][0], t.glyph_bmp(ink))
    need += len(t.glyph_record(ink)[0])
print(len(rows2), need, end - start)
PY
read -r last grow_need grow_room <figures.txt
sha256sum ./*.bin >inputs.sha256

# ---- damaged font tables: a message, never a crash
# Descriptors past the end: every font reads as an empty table, listed where the pointer
# says, the size bytes zero.
for font in 0 1 2; do
    run glyphs outside.bin "$font"
    [ -s cmd.err ] && [ ! -s cmd.out ] && pass || fail "glyphs outside.bin $font: exit $RC, rows $(head -n 1 cmd.out)"
done
run fonts outside.bin
[ "$RC" -eq 0 ] && [ "$(cat cmd.out)" = "$(printf 'Font 0\t3000000\t0\nFont 1\t3000018\t0\nFont 2\t3000030\t0')" ] && pass ||
    fail "fonts outside.bin: exit $RC, $(tr '\t\n' ' |' <cmd.out)"
# Font 1's table ends before it starts: a message naming both ends, no rows; font 0 is sound.
run glyphs reversed.bin 1
grep -Fq "0x18B73B0 - 0x18B73A0" cmd.err && [ ! -s cmd.out ] && pass || fail "glyphs of a table that ends before it starts: $(stderr)"
run glyphs reversed.bin 0
expect_rc 0 "glyphs of the sound font next to a damaged one"
# A table past the end of the image reads zeros; glyph all on the damaged tables: no crash.
run glyphs table_out.bin 1
for f in outside reversed table_out; do run glyph "$f.bin" 1 all --dir "all_$f"; done
run glyphs ref_out.bin 2
[ -s cmd.err ] && pass || fail "glyphs with a record past the end of the image: no message"
run glyph ref_out.bin 2 65 -o ref.bmp
# The w = 200 row is listed; glyph all leaves that glyph out and saves the others.
run glyphs wide.bin 2
[ "$RC" -eq 0 ] && [ "$(sed -n 65p cmd.out)" = "$(printf '0065\t18\t200\t21\t00\t06\t1851814\t11814\t222')" ] && pass ||
    fail "the w = 200 row: exit $RC, '$(sed -n 65p cmd.out)'"
run glyph wide.bin 2 all --dir all_wide
expect_line "$GRID" "glyph all of wide.bin"
expect_missing all_wide/0065.bmp "glyph all of wide.bin"
[ "$(ls all_wide | wc -l)" -eq "$((last - 1))" ] && pass || fail "glyph all of wide.bin: the other glyphs were not all saved"

# ---- refusals: damaged tables, records the grid cannot hold, bitmaps and numbers font-patch,
# glyph, glyphs, font-size and make-font must refuse
mkdir -p empty broken grid
cp not_bmp.bmp broken/0065.bmp
cp grid_wide.bmp grid/0065.bmp
printf 'old\r\n' >kept.vkp
while read -r rc msg out args; do
    case $msg in -) msg= ;; \$*) msg=${msg#\$} msg=${!msg} ;; *) eval "msg=\"${msg//_/ }\"" ;; esac
    # shellcheck disable=SC2086
    eval "refused \"\$rc\" \"\$msg\" \"\$out\" $args"
done <<'EOF'
1 -                               rev.bmp glyph reversed.bin 1 1 -o rev.bmp
1 -                               rev.vkp make-font reversed.bin 1 . -o rev.vkp
1 -                               rev.vkp font-patch reversed.bin 1 -o rev.vkp 1=small.bmp
1 -                               ref.vkp make-font ref_out.bin 2 . -o ref.vkp
1 $MODEL                          x       fonts model.bin
1 $GRID                           w.bmp   glyph wide.bin 2 65 -o w.bmp
1 $GRID                           w.bmp   glyph shifted.bin 2 65 -o w.bmp
1 $GRID                           w.bmp   glyph tall.bin 2 65 -o w.bmp
1 $GRID                           w.bmp   glyph cell.bin 2 65 -o w.bmp
1 $GRID                           w.bmp   glyph negshift.bin 2 65 -o w.bmp
1 $GRID                           r.vkp font-patch "$FLASH" 0 -o r.vkp 65=grid_wide.bmp
1 $GRID                           r.vkp font-patch "$FLASH" 0 -o r.vkp 65=grid_tall.bmp
1 This_is_not_24_or_32bit_bmp!    r.vkp font-patch "$FLASH" 0 -o r.vkp 65=sixteen.bmp
1 Unknown_file!                   r.vkp font-patch "$FLASH" 0 -o r.vkp 65=not_bmp.bmp
1 Compressed_BMPs_not_supported!  r.vkp font-patch "$FLASH" 0 -o r.vkp 65=rle.bmp
1 File_not_exist!                 r.vkp font-patch "$FLASH" 0 -o r.vkp 65=missing.bmp
1 Pic_65                          r.vkp font-patch "$FLASH" 0 -o r.vkp 65=wide65.bmp
1 Pic_$last                       r.vkp font-patch "$FLASH" 2 -o r.vkp $last=last_over.bmp
1 No_such_font:_3                 r.vkp font-patch "$FLASH" 3 -o r.vkp 65=small.bmp
1 No_such_glyph_in_the_list:_$((last+1)) r.vkp font-patch "$FLASH" 2 -o r.vkp $((last+1))=small.bmp
1 No_such_glyph_in_the_list:_0    r.vkp font-patch "$FLASH" 2 -o r.vkp 0=small.bmp
1 -                               x     glyphs "$FLASH" 3
1 -                               r.bmp glyph "$FLASH" 3 1 -o r.bmp
1 -                               r.bmp glyph "$FLASH" 2 $((last+1)) -o r.bmp
1 -                               r.vkp font-size "$FLASH" 3 12 -o r.vkp
2 -                               d     glyph "$FLASH" 2 all --dir d -o x.bmp
1 Unknown_file!                   r.vkp make-font "$FLASH" 2 broken -o r.vkp
1 $GRID                           r.vkp make-font "$FLASH" 2 grid -o r.vkp
1 No_such_font:_3                 r.vkp make-font "$FLASH" 3 empty -o r.vkp
1 -                               r.vkp make-font "$FLASH" 2 missing_dir -o r.vkp
EOF
# Just over the room: "Pic 65", then the message on the next line; an existing output is
# kept. Ink 8 and 16 pixels wide is over although the bytes it stores would fit.
for bmp in over65 w8_over65 w16_over65; do
    printf 'old\r\n' >kept.vkp
    run font-patch "$FLASH" 0 -o kept.vkp "65=$bmp.bmp"
    expect_rc 1 "$bmp.bmp, just over the room of glyph 65"
    [ "$(grep -A1 -Fx "Pic 65" cmd.err | tail -n 1)" = "$TOO_BIG" ] && pass || fail "$bmp.bmp: not 'Pic 65' then the room message: $(stderr)"
    [ "$(cat kept.vkp)" = "$(printf 'old\r')" ] && pass || fail "a refused font-patch replaced the existing output"
done

# The edge of the room is inclusive, and the last glyph may keep its byte count even where
# the "len" column (one byte more a row) would call it too long.
for item in "0:65:fits65" "0:65:w8_fits65" "0:65:w16_fits65" "2:$last:last_same"; do
    IFS=: read -r font code bmp <<<"$item"
    rm -f edge.vkp
    run font-patch "$FLASH" "$font" -o edge.vkp "$code=$bmp.bmp"
    [ "$RC" -eq 0 ] && grep -q "^;symbol $(printf '%05d' "$code")" edge.vkp && pass || fail "font-patch $font $code=$bmp.bmp: exit $RC"
done
# Accepted and refused together: the refusals reported, the patch holds the accepted one;
# applied twice, the old bytes no longer match.
run font-patch "$FLASH" 0 -o mixed.vkp 65=fits65.bmp 66=over66.bmp 65=small.bmp
expect_rc 1 "one accepted, two refused"
expect_line "Pic 66" "one accepted, two refused"
expect_line "This picture is already replaced. Reboot program or complete commenced patch" "a glyph given twice"
[ "$(grep '^;symbol' mixed.vkp | tr -d '\r')" = ";symbol 00065" ] && pass || fail "mixed.vkp should hold glyph 65 alone"
run apply "$FLASH" mixed.vkp -o mixed.bin
expect_rc 0 "apply mixed.vkp"
refused 1 "" twice.bin apply mixed.bin mixed.vkp -o twice.bin

# ---- make-font whose glyphs outgrow the span of the font's records: the figures named
refused 1 "" r.vkp make-font "$FLASH" 2 grow -o r.vkp
grep -Fq "needs $grow_need bytes" cmd.err && grep -Fq "room for $grow_room bytes" cmd.err && pass ||
    fail "make-font whose glyphs outgrow the span: '$(stderr)', expected needs $grow_need bytes, room for $grow_room bytes"
# Font 0 keeps entries 375..783 0x10000 above their references; packed back to back, some of
# them would need references the table reader takes as negative: a patch, or a refusal.
rm -f made.vkp
run make-font "$FLASH" 0 empty -o made.vkp
{ [ "$RC" -eq 0 ] && [ -s made.vkp ]; } || { [ "$RC" -eq 1 ] && [ -s cmd.err ] && [ ! -e made.vkp ]; } && pass ||
    fail "make-font 0: exit $RC, stderr $(stderr)"

unchanged "the font commands"
rm -f mixed.bin
sha256sum --quiet -c inputs.sha256 >/dev/null 2>&1 && pass || fail "a damaged input flash was changed"
finish
