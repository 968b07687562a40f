#!/usr/bin/env bash
# korvatek-cli under faults, judged by what is on disk afterwards:
#   outputs  - never an input (by any name or link), never a folder; devices and pipes written,
#              not replaced; "-" is standard output; an old file stays whole when a write fails
#              (a file-size limit stands in for a full disk); nothing left beside the target;
#              a replaced file is a new one renamed into place (links and open readers keep
#              the old bytes);
#   temporary files - a private folder per run, gone afterwards; runs at once do not mix;
#   inputs   - pipes refused at once, files over the named limits refused, memory running out
#              ends with a message;
#   patches  - CR, LF and CR LF alike, a byte-order mark skipped, nothing to apply refused,
#              conflicting lines named;
#   options  - "--" ends them, one -o only, an empty -o refused.
#
# usage: outputs_and_inputs.sh PATH/TO/korvatek-cli
set -u
source "$(dirname "$0")/common.sh" "$@"
no_parts() { [ -z "$(find . -name '*.part' -newer demo.bin)" ] && pass || fail "$1: a temporary file stayed: $(find . -name '*.part')"; }
sanitized() { [ -n "${ASAN_OPTIONS:-}" ]; }  # address-space limits mean nothing under ASan

make_demo
"$CLI" export demo.bin 1 -o 1.gpf2 && "$CLI" export demo.bin 2 -o 2.bmp || { echo "cannot export"; exit 1; }
"$CLI" patch demo.bin -o ref.vkp 1=1.gpf2 2=2.bmp:16 && "$CLI" apply demo.bin ref.vkp -o ref.bin ||
    { echo "cannot make the reference patch"; exit 1; }

# ---- an input is never an output, under any name
cp demo.bin flash.bmp
names=(demo.bin ./demo.bin)
if posix "a link to the fullflash"; then ln -s demo.bin link.bin; names+=(link.bin "$WORK/demo.bin"); fi
for out in "${names[@]}"; do
    run patch demo.bin -o "$out" 1=1.gpf2;       expect_rc 1 "patch -o $out"
    expect_err "not one of the input files" "patch -o $out"
    run font-size demo.bin 0 12 -o "$out";       expect_rc 1 "font-size -o $out"
    expect_err "not one of the input files" "font-size -o $out"
    run apply demo.bin ref.vkp -o "$out";         expect_rc 1 "apply -o $out"
    expect_err "not the fullflash itself" "apply -o $out"
done
unchanged "an output named as the fullflash"
[ ! -e link.bin ] || [ -L link.bin ] && pass || fail "the link to the fullflash was replaced"
run export flash.bmp 1 -o flash.bmp;             expect_rc 1 "export onto its own .bmp fullflash"
run glyph flash.bmp 0 1 -o flash.bmp;            expect_rc 1 "glyph onto its own .bmp fullflash"
cmp -s flash.bmp demo.bin && pass || fail "a fullflash named .bmp was replaced"
run patch demo.bin -o 1.gpf2 1=1.gpf2;           expect_rc 1 "patch over its replacement"
run font-patch demo.bin 0 -o 2.bmp 1=2.bmp;      expect_rc 1 "font-patch over its replacement"
run encode 2.bmp -o 2.bmp --type 16;              expect_rc 1 "encode over its input"
run convert 1.gpf2 -o 1.gpf2;                     expect_rc 1 "convert over its input"
"$CLI" export demo.bin 1 -o check.gpf2 2>/dev/null
same 1.gpf2 check.gpf2 "a replacement named as the output"
run apply demo.bin ref.vkp -o ref.vkp;            expect_rc 1 "apply over its patch"
[ "$(head -c 1 ref.vkp)" = ";" ] && pass || fail "the patch was replaced by the patched copy"
# files read from a folder count as inputs too
mkdir gf bf && cp 1.gpf2 gf/0001.gpf2 && cp 2.bmp bf/0002.bmp
run patch demo.bin -o gf/0001.gpf2 --gpf-folder gf;        expect_rc 1 "patch over a file of its --gpf-folder"
run patch demo.bin -o bf/0002.bmp --bmp-folder bf:16;      expect_rc 1 "patch over a file of its --bmp-folder"
run font-patch demo.bin 0 -o bf/0002.bmp --bmp-folder bf;  expect_rc 1 "font-patch over a file of its folder"
run make-font demo.bin 0 bf -o bf/0002.bmp;                expect_rc 1 "make-font over a file of its folder"
same gf/0001.gpf2 1.gpf2 "a file of --gpf-folder"
same bf/0002.bmp 2.bmp "a file of --bmp-folder"
# the other tool's converter never deletes the patch it reads, whatever its name
mkdir lc && cp ref.vkp lc/0001.gpf2
(cd lc && "$CLI" lumbra 0001.gpf2 ../lo >/dev/null 2>&1)
same lc/0001.gpf2 ref.vkp "lumbra reading a patch named like one of its outputs"
# a replaced file keeps its permissions; a long name and a link that leads nowhere yet work
if posix "permissions, names of 244 characters, links"; then
echo "private" >private.vkp && chmod 600 private.vkp
run patch demo.bin -o private.vkp 1=1.gpf2;      expect_rc 0 "patch over a private file"
[ "$(stat -c %a private.vkp)" = 600 ] && pass || fail "a replaced private file became $(stat -c %a private.vkp)"
long=$(printf 'L%.0s' $(seq 240)).vkp
run patch demo.bin -o "$long" 1=1.gpf2;          expect_rc 0 "an output name of 244 characters"
ln -s later.vkp dangling.vkp
run patch demo.bin -o dangling.vkp 1=1.gpf2;     expect_rc 0 "-o a link to a file not there yet"
[ -L dangling.vkp ] && [ -f later.vkp ] && pass || fail "the link was replaced instead of written through"
fi

