#!/usr/bin/env bash
# korvatek-cli encode, decode and convert:
#   - byte strings worked out by hand for small pictures (monochrome bits and row padding,
#     repeat and literal groups, the end of the run-length stream, the pixel conversions),
#     each the whole container: header, data, zero padding;
#   - pictures of every BMP row padding, 24- and 32-bit, the widest and the largest, in
#     colours each target keeps: encoded as GPF2 and GPF, unpacked by the independent decoder
#     (korvatek_testlib) and compared with the source, decoded back to BMP with and without
#     --alpha (headers, padding, pixels, the information text);
#   - GPF <-> GPF2 <-> DAT conversions byte for byte, and decoding a DAT;
#   - size limits, refused and cut inputs (exit 1, message on stderr, nothing written, never a
#     crash), replacing an existing output.
#
# usage: encode_convert.sh PATH/TO/korvatek-cli
set -u
source "$(dirname "$0")/common.sh" "$@"
succeeded() { [ $RC -eq 0 ] && pass || { fail "$1: exit $RC (stderr: $ERR)"; return 1; }; }

# ------------------------------------------------------------------ bytes worked out by hand
# Name, target, the data bytes, then the BMP: bits, width, height and the colours
# rrggbb[aa][*count], top row first. The whole file must be the GPF2 header, the data and
# 1 to 16 zero bytes.
while read -r name target data bits w h colours; do
    [ -n "$name" ] || continue
    [ "$data" = - ] && data=
    colours=${colours%%#*}
    [ "$name" = lit127 ] && data=81$(for i in $(seq 0 126); do printf '%02x' $((i % 2 ? 0xff : 0x03)); done)81 &&
        colours=$(for i in $(seq 0 128); do [ $((i % 2)) = 1 ] && printf 'ffffff ' || printf '0000ff '; done)
    # shellcheck disable=SC2086
    lib bmp "$name.bmp" "$bits" "$w" "$h" $colours
    code=$(case $target in 1) echo 01 ;; 8) echo 85 ;; 16) echo 88 ;; 24) echo 8A ;; esac)
    lib gpf2 "$name.want" "$w" "$h" "$code" "$data"
    run encode "$name.bmp" -o "$name.gpf2" --type "$target"
    succeeded "encode $name.bmp --type $target" &&
        same "$name.gpf2" "$name.want" "$name: $(od -An -tx1 "$name.gpf2" | tr -d ' \n' | cut -c 65-)"
done <<'EOF'
white_mono     1  7f           24 1 1 ffffff
mean127_mono   1  7f7f         24 1 2 7f7f7f 7e7f80           # a mean of exactly 127 is white
nine_mono      1  aaff557f     24 9 2 000000 ffffff 000000 ffffff 000000 ffffff 000000 ffffff 000000 ffffff 000000 ffffff 000000 ffffff 000000 ffffff 000000 ffffff
one_8          8  -            24 1 1 ff0000                  # a single cell gives no data at all
keep_24        24 0330201080   32 3 1 10203080*3               # blue, green, red, alpha as they are
transparent_16 16 0300e0       24 3 1 a9aba9*3
transparent_24 24 03a9aba9ff   24 3 1 a9aba9*3
key_8          8  03c0         24 3 1 db0000*3                 # red 219 has the transparent key's code
long_8         8  7fe049e0     24 200 1 ff0000*200             # 127, then the end counts the last cell
three_8        8  ffff03       24 3 1 ffffff 00ff00 0000ff     # literal tail: FF, the first, the last
alpha_8        8  ffe003e0     32 4 1 ff000001 ff000002*3      # cells differ by their fourth byte
lit127         8  -            24 129 1                        # a literal of 127, then the end
two_8          8  -            24 2 1 ff0000*2                 # the end comes before the second cell is compared
aab_8          8  03e0         24 3 1 ff0000*2 00ff00          # a repeat under way at the end takes the last cell too
baaa_8         8  ff1c03e0     24 4 1 00ff00 ff0000*3          # a literal of one, then a run of three ending exactly
aabc_8         8  02e002       24 4 1 ff0000*2 00ff00 0000ff   # an end at a group start repeats the last control byte
EOF

