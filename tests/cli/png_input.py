#!/usr/bin/python3
"""PNG input of korvatek-cli, checked against the small PNG writer of korvatek_testlib (filter
type 0 on every row, Adam7 for the interlaced cases) and PIL's decoder.

usage: png_input.py PATH/TO/korvatek-cli

For each picture: the expected cells (blue, green, red, fourth byte) come from PIL's decode
and must agree with what the writer meant to store. Then
    korvatek-cli encode X.png -o X.gpf2 --type 24    header, the stream unpacked by the
                                                     independent decoder, the zero padding
    korvatek-cli decode X.gpf2 -o X.a1.bmp --alpha   information text, BMP header and cells
(korvatek_testlib.check_encoded), and for some, the 1-, 8- and 16-bit targets: the PNG
encodes as a 32-bit BMP of the same cells does. Colour types 4 and 6 keep their alpha; every other type gives 0xFF, palette and
grey/RGB transparency (tRNS) included; 16-bit samples become their high byte. Every picture
ends in exactly three equal cells, the only ending the run-length encoder keeps exactly.
Refused PNGs (bad CRC, truncated, a lying IHDR, a wrong signature, too large): exit 1, the
message on stderr, no output file.

Prints "N passed, M failed"; exit status 1 on any failure. Without PIL the test is skipped
(exit 0) except under CI (environment variable CI set), where that is a failure.
"""

import os
import random
import struct
import sys
import tempfile
import warnings

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import korvatek_testlib as t  # noqa: E402

try:
    from PIL import Image
except ImportError:
    Image = None

CHANNELS = {0: 1, 2: 3, 3: 1, 4: 2, 6: 4}
tally = t.Tally()


def cell_of(px, colour_type, depth, palette):
    """The canvas cell (blue, green, red, fourth byte) the writer means for one pixel."""
    if colour_type == 3:
        r, g, b = palette[px[0]]
        return (b, g, r, 255)
    s = [{1: v * 255, 2: v * 85, 4: v * 17, 8: v, 16: v >> 8}[depth] for v in px]
    if colour_type in (0, 4):
        return (s[0], s[0], s[0], s[1] if colour_type == 4 else 255)
    return (s[2], s[1], s[0], s[3] if colour_type == 6 else 255)


def make_picture(seed, width, height, colour_type, depth, palette=None):
    """Rows of pixels: runs and noise mixed, ending in exactly three equal cells."""
    rng = random.Random(seed)
    top = len(palette) - 1 if colour_type == 3 else (1 << depth) - 1
    flat = t.runs_and_noise(rng, width * height, lambda: tuple(rng.randint(0, top) for _ in range(CHANNELS[colour_type])),
                            lambda px: cell_of(px, colour_type, depth, palette))
    return [flat[y * width:(y + 1) * width] for y in range(height)]


def distinct_colours(rng, count):
    """A palette of distinct colours, so that distinct indices give distinct cells."""
    return [(c >> 16, (c >> 8) & 255, c & 255) for c in rng.sample(range(1 << 24), count)]


def pil_cells(path):
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        im = Image.open(path)
        if im.mode in ("I", "I;16", "I;16B", "I;16L"):
            return [(v >> 8,) * 3 + (255,) for v in im.getdata()]
        if im.mode == "LA":
            return [(v, v, v, a) for v, a in im.getdata()]
        if im.mode == "RGBA":
            return [(b, g, r, a) for r, g, b, a in im.getdata()]
        return [(b, g, r, 255) for r, g, b in im.convert("RGB").getdata()]


def check_round_trip(cli, work, name, rows, colour_type, depth, palette=None, same_as_bmp=False, **png_options):
    width, height = len(rows[0]), len(rows)
    png, bmp = os.path.join(work, name + ".png"), os.path.join(work, name + ".bmp")
    t.write(png, t.png_bytes(rows, colour_type, depth, palette=palette, **png_options))
    expected = pil_cells(png)
    meant = [cell_of(px, colour_type, depth, palette) for row in rows for px in row]
    # A disagreement here is a fault of this test's writer, not of the program.
    if not tally.ok(expected == meant, "%s: PIL reads the test PNG differently from what was written (%s)"
                    % (name, t.first_difference(expected, meant, width))):
        return
    if t.check_encoded(tally, cli, png, os.path.join(work, name), width, height, "24", expected) is None or not same_as_bmp:
        return
    # The other targets go through the same encoder: as a 32-bit BMP of the same cells.
    t.write(bmp, t.bmp_bytes(width, height, 32, expected))
    for target in ("1", "8", "16"):
        files = []
        for source in (png, bmp):
            rc, _, err = t.run(cli, "encode", source, "-o", source + ".gpf2", "--type", target)
            files.append(t.read(source + ".gpf2") if tally.ok(rc == 0, "encode %s --type %s: %s" % (source, target, err)) else 0)
        tally.ok(files[0] == files[1], "%s --type %s: the PNG and a BMP of the same cells encode differently" % (name, target))


def check_refused(cli, work, name, blob, message):
    png, out = os.path.join(work, name + ".png"), os.path.join(work, name + ".gpf2")
    t.write(png, blob)
    before = set(os.listdir(work))
    rc, _, err = t.run(cli, "encode", png, "-o", out, "--type", "24")
    tally.ok(rc == 1 and message in err.splitlines(), "%s: encode exited %s, stderr %r, expected the line %r"
             % (name, rc, err.strip(), message))
    tally.ok(set(os.listdir(work)) == before, "%s: files written: %s" % (name, sorted(set(os.listdir(work)) - before)))


