#!/usr/bin/env bash
# The patch commands of korvatek-cli on inputs they must refuse or treat with care:
#   apply  - malformed lines, odd digit counts, old bytes that do not match (every address
#            listed), addresses beyond the image, the fullflash itself as the output;
#   patch  - missing, corrupt and oversized containers, 16-bit and compressed BMPs, no free
#            space left, bad replacement words;
#   make   - a corrupt container, the data area filled exactly and one byte over, a folder
#            with only 0000.gpf2, .gpf next to .gpf2;
#   lumbra - 8-byte and 12-byte record lines, the 0x0F end marker, short data lines, a
#            section number that is not a number, no sections, the bare-name existence test.
# Never a crash, a clear message on stderr, nothing half-written except where the tool
# keeps what it wrote (make on overflow).
#
# usage: patch_bad_input.sh PATH/TO/korvatek-cli
set -u

if [ $# -ne 1 ] || [ ! -x "$1" ]; then
    echo "usage: $0 PATH/TO/korvatek-cli" >&2
    exit 2
fi
CLI=$(realpath "$1")
exec 2>&1  # one stream, so that failures appear in order
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
# Runs the CLI with stdout in cmd.out and stderr in cmd.err; sets RC. A status of 128 or
# more is a crash.
run() {
    "$CLI" "$@" >cmd.out 2>cmd.err
    RC=$?
    if [ $RC -ge 128 ]; then fail "korvatek-cli $* crashed (status $RC)"; fi
}
expect_rc() {  # WANT WHAT
    if [ "$RC" -eq "$1" ]; then pass; else fail "$2: exit $RC, expected $1 (stderr: $(head -n 3 cmd.err | tr '\n' '|'))"; fi
}
expect_err_line() {  # LINE WHAT: stderr holds exactly this line
    if grep -Fqx -- "$1" cmd.err; then pass; else fail "$2: no line '$1' on stderr, got '$(head -n 3 cmd.err | tr '\n' '|')'"; fi
}
expect_err_has() {  # TEXT WHAT: stderr mentions this text
    if grep -Fqi -- "$1" cmd.err; then pass; else fail "$2: stderr does not mention '$1': '$(head -n 4 cmd.err | tr '\n' '|')'"; fi
}
expect_missing() {  # PATH WHAT
    if [ ! -e "$1" ]; then pass; else fail "$2: $1 was written"; fi
}
# Adds the counts of a checker's output (its "FAIL:" lines and "N passed, M failed").
fold() {  # OUTPUT_FILE WHAT
    local line m
    grep '^FAIL' "$1" | head -n 12
    line=$(grep -E '^[0-9]+ passed, [0-9]+ failed$' "$1" | tail -n 1)
    if [ -z "$line" ]; then
        fail "$2 printed no summary: $(tail -n 2 "$1" | tr '\n' '|')"
        return
    fi
    passed=$((passed + ${line%% passed*}))
    m=${line#*, }
    failed=$((failed + ${m%% failed}))
}

FLASH=$WORK/demo.bin
"$CLI" demo-flash "$FLASH" >/dev/null 2>&1 || { fail "demo-flash failed"; finish; }
flash_sum=$(sha256sum <"$FLASH")
"$CLI" export "$FLASH" 1 -o p1.gpf2 >/dev/null 2>&1 || fail "export 1"
"$CLI" export "$FLASH" 0 -o big.gpf2 >/dev/null 2>&1 || fail "export 0"
# Bytes of the fullflash as hex text: OFFSET COUNT.
hex_at() { "$PY" -c "import sys; f=open(sys.argv[1],'rb'); f.seek(int(sys.argv[2],16)); print(f.read(int(sys.argv[3])).hex().upper())" "$FLASH" "$1" "$2"; }
crlf() { printf '%s\r\n' "$@"; }

# =============================== apply
rec0=$(hex_at 1B01958 12)
rec1=$(hex_at 1B01964 12)
rec2=$(hex_at 1B01970 12)
good="01B01958: $rec0 $rec0"

# Lines that are not patch lines, each reported with its line number.
crlf "; a comment is fine" "$good" "this is not a patch line" "01B01964 $rec1 $rec1" "0XYZ: 00 11" \
     "01B01970: $rec2" >malformed.vkp
run apply "$FLASH" malformed.vkp -o out1.bin
expect_rc 1 "apply, malformed lines"
for n in 3 4 5 6; do
    if grep -Eq "(^|[^0-9])$n([^0-9]|$)" cmd.err; then pass; else fail "apply, malformed lines: line $n not named on stderr: $(tr '\n' '|' <cmd.err)"; fi
done
if grep -Eq "(^|[^0-9])2([^0-9]|$)" cmd.err; then fail "apply names the good line 2: $(tr '\n' '|' <cmd.err)"; else pass; fi
expect_missing out1.bin "apply, malformed lines"

# Odd digit counts, in the old and in the new bytes.
crlf "$good" "01B01964: ${rec1}0 ${rec1}0" "01B01970: $rec2 ${rec2:1}" >odd.vkp
run apply "$FLASH" odd.vkp -o out2.bin
expect_rc 1 "apply, odd digit counts"
for n in 2 3; do
    if grep -Eq "(^|[^0-9])$n([^0-9]|$)" cmd.err; then pass; else fail "apply, odd digit counts: line $n not named: $(tr '\n' '|' <cmd.err)"; fi
done
expect_missing out2.bin "apply, odd digit counts"

# Old bytes that do not match: every such address is listed, the matching ones are not.
wrong=$(printf '%024X' 0)
crlf "$good" "01B01964: $wrong $rec1" "01B01970: $rec2 $wrong" "01320000: FFFF 0000" "01320010: FFFE 0000" \
     "01B07068: 00000000000000000000000000000000 FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF" >mismatch.vkp
# The last line matches only if the first picture's data start with 16 zero bytes; keep it
# as a mismatch in any case.
if [ "$(hex_at 1B07068 16)" = 00000000000000000000000000000000 ]; then
    sed -i 's/^01B07068: 0000/01B07068: 0101/' mismatch.vkp
fi
run apply "$FLASH" mismatch.vkp -o out3.bin
expect_rc 1 "apply, old bytes that do not match"
for a in 1B01964 1320010 1B07068; do expect_err_has "$a" "apply, mismatch at $a"; done
for a in 1B01958 1B01970 1320000; do
    if grep -qi "$a" cmd.err; then fail "apply lists the matching address $a: $(tr '\n' '|' <cmd.err)"; else pass; fi
done
expect_missing out3.bin "apply, mismatching old bytes"

# Addresses beyond the image: at its end, and a line that runs across it.
crlf "$good" "02000000: FF 00" "01FFFFFF: FFFF 0000" "0FFFFFFF: 00 00" >beyond.vkp
run apply "$FLASH" beyond.vkp -o out4.bin
expect_rc 1 "apply, addresses beyond the image"
for a in 2000000 1FFFFFF FFFFFFF; do expect_err_has "$a" "apply, beyond the image at $a"; done
expect_missing out4.bin "apply, addresses beyond the image"

# The fullflash itself as the output, under its own name, another spelling and a link.
crlf "$good" "01320000: FFFF 1234" >fine.vkp
ln -s demo.bin link.bin
for target in "$FLASH" ./demo.bin link.bin; do
    run apply "$FLASH" fine.vkp -o "$target"
    expect_rc 1 "apply -o $target (the fullflash)"
    if [ -s cmd.err ]; then pass; else fail "apply -o $target: no message"; fi
    if [ "$(sha256sum <"$FLASH")" = "$flash_sum" ]; then pass; else fail "apply -o $target changed the fullflash"; fi
done
# The same patch to a new file works, and only the two bytes differ.
run apply "$FLASH" fine.vkp -o out5.bin
expect_rc 0 "apply, a good patch"
diffs=$(cmp -l "$FLASH" out5.bin 2>/dev/null | awk '{ printf "%s:%s ", $1, $3 }')
# (cmp -l: 1-based offsets, octal values)
if [ "$diffs" = "$((0x1320000 + 1)):22 $((0x1320000 + 2)):64 " ]; then pass; else fail "apply wrote the wrong bytes: $diffs"; fi
# A patch file that is not there.
run apply "$FLASH" nothere.vkp -o out6.bin
expect_rc 1 "apply, missing patch"
expect_missing out6.bin "apply, missing patch"
if [ -s cmd.err ]; then pass; else fail "apply, missing patch: no message"; fi
if [ "$(sha256sum <"$FLASH")" = "$flash_sum" ]; then pass; else fail "apply changed the fullflash"; fi

# =============================== patch
run patch "$FLASH" -o p.vkp 1=missing.gpf2
expect_rc 1 "patch, missing file"
expect_err_line "File not exist!" "patch, missing file"
expect_missing p.vkp "patch, missing file"

# A container with a broken magic.
{ printf 'GraphPatchFile_3'; tail -c +17 p1.gpf2; } >corrupt.gpf2
run patch "$FLASH" -o p.vkp 1=corrupt.gpf2
expect_rc 1 "patch, corrupt GPF2"
expect_err_line "Unknown file!" "patch, corrupt GPF2"
expect_missing p.vkp "patch, corrupt GPF2"
# Not a container at all, and an empty file.
head -c 100 "$FLASH" >notgpf.gpf2
: >empty.gpf2
for f in notgpf.gpf2 empty.gpf2; do
    run patch "$FLASH" -o p.vkp "1=$f"
    expect_rc 1 "patch, $f"
    expect_err_line "Unknown file!" "patch, $f"
    expect_missing p.vkp "patch, $f"
done
# Wider than the firmware's screen.
"$PY" - <<'EOF'
import struct
head = b"GraphPatchFile_2" + bytes(4) + struct.pack("<HH", 241, 2) + bytes([0x05, 0]) + bytes(6)
open("wide.gpf2", "wb").write(head + bytes(482) + bytes(14))
EOF
run patch "$FLASH" -o p.vkp 1=wide.gpf2
expect_rc 1 "patch, 241 pixels wide"
expect_err_line "Maximal size of picture is 240x320!" "patch, 241 pixels wide"
expect_missing p.vkp "patch, 241 pixels wide"

# BMPs: 16 bits per pixel, compressed, too big, not a BMP.
"$PY" - <<'EOF'
import struct
def bmp(path, w, h, bits, compression=0):
    stride = (w * bits // 8 + 3) // 4 * 4
    pixels = bytes(stride * h)
    head = b"BM" + struct.pack("<IIIIiiHHIIiiII", 54 + len(pixels), 0, 54, 40, w, h, 1, bits,
                               compression, len(pixels), 0, 0, 0, 0)
    open(path, "wb").write(head + pixels)
bmp("b16.bmp", 4, 4, 16)
bmp("bcomp.bmp", 4, 4, 32, 3)
bmp("btall.bmp", 2, 321, 24)
bmp("bgood.bmp", 4, 4, 24)
open("bnot.bmp", "wb").write(b"PK" + bytes(60))
EOF
for pair in "b16.bmp:This is not 24 or 32bit bmp!" "bcomp.bmp:Compressed BMPs not supported!" \
            "btall.bmp:Maximal size of picture is 240x320!" "bnot.bmp:Unknown file!"; do
    f=${pair%%:*}
    run patch "$FLASH" -o p.vkp "1=$f:16"
    expect_rc 1 "patch, $f"
    expect_err_line "${pair#*:}" "patch, $f"
    expect_missing p.vkp "patch, $f"
done
if [ -z "$(find tmp -type f)" ]; then pass; else fail "refused BMPs left temporary files: $(find tmp -type f | head -n 3)"; fi

# A refused replacement among accepted ones: the others are still written, exit 1.
run patch "$FLASH" -o mixed.vkp 1=corrupt.gpf2 2=b16.bmp:8 3=bgood.bmp:8
expect_rc 1 "patch, refused and accepted replacements"
expect_err_line "Unknown file!" "patch, refused and accepted replacements"
expect_err_line "This is not 24 or 32bit bmp!" "patch, refused and accepted replacements"
sections=$(grep -a '^; ##### Picture' mixed.vkp 2>/dev/null | tr -d '\r' | tr '\n' '|')
if [ "$sections" = "; ##### Picture 3 #####|" ]; then pass; else fail "patch, refused and accepted: sections '$sections'"; fi

# Bad replacement words are usage errors: exit 2 and nothing written.
for word in "1=bgood.bmp" "1=bgood.bmp:12" "x=p1.gpf2" "1=p1.txt" "--bmp-folder ." "--bmp-folder .:32"; do
    # shellcheck disable=SC2086
    run patch "$FLASH" -o p.vkp $word
    expect_rc 2 "patch $word"
    expect_missing p.vkp "patch $word"
done
run patch "$FLASH" -o p.vkp 1701=p1.gpf2
if [ "$RC" -eq 1 ] || [ "$RC" -eq 2 ]; then pass; else fail "patch 1701=...: exit $RC"; fi
expect_missing p.vkp "patch 1701=..."
# An output folder that does not exist.
run patch "$FLASH" -o nodir/p.vkp 1=p1.gpf2
expect_rc 1 "patch -o nodir/p.vkp"
if [ -s cmd.err ]; then pass; else fail "patch -o nodir/p.vkp: no message"; fi

# No free space: a copy of the fullflash whose erased areas hold data.
"$PY" - "$FLASH" full.bin <<'EOF'
import sys
data = bytearray(open(sys.argv[1], "rb").read())
for start, end in ((0x1300000, 0x1500000), (0x1FB0000, len(data))):
    data[start:end] = bytes((i * 7 + 1) % 255 for i in range(256)) * ((end - start) // 256)
open(sys.argv[2], "wb").write(data)
EOF
run patch full.bin -o nofree.vkp 1=p1.gpf2 2=big.gpf2
expect_rc 1 "patch, no free space"
expect_err_line "Free space in Fullflash not found!" "patch, no free space"
sections=$(grep -a '^; ##### Picture' nofree.vkp 2>/dev/null | tr -d '\r' | tr '\n' '|')
if [ "$sections" = "; ##### Picture 1 #####|" ]; then pass; else fail "patch, no free space: sections '$sections'"; fi
if grep -aq '^01320000' nofree.vkp; then fail "patch, no free space: data written at 1320000"; else pass; fi
rm -f full.bin
if [ "$(sha256sum <"$FLASH")" = "$flash_sum" ]; then pass; else fail "patch changed the fullflash"; fi

# =============================== make
# The blocks against the containers: make_check.py SRC OUT [N_RECORDS]
cat >make_check.py <<'EOF'
import os, struct, sys
src, out = sys.argv[1], sys.argv[2]
records = int(sys.argv[3]) if len(sys.argv) > 3 else 1701
passed = failed = 0
def ok(cond, what):
    global passed, failed
    if cond:
        passed += 1
    else:
        failed += 1
        print("FAIL: make: " + what)
EMPTY = b"GraphPatchFile_2" + bytes(4) + struct.pack("<HH", 1, 1) + bytes([1, 0]) + bytes(6) + bytes(16)
data_path, table_path = os.path.join(out, "0x01B07068.bin"), os.path.join(out, "0x01B01958.bin")
ok(os.path.exists(data_path) and os.path.exists(table_path), "blocks missing in " + out)
if os.path.exists(data_path) and os.path.exists(table_path):
    data, table = open(data_path, "rb").read(), open(table_path, "rb").read()
    ok(len(table) == 12 * records, "table is %d bytes, expected %d" % (len(table), 12 * records))
    want_data, want_table, offset = b"", b"", 0x1B07068
    for n in range(records):
        path = None
        for ext in (".gpf2", ".gpf"):
            p = os.path.join(src, "%04d%s" % (n, ext))
            if os.path.exists(p):
                path = p
                break
        c = open(path, "rb").read() if path else EMPTY
        if c[:16] == b"GraphPatchFile_2":
            w, h = struct.unpack_from("<HH", c, 20)
            t = c[24:26]
        else:
            w, h, t = c[20], c[21], c[22:24]
        want_table += struct.pack("<HH", w, h) + t + bytes(2) + struct.pack("<I", 0xA1000000 | (offset & 0xFFFFFF))
        want_data += c[32:]
        offset += len(c) - 32
    ok(table == want_table, "table differs from the containers, first at record %d" %
       next((i // 12 for i in range(min(len(table), len(want_table))) if table[i] != want_table[i]), -1))
    ok(data == want_data, "data block is %d bytes, expected %d%s" % (len(data), len(want_data),
       "" if len(data) != len(want_data) else " (content differs)"))
print("%d passed, %d failed" % (passed, failed))
EOF
check_make() {
    "$PY" make_check.py "$@" >check.out 2>&1
    fold check.out "make_check.py $*"
}
# A GPF2 header followed by COUNT bytes: big_container PATH COUNT
big_container() {
    "$PY" -c "import struct,sys; open(sys.argv[1],'wb').write(b'GraphPatchFile_2'+bytes(4)+struct.pack('<HH',240,320)+bytes([0x8A,0])+bytes(6)+bytes((i*13)%256 for i in range(int(sys.argv[2]))))" "$1" "$2"
}
LIMIT_BYTES=$((0x1FA3957 - 0x1B07068))  # the whole data area

# Only 0000.gpf2: 1700 announced empty pictures, each 16 bytes of data.
mkdir only only_out
cp p1.gpf2 only/0000.gpf2
run make only only_out
expect_rc 0 "make, only 0000.gpf2"
if [ "$(grep -c 'not found and will is replaced by empty picture$' cmd.err)" -eq 1700 ]; then pass
else fail "make, only 0000.gpf2: $(grep -c 'not found' cmd.err) 'not found' messages, expected 1700"; fi
expect_err_line "File 0001.gpf2 (or .gpf) not found and will is replaced by empty picture" "make, only 0000.gpf2"
expect_err_line "File 1700.gpf2 (or .gpf) not found and will is replaced by empty picture" "make, only 0000.gpf2"
if [ "$(sed -n '1p;$p' cmd.err | tr '\n' '|')" = "File 0001.gpf2 (or .gpf) not found and will is replaced by empty picture|File 1700.gpf2 (or .gpf) not found and will is replaced by empty picture|" ]; then pass
else fail "make, only 0000.gpf2: messages out of order or extra lines: $(sed -n '1p;$p' cmd.err | tr '\n' '|')"; fi
check_make only only_out
# The addresses as the rules give them: A1B07068, then +len(0000)-32, then +16 each.
addr=$("$PY" -c "
import struct
t = open('only_out/0x01B01958.bin', 'rb').read()
print(' '.join('%08X' % struct.unpack_from('<I', t, 12 * n + 8)[0] for n in (0, 1, 2, 1700)))")
l0=$(( $(stat -c %s p1.gpf2) - 32 ))
want=$(printf '%08X %08X %08X %08X' $((0xA1B07068)) $((0xA1B07068 + l0)) $((0xA1B07068 + l0 + 16)) $((0xA1B07068 + l0 + 1699 * 16)))
if [ "$addr" = "$want" ]; then pass; else fail "make, only 0000.gpf2: addresses $addr, expected $want"; fi

# .gpf2 before .gpf, a version-1 .gpf alone, every picture present.
mkdir mixed mixed_out
"$CLI" export "$FLASH" all --dir mixed --format gpf2 >/dev/null 2>&1
cp mixed/0007.gpf2 v7.gpf2
"$CLI" convert v7.gpf2 -o mixed/0007.gpf >/dev/null 2>&1 && rm mixed/0007.gpf2
"$CLI" convert mixed/0001.gpf2 -o mixed/0005.gpf >/dev/null 2>&1  # not used: 0005.gpf2 is there
for n in 0211 1333; do [ -e "mixed/$n.gpf2" ] || cp p1.gpf2 "mixed/$n.gpf2"; done
run make mixed mixed_out
expect_rc 0 "make, a full folder"
if [ ! -s cmd.err ]; then pass; else fail "make, a full folder: stderr '$(head -n 2 cmd.err | tr '\n' '|')'"; fi
check_make mixed mixed_out

# The data area filled exactly: accepted.
mkdir lim lim_out
big_container lim/1000.gpf2 $((LIMIT_BYTES - 1700 * 16))
run make lim lim_out
expect_rc 0 "make, data area filled exactly"
if grep -q 'Too much' cmd.err; then fail "make, data area filled exactly: refused"; else pass; fi
check_make lim lim_out
# One byte more: refused at the last picture; everything written so far stays.
big_container lim/1000.gpf2 $((LIMIT_BYTES - 1700 * 16 + 1))
run make lim lim_out
expect_rc 1 "make, one byte over"
expect_err_line "Too much total space occupyed by pictures!" "make, one byte over"
check_make lim lim_out 1701
# Over already at picture 1000: the blocks hold pictures 0 to 1000.
rm -rf lim_out && mkdir lim_out
big_container lim/1000.gpf2 $((LIMIT_BYTES - 1000 * 16 + 1))
run make lim lim_out
expect_rc 1 "make, over at picture 1000"
expect_err_line "Too much total space occupyed by pictures!" "make, over at picture 1000"
if grep -q '1001.gpf2' cmd.err; then fail "make went on after the overflow"; else pass; fi
check_make lim lim_out 1001
rm -rf lim lim_out

# A corrupt container: refused, nothing written.
mkdir bad bad_out
cp p1.gpf2 bad/0000.gpf2
cp corrupt.gpf2 bad/0003.gpf2
run make bad bad_out
expect_rc 1 "make, corrupt container"
expect_err_has "Unknown file!" "make, corrupt container"
if [ -z "$(ls bad_out)" ]; then pass; else fail "make, corrupt container: wrote $(ls bad_out | tr '\n' ' ')"; fi
# A source folder that does not exist.
run make nothere bad_out2
expect_rc 1 "make, missing source folder"
if [ -s cmd.err ]; then pass; else fail "make, missing source folder: no message"; fi

# =============================== lumbra
mkdir lum
zeros32=$(printf '%032d' 0)
marker=$(printf '0F%.0s' $(seq 16))
d16a=00112233445566778899AABBCCDDEEFF
d16b=0102030405060708090A0B0C0D0E0F10
# Picture 12: a 59-character record line (12-byte records), width 240, height 320, type 0x85.
# Picture 7: a 43-character record line (8-byte records), width 16, height 12, type 0x88,
#   ended by the 0x0F marker; the lines after it are ignored.
# Picture 3: a data line of 5 new bytes, then a full one, ended by the end of the file.
{
    crlf "; a picture patch of the other tool" "; ##### Picture 12 #####" \
         "01B019E8: $(printf '%024X' 0) F0004001850000006870B0A1" "" \
         "01B0A1B8: $zeros32 $d16a" "01B0A1C8: $zeros32 $d16b" "" \
         "; ##### Picture 7 #####" "01B019AC: 0000000000000000 100C880000000000" "" \
         "01B09C58: $zeros32 $d16b" "01B09C68: $zeros32 $marker" "01B09C78: $zeros32 $d16a" "" \
         "; ##### Picture abc #####" "01B0197C: $(printf '%024X' 0) 0100010001000000A1B0A1A1" "" \
         "01B09668: $zeros32 $d16a" "" \
         "; ##### Picture 3 #####" "01B0197C: $(printf '%024X' 0) 05000300050000006896B0A1" "" \
         "01B09668: 0000000000 A1A2A3A4A5"
    printf '01B09678: %s %s' "$zeros32" "$d16b"
} >lumbra.vkp
"$PY" - lumbra.vkp <<'EOF'
import sys
lines = open(sys.argv[1], "rb").read().split(b"\r\n")
assert len(lines[2]) == 59 and len(lines[8]) == 43, (len(lines[2]), len(lines[8]))
EOF
[ $? -eq 0 ] && pass || fail "lumbra input: record lines are not 59 and 43 characters"
mkdir lumbox
cp p1.gpf2 lumbox/0012.gpf2  # in the current folder: announced and deleted (bare-name test)
echo "an older, longer file that is replaced whole $(printf 'x%.0s' $(seq 200))" >lum/0003.gpf2
(cd lumbox && "$CLI" lumbra ../lumbra.vkp ../lum >../cmd.out 2>../cmd.err)
RC=$?
[ $RC -lt 128 ] || fail "lumbra crashed ($RC)"
expect_rc 0 "lumbra"
expect_err_line "File 0012.gpf2 already exists and will be replaced" "lumbra, the bare name in the current folder"
expect_missing lumbox/0012.gpf2 "lumbra: the bare name in the current folder is deleted;"
"$PY" - lum "$d16a" "$d16b" >check.out 2>&1 <<'EOF'
import os, struct, sys
folder, a, b = sys.argv[1], bytes.fromhex(sys.argv[2]), bytes.fromhex(sys.argv[3])
passed = failed = 0
def ok(cond, what):
    global passed, failed
    if cond:
        passed += 1
    else:
        failed += 1
        print("FAIL: lumbra: " + what)
def head(w, h, t):
    return b"GraphPatchFile_2" + bytes(4) + struct.pack("<HH", w, h) + bytes([t, 0]) + bytes(6)
want = {
    "0012.gpf2": head(240, 320, 0x85) + a + b,
    "0007.gpf2": head(16, 12, 0x88) + b,
    "0000.gpf2": head(1, 1, 0x01) + a,
    "0003.gpf2": head(5, 3, 0x05) + bytes.fromhex("A1A2A3A4A5") + bytes(11) + b,
}
names = sorted(os.listdir(folder))
ok(names == sorted(want), "files are %r, expected %r" % (names, sorted(want)))
for name, content in want.items():
    p = os.path.join(folder, name)
    got = open(p, "rb").read() if os.path.exists(p) else None
    ok(got == content, "%s is %r, expected %r" % (name, got and got[:48].hex(), content[:48].hex()))
print("%d passed, %d failed" % (passed, failed))
EOF
fold check.out "lumbra check"

# A patch without sections: no files, success.
crlf "; nothing here" "01B01958: $rec0 $rec0" >nosect.vkp
mkdir lum2
run lumbra nosect.vkp lum2
expect_rc 0 "lumbra, no sections"
if [ -z "$(ls lum2)" ]; then pass; else fail "lumbra, no sections: wrote $(ls lum2 | tr '\n' ' ')"; fi
# A patch that is not there.
run lumbra nothere.vkp lum2
expect_rc 1 "lumbra, missing patch"
expect_err_line "File not exist!" "lumbra, missing patch"
# Truncated sections: a section line at the very end, a record line and nothing more.
printf '; ##### Picture 9 #####\r\n' >trunc1.vkp
printf '; ##### Picture 9 #####\r\n01B01958: 00\r\n\r\n0: 1 2\r\n0:\r\n' >trunc2.vkp
for f in trunc1.vkp trunc2.vkp; do
    rm -rf lum3 && mkdir lum3
    run lumbra "$f" lum3
    if [ "$RC" -le 1 ]; then pass; else fail "lumbra $f: exit $RC"; fi
done

finish