# ------------------------------------------------------------------ round trips and conversions
"$PY" - "$CLI" >roundtrip.txt <<'EOF'
import os, random, struct, sys
import korvatek_testlib as t
cli, tally, rng = sys.argv[1], t.Tally(), random.Random(71)
def rnd(num, den):
    return (2 * num + den) // (2 * den)
KEY = (169, 171, 169)  # the transparent colour (blue, green, red): 0xC0, 0x00E0, as it is
# Colours (blue, green, red) that each target gives back unchanged; 24 bits keeps any.
EXACT = {"1": [(0, 0, 0), (255, 255, 255)],
         "8": [(b * 85, rnd(g * 255, 7), rnd(r * 255, 7)) for r in range(8) for g in range(8) for b in range(4)
               if (r, g, b) != (6, 0, 0)] + [KEY],  # red 219 would take the key's code
         "16": [(rnd(b * 255, 31), rnd(g * 255, 63), rnd(r * 255, 31)) for r in range(0, 32, 5)
                for g in range(0, 64, 9) for b in (0, 7, 31)] + [KEY],
         "24": None}

def cli_ok(*args):
    return t.run_quietly(tally, cli, *args)

def round_trip(name, w, h, target, bits, few=False, offset=54, tail=b""):
    base = "%s.t%s" % (name, target)
    palette = EXACT[target] or [tuple(rng.randrange(256) for _ in range(3)) for _ in range(200)]
    if few:
        palette = palette[-3:]
    cells = t.runs_and_noise(rng, w * h, lambda: tuple(rng.choice(palette)) + (
        rng.choice((0, 1, 128, 254, 255)) if bits == 32 else 255,))
    t.write(base + ".bmp", t.bmp_bytes(w, h, bits, cells, offset=offset) + tail)
    blob = t.check_encoded(tally, cli, base + ".bmp", base, w, h, target, cells)
    if blob is None or w > 255 or h > 255:
        return
    # Version 1: the same data behind its own header, and the same picture.
    cli_ok("encode", base + ".bmp", "-o", base + ".gpf", "--type", target)
    v1 = t.read(base + ".gpf")
    tally.ok(v1 == t.gpf_header(1, w, h, t.TYPE_OF_TARGET[target]) + blob[32:], "%s.gpf is not the GPF2's data behind a GPF header" % base)
    cli_ok("decode", base + ".gpf", "-o", base + ".v1.bmp", "--alpha")
    tally.ok(t.read(base + ".v1.bmp") == t.read(base + ".a1.bmp"), "%s: the GPF and the GPF2 decode differently" % base)

def conversions(base):
    blob, v1 = t.read(base + ".gpf2"), t.read(base + ".gpf")
    cli_ok("convert", base + ".gpf2", "-o", "c.gpf")
    tally.ok(t.read("c.gpf") == v1, "convert %s.gpf2 to GPF" % base)
    cli_ok("convert", "c.gpf", "-o", "back.gpf2")
    tally.ok(t.read("back.gpf2") == blob, "GPF2 -> GPF -> GPF2 of %s" % base)
    for src in (base + ".gpf2", base + ".gpf"):
        c = t.read(src)
        _, w, h, code = t.container_fields(c)
        cli_ok("convert", src, "-o", "c.dat")
        dat = t.read("c.dat")
        # DAT: width, height, the type byte, the data and padding, the last byte again.
        tally.ok(dat == struct.pack("<HHB", w, h, code) + c[32:] + c[-1:], "DAT of %s: %s" % (src, dat[:40].hex()))
        want = cli_ok("decode", src, "-o", "cont.bmp", "--alpha")
        got = cli_ok("decode", "c.dat", "-o", "dat.bmp", "--alpha")
        tally.ok(got == want and t.read("dat.bmp") == t.read("cont.bmp"), "decoding the DAT of %s differs" % src)
        # DAT to GPF2: a 31-byte header, then the DAT from its type byte on, the last byte again.
        cli_ok("convert", "c.dat", "-o", "d.gpf2")
        tally.ok(t.read("d.gpf2") == t.MAGIC2 + bytes(4) + dat[:5] + bytes(6) + dat[4:] + dat[-1:], "GPF2 of the DAT of " + src)
        cli_ok("decode", "d.gpf2", "-o", "d.bmp", "--alpha")
        tally.ok(t.read("d.bmp") == t.read("cont.bmp"), "decoding the GPF2 made from the DAT of %s differs" % src)