def main():
    if len(sys.argv) != 2 or not os.access(sys.argv[1], os.X_OK):
        print("usage: png_input.py PATH/TO/korvatek-cli", file=sys.stderr)
        return 2
    if Image is None:
        if os.environ.get("CI"):
            print("FAIL: PIL (python3-pil) is missing, and CI needs this test\n0 passed, 1 failed")
            return 1
        print("PIL (python3-pil) is missing: PNG input test skipped")
        return 0
    cli, rng = os.path.realpath(sys.argv[1]), random.Random(3)
    with tempfile.TemporaryDirectory() as work:
        def case(name, w, h, colour_type, depth, seed, palette=None, **options):
            rows = options.pop("rows", None) or make_picture(seed, w, h, colour_type, depth, palette)
            check_round_trip(cli, work, name, rows, colour_type, depth, palette, **options)

        # Greyscale at every depth, truecolour, grey and truecolour with alpha, Adam7.
        for n, (name, w, h, colour_type, depth) in enumerate([
                ("grey1", 13, 7, 0, 1), ("grey2", 13, 7, 0, 2), ("grey4", 11, 5, 0, 4), ("grey8", 13, 7, 0, 8),
                ("grey16", 9, 6, 0, 16), ("rgb8", 13, 7, 2, 8), ("rgb16", 7, 9, 2, 16), ("greyalpha8", 13, 7, 4, 8),
                ("greyalpha16", 5, 11, 4, 16), ("rgba8", 13, 7, 6, 8), ("rgba16", 17, 3, 6, 16),
                ("column", 1, 9, 2, 8), ("narrow", 3, 5, 6, 8), ("row", 31, 1, 0, 8)]):
            case(name, w, h, colour_type, depth, 100 + n, same_as_bmp=name in ("grey16", "rgb8", "rgba8"))
        for n, (name, w, h, colour_type, depth) in enumerate([
                ("rgb8_adam7", 13, 7, 2, 8), ("rgba16_adam7", 11, 9, 6, 16), ("grey1_adam7", 13, 7, 0, 1),
                ("tiny_adam7", 3, 2, 2, 8), ("greyalpha8_adam7", 10, 10, 4, 8)]):
            case(name, w, h, colour_type, depth, 400 + n, interlace=True)
        palette = distinct_colours(rng, 16)
        case("palette4_adam7", 9, 9, 3, 4, 410, palette, interlace=True)
        # Indexed colour at every depth, with and without tRNS (dropped: alpha 255), and tRNS on
        # grey and truecolour, dropped too.
        for depth, (w, h) in ((1, (13, 7)), (2, (9, 4)), (4, (15, 3)), (8, (13, 7))):
            palette = distinct_colours(rng, min(1 << depth, 200))
            rows = make_picture(200 + depth, w, h, 3, depth, palette)
            case("palette%d" % depth, w, h, 3, depth, 0, palette, rows=rows)
            trns = bytes(rng.randrange(256) for _ in range(len(palette) - 1))
            case("palette%d_trns" % depth, w, h, 3, depth, 0, palette, rows=rows, trns=trns, same_as_bmp=depth == 4)
        rows = make_picture(300, 13, 7, 0, 8)
        case("grey8_trns", 13, 7, 0, 8, 0, rows=rows, trns=struct.pack(">H", rows[0][0][0]))
        rows = make_picture(301, 13, 7, 2, 8)
        case("rgb8_trns", 13, 7, 2, 8, 0, rows=rows, trns=struct.pack(">HHH", *rows[0][0]))
        # Chunks the reader skips, image data split over several IDAT chunks, the largest
        # picture and the smallest.
        case("chunks", 13, 7, 6, 8, 500, idat_pieces=5, extra_chunks=(
            (b"pHYs", struct.pack(">IIB", 3780, 3780, 1)), (b"tEXt", b"Comment\x00korvatek test"),
            (b"gAMA", struct.pack(">I", 45455))))
        case("full", 240, 320, 6, 8, 600)
        case("one", 1, 1, 2, 8, 0, rows=[[(12, 34, 56)]])

        # The PNG tool writes version 1 as well.
        for target, code in (("1", 0x01), ("8", 0x85), ("16", 0x88)):
            gpf = os.path.join(work, "rgb8_%s.gpf" % target)
            rc, _, err = t.run(cli, "encode", os.path.join(work, "rgb8.png"), "-o", gpf, "--type", target)
            head = (t.read(gpf) or b"")[:32]
            tally.ok(rc == 0 and head == t.gpf_header(1, 13, 7, code), "rgb8.png --type %s to .gpf: exit %s, header %s"
                     % (target, rc, head.hex(" ")))

        # Refusals: nothing is written.
        refused = os.path.join(work, "refused")
        os.mkdir(refused)
        good = t.png_bytes(make_picture(700, 10, 10, 2, 8))
        idat = good.index(b"IDAT")
        crc_at = idat + 4 + struct.unpack_from(">I", good, idat - 4)[0]
        for name, blob, message in [
                ("bad_crc", good[:crc_at] + bytes(b ^ 0xFF for b in good[crc_at:crc_at + 4]) + good[crc_at + 4:], None),
                ("truncated", good[:(idat + crc_at) // 2], None),
                ("signature", b"\x89PNG\r\n\x1a\x0b" + good[8:], None),
                ("not_png", b"BM" + bytes(100), None),
                ("empty", b"", None),
                ("lying_ihdr", t.png_bytes(make_picture(701, 5, 5, 2, 8), ihdr_size=(10, 10)), None),
                ("wide", t.png_bytes(make_picture(702, 241, 100, 0, 8), 0), "Maximal size of picture is 240x320!"),
                ("tall", t.png_bytes(make_picture(703, 2, 321, 0, 8), 0), "Maximal size of picture is 240x320!")]:
            check_refused(cli, refused, name, blob, message or "Unknown file!")
    return tally.summary()


if __name__ == "__main__":
    sys.exit(main())
