#!/usr/bin/env bash
# End-to-end run of korvatek-cli on the demonstration fullflash:
#   demo-flash, info, pictures (every cell against the raw index records),
#   export all as BMP and as GPF2, checked by an independent decoder (independent_check.py),
#   also on a copy whose index table is scrambled, single exports and picture information
#   against the batch files, and GPF2 files decoded back to the batch's BMP.
#
# usage: end_to_end.sh PATH/TO/korvatek-cli
set -u
source "$(dirname "$0")/common.sh" "$@"
make_demo
size=$(stat -c %s "$FLASH" 2>/dev/null || echo 0)
[ "$size" -eq 33554432 ] && pass || { fail "demo flash is $size bytes, expected 33554432"; finish; }

# ---- info
run info "$FLASH" && pass || fail "info: $ERR"
got=$(sed -E 's/^fonts: ([2-9]|[1-9][0-9]+)$/fonts: N/' cmd.out)  # at least two fonts
[ "$got" = "$(printf 'model: E71\npack: 42\nfirmware: lg91_E71_v42\nfonts: N\npictures: 1701')" ] && pass ||
    fail "info printed $(tr '\n' '|' <cmd.out)"

# ---- pictures (checked against the raw index records below)
run pictures "$FLASH" && pass || fail "pictures: $ERR"
cp cmd.out pictures.out