for target in ("1", "8", "16", "24"):
    for w in range(1, 6):  # every row padding
        round_trip("w%d" % w, w, 5, target, 24 if w % 2 else 32)
    round_trip("few", 37, 23, target, 32, few=True)
    round_trip("noise", 130, 3, target, 24)  # literal groups of 127 and what follows
    round_trip("widest", 240, 3, target, 32)
    round_trip("full", 240, 320, target, 24)
    conversions("w3.t" + target)
    conversions("few.t" + target)
# The pixel data offset is read from its low byte only: 310 reads from 54, not from the
# bytes at 310.
round_trip("offset310", 6, 4, "24", 24, offset=310, tail=bytes(rng.randrange(256) for _ in range(256)))
sys.exit(tally.summary())
EOF
add_counts roundtrip.txt "round trips"

# ------------------------------------------------------------------ size limits and names
run convert full.t16.gpf2 -o full.dat
run decode full.dat -o full_dat.bmp
succeeded "decode of a 240 x 320 DAT" && same full_dat.bmp full.t16.a0.bmp "decode of the 240 x 320 DAT"
lib poke full.dat wide.dat 0 f100   # 241 x 320
lib poke full.dat tall.dat 2 4101   # 240 x 321
run convert few.t8.gpf2 -o upper.dat
cp upper.dat UPPER.DAT              # a theme cache only when the name ends in lower-case "dat"
lib gpf2 tall.gpf2 1 256 85 7fe07fe003e0
lib gpf2 tallest.gpf2 240 320 85 7fe07fe003e0
lib gpf2 wide.gpf2 256 1 85 7fe07fe003e0
lib gpf2 fits.gpf2 240 255 85 7fe0
run convert fits.gpf2 -o fits.gpf
succeeded "convert of a 240 x 255 GPF2 to GPF" && [ "$(head -c 16 fits.gpf)$(tail -c +17 fits.gpf | od -An -tx1 | tr -d ' \n')" = \
    "GraphicPatchFile00000000f0ff85000000000000000000$(tail -c +33 fits.gpf2 | od -An -tx1 | tr -d ' \n')" ] && pass ||
    fail "convert of a 240 x 255 GPF2 to GPF: $(od -An -tx1 fits.gpf | tr -d ' \n')"
# The version swap writes the other version whatever the output is called.
run convert w5.t8.gpf2 -o named.gpf2
succeeded "convert .gpf2 -o named.gpf2" && [ "$(head -c 16 named.gpf2)" = GraphicPatchFile ] && pass ||
    fail "convert of a GPF2 to a .gpf2 name wrote '$(head -c 16 named.gpf2)'"

# ------------------------------------------------------------------ refused inputs
mkdir bad
base=w5.t8.bmp  # 5 x 5, 24 bits
# shellcheck disable=SC2034  # the messages, named in the tables below
BIG="Maximal size of picture is 240x320!" NOTBMP="This is not 24 or 32bit bmp!" RLE="Compressed BMPs not supported!"
# shellcheck disable=SC2034
UNKNOWN="Unknown file!" NOTGPF="This GPF not supported!contact author please" V1="Maximal size of picture is 255x255 for GPF!"
# The BMP with a field changed: name, offset, bytes, the message, the target it is given.
for edit in huge_width:18:ffffff7f:BIG:1 huge_height:22:ffffff7f:BIG:8 wide:18:f1000000:BIG:16 tall:22:41010000:BIG:24 \
    bits16:28:1000:NOTBMP:1 bits8:28:0800:NOTBMP:8 bits1:28:0100:NOTBMP:16 rle:30:01000000:RLE:1 \
    bitfields:28:200003000000:RLE:8 signature:0:424e:UNKNOWN:16 neg_height:22:fbffffff neg_width:18:fbffffff \
    zero_height:22:00000000 zero_width:18:00000000; do
    IFS=: read -r name at value msg target <<<"$edit"
    lib poke "$base" "bad/$name.bmp" "$at" "$value"
    [ -z "$msg" ] || refused 1 "${!msg}" o.gpf2 encode "bad/$name.bmp" -o o.gpf2 --type "$target"
