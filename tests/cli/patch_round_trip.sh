#!/usr/bin/env bash
# Picture replacement through korvatek-cli, from the inputs to the patched fullflash:
#   demo-flash -> replacement inputs (GPF2 in place, shorter and one byte longer than the
#   old data, a big GPF2 that moves into free space, a GPF version 1, BMPs for the 16- and
#   24-bit targets, a PNG for the 8-bit target, a folder of GPF2s, a folder of BMPs with
#   each picture's own type) -> patch -> the VKP text against a model written here ->
#   apply -> the patched copy against the model's own application of the patch -> every
#   replaced picture decodes to its replacement, every other picture is unchanged, the
#   fullflash itself is untouched. Also: the same picture twice, nothing accepted.
#
# usage: patch_round_trip.sh PATH/TO/korvatek-cli
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
if [ -n "${KEEP_WORK:-}" ]; then
    echo "work folder kept: $WORK"
else
    trap 'rm -rf "$WORK"' EXIT
fi
cd "$WORK" || exit 1
# The replacement commands keep their temporary files here, not in the shared /tmp.
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
# Runs the CLI; a status of 128 or more is a crash and always a failure.
run() {
    "$CLI" "$@"
    local rc=$?
    if [ $rc -ge 128 ]; then fail "korvatek-cli $* crashed (status $rc)"; fi
    return $rc
}
# Runs the helper; its "FAIL:" lines and its "N passed, M failed" line are counted.
check() {
    local out line m
    out=$("$PY" "$WORK/helper.py" "$@" 2>&1)
    printf '%s\n' "$out" | grep -E '^FAIL' | head -n 25
    line=$(printf '%s\n' "$out" | grep -E '^[0-9]+ passed, [0-9]+ failed$' | tail -n 1)
    if [ -z "$line" ]; then
        fail "helper $1 printed no summary: $(printf '%s\n' "$out" | tail -n 3)"
        return
    fi
    passed=$((passed + ${line%% passed*}))
    m=${line#*, }
    failed=$((failed + ${m%% failed}))
}
# Data length of a decoded picture, from the "Lenght: 0x.." line of the information text.
length_of() { sed -n 's/^Lenght: 0x\([0-9A-F]*\)$/\1/p' "$1" | head -n 1; }

cat >helper.py <<'PYEOF'
import os, re, struct, sys, zlib

passed = failed = 0
def ok(cond, what):
    global passed, failed
    if cond:
        passed += 1
    else:
        failed += 1
        print("FAIL: " + what)
def summary():
    print("%d passed, %d failed" % (passed, failed))

KNOWN = {"0100", "0500", "0700", "0800", "8500", "8700", "8800", "8A00"}

def rows(path):
    out = []
    with open(path, encoding="ascii", errors="replace") as f:
        for line in f.read().split("\n"):
            if line:
                out.append(line.split("\t"))
    return out

def type_text(code):
    return ("0" if code < 10 else "") + "%X" % code + "00"

def container(path):
    data = open(path, "rb").read()
    wide = data[:16] == b"GraphPatchFile_2"
    if wide:
        w, h = struct.unpack_from("<HH", data, 20)
        t = data[24]
    else:
        w, h, t = data[20], data[21], data[22]
    return data, w, h, t

# ---- picking the pictures to replace
def select(listing):
    """Rows of a known type whose data start nowhere else and whose next row has a known type
    too: replacing them can change nothing else, not even the bit depth that a following row
    of an unknown type would borrow."""
    R = rows(listing)
    starts = {}
    for r in R:
        starts[r[6]] = starts.get(r[6], 0) + 1
    used = set()
    def pick(name, test, keeps_depth=False):
        # keeps_depth: the replacement has the old bit depth, so that a following row of an
        # unknown type borrows the same depth as before.
        for n in range(20, 1000):
            r = R[n]
            if n in used or n - 1 in used or n + 1 in used:
                continue
            if r[4] not in KNOWN or starts[r[6]] != 1:
                continue
            if R[n + 1][4] not in KNOWN and not keeps_depth:
                continue
            w, h = int(r[2]), int(r[3])
            if w <= 0 or h <= 0 or not test(r, w, h):
                continue
            used.add(n)
            print("%s=%d" % (name, n))
            return
        print("echo 'FAIL: no row for %s'" % name)
    pick("SAME", lambda r, w, h: r[4] == "0800", keeps_depth=True)
    pick("LONGER", lambda r, w, h: r[4] == "0500" and w * h <= 319)
    pick("SHORTER", lambda r, w, h: r[4] == "0500" and w * h >= 3)
    pick("BIG", lambda r, w, h: r[4] == "8800" and w * h <= 256)
    pick("BMP16", lambda r, w, h: r[4] == "8500")
    pick("BMP24", lambda r, w, h: r[4] == "8800")
    pick("PNG8", lambda r, w, h: r[4] == "0700")
    pick("GPF1", lambda r, w, h: r[4] == "8A00")
    pick("FOLDER_DUP", lambda r, w, h: r[4] == "0100")
    pick("FOLDER_GROW", lambda r, w, h: r[4] == "0500")
    pick("FOLDER_V1", lambda r, w, h: r[4] == "8800")
    pick("ORIG1", lambda r, w, h: r[4] == "0100")
    pick("ORIG8", lambda r, w, h: r[4] == "0500")
    pick("ORIG12", lambda r, w, h: r[4] == "8700")
    pick("ORIG24", lambda r, w, h: r[4] == "8A00")
    pick("SRC12", lambda r, w, h: r[4] == "8700" and w <= 255 and h <= 255)
    pick("SRC8", lambda r, w, h: r[4] == "8500")

# ---- making replacement inputs
def gpf2(w, h, t, payload):
    head = b"GraphPatchFile_2" + bytes(4) + struct.pack("<HH", w, h) + bytes([t, 0]) + bytes(6)
    body = head + payload
    return body + bytes(16 - len(body) % 16)

def xor_data(src, dst):
    """The same picture with every data byte changed: same size, type and length."""
    data, w, h, t = container(src)
    open(dst, "wb").write(data[:32] + bytes(b ^ 0x5A for b in data[32:]))

def strip8(length, dst, seed):
    """An uncompressed 8-bit picture of 1 x length pixels."""
    payload = bytes((seed + 37 * i) % 256 for i in range(length))
    open(dst, "wb").write(gpf2(1, length, 0x05, payload))

# Colours that survive the firmware encodings exactly, without the transparent keys.
def palette16():
    out = []
    for r5, g6, b5 in [(31, 0, 0), (0, 63, 0), (0, 0, 31), (31, 63, 31), (3, 7, 11), (17, 40, 2),
                       (9, 20, 30), (25, 5, 14), (0, 0, 0), (12, 50, 25)]:
        out.append((round(r5 * 255 / 31), round(g6 * 255 / 63), round(b5 * 255 / 31), 255))
    return out

def palette8():
    out = []
    for r3, g3, b2 in [(7, 0, 0), (0, 7, 0), (0, 0, 3), (7, 7, 3), (1, 2, 1), (5, 3, 2), (2, 6, 0),
                       (3, 1, 3), (0, 0, 0), (4, 4, 1)]:
        out.append((round(r3 * 255 / 7), round(g3 * 255 / 7), b2 * 85, 255))
    return out

def palette24():
    return [(200, 10, 30, 255), (10, 200, 30, 128), (1, 2, 3, 0), (250, 250, 250, 255), (90, 80, 70, 17),
            (33, 66, 99, 200), (0, 0, 0, 255), (128, 64, 32, 64)]

def image(kind, w, h):
    """Rows of (r, g, b, a). Runs of three equal pixels and changes in between, and a last row
    of one colour found nowhere else, so that the picture ends in a long repeat."""
    pal = {"16": palette16, "8": palette8, "24": palette24}[kind]()
    last = {"16": (round(20 * 255 / 31), round(30 * 255 / 63), round(10 * 255 / 31), 255),
            "8": (round(6 * 255 / 7), round(5 * 255 / 7), 170, 255),
            "24": (7, 77, 177, 222)}[kind]
    grid = []
    for y in range(h):
        if y == h - 1:
            grid.append([last] * w)
        else:
            grid.append([pal[(x // 3 + 2 * y + (x * y) % 5) % len(pal)] for x in range(w)])
    return grid

def write_bmp(path, grid, bits):
    h, w = len(grid), len(grid[0])
    pixels = bytearray()
    for row in reversed(grid):
        for r, g, b, a in row:
            pixels += bytes([b, g, r, a] if bits == 32 else [b, g, r])
        if bits == 24:
            pixels += bytes((4 - (w * 3) % 4) % 4)
    head = b"BM" + struct.pack("<IIIIiiHHIIiiII", 54 + len(pixels), 0, 54, 40, w, h, 1, bits, 0,
                               len(pixels), 0, 0, 0, 0)
    open(path, "wb").write(head + bytes(pixels))

def write_png(path, grid):
    h, w = len(grid), len(grid[0])
    raw = b"".join(b"\0" + bytes(c for px in row for c in px[:3]) for row in grid)
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
    png = b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", w, h, 8, 2, 0, 0, 0)) \
        + chunk(b"IDAT", zlib.compress(raw)) + chunk(b"IEND", b"")
    open(path, "wb").write(png)

def read_bmp(path):
    data = open(path, "rb").read()
    off = struct.unpack_from("<I", data, 10)[0]
    w, h = struct.unpack_from("<ii", data, 18)
    bits = struct.unpack_from("<H", data, 28)[0]
    size = bits // 8
    stride = (w * size + 3) // 4 * 4
    grid = []
    for y in range(h):
        row = []
        base = off + (h - 1 - y) * stride
        for x in range(w):
            px = data[base + x * size: base + x * size + size]
            row.append((px[2], px[1], px[0], px[3] if size == 4 else None))
        grid.append(row)
    return w, h, bits, grid

def pixels(kind, w, h, exported, alpha):
    """The picture read back from the patched fullflash shows the source's own pixels."""
    want = image(kind, w, h)
    ew, eh, bits, got = read_bmp(exported)
    ok((ew, eh) == (w, h), "%s: exported picture is %dx%d, expected %dx%d" % (exported, ew, eh, w, h))
    ok(bits == (32 if alpha else 24), "%s: %d bits per pixel" % (exported, bits))
    if (ew, eh) != (w, h):
        return
    bad = []
    for y in range(h):
        for x in range(w):
            r, g, b, a = want[y][x]
            if alpha:
                exp = (r, g, b, a)
            elif kind == "24":
                exp = tuple(max(0, c + a - 255) for c in (r, g, b)) + (None,)
            else:
                exp = (r, g, b, None)
            if got[y][x] != exp:
                bad.append((x, y, got[y][x], exp))
    ok(not bad, "%s: %d pixels differ from the source, first %r" % (exported, len(bad), bad[:3]))

# ---- the patch model
HEADER = ["; " + "#" * 71,
          "; ### This file is made by Korvatek            ###",
          None,
          "; ###" + " " * 65 + "###",
          None,
          "; ###" + " " * 65 + "###",
          "; ### Patch for: BenQ-SIEMENS E71" + " " * 37 + "###",
          "; " + "#" * 71]

def find_free(flash, size, start):
    """The free-space search: blocks of 16, read from one byte before the candidate."""
    blocks = size // 16 + 1
    cur = start
    while True:
        pos = cur - 1
        good = True
        for _ in range(blocks):
            if pos + 16 > len(flash):
                return None, start
            block = flash[pos:pos + 16]
            pos += 16
            if block != b"\xff" * 16:
                good = False
                break
        if good:
            return cur, pos + 1
        nxt = 0x1960000 if 0x15C0000 < cur < 0x1950000 else pos
        cur = 0x1FB0000 if 0x1B00000 < nxt < 0x1FB0000 else pos

def model(flash_path, listing, plan, out_vkp, out_places):
    """plan lines: N CONTAINER OLDLEN NEWLEN (hex lengths). Writes the patch the replacements
    must give, and one line N T NEWLEN INPLACE per replacement."""
    flash = open(flash_path, "rb").read()
    R = rows(listing)
    free = 0x1320000
    lines = list(HEADER)
    places = []
    for entry in open(plan).read().split("\n"):
        if not entry.strip():
            continue
        n, path, a, b = entry.split()
        n, a, b = int(n), int(a, 16), int(b, 16)
        data, w, h, t = container(path)
        row = R[n]
        if a < b:
            target, free2 = find_free(flash, b, free)
            if target is None:
                print("FAIL: the model found no free space for picture %d" % n)
                continue
            free = free2
            inplace = 0
        else:
            target = int(row[6], 16)
            inplace = 1
        pit = int(row[5], 16)
        record = struct.pack("<HHBB", w, h, t, 0).hex().upper() + "0000" + \
            struct.pack("<I", 0xA0000000 + target).hex().upper()
        lines += ["", "; ##### Picture %d #####" % n,
                  "0%s: %s %s" % (row[5], flash[pit:pit + 12].hex().upper(), record), ""]
        for k in range((b + 15) // 16):
            at = target + 16 * k
            new = data[32 + 16 * k: 48 + 16 * k]
            new += bytes(16 - len(new))
            lines.append("0%X: %s %s" % (at, flash[at:at + 16].hex().upper(), new.hex().upper()))
        places.append("%d %X %X %d" % (n, target, b, inplace))
    with open(out_vkp, "w", newline="") as f:
        f.write("".join(("" if l is None else l) + "\r\n" for l in lines))
    with open(out_places, "w") as f:
        f.write("\n".join(places) + "\n")

def compare_vkp(expected, actual):
    want = open(expected, "rb").read().split(b"\r\n")
    got = open(actual, "rb").read().split(b"\r\n")
    ok(got[-1] == b"", "the patch does not end with CR LF")
    bare = [i + 1 for i, l in enumerate(got) if b"\n" in l or b"\r" in l]
    ok(not bare, "lines not ended by CR LF: %r" % bare[:5])
    ok(len(got) == len(want), "the patch has %d lines, expected %d" % (len(got) - 1, len(want) - 1))
    for i in (2, 4):
        line = got[i] if i < len(got) else b""
        ok(line.startswith(b"; ###") and line.endswith(b"###") and len(line) > 8,
           "header line %d is not a box text line: %r" % (i + 1, line))
    wrong = []
    for i, (w, g) in enumerate(zip(want, got)):
        if i in (2, 4):
            continue
        if w != g:
            wrong.append((i + 1, g.decode("latin-1"), w.decode("latin-1")))
    for line, g, w in wrong[:8]:
        print("FAIL: patch line %d is %r, expected %r" % (line, g, w))
    ok(not wrong, "%d patch lines differ from the model" % len(wrong))

def apply_model(flash_path, vkp, patched):
    image = bytearray(open(flash_path, "rb").read())
    for line in open(vkp, "rb").read().decode("latin-1").split("\r\n"):
        m = re.fullmatch(r"0([0-9A-F]+): ([0-9A-F]+) ([0-9A-F]+)", line)
        if m:
            at = int(m.group(1), 16)
            old, new = bytes.fromhex(m.group(2)), bytes.fromhex(m.group(3))
            ok(image[at:at + len(old)] == old, "old bytes at 0x%X do not match the fullflash" % at)
            image[at:at + len(new)] = new
    got = open(patched, "rb").read()
    ok(len(got) == len(image), "patched copy is %d bytes, expected %d" % (len(got), len(image)))
    diff = [i for i in range(0, min(len(got), len(image)), 65536) if got[i:i + 65536] != image[i:i + 65536]]
    ok(not diff, "patched copy differs from the patch applied by the model in %d blocks of 64 KiB, first at 0x%X"
       % (len(diff), diff[0] if diff else 0))

def compare_rows(before, after, places):
    A, B = rows(before), rows(after)
    ok(len(A) == 1701 and len(B) == 1701, "listings have %d and %d rows" % (len(A), len(B)))
    P = {}
    for line in open(places).read().strip().split("\n"):
        n, t, b, inplace = line.split()
        P[int(n)] = int(t, 16)
    changed = []
    for n, (a, b) in enumerate(zip(A, B)):
        if n in P:
            continue
        if a != b:
            changed.append(n)
    ok(not changed, "rows that were not replaced changed: %r" % changed[:10])
    return A, B, P

def compare_replaced_rows(before, after, places, containers):
    A, B, P = compare_rows(before, after, places)
    for item in containers.split(","):
        n, path = item.split("=", 1)
        n = int(n)
        data, w, h, t = container(path)
        want = list(A[n])
        want[2], want[3], want[4], want[6] = str(w), str(h), type_text(t), "%07X" % P[n]
        ok(B[n] == want, "replaced row %d is %r, expected %r" % (n, B[n], want))

def compare_dirs(kind, before, after, places, listing):
    """Batch exports of the fullflash and of its patched copy: every file of a picture that was
    not replaced is the same. A GPF2 carries one byte after the data; when the next data are
    a picture replaced in place, that byte may differ, and nothing else."""
    R = rows(listing)
    P = {}
    inplace = set()
    for line in open(places).read().strip().split("\n"):
        n, t, b, ip = line.split()
        P[int(n)] = int(t, 16)
        if ip == "1":
            inplace.add(int(t, 16))
    names = sorted(set(os.listdir(before)) | set(os.listdir(after)))
    ok(len(names) >= 1690, "%s: only %d files" % (kind, len(names)))
    same = 0
    for name in names:
        n = int(name.split(".")[0])
        if n in P:
            continue
        pa, pb = os.path.join(before, name), os.path.join(after, name)
        if not (os.path.exists(pa) and os.path.exists(pb)):
            ok(False, "%s: %s exists for only one of the two fullflashes" % (kind, name))
            continue
        x, y = open(pa, "rb").read(), open(pb, "rb").read()
        if x == y:
            same += 1
            continue
        spots = [i for i in range(min(len(x), len(y))) if x[i] != y[i]]
        allowed = (kind == "gpf2" and len(x) == len(y) and len(spots) == 1 and spots[0] >= 32
                   and int(R[n][6], 16) + spots[0] - 32 in inplace)
        ok(allowed, "%s: %s of a picture that was not replaced differs (%d bytes, first at %r)"
           % (kind, name, len(spots), spots[:1]))
    ok(same >= 1690 - len(P), "%s: only %d unchanged files" % (kind, same))

def sections(vkp):
    text = open(vkp, "rb").read().decode("latin-1")
    print(" ".join(re.findall(r"; ##### Picture (\d+) #####", text)))

cmd = sys.argv[1]
args = sys.argv[2:]
if cmd == "select":
    select(*args)
    sys.exit(0)
if cmd == "xor":
    xor_data(*args); sys.exit(0)
if cmd == "strip8":
    strip8(int(args[0]), args[1], int(args[2])); sys.exit(0)
if cmd == "bmp":
    kind, w, h, bits, path = args
    write_bmp(path, image(kind, int(w), int(h)), int(bits)); sys.exit(0)
if cmd == "png":
    kind, w, h, path = args
    write_png(path, image(kind, int(w), int(h))); sys.exit(0)
if cmd == "sections":
    sections(*args); sys.exit(0)
if cmd == "model":
    model(*args)
    ok(True, "model")
elif cmd == "vkp":
    compare_vkp(*args)
elif cmd == "apply":
    apply_model(*args)
elif cmd == "rows":
    compare_replaced_rows(*args)
elif cmd == "dirs":
    compare_dirs(*args)
elif cmd == "pixels":
    kind, w, h, exported, alpha = args
    pixels(kind, int(w), int(h), exported, alpha == "alpha")
summary()
PYEOF

FLASH=$WORK/demo.bin
if run demo-flash "$FLASH" >/dev/null 2>demo.err; then pass; else fail "demo-flash: $(cat demo.err)"; finish; fi
flash_sum=$(sha256sum <"$FLASH")
run pictures "$FLASH" >rows.before 2>rows.err || { fail "pictures exited $?: $(cat rows.err)"; finish; }

# ---- the pictures to replace, and their inputs
eval "$("$PY" helper.py select rows.before)"
for v in SAME LONGER SHORTER BIG BMP16 BMP24 PNG8 GPF1 FOLDER_DUP FOLDER_GROW FOLDER_V1 ORIG1 ORIG8 ORIG12 ORIG24 SRC12 SRC8; do
    [ -n "${!v:-}" ] || { fail "no picture found for $v"; finish; }
done
# OLD: the old data length of picture N, as decoding it in the list measures it.
old_length() {
    run picture "$FLASH" "$1" >"old$1.txt" 2>/dev/null || fail "picture $1 exited $?"
    OLD=$(length_of "old$1.txt")
    [ -n "$OLD" ] || fail "picture $1 printed no length"
}
# NEW: the data length that loading a container measures; its decoded BMPs are kept.
# They lie next to the work folder's inputs, not in the folders that the replacement reads.
decoded() { echo "dec_${1//\//_}"; }
new_length() {
    local d
    d=$(decoded "$1")
    run decode "$1" -o "$d.bmp" >"$d.txt" 2>"$d.err" || fail "decode $1 exited $?: $(cat "$d.err")"
    run decode "$1" -o "$d.alpha.bmp" --alpha >/dev/null 2>&1 || fail "decode --alpha $1 exited $?"
    NEW=$(length_of "$d.txt")
    [ -n "$NEW" ] || fail "decode $1 printed no length"
}
export_gpf2() {  # N OUT
    run export "$FLASH" "$1" -o "$2" >/dev/null 2>export.err || fail "export $1 -o $2 exited $?: $(cat export.err)"
}

export_gpf2 "$SAME" same_src.gpf2
"$PY" helper.py xor same_src.gpf2 same.gpf2
old_length "$LONGER"
"$PY" helper.py strip8 "$((16#${OLD:-0} + 1))" longer.gpf2 3
old_length "$SHORTER"
"$PY" helper.py strip8 "$((16#${OLD:-0} - 1))" shorter.gpf2 5
export_gpf2 0 big.gpf2
"$PY" helper.py bmp 16 21 13 24 in16.bmp
"$PY" helper.py bmp 24 11 9 32 in24.bmp
"$PY" helper.py png 8 23 10 in8.png
export_gpf2 "$SRC12" v1_src.gpf2
run convert v1_src.gpf2 -o v1.gpf >/dev/null 2>conv.err || fail "convert to GPF exited $?: $(cat conv.err)"
if [ "$(head -c 16 v1.gpf)" = "GraphicPatchFile" ]; then pass; else fail "v1.gpf is not a version-1 container"; fi
# The containers that the BMP and PNG replacements must load: the encoder's own output.
run encode in16.bmp -o in16.gpf2 --type 16 >/dev/null 2>enc.err || fail "encode in16.bmp: $(cat enc.err)"
run encode in24.bmp -o in24.gpf2 --type 24 >/dev/null 2>enc.err || fail "encode in24.bmp: $(cat enc.err)"
run encode in8.png -o in8.gpf2 --type 8 >/dev/null 2>enc.err || fail "encode in8.png: $(cat enc.err)"

# A folder of containers: picture FOLDER_DUP as 00NN.gpf2 and as NN.gpf2 (only the first
# counts), FOLDER_GROW that needs free space, and FOLDER_V1 as a .gpf, which the folder
# command does not look for.
mkdir gfolder
printf -v dup4 '%04d' "$FOLDER_DUP"
printf -v grow4 '%04d' "$FOLDER_GROW"
printf -v v14 '%04d' "$FOLDER_V1"
export_gpf2 "$SRC8" "gfolder/$dup4.gpf2"
export_gpf2 0 "gfolder/$FOLDER_DUP.gpf2"
"$PY" helper.py strip8 300 "gfolder/$grow4.gpf2" 11
cp v1.gpf "gfolder/$v14.gpf"
# A folder of BMPs, each replaced with its picture's own type: 1-bit stays 0x01, 8-bit
# becomes 0x85, 12-bit 0x88, 24-bit 0x8A.
mkdir bfolder
for pair in "$ORIG1:1:24:9:7" "$ORIG8:8:24:10:6" "$ORIG12:16:32:5:5" "$ORIG24:24:32:6:4"; do
    IFS=: read -r n t bits w h <<<"$pair"
    printf -v n4 '%04d' "$n"
    kind=$t; [ "$t" = 1 ] && kind=16
    "$PY" helper.py bmp "$kind" "$w" "$h" "$bits" "bfolder/$n4.bmp"
    run encode "bfolder/$n4.bmp" -o "orig$n.gpf2" --type "$t" >/dev/null 2>enc.err || fail "encode $n4.bmp: $(cat enc.err)"
done

# ---- the plan: picture, container, old length, new length, in the order of the command line
: >plan
add_plan() {  # N CONTAINER [OLD_LENGTH]: the old length of picture N unless given
    if [ $# -eq 3 ]; then OLD=$3; else old_length "$1"; fi
    new_length "$2"
    echo "$1 $2 ${OLD:-0} ${NEW:-0}" >>plan
}
add_plan "$SAME" same.gpf2
add_plan "$LONGER" longer.gpf2
add_plan "$SHORTER" shorter.gpf2
add_plan "$BIG" big.gpf2
add_plan "$BMP16" in16.gpf2
add_plan "$BMP24" in24.gpf2
add_plan "$PNG8" in8.gpf2
add_plan "$GPF1" v1.gpf
# The folder, in picture-number order.
for item in $(printf '%s\n' "$FOLDER_DUP:gfolder/$dup4.gpf2" "$FOLDER_GROW:gfolder/$grow4.gpf2" | sort -n); do
    add_plan "${item%%:*}" "${item#*:}"
done
# The BMP folder decodes nothing: each starts from the length the previous replacement left.
for n in $(printf '%s\n' "$ORIG1" "$ORIG8" "$ORIG12" "$ORIG24" | sort -n); do
    add_plan "$n" "orig$n.gpf2" "$NEW"
done

# The cases the plan is meant to hold.
line_of() { awk -v n="$1" '$1 == n' plan; }
read -r _ _ a b <<<"$(line_of "$SAME")"
if [ "$a" = "$b" ]; then pass; else fail "same-length input is $b bytes, the old picture $a"; fi
read -r _ _ a b <<<"$(line_of "$LONGER")"
if [ $((16#$b)) -eq $((16#$a + 1)) ]; then pass; else fail "one-byte-longer input is $b bytes, the old picture $a"; fi
read -r _ _ a b <<<"$(line_of "$SHORTER")"
if [ $((16#$b)) -eq $((16#$a - 1)) ]; then pass; else fail "one-byte-shorter input is $b bytes, the old picture $a"; fi

check model "$FLASH" rows.before plan expected.vkp places
# The first picture that grows lands at the start of the free-space search.
first_free=$(awk '$4 == 0 { print $2; exit }' places)
if [ "$first_free" = 1320000 ]; then pass; else fail "the model's first free-space address is $first_free"; fi
place_of() { awk -v n="$1" '$1 == n { print $2 }' places; }
if [ "$(place_of "$LONGER")" = 1320000 ]; then pass; else fail "one byte longer: not the first free-space address"; fi

# ---- patch
printf -v same4 '%04d' "$SAME"  # numbers may be zero-padded
run patch "$FLASH" -o out.vkp "$same4=same.gpf2" "$LONGER=longer.gpf2" "$SHORTER=shorter.gpf2" \
    "$BIG=big.gpf2" "$BMP16=in16.bmp:16" "$BMP24=in24.bmp:24" "$PNG8=in8.png:8" "$GPF1=v1.gpf" \
    --gpf-folder gfolder --bmp-folder bfolder:orig >patch.out 2>patch.err
rc=$?
if [ $rc -eq 0 ]; then pass; else fail "patch exited $rc: $(head -n 5 patch.err)"; fi
if [ ! -s patch.out ]; then pass; else fail "patch printed on stdout: $(head -n 3 patch.out)"; fi
if [ -s out.vkp ]; then
    check vkp expected.vkp out.vkp
    # The sections, in the order of the command line; FOLDER_V1 (.gpf in the folder) has none.
    want=$(awk '{ printf "%s%s", sep, $1; sep = " " }' plan)
    got=$("$PY" helper.py sections out.vkp)
    if [ "$got" = "$want" ]; then pass; else fail "sections are '$got', expected '$want'"; fi
else
    fail "patch wrote no out.vkp"
    finish
fi
if [ "$(sha256sum <"$FLASH")" = "$flash_sum" ]; then pass; else fail "patch changed the fullflash"; fi
leftovers=$(find tmp -type f | head -n 5)
if [ -z "$leftovers" ]; then pass; else fail "temporary files left behind: $leftovers"; fi

# ---- apply
run apply "$FLASH" out.vkp -o patched.bin >apply.out 2>apply.err
rc=$?
if [ $rc -eq 0 ]; then pass; else fail "apply exited $rc: $(head -n 5 apply.err)"; fi
if [ ! -s apply.out ]; then pass; else fail "apply printed on stdout"; fi
[ -f patched.bin ] || { fail "apply wrote no patched.bin"; finish; }
check apply "$FLASH" expected.vkp patched.bin
if [ "$(sha256sum <"$FLASH")" = "$flash_sum" ]; then pass; else fail "apply changed the fullflash"; fi

# ---- the patched copy: the list
run pictures patched.bin >rows.after 2>rows.err || fail "pictures of the patched copy exited $?"
containers=$(awk '{ printf "%s%s=%s", sep, $1, $2; sep = "," }' plan)
check rows rows.before rows.after places "$containers"

# ---- every replaced picture decodes to its replacement
while read -r n path _ _; do
    row_type=$(awk -F'\t' -v n="$n" '$1 + 0 == n { print $5 }' rows.after)
    run export patched.bin "$n" -o "got$n.bmp" >/dev/null 2>"got$n.err"
    rc=$?
    if [ $rc -eq 0 ] && cmp -s "got$n.bmp" "$(decoded "$path").bmp"; then pass; else fail "picture $n ($path) read back from the patched copy (exit $rc) is not its decoded replacement"; fi
    if [ "$row_type" = 8A00 ]; then
        run export patched.bin "$n" -o "gota$n.bmp" --alpha >/dev/null 2>&1
        if cmp -s "gota$n.bmp" "$(decoded "$path").alpha.bmp"; then pass; else fail "picture $n with alpha is not its decoded replacement"; fi
    fi
    run export patched.bin "$n" -o "got$n.gpf2" >/dev/null 2>&1
    run picture patched.bin "$n" >"now$n.txt" 2>/dev/null
    if [ "$(length_of "now$n.txt")" = "$(awk -v n="$n" '$1 == n { print $3 }' places)" ]; then pass
    else fail "picture $n in the patched copy is $(length_of "now$n.txt") bytes long, expected $(awk -v n="$n" '$1 == n { print $3 }' places)"; fi
done <plan
# The bitmaps came back with their own pixels (their colours survive the encodings).
check pixels 16 21 13 "got$BMP16.bmp" plain
check pixels 24 11 9 "got$BMP24.bmp" plain
check pixels 24 11 9 "gota$BMP24.bmp" alpha
check pixels 8 23 10 "got$PNG8.bmp" plain
# Only 0005-style names count in the folder.
if cmp -s "got$FOLDER_DUP.bmp" "$(decoded "gfolder/$dup4.gpf2").bmp"; then pass; else fail "picture $FOLDER_DUP was not taken from $dup4.gpf2"; fi

# ---- the patch read back by the converter: one GPF2 per section, the same pictures
mkdir lum
run lumbra out.vkp lum >lumbra.out 2>lumbra.err
rc=$?
if [ $rc -eq 0 ]; then pass; else fail "lumbra of the patch exited $rc: $(head -n 3 lumbra.err)"; fi
if [ "$(find lum -type f | wc -l)" -eq "$(wc -l <plan)" ]; then pass; else fail "lumbra wrote $(find lum -type f | wc -l) files for $(wc -l <plan) sections"; fi
while read -r n path _ _; do
    printf -v n4 '%04d' "$n"
    run decode "lum/$n4.gpf2" -o "lum$n.bmp" >/dev/null 2>&1
    if cmp -s "lum$n.bmp" "$(decoded "$path").bmp"; then pass; else fail "lumbra's $n4.gpf2 does not decode to the replacement $path"; fi
done <plan

# ---- every other picture is unchanged
mkdir eb ea gb ga
run export "$FLASH" all --dir eb --format bmp >/dev/null 2>&1
run export patched.bin all --dir ea --format bmp >/dev/null 2>&1
run export "$FLASH" all --dir gb --format gpf2 >/dev/null 2>&1
run export patched.bin all --dir ga --format gpf2 >/dev/null 2>&1
check dirs bmp eb ea places rows.before
check dirs gpf2 gb ga places rows.before
if [ "$(sha256sum <"$FLASH")" = "$flash_sum" ]; then pass; else fail "the fullflash changed"; fi

# ---- the same picture twice in one command
run patch "$FLASH" -o twice.vkp "$SAME=same.gpf2" "$same4=big.gpf2" "$LONGER=longer.gpf2" >twice.out 2>twice.err
rc=$?
if [ $rc -eq 1 ]; then pass; else fail "the same picture twice: exit $rc, expected 1"; fi
if grep -qx 'This picture is already replaced. Reboot program or complete commenced patch' twice.err; then pass
else fail "the same picture twice: stderr is '$(head -n 3 twice.err)'"; fi
if [ "$("$PY" helper.py sections twice.vkp 2>/dev/null)" = "$SAME $LONGER" ]; then pass
else fail "the same picture twice: sections are '$("$PY" helper.py sections twice.vkp 2>&1)', expected '$SAME $LONGER'"; fi
grep -E "^($SAME|$LONGER) " plan >plan.twice
check model "$FLASH" rows.before plan.twice expected.twice.vkp places.twice
check vkp expected.twice.vkp twice.vkp

# An existing output is replaced, with the notice.
run patch "$FLASH" -o twice.vkp "$SAME=same.gpf2" "$LONGER=longer.gpf2" >/dev/null 2>again.err
rc=$?
if [ $rc -eq 0 ]; then pass; else fail "patch over an existing file exited $rc"; fi
if grep -qx "File twice.vkp already exists and will be replaced" again.err; then pass; else fail "no notice for the replaced twice.vkp: '$(cat again.err)'"; fi
check vkp expected.twice.vkp twice.vkp

# ---- no accepted replacement: nothing written
run patch "$FLASH" -o none.vkp "$SAME=missing.gpf2" >none.out 2>none.err
rc=$?
if [ $rc -eq 1 ]; then pass; else fail "no accepted replacement: exit $rc, expected 1"; fi
if grep -qx 'File not exist!' none.err; then pass; else fail "missing file: stderr is '$(head -n 3 none.err)'"; fi
if [ ! -e none.vkp ]; then pass; else fail "no accepted replacement, yet none.vkp was written"; fi
echo keep >kept.vkp
run patch "$FLASH" -o kept.vkp "$SAME=missing.gpf2" "$LONGER=missing.gpf2" >/dev/null 2>&1
rc=$?
if [ $rc -eq 1 ] && [ "$(cat kept.vkp)" = keep ]; then pass; else fail "no accepted replacement: exit $rc, kept.vkp now '$(head -c 40 kept.vkp)'"; fi
if [ "$(sha256sum <"$FLASH")" = "$flash_sum" ]; then pass; else fail "the fullflash changed"; fi

finish
