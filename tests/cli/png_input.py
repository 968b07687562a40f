#!/usr/bin/python3
"""PNG input of korvatek-cli, checked against an independent PNG writer and PIL's decoder.

usage: png_input.py PATH/TO/korvatek-cli

Every PNG here is written by the small encoder below (filter type 0 on every row, Adam7 for
the interlaced cases), which shares nothing with the program. For each picture:
    korvatek-cli encode X.png -o X.gpf2 --type 24
    korvatek-cli decode X.gpf2 -o X.bmp --alpha
and then
  - the expected cells (blue, green, red, fourth byte) are taken from PIL's own decode of the
    PNG, and must agree with what the writer meant to store;
  - the GPF2 header is checked and its run-length stream is unpacked here and compared with
    the expected cells, as is its zero padding;
  - the information text of 'decode' is checked, its length line against the stream;
  - the 32-bit BMP is parsed (bottom-up rows, B G R A) and compared pixel for pixel;
  - for the 1-, 8- and 16-bit targets the PNG must encode as a 32-bit BMP of the expected
    cells does (the BMP path has its own test, encode_convert.sh).
Colour types 4 and 6 keep their alpha; every other type gives 0xFF, palette and grey/RGB
transparency (tRNS) included; 16-bit samples become their high byte.

The run-length encoder writes the last cells exactly only when the picture ends in a run of
at least three equal cells, so every picture ends in exactly three equal cells.

Refused PNGs (bad CRC, truncated, a lying IHDR, a wrong signature, too large) must give exit
status 1, the message on stderr and no output file.

Prints "N passed, M failed"; exit status 1 on any failure. Without PIL the test is skipped
(exit 0) except under CI (environment variable CI set), where that is a failure.
"""

import binascii
import os
import random
import struct
import subprocess
import sys
import tempfile
import warnings
import zlib

try:
    from PIL import Image
except ImportError:
    Image = None

PNG_SIGNATURE = b"\x89PNG\r\n\x1a\n"
CHANNELS = {0: 1, 2: 3, 3: 1, 4: 2, 6: 4}
ADAM7 = ((0, 0, 8, 8), (4, 0, 8, 8), (0, 4, 4, 8), (2, 0, 4, 4), (0, 2, 2, 4), (1, 0, 2, 2), (0, 1, 1, 2))
TIMEOUT = 30

passed = 0
failed = 0


def ok(condition, what):
    global passed, failed
    if condition:
        passed += 1
    else:
        failed += 1
        print("FAIL: " + what, flush=True)
    return condition


# ---------------------------------------------------------------- PNG writer

def chunk(kind, data):
    body = kind + data
    return struct.pack(">I", len(data)) + body + struct.pack(">I", binascii.crc32(body) & 0xFFFFFFFF)


def pack_row(pixels, depth):
    """One row of pixels (tuples of samples) as PNG bytes, without the filter byte."""
    if depth == 16:
        return b"".join(struct.pack(">H", s) for px in pixels for s in px)
    if depth == 8:
        return bytes(s for px in pixels for s in px)
    out = bytearray()
    acc = 0
    bits = 0
    for px in pixels:
        for s in px:
            acc = (acc << depth) | s
            bits += depth
            if bits == 8:
                out.append(acc)
                acc = bits = 0
    if bits:
        out.append(acc << (8 - bits))
    return bytes(out)


def raw_image_data(rows, width, height, depth, interlace):
    if not interlace:
        return b"".join(b"\x00" + pack_row(row, depth) for row in rows)
    out = bytearray()
    for x0, y0, dx, dy in ADAM7:
        if x0 >= width or y0 >= height:
            continue  # an empty pass has no rows at all, not even filter bytes
        for y in range(y0, height, dy):
            out += b"\x00" + pack_row(rows[y][x0::dx], depth)
    return bytes(out)