# ---- an existing output is replaced by a new file renamed into place, never written over
echo "an older patch" >over.vkp
replaced_beside over.vkp patch demo.bin -o over.vkp 1=1.gpf2 2=2.bmp:16
same over.vkp ref.vkp "patch over an older file"
cp 1.gpf2 over.bmp
replaced_beside over.bmp export demo.bin 2 -o over.bmp
same over.bmp 2.bmp "export over an older file"
cp demo.bin over.bin
replaced_beside over.bin apply demo.bin ref.vkp -o over.bin
same over.bin ref.bin "apply over an older file"
# ... and only once the new file is on the disk: it is synced before it takes the old one's
# name, so that a power cut leaves one or the other whole (seen in a trace of the system calls).
if ! command -v strace >/dev/null || ! strace -f -o /dev/null true 2>/dev/null; then
    echo "skipped: no system-call trace (strace) here"
elif posix "a system-call trace"; then
    strace -f -qq -e trace=fsync,fdatasync,rename,renameat,renameat2 -o trace.txt \
        "$CLI" patch demo.bin -o over.vkp 1=1.gpf2 >/dev/null 2>&1
    [ "$(awk '/f(data)?sync\(/ { synced = 1; next } /"over\.vkp"/ { print synced + 0; exit } /rename/ { synced = 0 }' trace.txt)" = 1 ] &&
        pass || fail "an existing output was renamed over without syncing the new file first: $(grep -E 'sync|rename' trace.txt | tail -n 3 | tr '\n' '|')"
fi

# ---- folders, devices, pipes and standard output
mkdir empty
run patch demo.bin -o empty 1=1.gpf2;            expect_rc 1 "-o an empty folder"
expect_err "is a folder" "-o an empty folder"
[ -d empty ] && pass || fail "the folder named as the output is gone"
"$CLI" patch demo.bin -o - 1=1.gpf2 2=2.bmp:16 >dash.vkp 2>/dev/null
same dash.vkp ref.vkp "-o - (patch)"
"$CLI" export demo.bin 2 -o - >dash.bmp 2>/dev/null
same dash.bmp 2.bmp "-o - (one BMP)"
[ ! -e ./- ] && pass || fail "a file named - was written"
run apply demo.bin ref.vkp -o -;                 expect_rc 2 "apply -o - (not a single small stream)"
if posix "devices, pipes and links as outputs"; then
run patch demo.bin -o /dev/null 1=1.gpf2 2=2.bmp:16; expect_rc 0 "-o /dev/null"
[ -c /dev/null ] && pass || fail "/dev/null is no longer a device"
if [ -e /dev/full ]; then
    run patch demo.bin -o /dev/full 1=1.gpf2;    expect_rc 1 "-o /dev/full"
    [ -c /dev/full ] && pass || fail "/dev/full is no longer a device"
