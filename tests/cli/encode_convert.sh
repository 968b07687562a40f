#!/usr/bin/env bash
# korvatek-cli encode, decode and convert, against a model written here in Python:
#   - BMPs of every row padding (widths 1..9), 24- and 32-bit, the largest picture, the
#     transparent colour, colours on the edges of the pixel conversions; each encoded for the
#     four targets as GPF2 and (up to 255 x 255) as GPF, compared byte for byte with the
#     model's container, header fields and padding checked on their own as well;
#   - byte strings worked out by hand for small pictures (monochrome bits and row padding,
#     repeat and literal groups, the end of the run-length stream, the pixel conversions);
#   - decode back to BMP, compared with the model's decoder, and plain round trips where the
#     format loses nothing;
#   - GPF <-> GPF2 <-> DAT conversions, size limits, refused and truncated inputs (exit 1,
#     message on stderr, nothing written, never a crash), replacing an existing output.
#
# usage: encode_convert.sh PATH/TO/korvatek-cli
set -u

if [ $# -ne 1 ] || [ ! -x "$1" ]; then
    echo "usage: $0 PATH/TO/korvatek-cli" >&2
    exit 2
fi
CLI=$(realpath "$1")
exec 2>&1  # one stream, so that failures appear in order
PY=/usr/bin/python3
if [ ! -x "$PY" ]; then PY=python3; fi
WORK=$(mktemp -d)
trap 'rm -rf "$WORK"' EXIT
cd "$WORK" || exit 1

passed=0
failed=0
pass() { passed=$((passed + 1)); }
fail() {
    failed=$((failed + 1))
    echo "FAIL: $*"
}

# ------------------------------------------------------------------ the model
cat >model.py <<'EOF'
"""BMP files, the firmware pixel formats, the run-length encoder and the containers."""
import os
import random
import struct
import sys

TRANSPARENT = (169, 171, 169)  # red, green, blue
TYPE_OF_TARGET = {"1": 0x01, "8": 0x85, "16": 0x88, "24": 0x8A}


def rnd(num, den):
    """num / den rounded to the nearest integer (no value here falls on a half)."""
    return (2 * num + den) // (2 * den)


# ---- BMP

def bmp_bytes(width, height, bits, cells, offset=54, compression=0, gap=b""):
    """cells: (blue, green, red, fourth) top row first. 24-bit rows padded to 4 bytes."""
    rows = bytearray()
    for y in range(height - 1, -1, -1):
        row = bytearray()
        for x in range(width):
            c = cells[y * width + x]
            row += bytes(c[:3] if bits == 24 else c)
        if bits == 24:
            row += bytes(-len(row) % 4)
        rows += row
    head = b"BM" + struct.pack("<IIIIiiHHII", 54 + len(gap) + len(rows), 0, offset, 40, width, height, 1, bits,
                               compression, len(rows)) + bytes(16)
    return head + gap + bytes(rows)


class Refused(Exception):
    pass


def read_bmp(blob):
    """Cells as the program's reader fills the canvas: low byte of the data offset, reads past
    the end give zeros, 24-bit pixels get the fourth byte 0xFF."""
    def at(pos, n):
        piece = blob[pos:pos + n]
        return piece + bytes(n - len(piece))
    if at(0, 2) != b"BM":
        raise Refused("Unknown file!")
    offset = at(10, 1)[0]
    width, height = struct.unpack("<ii", at(18, 8))
    bits = at(28, 1)[0]
    if bits not in (24, 32):
        raise Refused("This is not 24 or 32bit bmp!")
    if at(30, 1)[0] != 0:
        raise Refused("Compressed BMPs not supported!")
    pos = 31 + max(offset - 31, 2)
    if width > 240 or height > 320:
        raise Refused("Maximal size of picture is 240x320!")
    cells = [None] * (width * height)
    size = 3 if bits == 24 else 4
    for y in range(height - 1, -1, -1):
        for x in range(width):
            c = at(pos, size)
            pos += size
            cells[y * width + x] = tuple(c) + ((255,) if bits == 24 else ())
        if bits == 24 and width * 3 % 4:
            pos += 4 - width * 3 % 4
    return width, height, cells


# ---- pixel conversions

def enc8(c):
    b, g, r = c[0], c[1], c[2]
    if (r, g, b) == TRANSPARENT:
        return b"\xc0"
    return bytes((rnd(r * 7, 255) * 32 + rnd(g * 7, 255) * 4 + rnd(b * 3, 255),))


def enc16(c):
    b, g, r = c[0], c[1], c[2]
    if (r, g, b) == TRANSPARENT:
        return b"\x00\xe0"
    return struct.pack("<H", rnd(r * 31, 255) * 2048 + rnd(g * 63, 255) * 32 + rnd(b * 31, 255))


def dec8(v):
    if v == 0xC0:
        return (169, 171, 169, 0)
    return ((v & 3) * 85, rnd(((v >> 2) & 7) * 255, 7), rnd((v >> 5) * 255, 7), 0)


def dec12(b0, b1):
    if (b0, b1) == (0xAA, 0xFA):
        return (169, 171, 169, 0)
    return ((b0 & 15) * 17, (b0 >> 4) * 17, (b1 & 15) * 17, 0)


def dec16(b0, b1):
    if (b0, b1) == (0x00, 0xE0):
        return (169, 171, 169, 0)
    g6 = ((b1 & 7) << 3) | (b0 >> 5)
    return (rnd((b0 & 31) * 255, 31), rnd(g6 * 255, 63), rnd((b1 >> 3) * 255, 31), 0)


def dec24(s, alpha):
    if alpha:
        return tuple(s)
    a = s[3]
    return tuple(max(v + a - 255, 0) for v in s[:3]) + (0,)


# ---- encoders

def encode_mono(cells, width, height):
    out = bytearray()
    for y in range(height):
        bits = ""
        for x in range(width):
            b, g, r = cells[y * width + x][:3]
            bits += "1" if r + g + b < 381 else "0"  # mean below 127 is black
            if len(bits) == 8:
                out.append(int(bits, 2))
                bits = ""
        if bits:
            out.append(int(bits.ljust(8, "1"), 2))
    return bytes(out)


def encode_runs(cells, width, height, target):
    """The run-length encoder, its end procedure included."""
    conv = {0x85: enc8, 0x88: enc16, 0x8A: bytes}[target]
    out = bytearray()
    control = None  # the last control byte computed
    n = width * height

    def emit(ctrl, group):
        nonlocal control
        control = ctrl
        out.append(ctrl)
        for c in group:
            out.extend(conv(c))

    pos = 0
    while True:
        prev = cells[pos]
        pos += 1
        if pos == n:  # the end reached at a group start: the last control again, no cells
            if control is not None:
                out.append(control)
            return bytes(out)
        pending, rep, lit = [], 1, 0
        while True:
            nxt = cells[pos]
            pos += 1
            if pos == n:
                if lit > 0:
                    emit(256 - lit, pending + [nxt])
                elif rep > 1:
                    emit(rep + 1, [prev])
                elif control is not None:
                    out.append(control)
                return bytes(out)
            if nxt != prev:
                if rep > 1:
                    emit(rep, [prev])
                    pos -= 1
                    break
                lit += 1
                pending.append(prev)
                prev = nxt
                if lit == 127:
                    emit(129, pending)
                    pending, rep, lit = [], 1, 0
            else:
                if lit > 0:
                    emit(256 - lit, pending)
                    pending, rep, lit = [], 1, 0
                rep += 1
                if rep == 127:
                    emit(127, [prev])
                    break


def pad(blob):
    return blob + bytes(16 - len(blob) % 16)


def gpf_header(version2, width, height, type_field):
    if version2:
        return b"GraphPatchFile_2" + bytes(4) + struct.pack("<HH", width, height) + type_field + bytes(6)
    return b"GraphicPatchFile" + bytes(4) + bytes((width, height)) + type_field + bytes(8)


def encode_container(bmp_blob, target, version2):
    width, height, cells = read_bmp(bmp_blob)
    code = TYPE_OF_TARGET[target]
    data = encode_mono(cells, width, height) if code == 1 else encode_runs(cells, width, height, code)
    return pad(gpf_header(version2, width, height, bytes((code, 0))) + data)


# ---- decoder

DEPTH = {0x01: 1, 0x05: 8, 0x85: 8, 0x07: 12, 0x87: 12, 0x08: 16, 0x88: 16, 0x0A: 24, 0x8A: 24}


class Unclear(Exception):
    """The model cannot say what the program shows (cells never written, runs off the canvas)."""


def decode_container(blob, name, alpha):
    """(width, height, bits, cells, bytes used) of the picture of a GPF, GPF2 or DAT file."""
    if name.endswith("dat"):
        width, height, code = struct.unpack_from("<HHB", blob.ljust(5, b"\0"))
        if width > 240 or height > 320:
            raise Refused("Maximal size of picture is 240x320!")
        pos = 5
    else:
        magic = blob[:16]
        if magic == b"GraphPatchFile_2":
            width, height = struct.unpack_from("<HH", blob.ljust(32, b"\0"), 20)
            code = blob.ljust(32, b"\0")[24]
        elif magic == b"GraphicPatchFile":
            width, height, code = blob.ljust(32, b"\0")[20:23]
        else:
            raise Refused("Unknown file!")
        if width > 240 or height > 320:
            raise Refused("Maximal size of picture is 240x320!")
        pos = 32
    if code not in DEPTH or code == 0x81:
        raise Refused("This GPF not supported!contact author please")
    depth = DEPTH[code]
    start = pos
    n = width * height
    cells = [None] * n

    def take(k):
        nonlocal pos
        piece = blob[pos:pos + k]
        pos += k
        return piece + bytes(k - len(piece))

    def pixel(s):
        if depth == 8:
            return dec8(s[0])
        if depth == 12:
            return dec12(s[0], s[1])
        if depth == 16:
            return dec16(s[0], s[1])
        return dec24(s, alpha)

    size = {8: 1, 12: 2, 16: 2, 24: 4}.get(depth)
    if depth == 1:
        for y in range(height):
            row = take(-(-width // 8))
            for x in range(width):
                c = 0 if row[x // 8] >> (7 - x % 8) & 1 else 255
                cells[y * width + x] = (c, c, c, 0x30)
    elif code < 0x80:
        for i in range(n):
            cells[i] = pixel(take(size))
    else:
        i = 0
        while i < n and pos < len(blob):
            control = take(1)[0]
            if control >= 128:
                for _ in range(256 - control):
                    c = pixel(take(size))
                    if i < n:
                        cells[i] = c
                    i += 1
            else:
                c = pixel(take(size))
                for _ in range(control):
                    if i < n:
                        cells[i] = c
                    i += 1
            if width and i > width * 321:
                raise Unclear("a run goes past the last canvas row")
    if None in cells:
        raise Unclear("cells never written")
    bits = 32 if depth == 24 and alpha else 24
    return width, height, bits, cells, pos - start


def bmp_of_decoded(width, height, bits, cells):
    return bmp_bytes(width, height, bits, cells)


# ---- fixtures

def picture(rng, width, height, palette, alpha=False):
    """Runs and noise, ending in exactly three equal cells after a different one."""
    def px():
        c = rng.choice(palette) if palette else (rng.randrange(256), rng.randrange(256), rng.randrange(256))
        return tuple(c) + ((rng.choice((0, 1, 128, 254, 255)) if alpha else 255),)
    flat = []
    while len(flat) < width * height:
        c = px()
        flat.extend([c] * (rng.choice((1, 2, 3, 7, 126, 127, 128, 200)) if rng.random() < 0.25 else 1))
    flat = flat[:width * height]
    if len(flat) >= 4:
        flat[-3:] = [flat[-1]] * 3
        while flat[-4] == flat[-1]:
            flat[-4] = px()
    return flat


def exact565():
    out = []
    for r in range(0, 32, 5):
        for g in range(0, 64, 9):
            for b in (0, 7, 31):
                out.append((rnd(b * 255, 31), rnd(g * 255, 63), rnd(r * 255, 31)))
    return out


def exact332():
    return [(b * 85, rnd(g * 255, 7), rnd(r * 255, 7)) for r in range(8) for g in range(8) for b in range(4)
            if (r, g, b) != (6, 0, 0)]


# Colours on the edges of the conversions (blue, green, red): white, black, pure channels,
# grey with a mean of exactly 127 (white) and just under it (black), the transparent colour,
# and colours whose 8- or 16-bit code is the transparent key.
EDGE = [(255, 255, 255), (0, 0, 0), (0, 0, 255), (0, 255, 0), (255, 0, 0), (127, 127, 127), (128, 127, 126),
        (127, 127, 126), (169, 171, 169), (0, 0, 219), (0, 0, 230), (168, 171, 169), (36, 36, 36), (18, 18, 18)]


def write(path, blob):
    with open(path, "wb") as f:
        f.write(blob)


def make_fixtures(folder):
    """Writes the BMPs; prints one line per file: name width height."""
    rng = random.Random(71)
    listing = []

    def add(name, width, height, bits, cells, **options):
        write(os.path.join(folder, name + ".bmp"), bmp_bytes(width, height, bits, cells, **options))
        listing.append("%s %d %d" % (name, width, height))

    for w in range(1, 10):
        add("w%d_24" % w, w, 5, 24, picture(rng, w, 5, None))
        add("w%d_32" % w, w, 4, 32, picture(rng, w, 4, None, alpha=True))
    add("few_colours", 37, 23, 24, picture(rng, 37, 23, [(10, 20, 30), (200, 100, 0), (255, 255, 255)]))
    add("alpha_runs", 41, 17, 32, picture(rng, 41, 17, [(10, 20, 30), (200, 100, 0)], alpha=True))
    add("edges", 14, 3, 24, picture(rng, 14, 3, EDGE))
    add("transparent", 13, 5, 24, picture(rng, 13, 5, [TRANSPARENT[::-1], (0, 0, 0), (255, 255, 255)]))
    add("transparent_alpha", 13, 5, 32, picture(rng, 13, 5, [TRANSPARENT[::-1], (0, 0, 0)], alpha=True))
    add("exact565", 21, 7, 24, picture(rng, 21, 7, exact565()))
    add("exact332", 17, 9, 24, picture(rng, 17, 9, exact332()))
    add("noise_130", 130, 3, 24, picture(rng, 130, 3, None))  # literal groups of 127 and what follows
    add("widest", 240, 3, 24, picture(rng, 240, 3, [(1, 2, 3), (4, 5, 6)]))
    add("full", 240, 320, 24, picture(rng, 240, 320, [(0, 0, 0), (255, 255, 255), (90, 90, 200), (1, 2, 3)]))
    # The pixel data offset is read from its low byte only: 310 reads from 54.
    gap = bytes(rng.randrange(256) for _ in range(256))
    add("offset310", 6, 4, 24, picture(rng, 6, 4, None), offset=310, gap=gap)
    print("\n".join(listing))


# ---- checks of the program's files

class Tally:
    def __init__(self):
        self.passed = self.failed = 0

    def check(self, condition, what):
        if condition:
            self.passed += 1
        else:
            self.failed += 1
            print("FAIL: " + what)

    def summary(self):
        print("%d passed, %d failed" % (self.passed, self.failed))
        return 1 if self.failed else 0


def read_file(path):
    try:
        with open(path, "rb") as f:
            return f.read()
    except OSError:
        return None


def first_difference(got, want):
    for i, (a, b) in enumerate(zip(got, want)):
        if a != b:
            return "offset %d: %02x, expected %02x" % (i, a, b)
    return "%d bytes, expected %d" % (len(got), len(want))


def fixtures(listing):
    for line in open(listing):
        name, w, h = line.split()
        yield name, int(w), int(h)


def check_encoded(folder, listing):
    t = Tally()
    for name, w, h in fixtures(listing):
        source = read_file(os.path.join(folder, name + ".bmp"))
        for target, code in TYPE_OF_TARGET.items():
            for version2 in (True, False):
                if not version2 and (w > 255 or h > 255):
                    continue
                path = "%s.t%s.%s" % (name, target, "gpf2" if version2 else "gpf")
                got = read_file(path)
                if got is None:
                    continue  # the failed command is reported already
                if version2:
                    head = b"GraphPatchFile_2" + bytes(4) + struct.pack("<HH", w, h) + bytes((code, 0)) + bytes(6)
                else:
                    head = b"GraphicPatchFile" + bytes(4) + bytes((w, h, code, 0)) + bytes(8)
                t.check(got[:32] == head, "%s: header %s, expected %s" % (path, got[:32].hex(" "), head.hex(" ")))
                t.check(len(got) % 16 == 0 and got[-1:] == b"\0",
                        "%s: %d bytes ending in %s, expected a multiple of 16 ending in zero padding"
                        % (path, len(got), got[-1:].hex()))
                want = encode_container(source, target, version2)
                t.check(got == want, "%s against the model: %s" % (path, first_difference(got, want)))
    return t.summary()


def check_decoded(folder, listing):
    t = Tally()
    for name, w, h in fixtures(listing):
        source = read_file(os.path.join(folder, name + ".bmp"))
        _, _, source_cells = read_bmp(source)
        for target, code in TYPE_OF_TARGET.items():
            base = "%s.t%s" % (name, target)
            container = read_file(base + ".gpf2")
            if container is None:
                continue
            for alpha in (0, 1):
                got = read_file("%s.a%d.bmp" % (base, alpha))
                if got is None:
                    continue
                bits = struct.unpack_from("<H", got, 28)[0] if len(got) >= 30 else None
                want_bits = 32 if code == 0x8A and alpha else 24
                t.check(bits == want_bits, "%s.a%d.bmp: %s bits per pixel, expected %d" % (base, alpha, bits, want_bits))
                try:
                    dw, dh, dbits, cells, used = decode_container(container, base + ".gpf2", alpha)
                except (Unclear, Refused):
                    continue  # the model cannot tell what this picture shows
                want = bmp_of_decoded(dw, dh, dbits, cells)
                t.check(got == want, "%s.a%d.bmp against the model's decode: %s" % (base, alpha, first_difference(got, want)))
                info = open("%s.a%d.out" % (base, alpha)).read()
                want_info = "Width: %d\nHeight: %d\nBits: %d\nCompression: %s\n\nLenght: 0x%X\n" % (
                    w, h, DEPTH[code], "Yes" if code > 0x80 else "No", used)
                t.check(info == want_info, "decode %s.gpf2 printed %r, expected %r" % (base, info, want_info))
            # The version 1 file shows the same picture.
            v1 = read_file(base + ".v1.bmp")
            a1 = read_file(base + ".a1.bmp")
            if v1 is not None and a1 is not None:
                t.check(v1 == a1, "%s: the GPF and the GPF2 decode differently" % base)

        # Round trips that lose nothing, stated without the model: the decoded pixels are the
        # source's (all four bytes, or red, green and blue).
        def same_as_source(path, four):
            blob = read_file(path)
            if blob is None:
                return
            _, _, cells = read_bmp(blob)
            a = cells if four else [c[:3] for c in cells]
            b = source_cells if four else [c[:3] for c in source_cells]
            bad = [i for i in range(len(b)) if i >= len(a) or a[i] != b[i]]
            t.check(not bad, "%s: pixel x=%d y=%d is %s, the source's %s" % (
                path, bad[0] % w, bad[0] // w, bytes(a[bad[0]]).hex(" "), bytes(b[bad[0]]).hex(" ")) if bad else "")

        if name.endswith("_32") or name in ("alpha_runs", "transparent_alpha"):
            same_as_source(name + ".t24.a1.bmp", True)  # the 24-bit target keeps the fourth byte
        if name.endswith("_24") or name in ("full", "few_colours", "edges", "widest"):
            same_as_source(name + ".t24.a0.bmp", False)
        if name == "exact565":
            same_as_source(name + ".t16.a0.bmp", False)
        if name == "exact332":
            same_as_source(name + ".t8.a0.bmp", False)
        if name == "transparent":  # 169/171/169 comes back from the 8- and 16-bit keys
            for target in ("8", "16", "24"):
                same_as_source("%s.t%s.a0.bmp" % (name, target), False)
    return t.summary()


# ---- command line of the model

def main(argv):
    cmd = argv[1]
    if cmd == "fixtures":
        make_fixtures(argv[2])
    elif cmd == "bmp":  # OUT BITS W H COLOURS: rrggbb[aa][*count] ... top row first
        out, bits, width, height = argv[2], int(argv[3]), int(argv[4]), int(argv[5])
        cells = []
        for item in argv[6:]:
            colour, _, count = item.partition("*")
            v = bytes.fromhex(colour)
            cell = (v[2], v[1], v[0], v[3] if len(v) > 3 else 255)
            cells.extend([cell] * int(count or 1))
        write(out, bmp_bytes(width, height, bits, cells))
    elif cmd == "check-encoded":  # FIXTURE_DIR LISTING
        return check_encoded(argv[2], argv[3])
    elif cmd == "check-decoded":  # FIXTURE_DIR LISTING
        return check_decoded(argv[2], argv[3])
    elif cmd == "expect-bmp":  # CONTAINER ALPHA(0|1) OUT; exit 3 when the model cannot tell
        with open(argv[2], "rb") as f:
            blob = f.read()
        try:
            w, h, bits, cells, used = decode_container(blob, argv[2], argv[3] == "1")
        except (Unclear, Refused) as e:
            print(e)
            return 3
        write(argv[4], bmp_of_decoded(w, h, bits, cells))
        print("%d %d %d %X" % (w, h, bits, used))
    elif cmd == "hex":  # OUT HEX...: raw bytes
        write(argv[2], bytes.fromhex("".join(argv[3:])))
    elif cmd == "to-dat":  # CONTAINER OUT: what the GPF>DAT conversion writes
        with open(argv[2], "rb") as f:
            blob = f.read()
        hdr = blob.ljust(32, b"\0")
        if blob[:16] == b"GraphPatchFile_2":
            w, h = struct.unpack_from("<HH", hdr, 20)
            code = hdr[24]
        else:
            w, h, code = hdr[20:23]
        write(argv[3], struct.pack("<HHB", w, h, code) + blob[32:] + blob[-1:])
    elif cmd == "from-dat":  # DAT OUT: what the DAT>GPF2 conversion writes (31-byte header)
        with open(argv[2], "rb") as f:
            blob = f.read()
        w, h, code = struct.unpack_from("<HHB", blob)
        header = b"GraphPatchFile_2" + bytes(4) + struct.pack("<HHB", w, h, code) + bytes(6)
        write(argv[3], header + blob[4:] + blob[-1:])
    elif cmd == "set-version":  # CONTAINER VERSION(1|2) OUT: the same data behind the other header
        with open(argv[2], "rb") as f:
            blob = f.read()
        hdr = blob[:32]
        if hdr[:16] == b"GraphPatchFile_2":
            w, h = struct.unpack_from("<HH", hdr, 20)
            field = hdr[24:26]
        else:
            w, h = hdr[20], hdr[21]
            field = hdr[22:24]
        write(argv[4], gpf_header(argv[3] == "2", w, h, field) + blob[32:])
    elif cmd == "gpf2":  # OUT WIDTH HEIGHT TYPE DATAHEX: a container made by hand, padded
        write(argv[2], pad(gpf_header(True, int(argv[3]), int(argv[4]), bytes((int(argv[5], 16), 0)))
                           + bytes.fromhex(argv[6] if len(argv) > 6 else "")))
    else:
        print("unknown model command " + cmd)
        return 2
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
EOF
model() { "$PY" -S "$WORK/model.py" "$@" </dev/null; }

# Runs the CLI; sets RC, OUT (stdout) and ERR (stderr). Status 124 (timeout) or more is a
# hang or a crash.
cli() {
    timeout 60 "$CLI" "$@" </dev/null >cmd.out 2>cmd.err
    RC=$?
    OUT=$(cat cmd.out)
    ERR=$(cat cmd.err)
    if [ $RC -ge 124 ]; then fail "korvatek-cli $* crashed or hung (status $RC)"; fi
}
# The first differing byte of two files, or nothing when they are equal.
differ() {
    if [ ! -f "$1" ]; then echo "$1 missing"; return; fi
    cmp "$1" "$2" 2>&1 | head -n 1
    local a b
    a=$(stat -c %s "$1")
    b=$(stat -c %s "$2")
    if [ "$a" != "$b" ]; then echo "lengths $a and $b"; fi
}
same_file() {  # GOT WANT WHAT
    local d
    d=$(differ "$1" "$2")
    if [ -z "$d" ]; then pass; else fail "$3: $d"; fi
}
hex_of() { od -An -v -tx1 "$1" | tr -d ' \n'; }
# A refusal: status 1, the message as a line of stderr, the output not written.
refused() {  # WHAT MESSAGE OUTPUT
    if [ $RC -eq 1 ]; then pass; else fail "$1: exit $RC, expected 1 (stderr: $ERR)"; fi
    if [ -z "$2" ]; then
        if [ -n "$ERR" ]; then pass; else fail "$1: no message on stderr"; fi
    elif grep -qxF -- "$2" cmd.err; then pass; else fail "$1: stderr '$ERR', expected the line '$2'"; fi
    if [ ! -e "$3" ]; then pass; else fail "$1: $3 was written"; fi
}
# Adds the counts of a helper's "N passed, M failed" line.
add_counts() {
    local line
    line=$(grep -E '^[0-9]+ passed, [0-9]+ failed$' "$1" | tail -n 1)
    if [ -z "$line" ]; then
        fail "$2 printed no summary: $(tail -n 3 "$1")"
        return
    fi
    passed=$((passed + ${line%% passed*}))
    local m=${line#*, }
    failed=$((failed + ${m%% failed}))
}
succeeded() {  # WHAT
    if [ $RC -eq 0 ]; then pass; else fail "$1: exit $RC (stderr: $ERR)"; return 1; fi
}

magic2=$(printf 'GraphPatchFile_2' | od -An -tx1 | tr -d ' \n')
mkdir fx
model fixtures fx >fixtures.txt || { fail "the model could not write its fixtures"; echo "$passed passed, $failed failed"; exit 1; }

# ------------------------------------------------------------------ every fixture, every target
# Each fixture encoded for every target as GPF2 and (up to 255 x 255) as GPF, each GPF2
# decoded with and without --alpha, each GPF decoded with --alpha. The model then checks
# them all in one go (model.py check-encoded, check-decoded).
quiet_ok() {  # STDOUT_FILE ARGS...: status 0 and nothing on stderr
    local out=$1
    shift
    timeout 60 "$CLI" "$@" </dev/null >"$out" 2>cmd.err
    local rc=$?
    if [ $rc -eq 0 ] && [ ! -s cmd.err ]; then pass; else fail "korvatek-cli $*: exit $rc, stderr: $(cat cmd.err)"; fi
}
while read -r name w h; do
    for t in 1 8 16 24; do
        quiet_ok /dev/null encode "fx/$name.bmp" -o "$name.t$t.gpf2" --type $t
        if [ "$w" -le 255 ] && [ "$h" -le 255 ]; then
            quiet_ok /dev/null encode "fx/$name.bmp" -o "$name.t$t.gpf" --type $t
            quiet_ok /dev/null decode "$name.t$t.gpf" -o "$name.t$t.v1.bmp" --alpha
        fi
        quiet_ok "$name.t$t.a0.out" decode "$name.t$t.gpf2" -o "$name.t$t.a0.bmp"
        quiet_ok "$name.t$t.a1.out" decode "$name.t$t.gpf2" -o "$name.t$t.a1.bmp" --alpha
    done
done <fixtures.txt
model check-encoded fx fixtures.txt >check.txt
grep '^FAIL' check.txt
add_counts check.txt "model.py check-encoded"
model check-decoded fx fixtures.txt >check.txt
grep '^FAIL' check.txt
add_counts check.txt "model.py check-decoded"

# ------------------------------------------------------------------ bytes worked out by hand
# Each case: a name, the target, the data bytes expected before the zero padding, then the
# BMP: bits, width, height and the colours rrggbb[aa][*count], top row first.
hand() {  # NAME TARGET DATAHEX BITS WIDTH HEIGHT COLOURS...
    local name=$1 target=$2 data=$3
    shift 3
    model bmp "hand_$name.bmp" "$@"
    cli encode "hand_$name.bmp" -o "hand_$name.gpf2" --type "$target"
    succeeded "encode hand_$name.bmp --type $target" || return
    local got want_len
    got=$(hex_of "hand_$name.gpf2")
    got=${got:64}
    want_len=$(( (32 + ${#data} / 2) / 16 * 16 + 16 - 32 ))
    local want=$data$(printf '%0*d' $(((want_len - ${#data} / 2) * 2)) 0)
    if [ "$got" = "$want" ]; then pass; else fail "$name: data after the header $got, expected $want"; fi
}
hand white_mono     1  7f           24 1 1 ffffff
hand black_mono     1  ff           24 1 1 000000
hand mean127_mono   1  7f7f         24 1 2 7f7f7f 7e7f80           # mean exactly 127: white
hand mean126_mono   1  ff           24 1 1 7f7f7e                  # mean 126.67: black
hand nine_mono      1  aaff557f     24 9 2 000000 ffffff 000000 ffffff 000000 ffffff 000000 ffffff 000000 \
                                          ffffff 000000 ffffff 000000 ffffff 000000 ffffff 000000 ffffff
hand alpha_mono     1  bf           32 2 1 00000000 ffffff00        # the fourth byte plays no part
hand one_8          8  ""           24 1 1 ff0000                  # a single cell gives no data at all
hand one_16         16 ""           24 1 1 ff0000
hand one_24         24 ""           32 1 1 10203080
hand two_8          8  ""           24 2 1 ff0000 ff0000            # ... nor do two
hand white_8        8  03ff         24 3 1 ffffff*3
hand red_8          8  03e0         24 3 1 ff0000*3
hand white_16       16 03ffff       24 3 1 ffffff*3
hand red_16         16 0300f8       24 3 1 ff0000*3
hand keep_24        24 0330201080   32 3 1 10203080*3
hand transparent_8  8  03c0         24 3 1 a9aba9*3
hand transparent_16 16 0300e0       24 3 1 a9aba9*3
hand transparent_24 24 03a9aba9ff   24 3 1 a9aba9*3
hand key_8          8  03c0         24 3 1 db0000*3                 # red 219 has the transparent key's code
hand long_8         8  7fe049e0     24 200 1 ff0000*200             # 127, then the end counts the last cell
hand long_16        16 7f00f84900f8 24 200 1 ff0000*200
hand three_8        8  ffff03       24 3 1 ffffff 00ff00 0000ff     # literal tail: FF, the first, the last
hand tail_8         8  fee0001c     24 4 1 ff0000 000000 0000ff 00ff00  # the third is lost
hand pair_end_8     8  02e002       24 4 1 ff0000 ff0000 00ff00 00ff00  # two equal at the end are lost
hand alpha_8        8  ffe003e0     32 4 1 ff000001 ff000002*3      # cells differ by their fourth byte
hand run_4_8        8  ffff04e0     24 5 1 ffffff ff0000*4
hand wrap_8         8  06e0         24 3 2 ff0000*6                 # runs cross row ends
hand mixed_8        8  02fffde0031c0403    24 9 1 ffffff*2 ff0000 0000ff 00ff00 0000ff*4
hand rep127_end_8   8  7fe07f       24 128 1 ff0000*128             # the end at a group start
hand lit127_8       8  "81$(for i in $(seq 0 126); do printf '%02x' $(( i % 2 ? 0xff : 0x03 )); done)81" \
                           24 129 1 $(for i in $(seq 0 128); do if [ $((i % 2)) = 1 ]; then printf 'ffffff '; else printf '0000ff '; fi; done)

# ------------------------------------------------------------------ conversions
for pair in w5_24:1 w9_32:24 transparent:8 widest:16 edges:24 few_colours:8; do
    name=${pair%%:*}
    t=${pair##*:}
    src=$name.t$t.gpf2
    [ -f "$src" ] || continue
    # GPF2 -> GPF -> GPF2: byte for byte back.
    cp "$src" c.gpf2
    cli convert c.gpf2 -o c.gpf
    succeeded "convert $src -o .gpf" || continue
    model set-version "$src" 1 want.gpf
    same_file c.gpf want.gpf "convert $src to GPF"
    same_file c.gpf "$name.t$t.gpf" "convert $src to GPF against encoding straight to GPF"
    cli convert c.gpf -o back.gpf2
    succeeded "convert c.gpf -o .gpf2" && same_file back.gpf2 "$src" "GPF2 -> GPF -> GPF2 of $src"
    rm -f c.gpf back.gpf2
    # GPF2 and GPF -> DAT: 5-byte header, the data and padding, the last byte again.
    for ext in gpf2 gpf; do
        cp "$name.t$t.$ext" c.$ext
        cli convert c.$ext -o c.dat
        succeeded "convert $name.t$t.$ext -o .dat" || continue
        model to-dat c.$ext want.dat
        same_file c.dat want.dat "convert $name.t$t.$ext to DAT"
        size=$(stat -c %s "$name.t$t.$ext")
        if [ "$(stat -c %s c.dat)" -eq $((5 + size - 32 + 1)) ]; then pass; else fail "DAT of $name.t$t.$ext: $(stat -c %s c.dat) bytes"; fi
        # A DAT decodes as its container does.
        cli decode c.dat -o dat.bmp --alpha
        want_out=$("$CLI" decode "$name.t$t.$ext" -o cont.bmp --alpha 2>/dev/null)
        if succeeded "decode DAT of $name.t$t.$ext"; then
            same_file dat.bmp cont.bmp "decode of DAT against decode of $name.t$t.$ext"
            if [ "$OUT" = "$want_out" ]; then pass; else fail "decode DAT printed '$OUT', the container '$want_out'"; fi
        fi
        # DAT -> GPF2: 31-byte header, the DAT from its type byte on, the last byte again.
        cli convert c.dat -o d.gpf2
        if succeeded "convert DAT of $name.t$t.$ext -o .gpf2"; then
            model from-dat c.dat want.gpf2
            same_file d.gpf2 want.gpf2 "convert DAT of $name.t$t.$ext to GPF2"
            cli decode d.gpf2 -o d.bmp --alpha
            succeeded "decode GPF2 from DAT" && same_file d.bmp cont.bmp "decode of the GPF2 made from a DAT"
        fi
        rm -f c.$ext c.dat d.gpf2 dat.bmp cont.bmp d.bmp
    done
done

# The largest picture as DAT, and one column or row more.
cli convert full.t16.gpf2 -o full.dat
if succeeded "convert full.t16.gpf2 -o full.dat"; then
    cli decode full.dat -o full_dat.bmp
    succeeded "decode of a 240 x 320 DAT" && same_file full_dat.bmp full.t16.a0.bmp "decode of the 240 x 320 DAT"
    for size in f1004001:wide f0004101:tall; do
        "$PY" -c 'import sys; b = bytearray(open(sys.argv[1], "rb").read()); b[0:4] = bytes.fromhex(sys.argv[2]); open(sys.argv[3], "wb").write(b)' \
            full.dat "${size%%:*}" "${size##*:}.dat"
        cli decode "${size##*:}.dat" -o big.bmp
        refused "decode of a ${size##*:} DAT" "Maximal size of picture is 240x320!" big.bmp
        cli convert "${size##*:}.dat" -o big.gpf2
        refused "convert of a ${size##*:} DAT" "Maximal size of picture is 240x320!" big.gpf2
    done
fi
# A theme cache is one only when its name ends in lower-case "dat".
if [ -f few_colours.t8.gpf2 ]; then
    cli convert few_colours.t8.gpf2 -o upper.dat
    cp upper.dat UPPER.DAT
    cli decode UPPER.DAT -o upper.bmp
    refused "decode UPPER.DAT" "Unknown file!" upper.bmp
    cli convert UPPER.DAT -o upper.gpf2
    refused "convert UPPER.DAT -o .gpf2" "Unknown file!" upper.gpf2
fi
# The version swap writes the other version whatever the output is called.
if [ -f w5_24.t8.gpf2 ]; then
    cli convert w5_24.t8.gpf2 -o named.gpf2
    if succeeded "convert .gpf2 -o named.gpf2"; then
        magic=$(head -c 16 named.gpf2)
        if [ "$magic" = GraphicPatchFile ]; then pass; else fail "convert of a GPF2 to a .gpf2 name wrote '$magic'"; fi
    fi
fi

# Version 1 holds at most 255 x 255; wider than 240 is refused before that, on loading.
model gpf2 tall.gpf2 1 256 85 7fe07fe003e0
model gpf2 tallest.gpf2 240 320 85 7fe07fe003e0
model gpf2 fits.gpf2 240 255 85 7fe0
model gpf2 wide.gpf2 256 1 85 7fe07fe003e0
for f in tall tallest; do
    cli convert $f.gpf2 -o $f.gpf
    refused "convert of a $f GPF2 to GPF" "Maximal size of picture is 255x255 for GPF!" $f.gpf
done
cli convert wide.gpf2 -o wide.gpf
refused "convert of a 256-wide GPF2 to GPF" "Maximal size of picture is 240x320!" wide.gpf
cli convert fits.gpf2 -o fits.gpf
if succeeded "convert of a 240 x 255 GPF2 to GPF"; then
    model set-version fits.gpf2 1 want.gpf
    same_file fits.gpf want.gpf "convert of a 240 x 255 GPF2"
fi

# ------------------------------------------------------------------ refused and broken inputs
mkdir bad
bmp_with() {  # OUT OFFSET HEX: w5_24.bmp with bytes replaced at OFFSET
    "$PY" -c 'import sys; b = bytearray(open(sys.argv[1], "rb").read()); v = bytes.fromhex(sys.argv[3]); o = int(sys.argv[2]); b[o:o + len(v)] = v; open(sys.argv[4], "wb").write(b)' \
        fx/w5_24.bmp "$2" "$3" "$1"
}
bmp_with bad/huge_width.bmp 18 ffffff7f
bmp_with bad/huge_height.bmp 22 ffffff7f
bmp_with bad/wide.bmp 18 f1000000
bmp_with bad/tall.bmp 22 41010000
bmp_with bad/bits16.bmp 28 1000
bmp_with bad/bits8.bmp 28 0800
bmp_with bad/bits1.bmp 28 0100
bmp_with bad/rle.bmp 30 01000000
bmp_with bad/bitfields.bmp 28 200003000000
bmp_with bad/signature.bmp 0 424e
head -c 20 fx/w5_24.bmp >bad/cut_header.bmp
: >bad/empty.bmp
refuse_bmp() {  # NAME MESSAGE
    for t in 1 8 24; do
        cli encode "bad/$1.bmp" -o "bad/$1.gpf2" --type $t
        refused "encode bad/$1.bmp --type $t" "$2" "bad/$1.gpf2"
    done
}
for name in huge_width huge_height wide tall; do refuse_bmp $name "Maximal size of picture is 240x320!"; done
for name in bits16 bits8 bits1 cut_header; do refuse_bmp $name "This is not 24 or 32bit bmp!"; done
for name in rle bitfields; do refuse_bmp $name "Compressed BMPs not supported!"; done
for name in signature empty; do refuse_bmp $name "Unknown file!"; done
cli encode bad/missing.bmp -o bad/missing.gpf2 --type 8
refused "encode of a missing BMP" "" bad/missing.gpf2

# Negative and zero sizes pass the size check (top-down rows are not read). The monochrome
# encoder then has no rows or no pixels to write; the run-length scan never meets the end of
# such a picture and runs off the canvas, which stops the command: nothing is written.
bmp_with bad/neg_height.bmp 22 fbffffff
bmp_with bad/neg_width.bmp 18 fbffffff
bmp_with bad/zero_height.bmp 22 00000000
bmp_with bad/zero_width.bmp 18 00000000
for name in neg_height neg_width zero_height zero_width; do
    rm -f "bad/$name.gpf2"
    cli encode "bad/$name.bmp" -o "bad/$name.gpf2" --type 1
    if [ $RC -eq 0 ] && [ -f "bad/$name.gpf2" ]; then pass
    elif [ $RC -eq 1 ] && [ -n "$ERR" ] && [ ! -e "bad/$name.gpf2" ]; then pass
    else fail "encode bad/$name.bmp --type 1: exit $RC, stderr '$ERR', output $(ls bad/$name.gpf2 2>&1)"; fi
    for t in 8 16 24; do
        cli encode "bad/$name.bmp" -o "bad/$name.t$t.gpf2" --type $t
        refused "encode bad/$name.bmp --type $t" "" "bad/$name.t$t.gpf2"
    done
done

# A BMP cut inside its pixels reads zeros for the missing bytes.
head -c 70 fx/w5_24.bmp >bad/cut_pixels.bmp
"$PY" -c 'import sys; b = open(sys.argv[1], "rb").read(); open(sys.argv[2], "wb").write(b + bytes(int(sys.argv[3]) - len(b)))' \
    bad/cut_pixels.bmp bad/zero_filled.bmp "$(stat -c %s fx/w5_24.bmp)"
for t in 1 8 24; do
    cli encode bad/cut_pixels.bmp -o bad/cut.gpf2 --type $t
    if succeeded "encode of a BMP cut inside its pixels --type $t"; then
        cli encode bad/zero_filled.bmp -o bad/zero.gpf2 --type $t
        same_file bad/cut.gpf2 bad/zero.gpf2 "a cut BMP against the same BMP filled with zeros, --type $t"
    fi
    rm -f bad/cut.gpf2 bad/zero.gpf2
done

# Containers that are not, or not quite, containers.
"$PY" -c 'import sys; b = bytearray(open(sys.argv[1], "rb").read()); b[15:16] = b"E"; open(sys.argv[2], "wb").write(b)' \
    few_colours.t8.gpf2 bad/magic.gpf2
head -c 10 few_colours.t8.gpf2 >bad/cut_magic.gpf2
: >bad/empty.gpf2
model hex bad/not.gpf "$(printf 'GraphicPatchFilE' | od -An -tx1 | tr -d ' \n')00000000030200850000000000000000"
for name in magic.gpf2 cut_magic.gpf2 empty.gpf2 not.gpf; do
    cli decode "bad/$name" -o bad/out.bmp
    refused "decode bad/$name" "Unknown file!" bad/out.bmp
    cli convert "bad/$name" -o bad/out.dat
    refused "convert bad/$name -o .dat" "Unknown file!" bad/out.dat
    cli convert "bad/$name" -o bad/out.gpf
    refused "convert bad/$name" "Unknown file!" bad/out.gpf
done
for cmd in decode convert; do
    cli $cmd bad/missing.gpf2 -o bad/out.bmp
    refused "$cmd of a missing file" "File not exist!" bad/out.bmp
done
# Formats the decoder refuses: an unknown code, compressed monochrome, in a fresh run.
model gpf2 bad/type03.gpf2 3 3 03 00112233445566778899
model gpf2 bad/type81.gpf2 3 3 81 03ff
for name in type03 type81; do
    cli decode bad/$name.gpf2 -o bad/out.bmp
    refused "decode bad/$name.gpf2" "This GPF not supported!contact author please" bad/out.bmp
done
# A container too large for the canvas.
model gpf2 bad/big.gpf2 241 1 85 7fe07fe003e0
cli decode bad/big.gpf2 -o bad/out.bmp
refused "decode of a 241-wide GPF2" "Maximal size of picture is 240x320!" bad/out.bmp

# Cut containers: reads past the end give zeros (uncompressed), a compressed stream stops at
# the end of the file; never a crash, and the same picture as the zero-filled file.
model gpf2 bad/plain8.gpf2 5 3 05 e0e0e01c1c1c030303ffff
model gpf2 bad/plain16.gpf2 3 2 08 00f8e007
model gpf2 bad/plain24.gpf2 2 2 0a 1020308040
model gpf2 bad/mono.gpf2 9 4 01 aaff
for name in plain8 plain16 plain24 mono; do
    head -c 40 bad/$name.gpf2 >bad/cut_$name.gpf2
    for alpha in 0 1; do
        flag=(); [ $alpha = 1 ] && flag=(--alpha)
        cli decode bad/cut_$name.gpf2 -o bad/cut.bmp "${flag[@]}"
        if succeeded "decode bad/cut_$name.gpf2 ${flag[*]}"; then
            model expect-bmp bad/cut_$name.gpf2 $alpha bad/want.bmp >/dev/null
            same_file bad/cut.bmp bad/want.bmp "decode of a cut uncompressed $name container ${flag[*]}"
        fi
        rm -f bad/cut.bmp
    done
done
for name in few_colours.t8.gpf2 few_colours.t24.gpf2 full.t16.gpf2; do
    for cut in 31 33 40 100; do
        head -c $cut "$name" >bad/cut.gpf2
        rm -f bad/cut.bmp
        cli decode bad/cut.gpf2 -o bad/cut.bmp
        if [ $RC -eq 0 ] && [ -f bad/cut.bmp ]; then pass
        elif [ $RC -eq 1 ] && [ -n "$ERR" ] && [ ! -e bad/cut.bmp ]; then pass
        else fail "decode of $name cut to $cut bytes: exit $RC, stderr '$ERR'"; fi
        head -c $((cut - 27)) full.dat >bad/cut.dat 2>/dev/null
        rm -f bad/cut.bmp
        cli decode bad/cut.dat -o bad/cut.bmp
        if [ $RC -le 1 ]; then pass; else fail "decode of a DAT cut to $((cut - 27)) bytes: exit $RC"; fi
        cli convert bad/cut.dat -o bad/cut_dat.gpf2
        if [ $RC -le 1 ]; then pass; else fail "convert of a DAT cut to $((cut - 27)) bytes: exit $RC"; fi
    done
done
# The extra byte of a conversion repeats the last byte read, or is 0x00 when nothing follows
# the part skipped. A DAT of its header alone: its type byte is copied, then repeated.
model hex bad/head.dat 0300020085
cli convert bad/head.dat -o bad/head.gpf2
if succeeded "convert of a header-only DAT"; then
    got=$(hex_of bad/head.gpf2)
    want=${magic2}00000000030002008500000000000085
    if [ "$got" = "${want}85" ]; then pass; else fail "header-only DAT to GPF2: $got, expected ${want}85"; fi
fi
# A GPF2 of its header alone.
model hex bad/bare.gpf2 "${magic2}000000000300020085000000000000"
cli convert bad/bare.gpf2 -o bad/bare.dat
if succeeded "convert of a header-only GPF2 to DAT"; then
    got=$(hex_of bad/bare.dat)
    if [ "$got" = 030002008500 ]; then pass; else fail "header-only GPF2 to DAT: $got, expected 030002008500"; fi
fi

# ------------------------------------------------------------------ existing outputs
notice_only() {  # WHAT PATH
    if [ "$ERR" = "File $2 already exists and will be replaced" ]; then pass
    else fail "$1: stderr '$ERR', expected the replacement notice for $2"; fi
}
echo old >exists.gpf2
cli encode fx/w5_24.bmp -o exists.gpf2 --type 8
succeeded "encode over an existing file" && notice_only "encode over an existing file" exists.gpf2
same_file exists.gpf2 w5_24.t8.gpf2 "encode over an existing file"
echo old >exists.bmp
cli decode w5_24.t8.gpf2 -o exists.bmp
succeeded "decode over an existing file" && notice_only "decode over an existing file" exists.bmp
same_file exists.bmp w5_24.t8.a0.bmp "decode over an existing file"
echo old >exists.gpf
cli convert w5_24.t8.gpf2 -o exists.gpf
succeeded "convert over an existing GPF" && notice_only "convert over an existing GPF" exists.gpf
same_file exists.gpf w5_24.t8.gpf "convert over an existing GPF"
echo old >exists.dat
cli convert w5_24.t8.gpf2 -o exists.dat
succeeded "convert over an existing DAT" && notice_only "convert over an existing DAT" exists.dat
model to-dat w5_24.t8.gpf2 want.dat
same_file exists.dat want.dat "convert over an existing DAT"
cp exists.dat from.dat
echo old >"$WORK/exists2.gpf2"
cli convert from.dat -o "$WORK/exists2.gpf2"
succeeded "convert DAT over an existing GPF2" && notice_only "convert DAT over an existing GPF2" "$WORK/exists2.gpf2"
# A refused input leaves an existing output as it was.
echo old >kept.gpf2
cli encode bad/bits16.bmp -o kept.gpf2 --type 8
if [ $RC -eq 1 ] && [ "$(cat kept.gpf2)" = old ]; then pass; else fail "a refused encode changed the existing output (exit $RC)"; fi
echo old >kept.gpf
cli convert tall.gpf2 -o kept.gpf
if [ $RC -eq 1 ] && [ "$(cat kept.gpf)" = old ]; then pass; else fail "a refused convert changed the existing output (exit $RC)"; fi

echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