def write_png(width, height, colour_type, depth, rows, palette=None, trns=None, interlace=False,
              extra_chunks=(), idat_pieces=1, ihdr_size=None):
    ihdr_w, ihdr_h = ihdr_size or (width, height)
    out = bytearray(PNG_SIGNATURE)
    out += chunk(b"IHDR", struct.pack(">IIBBBBB", ihdr_w, ihdr_h, depth, colour_type, 0, 0, 1 if interlace else 0))
    for kind, data in extra_chunks:
        out += chunk(kind, data)
    if palette is not None:
        out += chunk(b"PLTE", b"".join(bytes(c) for c in palette))
    if trns is not None:
        out += chunk(b"tRNS", trns)
    compressed = zlib.compress(raw_image_data(rows, width, height, depth, interlace), 9)
    step = -(-len(compressed) // idat_pieces)
    for i in range(0, len(compressed), step):
        out += chunk(b"IDAT", compressed[i:i + step])
    out += chunk(b"IEND", b"")
    return bytes(out)


# ---------------------------------------------------------------- pictures

def to_8bit(sample, depth):
    return {1: sample * 255, 2: sample * 85, 4: sample * 17, 8: sample, 16: sample >> 8}[depth]


def cell_of(px, colour_type, depth, palette):
    """The canvas cell (blue, green, red, fourth byte) the writer means for one pixel."""
    if colour_type == 3:
        r, g, b = palette[px[0]]
        return (b, g, r, 255)
    s = [to_8bit(v, depth) for v in px]
    if colour_type == 0:
        return (s[0], s[0], s[0], 255)
    if colour_type == 2:
        return (s[2], s[1], s[0], 255)
    if colour_type == 4:
        return (s[0], s[0], s[0], s[1])
    return (s[2], s[1], s[0], s[3])


def make_picture(seed, width, height, colour_type, depth, palette=None):
    """Rows of pixels: runs and noise mixed, ending in exactly three equal cells."""
    rng = random.Random(seed)
    top = (1 << depth) - 1
    if colour_type == 3:
        top = len(palette) - 1
    channels = CHANNELS[colour_type]

    def random_pixel():
        return tuple(rng.randint(0, top) for _ in range(channels))

    flat = []
    while len(flat) < width * height:
        px = random_pixel()
        flat.extend([px] * (rng.choice((1, 1, 1, 2, 3, 5, 40, 130)) if rng.random() < 0.3 else 1))
    flat = flat[:width * height]

    def cell(px):
        return cell_of(px, colour_type, depth, palette)

    n = len(flat)
    if n >= 4:
        last = flat[-1]
        flat[-3:] = [last] * 3
        while cell(flat[-4]) == cell(last):
            flat[-4] = random_pixel()
    return [flat[y * width:(y + 1) * width] for y in range(height)]


def grey_palette_rgb(rng, count):
    """A palette of distinct colours (so that distinct indices give distinct cells)."""
    seen = set()
    out = []
    while len(out) < count:
        c = (rng.randrange(256), rng.randrange(256), rng.randrange(256))
        if c not in seen:
            seen.add(c)
            out.append(c)
    return out


def pil_cells(path):
    """The expected cells from PIL's decode of the PNG."""
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        im = Image.open(path)
        im.load()
        mode = im.mode
        if mode in ("I", "I;16", "I;16B", "I;16L"):
            return [(v >> 8,) * 3 + (255,) for v in im.getdata()]
        if mode in ("1", "L"):
            return [(v, v, v, 255) for v in im.convert("L").getdata()]
        if mode == "LA":
            return [(l, l, l, a) for l, a in im.getdata()]
        if mode == "P":
            return [(b, g, r, 255) for r, g, b in im.convert("RGB").getdata()]
        if mode == "RGB":
            return [(b, g, r, 255) for r, g, b in im.getdata()]
        if mode == "RGBA":
            return [(b, g, r, a) for r, g, b, a in im.getdata()]
    raise ValueError("PIL mode " + mode + " not handled")


# ---------------------------------------------------------------- readers of the program's output

def unpack_gpf2_24(data, count):
    """Unpacks a 24-bit run-length stream the way the phone does; returns (cells, bytes used)."""
    cells = []
    pos = 0
    while len(cells) < count and pos < len(data):
        n = data[pos]
        pos += 1
        if n >= 128:
            for _ in range(256 - n):
                cells.append(tuple(data[pos:pos + 4]))
                pos += 4
        else:
            px = tuple(data[pos:pos + 4])
            pos += 4
            cells.extend([px] * n)
    return cells[:count], pos


def read_bmp32(blob):
    """Header fields and cells (top row first) of a 32-bit BMP."""
    if len(blob) < 54 or blob[:2] != b"BM":
        return None, None
    fields = dict(
        size=struct.unpack_from("<I", blob, 2)[0], offset=struct.unpack_from("<I", blob, 10)[0],
        info=struct.unpack_from("<I", blob, 14)[0], width=struct.unpack_from("<i", blob, 18)[0],
        height=struct.unpack_from("<i", blob, 22)[0], planes=struct.unpack_from("<H", blob, 26)[0],
        bits=struct.unpack_from("<H", blob, 28)[0], compression=struct.unpack_from("<I", blob, 30)[0],
        image_size=struct.unpack_from("<I", blob, 34)[0], length=len(blob))
    w, h = fields["width"], fields["height"]
    if fields["bits"] != 32 or w <= 0 or h <= 0 or len(blob) < 54 + 4 * w * h:
        return fields, None
    cells = [None] * (w * h)
    for file_row in range(h):
        y = h - 1 - file_row
        base = 54 + file_row * w * 4
        for x in range(w):
            cells[y * w + x] = tuple(blob[base + 4 * x:base + 4 * x + 4])
    return fields, cells


def first_difference(got, want, width):
    for i, (g, w) in enumerate(zip(got, want)):
        if g != w:
            return "first difference at x=%d y=%d: got %s, expected %s" % (i % width, i // width, bytes(g).hex(" "), bytes(w).hex(" "))
    if len(got) != len(want):
        return "%d cells, expected %d" % (len(got), len(want))
    return None


# ---------------------------------------------------------------- the checks

def run(cli, *args):
    try:
        p = subprocess.run([cli, *args], capture_output=True, timeout=TIMEOUT)
    except subprocess.TimeoutExpired:
        return None, "", "timed out after %d s" % TIMEOUT
    return p.returncode, p.stdout.decode("utf-8", "replace"), p.stderr.decode("utf-8", "replace")


def check_round_trip(cli, work, name, width, height, colour_type, depth, rows, palette=None, **png_options):
    png = os.path.join(work, name + ".png")
    gpf2 = os.path.join(work, name + ".gpf2")
    bmp = os.path.join(work, name + ".bmp")
    with open(png, "wb") as f:
        f.write(write_png(width, height, colour_type, depth, rows, palette=palette, **png_options))
    meant = [cell_of(px, colour_type, depth, palette) for row in rows for px in row]
    expected = pil_cells(png)
    # A disagreement here is a fault of this test's writer, not of the program.
    if not ok(expected == meant, "%s: PIL reads the test PNG differently from what was written (%s)"
              % (name, first_difference(expected, meant, width))):
        return

    rc, out, err = run(cli, "encode", png, "-o", gpf2, "--type", "24")
    if not ok(rc == 0, "%s: encode exited %s: %s" % (name, rc, err.strip())):
        return
    ok(err == "", "%s: encode wrote on stderr: %s" % (name, err.strip()))
    with open(gpf2, "rb") as f:
        container = f.read()
    header = b"GraphPatchFile_2" + bytes(4) + struct.pack("<HH", width, height) + b"\x8a\x00" + bytes(6)
    ok(container[:32] == header, "%s: GPF2 header %s, expected %s" % (name, container[:32].hex(" "), header.hex(" ")))
    ok(len(container) % 16 == 0, "%s: GPF2 length %d is not a multiple of 16" % (name, len(container)))

    count = width * height
    cells, used = unpack_gpf2_24(container[32:], count)
    if count < 4:
        # Too short for a run of three after a different cell: the end procedure leaves such a
        # picture incomplete. A single cell gives no data at all.
        if count == 1:
            ok(len(container) == 48 and container[32:] == bytes(16),
               "%s: a 1 x 1 picture should give the 32-byte header and 16 zero bytes, got %d bytes" % (name, len(container)))
        return
    ok(cells == expected, "%s: GPF2 data unpacked here differ from PIL: %s" % (name, first_difference(cells, expected, width)))
    padding = container[32 + used:]
    ok(1 <= len(padding) <= 16 and padding == bytes(len(padding)),
       "%s: after %d data bytes come %d bytes %s, expected 1 to 16 zero bytes"
       % (name, used, len(padding), padding[:20].hex(" ")))

    rc, out, err = run(cli, "decode", gpf2, "-o", bmp, "--alpha")
    if not ok(rc == 0, "%s: decode exited %s: %s" % (name, rc, err.strip())):
        return
    info = ["Width: %d" % width, "Height: %d" % height, "Bits: 24", "Compression: Yes", "", "Lenght: 0x%X" % used]
    ok(out.splitlines() == info, "%s: decode printed %r, expected %r" % (name, out.splitlines(), info))
    with open(bmp, "rb") as f:
        blob = f.read()
    fields, got = read_bmp32(blob)
    want_fields = dict(size=len(blob), offset=54, info=40, width=width, height=height, planes=1, bits=32,
                       compression=0, image_size=len(blob) - 54, length=54 + 4 * count)
    if not ok(fields == want_fields, "%s: BMP header %s, expected %s" % (name, fields, want_fields)):
        return
    ok(got == expected, "%s: decoded BMP differs from PIL: %s" % (name, first_difference(got, expected, width)))
    check_same_as_bmp(cli, work, name, width, height, expected)


def bmp32(width, height, cells):
    """A 32-bit BMP holding the cells byte for byte, bottom row first."""
    rows = b"".join(bytes(v for c in cells[y * width:(y + 1) * width] for v in c) for y in range(height - 1, -1, -1))
    return (b"BM" + struct.pack("<IIIIiiHHII", 54 + len(rows), 0, 54, 40, width, height, 1, 32, 0, len(rows))
            + bytes(16) + rows)


def check_same_as_bmp(cli, work, name, width, height, cells):
    """The other targets: a PNG encodes as a 32-bit BMP of the same cells does."""
    png = os.path.join(work, name + ".png")
    bmp = os.path.join(work, name + ".cells.bmp")
    with open(bmp, "wb") as f:
        f.write(bmp32(width, height, cells))
    for target in ("1", "8", "16"):
        files = []
        for source in (png, bmp):
            out = "%s.t%s.gpf2" % (source, target)
            rc, _, err = run(cli, "encode", source, "-o", out, "--type", target)
            ok(rc == 0, "encode %s --type %s exited %s: %s" % (os.path.basename(source), target, rc, err.strip()))
            files.append(open(out, "rb").read() if rc == 0 else None)
        if None not in files:
            ok(files[0] == files[1], "%s --type %s: the PNG and a BMP of the same pixels encode differently" % (name, target))


def check_refused(cli, work, name, blob, message):
    png = os.path.join(work, name + ".png")
    out_path = os.path.join(work, name + ".gpf2")
    with open(png, "wb") as f:
        f.write(blob)
    before = set(os.listdir(work))
    rc, out, err = run(cli, "encode", png, "-o", out_path, "--type", "24")
    ok(rc == 1, "%s: encode exited %s, expected 1 (stderr: %s)" % (name, rc, err.strip()))
    ok(message in err.splitlines(), "%s: stderr %r lacks the line %r" % (name, err.strip(), message))
    ok(not os.path.exists(out_path), "%s: an output file was written" % name)
    leftovers = sorted(set(os.listdir(work)) - before)
    ok(leftovers == [], "%s: files left behind: %s" % (name, leftovers))


def main():
    if len(sys.argv) != 2 or not os.access(sys.argv[1], os.X_OK):
        print("usage: png_input.py PATH/TO/korvatek-cli", file=sys.stderr)
        return 2
    if Image is None:
        if os.environ.get("CI"):
            print("FAIL: PIL (python3-pil) is missing, and CI needs this test")
            print("0 passed, 1 failed")
            return 1
        print("PIL (python3-pil) is missing: PNG input test skipped")
        return 0
    cli = os.path.realpath(sys.argv[1])
    rng = random.Random(3)

    with tempfile.TemporaryDirectory() as work:
        # Greyscale at every depth, truecolour, grey and truecolour with alpha.
        cases = [
            ("grey1", 13, 7, 0, 1), ("grey2", 13, 7, 0, 2), ("grey4", 11, 5, 0, 4), ("grey8", 13, 7, 0, 8),
            ("grey16", 9, 6, 0, 16), ("rgb8", 13, 7, 2, 8), ("rgb16", 7, 9, 2, 16),
            ("greyalpha8", 13, 7, 4, 8), ("greyalpha16", 5, 11, 4, 16),
            ("rgba8", 13, 7, 6, 8), ("rgba16", 17, 3, 6, 16),
            ("column", 1, 9, 2, 8), ("narrow", 3, 5, 6, 8), ("row", 31, 1, 0, 8),
        ]
        for n, (name, w, h, ct, depth) in enumerate(cases):
            check_round_trip(cli, work, name, w, h, ct, depth, make_picture(100 + n, w, h, ct, depth))

        # Indexed colour at every depth, with and without tRNS (dropped: alpha 255).
        for depth, (w, h) in ((1, (13, 7)), (2, (9, 4)), (4, (15, 3)), (8, (13, 7))):
            palette = grey_palette_rgb(rng, min(1 << depth, 200))
            rows = make_picture(200 + depth, w, h, 3, depth, palette)
            check_round_trip(cli, work, "palette%d" % depth, w, h, 3, depth, rows, palette=palette)
            trns = bytes(rng.randrange(256) for _ in range(len(palette) - 1))
            check_round_trip(cli, work, "palette%d_trns" % depth, w, h, 3, depth, rows, palette=palette, trns=trns)

        # tRNS on grey and truecolour is dropped too.
        rows = make_picture(300, 13, 7, 0, 8)
        check_round_trip(cli, work, "grey8_trns", 13, 7, 0, 8, rows, trns=struct.pack(">H", rows[0][0][0]))
        rows = make_picture(301, 13, 7, 2, 8)
        check_round_trip(cli, work, "rgb8_trns", 13, 7, 2, 8, rows, trns=struct.pack(">HHH", *rows[0][0]))

        # Adam7.
        for n, (name, w, h, ct, depth) in enumerate((("rgb8_adam7", 13, 7, 2, 8), ("rgba16_adam7", 11, 9, 6, 16),
                                                      ("grey1_adam7", 13, 7, 0, 1), ("tiny_adam7", 3, 2, 2, 8),
                                                      ("greyalpha8_adam7", 10, 10, 4, 8))):
            check_round_trip(cli, work, name, w, h, ct, depth, make_picture(400 + n, w, h, ct, depth), interlace=True)
        palette = grey_palette_rgb(rng, 16)
        check_round_trip(cli, work, "palette4_adam7", 9, 9, 3, 4, make_picture(410, 9, 9, 3, 4, palette),
                         palette=palette, interlace=True)

        # Chunks the reader skips, and image data split over several IDAT chunks.
        check_round_trip(cli, work, "chunks", 13, 7, 6, 8, make_picture(500, 13, 7, 6, 8), idat_pieces=5,
                         extra_chunks=((b"pHYs", struct.pack(">IIB", 3780, 3780, 1)),
                                       (b"tEXt", b"Comment\x00korvatek test"), (b"gAMA", struct.pack(">I", 45455))))

        # The largest picture, and the smallest (no data at all: header and 16 zero bytes).
        check_round_trip(cli, work, "full", 240, 320, 6, 8, make_picture(600, 240, 320, 6, 8))
        check_round_trip(cli, work, "one", 1, 1, 2, 8, [[(12, 34, 56)]])

        # The PNG tool writes version 1 as well, and the other targets go through the same encoder.
        png = os.path.join(work, "rgb8.png")
        for target, code in (("1", 0x01), ("8", 0x85), ("16", 0x88)):
            gpf = os.path.join(work, "rgb8_%s.gpf" % target)
            rc, out, err = run(cli, "encode", png, "-o", gpf, "--type", target)
            if ok(rc == 0, "encode rgb8.png --type %s to .gpf exited %s: %s" % (target, rc, err.strip())):
                with open(gpf, "rb") as f:
                    head = f.read(32)
                want = b"GraphicPatchFile" + bytes(4) + bytes((13, 7, code, 0)) + bytes(8)
                ok(head == want, "rgb8_%s.gpf header %s, expected %s" % (target, head.hex(" "), want.hex(" ")))

        # Refusals: nothing is written.
        refused = os.path.join(work, "refused")
        os.mkdir(refused)
        good = write_png(10, 10, 2, 8, make_picture(700, 10, 10, 2, 8))
        idat = good.index(b"IDAT")
        idat_len = struct.unpack_from(">I", good, idat - 4)[0]
        crc_at = idat + 4 + idat_len
        bad_crc = good[:crc_at] + bytes(b ^ 0xFF for b in good[crc_at:crc_at + 4]) + good[crc_at + 4:]
        check_refused(cli, refused, "bad_crc", bad_crc, "Unknown file!")
        check_refused(cli, refused, "truncated", good[:idat + 4 + idat_len // 2], "Unknown file!")
        check_refused(cli, refused, "signature", b"\x89PNG\r\n\x1a\x0b" + good[8:], "Unknown file!")
        check_refused(cli, refused, "not_png", b"BM" + bytes(100), "Unknown file!")
        check_refused(cli, refused, "empty", b"", "Unknown file!")
        lying = write_png(5, 5, 2, 8, make_picture(701, 5, 5, 2, 8), ihdr_size=(10, 10))
        check_refused(cli, refused, "lying_ihdr", lying, "Unknown file!")
        check_refused(cli, refused, "wide", write_png(241, 100, 0, 8, make_picture(702, 241, 100, 0, 8)),
                      "Maximal size of picture is 240x320!")
        check_refused(cli, refused, "tall", write_png(2, 321, 0, 8, make_picture(703, 2, 321, 0, 8)),
                      "Maximal size of picture is 240x320!")

    print("%d passed, %d failed" % (passed, failed))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