fi
"$CLI" patch demo.bin -o /dev/stdout 1=1.gpf2 2=2.bmp:16 2>/dev/null | cat >piped.vkp
same piped.vkp ref.vkp "-o /dev/stdout into a pipe"
mkfifo out.fifo
cat out.fifo >fifo.vkp &
run patch demo.bin -o out.fifo 1=1.gpf2 2=2.bmp:16; expect_rc 0 "-o a named pipe"
wait
[ -p out.fifo ] && pass || fail "the named pipe was replaced by a file"
same fifo.vkp ref.vkp "-o a named pipe"
fi

# ---- an old output stays whole when the new one cannot be written; nothing left beside it
if posix "file-size limits, process numbers of leftovers"; then
echo "an older copy" >keep.bin
(ulimit -f 2048; "$CLI" apply demo.bin ref.vkp -o keep.bin >cmd.out 2>cmd.err); RC=$?
expect_rc 1 "apply with too little room"
[ "$(cat keep.bin)" = "an older copy" ] && pass || fail "the older copy was lost when the write failed"
no_parts "a failed write"
touch keep.bin.korvatek-999999999-aaaa.part "keep.bin.korvatek-$$-bbbb.part"
echo "not yours" >victim
ln -s victim keep.bin.korvatek-999999998-cccc.part
run apply demo.bin ref.vkp -o keep.bin;          expect_rc 0 "apply beside leftovers"
same keep.bin ref.bin "apply beside leftovers"
[ ! -e keep.bin.korvatek-999999999-aaaa.part ] && pass || fail "a leftover of an ended run stayed"
[ -e "keep.bin.korvatek-$$-bbbb.part" ] && pass || fail "the file of a running process was removed"
[ "$(cat victim)" = "not yours" ] && [ -L keep.bin.korvatek-999999998-cccc.part ] && pass ||
    fail "a link planted beside the output was followed or removed"
rm -f keep.bin.korvatek-*.part
fi

# ---- temporary files: a private folder per run, removed; runs at once do not mix
mkdir -p pngs
"$PY" - <<'EOF'
import struct, korvatek_testlib as t
for n in range(4):
    t.write(f"pngs/{n}.png", t.png_bytes([[((x * 37 + y * 11 + n * 50) % 256, (x * 17 * n) % 256, (y * 90) % 256)
                                            for x in range(8 + n)] for y in range(8 + n)]))
text = t.png_chunk(b"tEXt", b"Comment\x00abc")  # a text chunk that claims almost 2 GiB
png = t.png_bytes([[(1, 2, 3)]])
t.write("pngs/huge-text.png", png[:33] + struct.pack(">I", 0x7FFFFFF0) + text[4:] + png[33:])
EOF
echo "someone else's" >"$TMP/temp.gpf2"
# the private folder of a run that was killed (wine gives a Windows program its own TMP)
[ -n "${KORVATEK_CLI_WINDOWS:-}" ] || mkdir "$TMP/korvatek-999999999-leftover"
for n in 0 1 2 3; do "$CLI" patch demo.bin -o "seq$n.vkp" "3=pngs/$n.png:16" 2>/dev/null; done
for round in 1 2 3; do
    for n in 0 1 2 3; do "$CLI" patch demo.bin -o "par$n.vkp" "3=pngs/$n.png:16" 2>/dev/null & done
    wait
    for n in 0 1 2 3; do same "par$n.vkp" "seq$n.vkp" "PNG replacements run at once (round $round)"; done
done
[ "$(cat "$TMP/temp.gpf2")" = "someone else's" ] && pass || fail "a shared temporary name was used"
[ "$(ls "$TMP")" = "temp.gpf2" ] && pass || fail "temporary files stayed: $(ls "$TMP")"
if posix "pipes among the inputs"; then
mkdir -p ms mo && cp 1.gpf2 ms/0001.gpf2 && echo "older block" >mo/0x01B07068.bin && mkfifo ms/0002.gpf2
run make ms mo;                                  expect_rc 1 "make with a pipe among its containers"
[ "$(cat mo/0x01B07068.bin)" = "older block" ] && pass || fail "make removed an older output before writing"