# ---- export all, checked by the independent decoder
for pair in D1:bmp D2:gpf2; do
    dir=${pair%%:*} ext=${pair#*:}
    mkdir "$dir"
    run export "$FLASH" all --dir "$dir" --format "$ext" && [ ! -s cmd.out ] && pass ||
        fail "export all --format $ext: exit $RC, $(cat cmd.out cmd.err)"
    stray=$(find "$dir" -type f -printf '%f\n' | grep -Ev "^(0[0-9]{3}|1[0-6][0-9]{2}|1700)\.$ext\$" | head -n 3)
    [ -z "$stray" ] && pass || fail "$dir holds files not named 0000.$ext..1700.$ext: $stray"
    # Rows the decoder refuses or cannot place may be left out; independent_check.py says which.
    count=$(find "$dir" -type f | wc -l)
    [ "$count" -ge 1690 ] && pass || fail "$dir holds $count files, expected about 1701"
done
"$PY" "$HERE/independent_check.py" "$FLASH" D1 D2 >independent.out 2>&1
add_counts independent.out "demo flash"

# ---- the same on a copy with a third of its index records scrambled: random sizes (also 0,
# 241 x 321, 65535 and negative), every known type code and some unknown ones (refused rows,
# or rows decoded with the previous picture's bit depth), data anywhere, also running past
# the end of the image or starting far beyond it, and runs that overrun the last row (of the
# picture, and of the canvas). Its list is checked against the raw records as well.
TWISTED=$WORK/twisted.bin
cp "$FLASH" "$TWISTED"
"$PY" - "$TWISTED" <<'EOF'
import random, struct, sys
rng = random.Random(71)
codes = [0x01, 0x05, 0x85, 0x07, 0x87, 0x08, 0x88, 0x0A, 0x8A, 0x81, 0x03, 0x00, 0x10, 0xFF, 0x0B, 0x8B, 0x7F]
def record(f, n, width, height, code, offset):
    f.seek(0x1B01958 + 12 * n)
    f.write(struct.pack("<HHB3sI", width, height, code, b"\0\0\0", 0xA0000000 | offset))
with open(sys.argv[1], "r+b") as f:
    for n in range(1, 1701, 3):
        width = rng.choice([rng.randrange(1, 241), rng.randrange(1, 33), 0, 1, 9, 240, 241, 300, 1000, 0x7FFF, 0x8000, 0xFFFF])
        height = rng.choice([rng.randrange(1, 321), rng.randrange(1, 33), 0, 1, 320, 321, 500, 0xFFFB])
        code = rng.choice(codes)
        offset = rng.choice([0x2000000 - rng.randrange(1, 400), rng.randrange(0x2000000, 0x10000000)]) \
            if rng.random() < 0.1 else rng.randrange(0x1B07068, 0x1FB0000)
        record(f, n, width, height, code, offset)
    f.seek(0x1300000)  # repeats of 127 one-byte samples, in erased flash
    f.write(bytes([0x7F, 0x12] * 3))
    record(f, 2, 1, 318, 0x85, 0x1300000)
    record(f, 5, 1, 200, 0x85, 0x1300000)
EOF
for format in bmp gpf2; do
    mkdir "T$format"
    run export "$TWISTED" all --dir "T$format" --format $format
    [ $RC -le 1 ] && pass || fail "export all --format $format on the scrambled table exited $RC"
done
"$PY" "$HERE/independent_check.py" "$TWISTED" Tbmp Tgpf2 >twisted.out 2>&1
add_counts twisted.out "scrambled table"
# Single rows of it in fresh processes: a picture, or a refusal that writes nothing.
for n in 1 2 4 5 7 10 13 16 19 22 25 28 31 34 1699; do
    run picture "$TWISTED" "$n"
    [ $RC -le 1 ] && pass || fail "picture $n of the scrambled table: status $RC"
    for ext in gpf2 bmp; do
        rm -f "t.$ext"
        run export "$TWISTED" "$n" -o "t.$ext"
        { [ $RC -eq 0 ] && [ -s "t.$ext" ]; } || { [ $RC -eq 1 ] && [ -s cmd.err ] && [ ! -e "t.$ext" ]; } && pass ||
            fail "export $n of the scrambled table: status $RC, stderr '${ERR:0:200}'"
    done
done

# ---- the flash read here: the list against the raw index records; one picture of every type
# code the list gives back (samples.txt; in a fresh process the bit depth starts at 0, so
# codes outside the table, A00 and the odd records, are refused there); the pictures whose
# GPF2 a fresh process decodes (decode.list: a known type code, a size the canvas holds).
cat >pictures_check.py <<'EOF'
import sys
import korvatek_testlib as t
flash, tally = t.Flash(t.read(sys.argv[1])), t.Tally()
lines = open(sys.argv[2], encoding="ascii", errors="replace").read().split("\n")[:-1]
last = lines[1700].split("\t") if len(lines) == 1701 else []
tally.ok(last[:2] + last[5:6] == ["1700", "6A4", "1B06908"], "pictures printed %d lines, the last %r" % (len(lines), last))
seen, canvas = set(), t.Canvas()
with open("samples.txt", "w") as samples, open("decode.list", "w") as decodable:
    for (n, w, h, type_byte, offset), line in zip(t.records(flash), lines):
        address = int.from_bytes(flash.read(t.TABLE_OFFSET + 12 * n + 8, 4), "little")
        want = ["%04d" % n, "%03X" % n, str(w), str(h), t.type_text(type_byte), "%X" % (t.TABLE_OFFSET + 12 * n),
                ("%08X" % address)[-7:]]
        tally.ok(line.split("\t") == want, "row %d is %r, expected %r" % (n, line, "\t".join(want)))
        code = int(t.type_text(type_byte)[:2], 16)
        depth = t.DEPTH_OF_CODE.get(code)
        usable = depth and not (depth == 1 and code > 0x80) and 1 <= w <= 240 and 1 <= h <= 320
        if usable and offset:
            print("%04d" % n, file=decodable)
        if code in seen or offset == 0:
            continue
        seen.add(code)
        if not usable:
            print(n, "refused", file=samples)
        else:
            try:
                used = t.decode(flash, offset, w, h, depth, code > 0x80, canvas)
            except t.OutsideCanvas:  # only in the scrambled table, whose samples go unused
                continue
            print(n, "ok", w, h, depth, "Yes" if code > 0x80 else "No", "%X" % used, file=samples)
tally.summary()
EOF
"$PY" pictures_check.py "$FLASH" pictures.out >pictures.check
add_counts pictures.check "pictures"
mkdir tw && run pictures "$TWISTED" && cp cmd.out tw/pictures.out
(cd tw && "$PY" ../pictures_check.py "$TWISTED" pictures.out) >twisted.check
add_counts twisted.check "pictures of the scrambled table"

# ---- single exports and picture information against the batch
[ "$(wc -l <samples.txt)" -ge 9 ] && pass || fail "only $(wc -l <samples.txt) picture types sampled"
while read -r n kind w h bits comp len; do
    id=$(printf %04d "$n")
    run picture "$FLASH" "$n"
    if [ "$kind" = ok ]; then
        printf 'Width: %s\nHeight: %s\nBits: %s\nCompression: %s\n\nLenght: 0x%s\n' "$w" "$h" "$bits" "$comp" "$len" >pic.want
        [ $RC -eq 0 ] && cmp -s cmd.out pic.want && pass || fail "picture $id: status $RC, text $(tr '\n' '|' <cmd.out)"
        for pair in gpf2:D2 bmp:D1; do
            ext=${pair%%:*}
            run export "$FLASH" "$n" -o "one.$ext" && cmp -s "one.$ext" "${pair#*:}/$id.$ext" && pass ||
                fail "picture $id: single export to .$ext differs from the batch file"
        done
        # --alpha keeps a 24-bit picture's alpha in a 32-bit BMP and changes nothing for the others.
        run export "$FLASH" "$n" -o alpha.bmp --alpha
        if [ "$bits" = 24 ]; then [ "$(od -An -tu1 -j 28 -N 1 alpha.bmp | tr -d ' ')" = 32 ] && pass || fail "picture $id --alpha: not 32 bits"
        else same alpha.bmp "D1/$id.bmp" "picture $id --alpha"; fi
    else
        [ $RC -eq 1 ] && [ -s cmd.err ] && pass || fail "picture $id (refused format): status $RC, stderr '$ERR'"
        run export "$FLASH" "$n" -o refused.gpf2
        [ $RC -eq 1 ] && [ ! -e refused.gpf2 ] && pass || fail "export of refused picture $id: status $RC"
    fi
done <samples.txt

# ---- GPF2 files decode back to the pixels of the batch BMP: every tenth of decode.list
must=$(wc -l <decode.list)
[ "$must" -ge 1400 ] && pass || fail "only $must pictures have a known type code"
mkdir dec
for id in $(awk 'NR % 10 == 1' decode.list); do
    run decode "D2/$id.gpf2" -o "dec/$id.bmp" && cmp -s "dec/$id.bmp" "D1/$id.bmp" && pass ||
        fail "decoding D2/$id.gpf2 does not give D1/$id.bmp: ${ERR:0:200}"
done

unchanged "info, pictures, picture and export"
finish
