#!/usr/bin/env bash
# The patch commands of korvatek-cli on inputs they must refuse or treat with care:
#   apply  - malformed lines, odd digit counts, old bytes that do not match (every address
#            listed), addresses beyond the image;
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
source "$(dirname "$0")/common.sh" "$@"
# Every number given is named on stderr as a number of its own (1), or none is (0).
names() {  # 1|0 WHAT NUMBERS...
    local want=$1 what=$2 n
    shift 2
    for n in "$@"; do
        grep -Eqi "(^|[^0-9A-F])$n([^0-9A-F]|$)" cmd.err
        [ $? -eq $((1 - want)) ] && pass || fail "$what: $n $([ "$want" = 1 ] && echo not) named on stderr: $(stderr)"
    done
}
make_demo
"$CLI" export "$FLASH" 1 -o p1.gpf2 >/dev/null 2>&1 || fail "export 1"
"$CLI" export "$FLASH" 0 -o big.gpf2 >/dev/null 2>&1 || fail "export 0"
crlf() { printf '%s\r\n' "$@"; }

# =============================== apply
hex_at() { od -An -v -tx1 -j $((0x$1)) -N "$2" "$FLASH" | tr -d ' \n' | tr a-f A-F; }  # OFFSET COUNT
rec0=$(hex_at 1B01958 12) rec1=$(hex_at 1B01964 12) rec2=$(hex_at 1B01970 12)
good="01B01958: $rec0 $rec0"
# Lines that are not patch lines, and odd digit counts, each reported with its line number.
crlf "; a comment is fine" "$good" "this is not a patch line" "01B01964 $rec1 $rec1" "0XYZ: 00 11" \
     "01B01970: $rec2" >malformed.vkp
crlf "$good" "01B01964: ${rec1}0 ${rec1}0" "01B01970: $rec2 ${rec2:1}" >odd.vkp
# Old bytes that do not match: every such address listed, the matching ones not.
wrong=$(printf '%024X' 0)
first=0000
[ "$(hex_at 1B07068 2)" = 0000 ] && first=0101
crlf "$good" "01B01964: $wrong $rec1" "01B01970: $rec2 $wrong" "01320000: FFFF 0000" "01320010: FFFE 0000" \
     "01B07068: ${first}0000000000000000000000000000 FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF" >mismatch.vkp
# Addresses beyond the image: at its end, a line that runs across it, far beyond.
crlf "$good" "02000000: FF 00" "01FFFFFF: FFFF 0000" "0FFFFFFF: 00 00" >beyond.vkp
for item in "malformed:3 4 5 6:2" "odd:2 3:" "mismatch:1B01964 1320010 1B07068:1B01958 1B01970 1320000" \
    "beyond:2000000 1FFFFFF FFFFFFF:"; do
    IFS=: read -r name listed quiet <<<"$item"
    run apply "$FLASH" "$name.vkp" -o "$name.bin"
    expect_rc 1 "apply, $name"
    # shellcheck disable=SC2086
    names 1 "apply, $name" $listed
    # shellcheck disable=SC2086
    names 0 "apply, $name" $quiet
    expect_missing "$name.bin" "apply, $name"
done
# A good patch changes only its two bytes (cmp -l: 1-based offsets, octal values). The
# fullflash itself as the output is refused in outputs_and_inputs.sh.
crlf "$good" "01320000: FFFF 1234" >fine.vkp
run apply "$FLASH" fine.vkp -o out5.bin
expect_rc 0 "apply, a good patch"
diffs=$(cmp -l "$FLASH" out5.bin 2>/dev/null | awk '{ printf "%s:%s ", $1, $3 }')
[ "$diffs" = "$((0x1320000 + 1)):22 $((0x1320000 + 2)):64 " ] && pass || fail "apply wrote the wrong bytes: $diffs"
run apply "$FLASH" nothere.vkp -o out6.bin
[ "$RC" -eq 1 ] && [ -s cmd.err ] && [ ! -e out6.bin ] && pass || fail "apply, missing patch: exit $RC, stderr $(stderr)"

