#!/usr/bin/env bash
# Picture replacement through korvatek-cli, from the inputs to the patched fullflash:
#   demo-flash -> replacement inputs (GPF2 in place, shorter and one byte longer than the
#   old data, a big GPF2 that moves into free space, a GPF version 1, BMPs for the 16- and
#   24-bit targets, a PNG for the 8-bit target, a folder of GPF2s, a folder of BMPs with
#   each picture's own type) -> patch -> the VKP text line for line -> apply -> the patched
#   copy against the patch applied here -> every replaced picture decodes to its replacement
#   (also through lumbra), every other picture is unchanged, the fullflash is untouched.
#   Also: the same picture twice, an existing output, nothing accepted.
#
# usage: patch_round_trip.sh PATH/TO/korvatek-cli
set -u
source "$(dirname "$0")/common.sh" "$@"
check() { "$PY" helper.py "$@" >check.out 2>&1; add_counts check.out "helper $1"; }
# Data length of a decoded picture, from the "Lenght: 0x.." line of the information text.
length_of() { sed -n 's/^Lenght: 0x\([0-9A-F]*\)$/\1/p' "$1" | head -n 1; }

cat >helper.py <<'EOF'
import random, struct, sys
import korvatek_testlib as t

tally = t.Tally(25)
KNOWN = {"0100", "0500", "0700", "0800", "8500", "8700", "8800", "8A00"}
HEADER = ["; " + "#" * 71, "; ### This file is made by Korvatek            ###", None, "; ###" + " " * 65 + "###",
          None, "; ###" + " " * 65 + "###", "; ### Patch for: BenQ-SIEMENS E71" + " " * 37 + "###", "; " + "#" * 71]

def rows(path):
    return [line.split("\t") for line in open(path, encoding="latin-1").read().split("\n") if line]

def plan(path):
    for line in open(path).read().split("\n"):
        if line:
            n, container, old, new = line.split()
            yield int(n), container, int(old, 16), int(new, 16)

def select(listing):
    """Rows of a given type whose data start nowhere else and whose next row has a known type
    too: replacing them can change nothing else, not even the bit depth that a following row
    of an unknown type would borrow (SAME keeps its depth, so its next row may be any)."""
    R = rows(listing)
    starts = [r[6] for r in R]
    used = set()
    for name, code, test in [
            ("SAME", "0800", None), ("LONGER", "0500", lambda w, h: w * h <= 319),
            ("SHORTER", "0500", lambda w, h: w * h >= 3), ("BIG", "8800", lambda w, h: w * h <= 256),
            ("BMP16", "8500", 0), ("BMP24", "8800", 0), ("PNG8", "0700", 0), ("GPF1", "8A00", 0),
            ("FOLDER_DUP", "0100", 0), ("FOLDER_GROW", "0500", 0), ("FOLDER_V1", "8800", 0), ("ORIG1", "0100", 0),
            ("ORIG8", "0500", 0), ("ORIG12", "8700", 0), ("ORIG24", "8A00", 0),
            ("SRC12", "8700", lambda w, h: w <= 255 and h <= 255), ("SRC8", "8500", 0)]:
        for n in range(20, 1000):
            w, h = int(R[n][2]), int(R[n][3])
            if (used & {n - 1, n, n + 1} or R[n][4] != code or starts.count(R[n][6]) != 1 or w <= 0 or h <= 0
                    or (test is not None and R[n + 1][4] not in KNOWN) or (test and not test(w, h))):
                continue
            used.add(n)
            print("%s=%d" % (name, n))
            break

def inputs(n_longer, n_shorter):
    """The made-up inputs: uncompressed 8-bit strips, bitmaps and a PNG of runs and noise."""
    rng = random.Random(5)
    def strip(length, path, seed):
        t.write(path, t.gpf2(1, length, 0x05, bytes((seed + 37 * i) % 256 for i in range(length))))
    same = t.read("same_src.gpf2")  # every data byte changed: same size, type and length
    t.write("same.gpf2", same[:32] + bytes(x ^ 0x5A for x in same[32:]))
    strip(n_longer, "longer.gpf2", 3)
    strip(n_shorter, "shorter.gpf2", 5)
    strip(300, "grow.gpf2", 11)
    palette = [(rng.randrange(256), rng.randrange(256), rng.randrange(256), rng.choice((0, 128, 255))) for _ in range(9)]
    def cells(w, h):
        return t.runs_and_noise(rng, w * h, lambda: rng.choice(palette))
    for path, bits, w, h in [("in16.bmp", 24, 21, 13), ("in24.bmp", 32, 11, 9), ("orig1.bmp", 24, 9, 7),
                             ("orig8.bmp", 24, 10, 6), ("orig16.bmp", 32, 5, 5), ("orig24.bmp", 32, 6, 4)]:
        t.write(path, t.bmp_bytes(w, h, bits, cells(w, h)))
    c = cells(23, 10)
    t.write("in8.png", t.png_bytes([[px[2::-1] for px in c[y * 23:(y + 1) * 23]] for y in range(10)]))