done
head -c 20 "$base" >bad/cut_header.bmp
: >bad/empty.bmp
lib poke few.t8.gpf2 bad/magic.gpf2 15 45   # GraphPatchFileE
head -c 10 few.t8.gpf2 >bad/cut_magic.gpf2
: >bad/empty.gpf2
lib hex bad/not.gpf "$(printf 'GraphicPatchFilE' | od -An -tx1 | tr -d ' \n')00000000030200850000000000000000"
lib gpf2 bad/type03.gpf2 3 3 03 00112233445566778899
lib gpf2 bad/type81.gpf2 3 3 81 03ff
lib gpf2 bad/big.gpf2 241 1 85 7fe07fe003e0
while read -r msg out args; do
    [ "$msg" = - ] && msg= || msg=${!msg}
    # shellcheck disable=SC2086
    refused 1 "$msg" "$out" $args
done <<'EOF'
NOTBMP  o.gpf2  encode bad/cut_header.bmp -o o.gpf2 --type 24
UNKNOWN o.gpf2  encode bad/empty.bmp -o o.gpf2 --type 24
-       o.gpf2  encode bad/missing.bmp -o o.gpf2 --type 8
NOTGPF  o.bmp   decode bad/type03.gpf2 -o o.bmp
NOTGPF  o.bmp   decode bad/type81.gpf2 -o o.bmp
BIG     o.bmp   decode bad/big.gpf2 -o o.bmp
BIG     o.bmp   decode wide.dat -o o.bmp
BIG     o.gpf2  convert wide.dat -o o.gpf2
BIG     o.bmp   decode tall.dat -o o.bmp
BIG     o.gpf2  convert tall.dat -o o.gpf2
UNKNOWN o.bmp   decode UPPER.DAT -o o.bmp
UNKNOWN o.gpf2  convert UPPER.DAT -o o.gpf2
V1      o.gpf   convert tall.gpf2 -o o.gpf
V1      o.gpf   convert tallest.gpf2 -o o.gpf
BIG     o.gpf   convert wide.gpf2 -o o.gpf
EOF
for name in magic.gpf2 cut_magic.gpf2 empty.gpf2 not.gpf; do
    refused 1 "$UNKNOWN" o.bmp decode "bad/$name" -o o.bmp
    refused 1 "$UNKNOWN" o.dat convert "bad/$name" -o o.dat
    refused 1 "$UNKNOWN" o.gpf convert "bad/$name" -o o.gpf
done
refused 1 "File not exist!" o.bmp decode bad/missing.gpf2 -o o.bmp
refused 1 "File not exist!" o.bmp convert bad/missing.gpf2 -o o.bmp

# Negative and zero sizes pass the size check (top-down rows are not read). The monochrome
# encoder has no rows or no pixels to write; the run-length scan never meets the end of such
# a picture and runs off the canvas, which stops the command: nothing is written.
for name in neg_height neg_width zero_height zero_width; do
    rm -f o.gpf2
    run encode "bad/$name.bmp" -o o.gpf2 --type 1
    { [ $RC -eq 0 ] && [ -f o.gpf2 ]; } || { [ $RC -eq 1 ] && [ -n "$ERR" ] && [ ! -e o.gpf2 ]; } && pass ||
        fail "encode bad/$name.bmp --type 1: exit $RC, stderr '$ERR'"
    for t in 8 16 24; do refused 1 "" o.gpf2 encode "bad/$name.bmp" -o o.gpf2 --type $t; done
done

# ------------------------------------------------------------------ cut inputs
# Reads past the end of a BMP or of an uncompressed container give zeros: the same file as
# from the input filled up with zeros.
head -c 70 "$base" >bad/cut_pixels.bmp
lib gpf2 bad/plain8.gpf2 5 3 05 e0e0e01c1c1c030303ffff
lib gpf2 bad/plain16.gpf2 3 2 08 00f8e007
lib gpf2 bad/plain24.gpf2 2 2 0a 1020308040
lib gpf2 bad/mono.gpf2 9 4 01 aaff
for name in plain8 plain16 plain24 mono; do head -c 40 "bad/$name.gpf2" >"bad/cut_$name.gpf2"; done
zero_filled() { cp "$1" "$2" && truncate -s "$3" "$2"; }
zero_filled bad/cut_pixels.bmp bad/zero_filled.bmp "$(stat -c %s "$base")"
for t in 1 8 24; do
    run encode bad/cut_pixels.bmp -o cut.gpf2 --type $t
    succeeded "encode of a BMP cut inside its pixels --type $t" || continue
    run encode bad/zero_filled.bmp -o zero.gpf2 --type $t
    same cut.gpf2 zero.gpf2 "a cut BMP against the same BMP filled with zeros, --type $t"