# =============================== patch
{ printf 'GraphPatchFile_3'; tail -c +17 p1.gpf2; } >corrupt.gpf2
head -c 100 "$FLASH" >notgpf.gpf2
: >empty.gpf2
lib gpf2 wide.gpf2 241 2 05 "$(printf '%0964d' 0)"
lib bmp b16.bmp 16 4 4 000000*16
lib bmp bgood.bmp 24 4 4 000000*16
lib poke bgood.bmp bcomp.bmp 28 2000030000  # 32 bits, bit fields
lib bmp btall.bmp 24 2 321 000000*642
lib hex bnot.bmp 504b "$(printf '%0120d' 0)"
# Refused inputs (exit 1 and the message) and bad replacement words (usage errors, exit 2):
# nothing written.
while IFS='|' read -r rc msg args; do
    # shellcheck disable=SC2086
    run patch "$FLASH" -o p.vkp $args
    expect_rc "$rc" "patch $args"
    [ -z "$msg" ] || expect_line "$msg" "patch $args"
    expect_missing p.vkp "patch $args"
done <<'EOF'
1|File not exist!|1=missing.gpf2
1|Unknown file!|1=corrupt.gpf2
1|Unknown file!|1=notgpf.gpf2
1|Unknown file!|1=empty.gpf2
1|Maximal size of picture is 240x320!|1=wide.gpf2
1|This is not 24 or 32bit bmp!|1=b16.bmp:16
1|Compressed BMPs not supported!|1=bcomp.bmp:16
1|Maximal size of picture is 240x320!|1=btall.bmp:16
1|Unknown file!|1=bnot.bmp:16
2||1=bgood.bmp
2||1=bgood.bmp:12
2||x=p1.gpf2
2||1=p1.txt
2||--bmp-folder .
2||--bmp-folder .:32
EOF
[ -z "$(find tmp -type f)" ] && pass || fail "refused BMPs left temporary files: $(find tmp -type f | head -n 3)"
# A refused replacement among accepted ones: the others are still written, exit 1.
sections() { grep -a '^; ##### Picture' "$1" 2>/dev/null | tr -d '\r' | tr '\n' '|'; }
run patch "$FLASH" -o mixed.vkp 1=corrupt.gpf2 2=b16.bmp:8 3=bgood.bmp:8
expect_rc 1 "patch, refused and accepted replacements"
expect_line "Unknown file!" "patch, refused and accepted replacements"
expect_line "This is not 24 or 32bit bmp!" "patch, refused and accepted replacements"
[ "$(sections mixed.vkp)" = "; ##### Picture 3 #####|" ] && pass || fail "patch, refused and accepted: sections '$(sections mixed.vkp)'"
run patch "$FLASH" -o p.vkp 1701=p1.gpf2
[ "$RC" -eq 1 ] || [ "$RC" -eq 2 ] && [ ! -e p.vkp ] && pass || fail "patch 1701=...: exit $RC"
run patch "$FLASH" -o nodir/p.vkp 1=p1.gpf2
[ "$RC" -eq 1 ] && [ -s cmd.err ] && pass || fail "patch -o nodir/p.vkp: exit $RC, stderr $(stderr)"
# No free space: a copy of the fullflash whose erased areas hold data. Picture 1 stays in
# place, picture 2 finds no room.
"$PY" - "$FLASH" full.bin <<'EOF'
import sys
data = bytearray(open(sys.argv[1], "rb").read())
for start, end in ((0x1300000, 0x1500000), (0x1FB0000, len(data))):
    data[start:end] = bytes((i * 7 + 1) % 255 for i in range(256)) * ((end - start) // 256)
open(sys.argv[2], "wb").write(data)
EOF
run patch full.bin -o nofree.vkp 1=p1.gpf2 2=big.gpf2
expect_rc 1 "patch, no free space"
expect_line "Free space in Fullflash not found!" "patch, no free space"
[ "$(sections nofree.vkp)" = "; ##### Picture 1 #####|" ] && ! grep -aq '^01320000' nofree.vkp && pass ||
    fail "patch, no free space: sections '$(sections nofree.vkp)'"
rm -f full.bin
unchanged "patch"

# =============================== make
# The blocks against the containers: every record from its 0NNN.gpf2 (or .gpf), a missing one
# an empty 1 x 1 monochrome picture of 16 data bytes, the addresses following the data.
cat >make_check.py <<'EOF'
import os, struct, sys
import korvatek_testlib as t
src, out = sys.argv[1], sys.argv[2]
records = int(sys.argv[3]) if len(sys.argv) > 3 else 1701
tally = t.Tally()
data, table = t.read(os.path.join(out, "0x01B07068.bin")), t.read(os.path.join(out, "0x01B01958.bin"))
if tally.ok(data is not None and table is not None, "make: blocks missing in " + out):
    want_data, want_table, offset = b"", b"", 0x1B07068
    for n in range(records):
        c = t.read(os.path.join(src, "%04d.gpf2" % n)) or t.read(os.path.join(src, "%04d.gpf" % n)) or t.gpf2(1, 1, 1, bytes(15))
        _, w, h, _ = t.container_fields(c)
        second = c[24:26] if c[:16] == t.MAGIC2 else c[22:24]
        want_table += struct.pack("<HH", w, h) + second + bytes(2) + struct.pack("<I", 0xA1000000 | (offset & 0xFFFFFF))
        want_data += c[32:]
        offset += len(c) - 32
    tally.ok(table == want_table, "make: table differs, " + t.first_difference(table, want_table))
    tally.ok(data == want_data, "make: data block %d bytes, expected %d" % (len(data), len(want_data)))
sys.exit(tally.summary())
EOF
check_make() { "$PY" make_check.py "$@" >check.out 2>&1; add_counts check.out "make_check.py $*"; }
big_container() {  # PATH COUNT: a GPF2 header followed by COUNT bytes
    "$PY" -c "import struct,sys; open(sys.argv[1],'wb').write(b'GraphPatchFile_2'+bytes(4)+struct.pack('<HH',240,320)+bytes([0x8A,0])+bytes(6)+bytes((i*13)%256 for i in range(int(sys.argv[2]))))" "$1" "$2"
}
LIMIT_BYTES=$((0x1FA3957 - 0x1B07068))  # the whole data area

# Only 0000.gpf2: 1700 announced empty pictures, in order.
mkdir only only_out
cp p1.gpf2 only/0000.gpf2
run make only only_out
expect_rc 0 "make, only 0000.gpf2"
notice() { echo "File $1.gpf2 (or .gpf) not found and will is replaced by empty picture"; }
[ "$(grep -c 'not found and will is replaced by empty picture$' cmd.err)" -eq 1700 ] &&
    [ "$(sed -n '1p;$p' cmd.err)" = "$(notice 0001; notice 1700)" ] && pass ||
    fail "make, only 0000.gpf2: $(grep -c 'not found' cmd.err) notices, first and last: $(sed -n '1p;$p' cmd.err | tr '\n' '|')"
check_make only only_out
# .gpf2 before .gpf, a version-1 .gpf alone, every picture present: no message.
mkdir mixed mixed_out
"$CLI" export "$FLASH" all --dir mixed --format gpf2 >/dev/null 2>&1
cp mixed/0007.gpf2 v7.gpf2
"$CLI" convert v7.gpf2 -o mixed/0007.gpf >/dev/null 2>&1 && rm mixed/0007.gpf2
"$CLI" convert mixed/0001.gpf2 -o mixed/0005.gpf >/dev/null 2>&1  # not used: 0005.gpf2 is there
for n in 0211 1333; do [ -e "mixed/$n.gpf2" ] || cp p1.gpf2 "mixed/$n.gpf2"; done
run make mixed mixed_out
[ "$RC" -eq 0 ] && [ ! -s cmd.err ] && pass || fail "make, a full folder: exit $RC, stderr $(stderr)"
check_make mixed mixed_out
# The data area filled exactly: accepted. One byte more: refused at the last picture, and
# everything written so far stays; over already at picture 1000: pictures 0 to 1000 written.
mkdir lim
for item in "$((LIMIT_BYTES - 1700 * 16)):0:1701" "$((LIMIT_BYTES - 1700 * 16 + 1)):1:1701" \
    "$((LIMIT_BYTES - 1000 * 16 + 1)):1:1001"; do
    IFS=: read -r size rc records <<<"$item"
    big_container lim/1000.gpf2 "$size"
    rm -rf lim_out && mkdir lim_out
    run make lim lim_out
    expect_rc "$rc" "make, 1000.gpf2 of $size data bytes"
    if [ "$rc" = 1 ]; then
        expect_line "Too much total space occupyed by pictures!" "make, $size data bytes"
        [ "$records" = 1701 ] || ! grep -q '1001.gpf2' cmd.err && pass || fail "make went on after the overflow"
    fi
    check_make lim lim_out "$records"
done
rm -rf lim lim_out
# A corrupt container: refused, nothing written; a source folder that does not exist.
mkdir bad bad_out
cp p1.gpf2 bad/0000.gpf2
cp corrupt.gpf2 bad/0003.gpf2
run make bad bad_out
[ "$RC" -eq 1 ] && grep -qF "Unknown file!" cmd.err && [ -z "$(ls bad_out)" ] && pass ||
    fail "make, corrupt container: exit $RC, stderr $(stderr), wrote $(ls bad_out | tr '\n' ' ')"
run make nothere bad_out2
[ "$RC" -eq 1 ] && [ -s cmd.err ] && pass || fail "make, missing source folder: exit $RC"

# =============================== lumbra
mkdir lum lumbox
z32=$(printf '%032d' 0) z24=$(printf '%024d' 0)
marker=$(printf '0F%.0s' $(seq 16))
a=00112233445566778899AABBCCDDEEFF b=0102030405060708090A0B0C0D0E0F10
# Picture 12: a 59-character record line (12-byte records), width 240, height 320, type 0x85.
# Picture 7: a 43-character record line (8-byte records), width 16, height 12, type 0x88,
#   ended by the 0x0F marker; the lines after it are ignored.
# Picture abc: not a number, written as 0000.gpf2.
# Picture 3: a data line of 5 new bytes, then a full one, ended by the end of the file.
{
    crlf "; a picture patch of the other tool" "; ##### Picture 12 #####" "01B019E8: $z24 F0004001850000006870B0A1" "" \
         "01B0A1B8: $z32 $a" "01B0A1C8: $z32 $b" "" \
         "; ##### Picture 7 #####" "01B019AC: 0000000000000000 100C880000000000" "" \
         "01B09C58: $z32 $b" "01B09C68: $z32 $marker" "01B09C78: $z32 $a" "" \
         "; ##### Picture abc #####" "01B0197C: $z24 0100010001000000A1B0A1A1" "" "01B09668: $z32 $a" "" \
         "; ##### Picture 3 #####" "01B0197C: $z24 05000300050000006896B0A1" "" "01B09668: 0000000000 A1A2A3A4A5"
    printf '01B09678: %s %s' "$z32" "$b"
} >lumbra.vkp
cp p1.gpf2 lumbox/0012.gpf2  # in the current folder: announced and deleted (bare-name test)
echo "an older, longer file that is replaced whole $(printf 'x%.0s' $(seq 200))" >lum/0003.gpf2
(cd lumbox && "$CLI" lumbra ../lumbra.vkp ../lum >../cmd.out 2>../cmd.err)
RC=$?
expect_rc 0 "lumbra"
expect_line "File 0012.gpf2 already exists and will be replaced" "lumbra, the bare name in the current folder"
expect_missing lumbox/0012.gpf2 "lumbra: the bare name in the current folder is deleted;"
[ "$(ls lum | tr '\n' ' ')" = "0000.gpf2 0003.gpf2 0007.gpf2 0012.gpf2 " ] && pass || fail "lumbra wrote $(ls lum | tr '\n' ' ')"
for item in "0012:240:320:85:$a$b" "0007:16:12:88:$b" "0000:1:1:01:$a" "0003:5:3:05:A1A2A3A4A50000000000000000000000$b"; do
    IFS=: read -r n w h code data <<<"$item"
    lib hex want.gpf2 "$(printf GraphPatchFile_2 | od -An -tx1 | tr -d ' \n')00000000" \
        "$(printf '%02x%02x%02x%02x' $((w & 255)) $((w >> 8)) $((h & 255)) $((h >> 8)))${code}00000000000000" "$data"
    cmp -s "lum/$n.gpf2" want.gpf2 && pass || fail "lumbra's $n.gpf2: $(od -An -tx1 "lum/$n.gpf2" | tr -d ' \n' | head -c 140)"
done
# A patch without sections: no files, success; a patch that is not there; cut sections.
crlf "; nothing here" "$good" >nosect.vkp
mkdir lum2
run lumbra nosect.vkp lum2
[ "$RC" -eq 0 ] && [ -z "$(ls lum2)" ] && pass || fail "lumbra, no sections: exit $RC, wrote $(ls lum2 | tr '\n' ' ')"
run lumbra nothere.vkp lum2
expect_rc 1 "lumbra, missing patch"
expect_line "File not exist!" "lumbra, missing patch"
printf '; ##### Picture 9 #####\r\n' >trunc1.vkp
printf '; ##### Picture 9 #####\r\n01B01958: 00\r\n\r\n0: 1 2\r\n0:\r\n' >trunc2.vkp
for f in trunc1.vkp trunc2.vkp; do
    rm -rf lum3 && mkdir lum3
    run lumbra "$f" lum3
    [ "$RC" -le 1 ] && pass || fail "lumbra $f: exit $RC"
done
finish
