#!/usr/bin/env bash
# End-to-end run of korvatek-cli on the demonstration fullflash:
#   demo-flash, info, pictures (every cell against the raw index records),
#   export all as BMP and as GPF2, checked by an independent decoder (independent_check.py),
#   single exports against the batch files, and every GPF2 decoded back to the batch's BMP.
#
# usage: end_to_end.sh PATH/TO/korvatek-cli
set -u

if [ $# -ne 1 ] || [ ! -x "$1" ]; then
    echo "usage: $0 PATH/TO/korvatek-cli" >&2
    exit 2
fi
CLI=$(realpath "$1")
exec 2>&1 3>&1  # one stream, so that failures appear in order; 3 stays the console
HERE=$(cd "$(dirname "$0")" && pwd)
PY=/usr/bin/python3
WORK=$(mktemp -d)
trap 'rm -rf "$WORK"' EXIT
cd "$WORK" || exit 1

passed=0
failed=0
pass() { passed=$((passed + 1)); }
fail() {
    failed=$((failed + 1))
    echo "FAIL: $*" >&3
}
# Adds the counts of a helper's "N passed, M failed" line.
add_counts() {
    local line
    line=$(grep -E '^[0-9]+ passed, [0-9]+ failed$' "$1" | tail -n 1)
    if [ -z "$line" ]; then
        fail "$2 printed no summary"
        return
    fi
    passed=$((passed + ${line%% passed*}))
    local m=${line#*, }
    failed=$((failed + ${m%% failed}))
}
finish() {
    echo "$passed passed, $failed failed"
    [ "$failed" -eq 0 ]
    exit $?
}
# Runs the CLI; a status of 128 or more is a crash and always a failure.
run() {
    "$CLI" "$@"
    local rc=$?
    if [ $rc -ge 128 ]; then fail "korvatek-cli $* crashed (status $rc)"; fi
    return $rc
}

FLASH=$WORK/demo.bin

# ---- demo-flash
if run demo-flash "$FLASH" >demo.out 2>demo.err; then pass; else fail "demo-flash exited $?: $(cat demo.err)"; fi
size=$(stat -c %s "$FLASH" 2>/dev/null || echo 0)
if [ "$size" -eq 33554432 ]; then pass; else fail "demo flash is $size bytes, expected 33554432"; fi
if [ "$size" -eq 0 ]; then finish; fi
flash_sum=$(sha256sum "$FLASH")

# ---- info
if run info "$FLASH" >info.out 2>info.err; then pass; else fail "info exited $?: $(cat info.err)"; fi
expect_line() {  # LINE_NO REGEX
    local got
    got=$(sed -n "$1p" info.out)
    if [[ "$got" =~ $2 ]]; then pass; else fail "info line $1 is '$got', expected /$2/"; fi
}
expect_line 1 '^model: E71$'
expect_line 2 '^pack: 42$'
expect_line 3 '^firmware: lg91_E71_v42$'
expect_line 4 '^fonts: ([2-9]|[1-9][0-9]+)$'
expect_line 5 '^pictures: 1701$'
if [ "$(wc -l <info.out)" -eq 5 ]; then pass; else fail "info printed $(wc -l <info.out) lines, expected 5"; fi

# ---- pictures: every row against the 12 raw bytes of its index record
if run pictures "$FLASH" >pictures.out 2>pictures.err; then pass; else fail "pictures exited $?: $(cat pictures.err)"; fi
"$PY" - "$FLASH" pictures.out >pictures.check 2>&1 <<'EOF'
import struct, sys
flash_path, listing = sys.argv[1], sys.argv[2]
with open(flash_path, "rb") as f:
    f.seek(0x1B01958)
    table = f.read(1701 * 12)
lines = open(listing, encoding="ascii", errors="replace").read().split("\n")
if lines and lines[-1] == "":
    lines.pop()
passed = failed = 0
def check(ok, what):
    global passed, failed
    if ok:
        passed += 1
    else:
        failed += 1
        print("FAIL: " + what)
check(len(lines) == 1701, "pictures printed %d lines, expected 1701" % len(lines))
exact = {0: ["0000", "000", "1B01958"], 1700: ["1700", "6A4", "1B06908"]}
for n, line in enumerate(lines[:1701]):
    cells = line.split("\t")
    if len(cells) != 7:
        check(False, "row %d has %d cells: %r" % (n, len(cells), line))
        continue
    raw = table[n * 12:n * 12 + 12]
    width, height = struct.unpack_from("<hh", raw, 0)
    type_byte = raw[4]
    address = struct.unpack_from("<I", raw, 8)[0]
    type_text = ("0" if type_byte < 10 else "") + "%X" % type_byte + "00"
    want = ["%04d" % n, "%03X" % n, str(width), str(height), type_text,
            "%X" % (0x1B01958 + n * 12), ("%08X" % address)[-7:]]
    bad = [(i + 1, cells[i], want[i]) for i in range(7) if cells[i] != want[i]]
    check(not bad, "row %d: %s" % (n, ", ".join("cell %d is %r, expected %r" % b for b in bad)))
    if n in exact:
        e = exact[n]
        check([cells[0], cells[1], cells[5]] == e,
              "row %d: #, hex, PIToffset are %r, expected %r" % (n, [cells[0], cells[1], cells[5]], e))
print("%d passed, %d failed" % (passed, failed))
EOF
grep '^FAIL' pictures.check >&2
add_counts pictures.check "pictures check"

# ---- export all
mkdir D1 D2
if run export "$FLASH" all --dir D1 --format bmp >export1.out 2>export1.err; then pass; else fail "export all bmp exited $?: $(cat export1.err)"; fi
if run export "$FLASH" all --dir D2 --format gpf2 >export2.out 2>export2.err; then pass; else fail "export all gpf2 exited $?: $(cat export2.err)"; fi
if [ ! -s export1.out ] && [ ! -s export2.out ]; then pass; else fail "export all printed on stdout"; fi
for pair in D1:bmp D2:gpf2; do
    dir=${pair%%:*}
    ext=${pair#*:}
    count=$(find "$dir" -type f | wc -l)
    stray=$(find "$dir" -type f -printf '%f\n' | grep -Ev "^(0[0-9]{3}|1[0-6][0-9]{2}|1700)\.$ext\$" | head -n 3)
    if [ -z "$stray" ]; then pass; else fail "$dir holds files not named 0000.$ext..1700.$ext: $stray"; fi
    # Rows the decoder refuses or cannot place may be left out; independent_check.py says which.
    if [ "$count" -ge 1690 ] && [ "$count" -le 1701 ]; then pass; else fail "$dir holds $count files, expected about 1701"; fi
done

# ---- the independent decoder
"$PY" "$HERE/independent_check.py" "$FLASH" D1 D2 >independent.out 2>&1
rc=$?
grep -E '^(FAIL|SKIP|note|independent)' independent.out | head -n 40 >&2
if grep -q '^SKIP' independent.out; then
    echo "note: independent check skipped (no PIL)" >&2
elif [ $rc -ne 0 ]; then
    add_counts independent.out "independent_check.py"
    [ $rc -eq 1 ] || fail "independent_check.py exited $rc"
else
    add_counts independent.out "independent_check.py"
fi

# ---- the same on a fullflash with a third of its index records scrambled
# Random sizes (also 0, 241 x 321 and more), every known type code and some unknown ones
# (refused rows, or rows decoded with the previous picture's bit depth), data anywhere, also
# running past the end of the image, and runs that overrun the last row.
TWISTED=$WORK/twisted.bin
cp "$FLASH" "$TWISTED"
"$PY" - "$TWISTED" <<'EOF'
import random, struct, sys
rng = random.Random(71)
codes = [0x01, 0x05, 0x85, 0x07, 0x87, 0x08, 0x88, 0x0A, 0x8A, 0x81, 0x03, 0x00, 0x10, 0xFF]
with open(sys.argv[1], "r+b") as f:
    # Repeat runs of 127 one-byte samples, in erased flash: a 1 x 318 picture overruns the
    # canvas, a 1 x 200 one overruns its last row inside it.
    f.seek(0x1300000)
    f.write(bytes([0x7F, 0x12] * 3))
    for n in range(1, 1701, 3):
        width = rng.choice([rng.randrange(1, 241), rng.randrange(1, 33), 0, 1, 9, 240, 241, 300])
        height = rng.choice([rng.randrange(1, 321), rng.randrange(1, 33), 0, 1, 320, 321])
        code = rng.choice(codes)
        if rng.random() < 0.1:
            offset = 0x2000000 - rng.randrange(1, 400)
        else:
            offset = rng.randrange(0x1B07068, 0x1FB0000)
        record = struct.pack("<HHB3sI", width, height, code, b"\0\0\0", 0xA0000000 | offset)
        f.seek(0x1B01958 + 12 * n)
        f.write(record)
    for n, (width, height) in ((2, (1, 318)), (5, (1, 200))):
        f.seek(0x1B01958 + 12 * n)
        f.write(struct.pack("<HHB3sI", width, height, 0x85, b"\0\0\0", 0xA1300000))
EOF
mkdir T1 T2
run export "$TWISTED" all --dir T1 --format bmp >/dev/null 2>twisted1.err
rc1=$?
run export "$TWISTED" all --dir T2 --format gpf2 >/dev/null 2>twisted2.err
rc2=$?
if [ $rc1 -le 1 ] && [ $rc2 -le 1 ]; then pass; else fail "export all on the scrambled table exited $rc1 / $rc2"; fi
"$PY" "$HERE/independent_check.py" "$TWISTED" T1 T2 >twisted.out 2>&1
rc=$?
grep -E '^(FAIL|SKIP|independent)' twisted.out | head -n 40 | sed 's/^/scrambled table: /'
if ! grep -q '^SKIP' twisted.out; then
    add_counts twisted.out "independent_check.py on the scrambled table"
    [ $rc -le 1 ] || fail "independent_check.py exited $rc on the scrambled table"
fi

# ---- single exports and picture information against the batch
# One picture of every type code the list can give back; in a fresh process the bit depth
# starts at 0, so codes outside the table (A00 and the odd records) are refused there.
"$PY" - "$FLASH" "$HERE" >samples.txt <<'EOF'
import sys
sys.path.insert(0, sys.argv[2])
import independent_check as ic
with open(sys.argv[1], "rb") as f:
    flash = ic.Flash(f.read())
seen = set()
canvas = ic.Canvas()
for n, w, h, t, offset in ic.records(flash):
    code = int(ic.type_text(t)[:2], 16)
    if code in seen or offset == 0:
        continue
    seen.add(code)
    depth = ic.DEPTH_OF_CODE.get(code)
    if depth is None or (depth == 1 and code > 0x80) or not (1 <= w <= 240 and 1 <= h <= 320):
        print(n, "refused", w, h, 0, "No", 0)
        continue
    consumed = ic.decode(flash, offset, w, h, depth, code > 0x80, canvas)
    print(n, "ok", w, h, depth, "Yes" if code > 0x80 else "No", "%X" % consumed)
EOF
while read -r n kind w h bits comp len; do
    id=$(printf %04d "$n")
    run picture "$FLASH" "$n" >"pic$id.out" 2>"pic$id.err"
    rc=$?
    if [ "$kind" = ok ]; then
        printf 'Width: %s\nHeight: %s\nBits: %s\nCompression: %s\n\nLenght: 0x%s\n' "$w" "$h" "$bits" "$comp" "$len" >"pic$id.want"
        if [ $rc -eq 0 ] && cmp -s "pic$id.out" "pic$id.want"; then pass; else
            fail "picture $id: status $rc, information text differs: $(diff "pic$id.want" "pic$id.out" | tr '\n' ' ')"
        fi
        for ext in gpf2 bmp; do
            dir=D2
            [ $ext = bmp ] && dir=D1
            if run export "$FLASH" "$n" -o "one$id.$ext" >/dev/null 2>"one$id.$ext.err" &&
                cmp -s "one$id.$ext" "$dir/$id.$ext"; then pass; else
                fail "picture $id: single export to .$ext differs from the batch file $dir/$id.$ext ($(head -c 200 "one$id.$ext.err"))"
            fi
        done
    else
        if [ $rc -eq 1 ] && [ -s "pic$id.err" ]; then pass; else fail "picture $id (refused format): status $rc, stderr '$(cat "pic$id.err")'"; fi
        run export "$FLASH" "$n" -o "one$id.gpf2" >/dev/null 2>"one$id.err"
        rc=$?
        if [ $rc -eq 1 ] && [ ! -e "one$id.gpf2" ]; then pass; else fail "export of refused picture $id: status $rc, file written: $([ -e "one$id.gpf2" ] && echo yes || echo no)"; fi
    fi
done <samples.txt
if [ "$(wc -l <samples.txt)" -ge 9 ]; then pass; else fail "only $(wc -l <samples.txt) picture types sampled"; fi

# ---- every GPF2 decodes back to the pixels of the batch BMP
# The container carries the type code as the list read it back; a code outside the table is
# refused in a fresh process, so only the known codes have to decode.
mkdir dec
"$PY" - D2 >decode.list <<'EOF'
import os, struct, sys
known = {0x01, 0x05, 0x85, 0x07, 0x87, 0x08, 0x88, 0x0A, 0x8A}
for name in sorted(os.listdir(sys.argv[1])):
    with open(os.path.join(sys.argv[1], name), "rb") as f:
        head = f.read(32)
    w, h = struct.unpack_from("<HH", head, 20) if len(head) == 32 else (0, 0)
    must = head[24] in known and 1 <= w <= 240 and 1 <= h <= 320 if len(head) == 32 else False
    print(name[:-5], "must" if must else "may")
EOF
decode_one() {
    local id=$1 mode=$2 rc
    "$CLI" decode "D2/$id.gpf2" -o "dec/$id.bmp" >/dev/null 2>"dec/$id.err"
    rc=$?
    if [ $rc -ge 128 ]; then
        echo "FAIL $id: decode crashed (status $rc)"
    elif [ "$mode" = must ]; then
        if [ $rc -ne 0 ]; then
            echo "FAIL $id: decode exited $rc: $(head -c 200 "dec/$id.err")"
        elif [ ! -e "D1/$id.bmp" ]; then
            echo "FAIL $id: D1/$id.bmp missing, nothing to compare with"
        elif ! cmp -s "dec/$id.bmp" "D1/$id.bmp"; then
            echo "FAIL $id: decoding D2/$id.gpf2 gives a BMP that differs from D1/$id.bmp ($(cmp "dec/$id.bmp" "D1/$id.bmp" 2>&1 | head -n 1))"
        else
            echo "PASS $id"
        fi
    elif [ $rc -le 1 ]; then
        echo "SKIP $id"
    else
        echo "FAIL $id: decode of a refused type exited $rc"
    fi
}
export -f decode_one
export CLI
xargs -P 2 -n 2 bash -c 'decode_one "$@"' _ <decode.list >decode.results
must=$(grep -c ' must$' decode.list)
got=$(grep -c '^PASS' decode.results)
grep '^FAIL' decode.results | head -n 20 >&2
nfail=$(grep -c '^FAIL' decode.results)
passed=$((passed + got))
failed=$((failed + nfail))
if [ "$(wc -l <decode.results)" -eq "$(wc -l <decode.list)" ]; then pass; else fail "decode round: $(wc -l <decode.results) results for $(wc -l <decode.list) files"; fi
if [ "$must" -ge 1400 ]; then pass; else fail "only $must GPF2 files have a known type code"; fi
echo "decode round: $got of $must GPF2 files decoded to their batch BMP; $(grep -c '^SKIP' decode.results) with a type code refused in a fresh process" >&2

# ---- the fullflash is only ever read
if [ "$(sha256sum "$FLASH")" = "$flash_sum" ]; then pass; else fail "the demo fullflash changed"; fi

finish