# ---- inputs: pipes refused at once, sizes bounded, memory failure reported
mkfifo pipe.bin pipe.vkp pipe.gpf2
mkdir bmps && mkfifo bmps/0001.bmp
for args in "info pipe.bin" "apply demo.bin pipe.vkp -o p.bin" "patch demo.bin -o p.vkp 1=pipe.gpf2" \
            "patch demo.bin -o p.vkp --bmp-folder bmps:16"; do
    # shellcheck disable=SC2086  # the words of one case
    timeout 10 "$CLI" $args >cmd.out 2>cmd.err; RC=$?
    expect_rc 1 "$args"
    expect_err "not a regular file" "$args"
done
[ ! -e p.bin ] && [ ! -e p.vkp ] && pass || fail "a refused pipe left an output"
fi
truncate -s 65M big.bin; truncate -s 33M big.vkp; truncate -s 9M big.bmp
run info big.bin;                                expect_rc 1 "a 65 MiB fullflash"
expect_err "limit of 64 MiB" "a 65 MiB fullflash"
run apply demo.bin big.vkp -o p.bin;             expect_rc 1 "a 33 MiB patch"
expect_err "limit of 32 MiB" "a 33 MiB patch"
run patch demo.bin -o p.vkp 1=big.bmp:16;        expect_rc 1 "a 9 MiB replacement"
expect_err "limit of 8 MiB" "a 9 MiB replacement"
if sanitized || [ -n "${KORVATEK_CLI_WINDOWS:-}" ]; then
    echo "skipped: memory limits (address-space limits do not apply under AddressSanitizer or wine)"
else
    (ulimit -v 300000; "$CLI" patch demo.bin -o p.vkp 3=pngs/huge-text.png:16 >cmd.out 2>cmd.err); RC=$?
    expect_rc 1 "a PNG whose text chunk claims 2 GiB"
    (ulimit -v 50000; "$CLI" apply demo.bin ref.vkp -o p.bin >cmd.out 2>cmd.err); RC=$?
    expect_rc 1 "apply with too little memory"
    expect_err "Not enough memory" "apply with too little memory"
    [ ! -e p.bin ] && pass || fail "a run out of memory left an output"
fi

# ---- patches: line ends, byte-order mark, nothing to apply, conflicts
tr -d '\n' <ref.vkp >cr.vkp
sed 's/\r$//' ref.vkp >lf.vkp
printf '\xef\xbb\xbf' | cat - ref.vkp >bom.vkp
for p in cr lf bom; do
    run apply demo.bin "$p.vkp" -o "$p.bin";     expect_rc 0 "apply a $p patch"
    same "$p.bin" ref.bin "apply a $p patch"
done
printf '; only comments\r\n\r\n' >comments.vkp
: >empty.vkp
for p in comments empty; do
    run apply demo.bin "$p.vkp" -o "$p.bin";     expect_rc 1 "apply a patch with no data lines ($p)"
    expect_err "nothing to apply" "$p"
    [ ! -e "$p.bin" ] && pass || fail "$p: a copy was written"
done
old=$(od -An -tx1 -j $((0x1320000)) -N 1 demo.bin | tr -d ' ')
printf '1320000: %s 01\r\n; another line\r\n1320000: %s 02\r\n' "$old" "$old" >twice.vkp
run apply demo.bin twice.vkp -o twice.bin;       expect_rc 1 "two lines writing one address"
expect_err "lines 1 and 3" "two lines writing one address"
[ ! -e twice.bin ] && pass || fail "a conflicting patch was applied"
printf '1320000: %s 01\r\n1320000: %s 01\r\n' "$old" "$old" >same.vkp
run apply demo.bin same.vkp -o same.bin;         expect_rc 0 "two lines writing the same bytes"

# ---- options
cp demo.bin ./-dash.bin
run info -- -dash.bin;                           expect_rc 0 "-- before a name with a dash"
run patch demo.bin -o a.vkp -o b.vkp 1=1.gpf2;   expect_rc 2 "-o given twice"
[ ! -e a.vkp ] && [ ! -e b.vkp ] && pass || fail "-o given twice wrote a file"
run patch demo.bin -o '' 1=1.gpf2;               expect_rc 2 "an empty -o"
expect_err "-o needs a value" "an empty -o"
run apply demo.bin '' -o e.bin;                  expect_rc 2 "an empty file name"
run patch demo.bin -o nf.vkp --gpf-folder missing 1=1.gpf2; expect_rc 1 "a folder that is not there"
expect_err "missing" "a folder that is not there"
[ -f nf.vkp ] && pass || fail "the accepted replacement was not written beside a missing folder"

unchanged "every case"
no_parts "every case"
finish