def check_patch(flash_path, listing, plan_path, vkp):
    """The patch line for line: the header, then for each replacement in the order given its
    index record and its data, 16 bytes a line. In place when it is not longer; otherwise
    wherever the patch put it, which must be erased flash, handed out in order from 0x1320000."""
    flash, R = t.read(flash_path), rows(listing)
    got = t.vkp_lines(t.read(vkp))
    if not tally.ok(got is not None, "the patch has lines not ended by CR LF"):
        return
    want, grown = list(HEADER), []
    for n, path, old, new in plan(plan_path):
        blob = t.read(path)
        _, w, h, code = t.container_fields(blob)
        pit = int(R[n][5], 16)
        target = int(R[n][6], 16)
        if new > old:
            line = next((l for l in got if l.startswith("0%X: " % pit)), "0: 0 000000000000000000000000")
            target = struct.unpack("<I", bytes.fromhex(line.split()[-1])[8:12])[0] - 0xA0000000
            grown.append((target, (new + 15) // 16 * 16))
        record = struct.pack("<HHBBHI", w, h, code, 0, 0, 0xA0000000 + target)
        want += ["", "; ##### Picture %d #####" % n, t.patch_line(pit, flash[pit:pit + 12], record), ""]
        for at in range(target, target + new, 16):
            want.append(t.patch_line(at, flash[at:at + 16], blob[at - target + 32:at - target + 48].ljust(16, b"\0")))
    tally.ok(len(got) == len(want), "the patch has %d lines, expected %d" % (len(got), len(want)))
    for i, (g, w) in enumerate(zip(got, want)):
        tally.ok(g == w if w is not None else g.startswith("; ###") and g.endswith("###"), "patch line %d is %r, expected %r" % (i + 1, g, w))
    tally.ok(grown and grown[0][0] == 0x1320000, "the first picture that grows is not at 0x1320000: %r" % grown[:1])
    for i, (at, size) in enumerate(grown):
        tally.ok(flash[at - 1:at + size] == b"\xff" * (size + 1), "grown picture at 0x%X: not erased flash" % at)
        tally.ok(i == 0 or grown[i - 1][0] + grown[i - 1][1] <= at, "grown picture at 0x%X overlaps or precedes the last" % at)
    tally.summary()

def check_applied(flash_path, vkp, patched, before, after, plan_path):
    """The patched copy is the patch applied here; the list changed only in the replaced rows."""
    want, wrong = t.apply_vkp(t.read(flash_path), t.read(vkp).decode("latin-1"))
    tally.ok(not wrong, "old bytes do not match the fullflash at %r" % wrong[:5])
    tally.ok(t.read(patched) == want, "the patched copy is not the patch applied to the fullflash")
    A, B = rows(before), rows(after)
    replaced = {n: path for n, path, _, _ in plan(plan_path)}
    tally.ok(len(B) == 1701 and [n for n in range(1701) if n not in replaced and A[n] != B[n]] == [], "rows not replaced changed")
    for n, path in replaced.items():
        _, w, h, code = t.container_fields(t.read(path))
        tally.ok(B[n][:6] == A[n][:2] + [str(w), str(h), t.type_text(code), A[n][5]],
                 "replaced row %d is %r" % (n, B[n]))
    tally.summary()

{"select": select, "inputs": lambda a, b: inputs(int(a), int(b)), "patch": check_patch,
 "applied": check_applied}[sys.argv[1]](*sys.argv[2:])
EOF

make_demo
run pictures "$FLASH" || { fail "pictures exited $RC: $ERR"; finish; }
cp cmd.out rows.before

# ---- the pictures to replace, and their inputs
eval "$("$PY" helper.py select rows.before)"
for v in SAME LONGER SHORTER BIG BMP16 BMP24 PNG8 GPF1 FOLDER_DUP FOLDER_GROW FOLDER_V1 ORIG1 ORIG8 ORIG12 ORIG24 SRC12 SRC8; do
    [ -n "${!v:-}" ] || { fail "no picture found for $v"; finish; }
done
old_length() {  # N: the old data length, as decoding the row measures it
    run picture "$FLASH" "$1" || fail "picture $1 exited $RC"
    OLD=$(length_of cmd.out)
}
mkdir gfolder bfolder
printf -v dup4 '%04d' "$FOLDER_DUP"
for item in "$SAME:same_src.gpf2" 0:big.gpf2 "$SRC12:v1_src.gpf2" "$SRC8:gfolder/$dup4.gpf2" "0:gfolder/$FOLDER_DUP.gpf2"; do
    run export "$FLASH" "${item%%:*}" -o "${item#*:}" || fail "export $item"
done
old_length "$LONGER"
longer=$((16#$OLD + 1))
old_length "$SHORTER"
"$PY" helper.py inputs "$longer" "$((16#$OLD - 1))"
run convert v1_src.gpf2 -o v1.gpf && [ "$(head -c 16 v1.gpf)" = GraphicPatchFile ] && pass || fail "v1.gpf"
# The containers that the BMP and PNG replacements must load: the encoder's own output.
for item in in16.bmp:16 in24.bmp:24 in8.png:8; do
    run encode "${item%:*}" -o "${item%.*}.gpf2" --type "${item#*:}" || fail "encode $item: $ERR"
done
# A folder of containers: picture FOLDER_DUP as 00NN.gpf2 and as NN.gpf2 (only the first
# counts), FOLDER_GROW that needs free space, and FOLDER_V1 as a .gpf, which the folder
# command does not look for.
cp grow.gpf2 "gfolder/$(printf '%04d' "$FOLDER_GROW").gpf2"
cp v1.gpf "gfolder/$(printf '%04d' "$FOLDER_V1").gpf"
# A folder of BMPs replaced with each picture's own type: 1-bit stays 0x01, 8-bit becomes
# 0x85, 12-bit 0x88, 24-bit 0x8A.
for item in "$ORIG1:1" "$ORIG8:8" "$ORIG12:16" "$ORIG24:24"; do
    n=${item%:*} target=${item#*:} src=orig${item#*:}.bmp
    cp "$src" "bfolder/$(printf '%04d' "$n").bmp"
    run encode "$src" -o "orig$n.gpf2" --type "$target" || fail "encode $src: $ERR"
done

# ---- the plan: picture, container, old length, new length, in the order of the command line
: >plan
add_plan() {  # N CONTAINER [OLD_LENGTH]: the old length of picture N unless given
    if [ $# -eq 3 ]; then OLD=$3; else old_length "$1"; fi
    local d=dec_${2//\//_}
    run decode "$2" -o "$d.bmp" || fail "decode $2 exited $RC"
    cp cmd.out "$d.txt"
    run decode "$2" -o "$d.alpha.bmp" --alpha || fail "decode --alpha $2 exited $RC"
    NEW=$(length_of "$d.txt")
    echo "$1 $2 ${OLD:-0} ${NEW:-0}" >>plan
}
# The single replacements, then the folder in picture-number order.
for item in "$SAME:same.gpf2" "$LONGER:longer.gpf2" "$SHORTER:shorter.gpf2" "$BIG:big.gpf2" "$BMP16:in16.gpf2" \
    "$BMP24:in24.gpf2" "$PNG8:in8.gpf2" "$GPF1:v1.gpf" \
    $(printf '%s\n' "$FOLDER_DUP:gfolder/$dup4.gpf2" "$FOLDER_GROW:grow.gpf2" | sort -n); do
    add_plan "${item%%:*}" "${item#*:}"
done
# The BMP folder decodes nothing: each starts from the length the previous replacement left.
for n in $(printf '%s\n' "$ORIG1" "$ORIG8" "$ORIG12" "$ORIG24" | sort -n); do add_plan "$n" "orig$n.gpf2" "$NEW"; done
# The cases the plan is meant to hold: the same length, one byte longer, one byte shorter.
for item in "$SAME:0" "$LONGER:1" "$SHORTER:-1"; do
    read -r _ _ a b <<<"$(awk -v n="${item%:*}" '$1 == n' plan)"
    [ $((16#$b - 16#$a)) -eq "${item#*:}" ] && pass || fail "picture ${item%:*}: new length $b, old $a"
done

# ---- patch, apply, and the list of the patched copy
printf -v same4 '%04d' "$SAME"  # numbers may be zero-padded
run patch "$FLASH" -o out.vkp "$same4=same.gpf2" "$LONGER=longer.gpf2" "$SHORTER=shorter.gpf2" \
    "$BIG=big.gpf2" "$BMP16=in16.bmp:16" "$BMP24=in24.bmp:24" "$PNG8=in8.png:8" "$GPF1=v1.gpf" \
    --gpf-folder gfolder --bmp-folder bfolder:orig
[ $RC -eq 0 ] && [ ! -s cmd.out ] && [ -s out.vkp ] && pass || { fail "patch exited $RC: $(stderr)"; finish; }
check patch "$FLASH" rows.before plan out.vkp
[ -z "$(find tmp -type f)" ] && pass || fail "temporary files left behind: $(find tmp -type f | head -n 5)"
run apply "$FLASH" out.vkp -o patched.bin
[ $RC -eq 0 ] && [ ! -s cmd.out ] && [ -f patched.bin ] && pass || { fail "apply exited $RC: $(stderr)"; finish; }
run pictures patched.bin || fail "pictures of the patched copy exited $RC"
cp cmd.out rows.after
check applied "$FLASH" out.vkp patched.bin rows.before rows.after plan
unchanged "patch and apply"

# ---- every replaced picture decodes to its replacement, from the copy and through lumbra
mkdir lum
run lumbra out.vkp lum && pass || fail "lumbra of the patch: $(stderr)"
[ "$(find lum -type f | wc -l)" -eq "$(wc -l <plan)" ] && pass || fail "lumbra wrote $(find lum -type f | wc -l) files for $(wc -l <plan) sections"
while read -r n path _ new; do
    d=dec_${path//\//_}
    run export patched.bin "$n" -o got.bmp && cmp -s got.bmp "$d.bmp" && pass ||
        fail "picture $n ($path) read back from the patched copy is not its decoded replacement"
    if awk -F'\t' -v n="$n" '$1 + 0 == n && $5 == "8A00" { found = 1 } END { exit !found }' rows.after; then
        run export patched.bin "$n" -o got.bmp --alpha && cmp -s got.bmp "$d.alpha.bmp" && pass ||
            fail "picture $n with alpha is not its decoded replacement"
    fi
    run picture patched.bin "$n"
    [ "$(length_of cmd.out)" = "$new" ] && pass || fail "picture $n in the patched copy is $(length_of cmd.out) bytes long, expected $new"
    run decode "lum/$(printf %04d "$n").gpf2" -o lum.bmp && cmp -s lum.bmp "$d.bmp" && pass ||
        fail "lumbra's $(printf %04d "$n").gpf2 does not decode to the replacement $path"
done <plan
# Only 0005-style names count in the folder, and a .gpf there is not looked for.
sections=$(grep -a '^; ##### Picture' out.vkp | tr -dc '0-9\n' | paste -sd' ')
[ "$sections" = "$(cut -d' ' -f1 plan | paste -sd' ')" ] && pass || fail "sections are '$sections', expected those of the plan"

# ---- every other picture is unchanged
mkdir eb ea
run export "$FLASH" all --dir eb --format bmp
run export patched.bin all --dir ea --format bmp
[ "$(ls ea | wc -l)" -ge 1690 ] && pass || fail "the batch export of the patched copy holds $(ls ea | wc -l) files"
for n in $(cut -d' ' -f1 plan); do rm -f "eb/$(printf %04d "$n").bmp" "ea/$(printf %04d "$n").bmp"; done
diff -rq eb ea && pass || fail "pictures that were not replaced changed"

# ---- the same picture twice in one command: refused, the others go on. The patch is the
# first two sections of the one above (LONGER is the first picture that grows there too).
run patch "$FLASH" -o twice.vkp "$SAME=same.gpf2" "$same4=big.gpf2" "$LONGER=longer.gpf2"
expect_rc 1 "the same picture twice"
expect_line 'This picture is already replaced. Reboot program or complete commenced patch' "the same picture twice"
head -n 2 plan >plan.twice
check patch "$FLASH" rows.before plan.twice twice.vkp
# An existing output is replaced, with the notice.
cp twice.vkp twice.first
run patch "$FLASH" -o twice.vkp "$SAME=same.gpf2" "$LONGER=longer.gpf2"
expect_rc 0 "patch over an existing file"
expect_line "File twice.vkp already exists and will be replaced" "patch over an existing file"
cmp -s twice.vkp twice.first && pass || fail "patch over an existing file wrote another patch"

# ---- no accepted replacement: nothing written, an existing file kept
refused 1 'File not exist!' none.vkp patch "$FLASH" -o none.vkp "$SAME=missing.gpf2"
echo keep >kept.vkp
run patch "$FLASH" -o kept.vkp "$SAME=missing.gpf2" "$LONGER=missing.gpf2"
[ $RC -eq 1 ] && [ "$(cat kept.vkp)" = keep ] && pass || fail "no accepted replacement: exit $RC, kept.vkp now '$(head -c 40 kept.vkp)'"
unchanged "patch"
finish