done
for name in plain8 plain16 plain24 mono; do
    zero_filled "bad/cut_$name.gpf2" bad/filled.gpf2 400
    run decode "bad/cut_$name.gpf2" -o cut.bmp --alpha
    succeeded "decode bad/cut_$name.gpf2" || continue
    run decode bad/filled.gpf2 -o filled.bmp --alpha
    same cut.bmp filled.bmp "decode of the cut $name container"
done
# A compressed stream stops at the end of the file: a picture or a refusal, never a crash.
for cut in 3 31 33 40 100; do
    for name in few.t8.gpf2 few.t24.gpf2 full.t16.gpf2 full.dat; do
        head -c $cut "$name" >"cut.${name#*.}"
        rm -f cut.bmp
        run decode "cut.${name#*.}" -o cut.bmp
        { [ $RC -eq 0 ] && [ -f cut.bmp ]; } || { [ $RC -eq 1 ] && [ -n "$ERR" ] && [ ! -e cut.bmp ]; } && pass ||
            fail "decode of $name cut to $cut bytes: exit $RC, stderr '$ERR'"
    done
    run convert cut.dat -o cut_dat.gpf2
done
# The extra byte of a conversion repeats the last byte read: a DAT of its header alone gives
# its type byte again; a GPF2 of its header alone gives a zero.
magic2=$(printf 'GraphPatchFile_2' | od -An -tx1 | tr -d ' \n')
lib hex head.dat 0300020085
run convert head.dat -o head.gpf2
succeeded "convert of a header-only DAT" && [ "$(od -An -tx1 head.gpf2 | tr -d ' \n')" = "${magic2}0000000003000200850000000000008585" ] &&
    pass || fail "header-only DAT to GPF2: $(od -An -tx1 head.gpf2 | tr -d ' \n')"
lib hex bare.gpf2 "${magic2}000000000300020085000000000000"
run convert bare.gpf2 -o bare.dat
succeeded "convert of a header-only GPF2 to DAT" && [ "$(od -An -tx1 bare.dat | tr -d ' \n')" = 030002008500 ] &&
    pass || fail "header-only GPF2 to DAT: $(od -An -tx1 bare.dat | tr -d ' \n')"

# ------------------------------------------------------------------ existing outputs
# Replaced with the notice on stderr; a refused input leaves it as it was.
cp w5.t8.gpf2 from.gpf2
run convert from.gpf2 -o from.dat
while read -r out want args; do
    echo old >"$out"
    # shellcheck disable=SC2086
    run $args
    succeeded "$args over an existing file" && [ "$ERR" = "File $out already exists and will be replaced" ] && pass ||
        fail "$args over an existing file: stderr '$ERR'"
    [ "$want" = - ] || same "$out" "$want" "$args over an existing file"
done <<'EOF'
exists.gpf2 w5.t8.gpf2  encode w5.t8.bmp -o exists.gpf2 --type 8
exists.bmp  w5.t8.a0.bmp decode w5.t8.gpf2 -o exists.bmp
exists.gpf  w5.t8.gpf   convert w5.t8.gpf2 -o exists.gpf
exists.dat  from.dat    convert from.gpf2 -o exists.dat
exists2.gpf2 -          convert from.dat -o exists2.gpf2
EOF
for args in "encode bad/bits16.bmp -o kept.gpf2 --type 8" "convert tall.gpf2 -o kept.gpf2"; do
    echo old >kept.gpf2
    # shellcheck disable=SC2086
    run $args
    [ $RC -eq 1 ] && [ "$(cat kept.gpf2)" = old ] && pass || fail "$args changed the existing output (exit $RC)"
done
finish
