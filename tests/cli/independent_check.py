#!/usr/bin/python3
"""Second opinion on the batch exports of korvatek-cli.

usage: independent_check.py FLASH BMP_DIR GPF2_DIR

BMP_DIR and GPF2_DIR hold the output of
    korvatek-cli export FLASH all --dir BMP_DIR --format bmp
    korvatek-cli export FLASH all --dir GPF2_DIR --format gpf2

This decoder shares no code with the C++ one. It reads the picture index table of the
fullflash, decodes every picture from the firmware bytes the way a batch export does (in
picture order, on one canvas that keeps what earlier pictures left, with the bit depth that
carries over from the previous picture when a type code is not one of the known ones) and
compares:
  - every exported BMP: header fields and row padding byte for byte, pixels through PIL;
  - every exported GPF2: header, the copied firmware bytes and the zero padding.

Exit status 0 when everything matches, 1 on any mismatch. When PIL is missing the check is
skipped with exit 0, except under CI (environment variable CI set), where it is a failure.
"""

import os
import struct
import sys

try:
    from PIL import Image
except ImportError:
    Image = None

TABLE_OFFSET = 0x1B01958
PICTURE_COUNT = 1701
RECORD_SIZE = 12
CANVAS_W = 241  # x = 0..240
CANVAS_H = 321  # y = 0..320
TRANSPARENT_RGB = bytes((169, 171, 169))

# Bit depth of each type code that the picture list can give back (first two characters of
# the Type cell). Any other code keeps the depth of the previous picture.
DEPTH_OF_CODE = {0x01: 1, 0x05: 8, 0x85: 8, 0x07: 12, 0x87: 12, 0x08: 16, 0x88: 16, 0x0A: 24, 0x8A: 24}
SAMPLE_SIZE = {8: 1, 12: 2, 16: 2, 24: 4}


# ---------------------------------------------------------------- pixel formats (RGB bytes)

def _rgb8(v):
    if v == 0xC0:
        return TRANSPARENT_RGB
    r = round((v >> 5) * 255 / 7)
    g = round(((v >> 2) & 7) * 255 / 7)
    b = (v & 3) * 85
    return bytes((r, g, b))


def _rgb12(b0, b1):
    if b0 == 0xAA and b1 == 0xFA:
        return TRANSPARENT_RGB
    return bytes(((b1 & 0x0F) * 17, (b0 >> 4) * 17, (b0 & 0x0F) * 17))


def _rgb16(b0, b1):
    if b0 == 0x00 and b1 == 0xE0:
        return TRANSPARENT_RGB
    r = round((b1 >> 3) * 255 / 31)
    g = round((((b1 & 7) << 3) | (b0 >> 5)) * 255 / 63)
    b = round((b0 & 31) * 255 / 31)
    return bytes((r, g, b))


TABLE8 = [_rgb8(v) for v in range(256)]
# Indexed by the sample's two bytes read as b0 + 256 * b1.
TABLE12 = [_rgb12(w & 0xFF, w >> 8) for w in range(65536)]
TABLE16 = [_rgb16(w & 0xFF, w >> 8) for w in range(65536)]


def rgb24(sample):
    """24-bit output of a B, G, R, alpha sample: each channel c + a - 255, at least 0."""
    b, g, r, a = sample
    return bytes((max(r + a - 255, 0), max(g + a - 255, 0), max(b + a - 255, 0)))


def sample_to_rgb(data, pos, depth):
    if depth == 8:
        return TABLE8[data[pos]]
    if depth == 12:
        return TABLE12[data[pos] | (data[pos + 1] << 8)]
    if depth == 16:
        return TABLE16[data[pos] | (data[pos + 1] << 8)]
    return rgb24(data[pos:pos + 4])


class OutsideCanvas(Exception):
    pass


class Flash:
    """The fullflash bytes; reads past the end give zero bytes."""

    def __init__(self, data):
        self.data = data
        self.size = len(data)

    def read(self, pos, count):
        chunk = self.data[pos:pos + count]
        if len(chunk) < count:
            chunk = chunk + bytes(count - len(chunk))
        return chunk


class Canvas:
    """241 x 321 RGB cells that keep their contents from one picture to the next."""

    def __init__(self):
        self.rows = [bytearray(CANVAS_W * 3) for _ in range(CANVAS_H)]

    def region(self, width, height):
        return b"".join(bytes(self.rows[y][:3 * width]) for y in range(height))


class Scan:
    """Scan position of the decoder: left to right, top row first, wrapping at the width."""

    def __init__(self, canvas, width):
        self.canvas = canvas
        self.width = width
        self.x = 0
        self.y = 0

    def put(self, rgb):
        if not (0 <= self.x < CANVAS_W and 0 <= self.y < CANVAS_H):
            raise OutsideCanvas("pixel at x=%d y=%d" % (self.x, self.y))
        self.canvas.rows[self.y][3 * self.x:3 * self.x + 3] = rgb
        self.x += 1
        if self.x == self.width:
            self.x = 0
            self.y += 1

    def put_all(self, pixels):
        """Stores a sequence of RGB triples, a row segment at a time where the width allows."""
        if not 1 <= self.width <= CANVAS_W:
            for rgb in pixels:
                self.put(rgb)
            return
        i = 0
        while i < len(pixels):
            if self.y >= CANVAS_H:
                raise OutsideCanvas("pixel at x=%d y=%d" % (self.x, self.y))
            k = min(len(pixels) - i, self.width - self.x)
            self.canvas.rows[self.y][3 * self.x:3 * (self.x + k)] = b"".join(pixels[i:i + k])
            i += k
            self.x += k
            if self.x == self.width:
                self.x = 0
                self.y += 1


def decode(flash, offset, width, height, depth, compressed, canvas):
    """Decodes one picture onto the canvas and returns the number of data bytes consumed.
    Raises OutsideCanvas where the scan leaves the canvas (pixels before that stay)."""
    scan = Scan(canvas, width)
    if compressed:
        # Control groups until the picture is full or the file ends; a run that passes the
        # last row is carried out in full.
        size = SAMPLE_SIZE[depth]
        pos = offset
        while scan.y < height and pos < flash.size:
            n = flash.read(pos, 1)[0]
            pos += 1
            if n >= 128:
                count = 256 - n
                chunk = flash.read(pos, count * size)
                pos += count * size
                scan.put_all([sample_to_rgb(chunk, i * size, depth) for i in range(count)])
            else:
                chunk = flash.read(pos, size)
                pos += size
                scan.put_all([sample_to_rgb(chunk, 0, depth)] * n)
        return pos - offset
    black, white = bytes(3), bytes((255, 255, 255))
    # With a width the canvas holds, rows are whole: fill them in one go, up to the last
    # canvas row; a taller picture runs outside at the start of the row after it.
    whole_rows = 1 <= width <= CANVAS_W and height >= 1
    if depth == 1 and whole_rows:
        stride = (width + 7) // 8
        data = flash.read(offset, stride * min(height, CANVAS_H))
        for y in range(min(height, CANVAS_H)):
            row = data[y * stride:(y + 1) * stride]
            canvas.rows[y][:3 * width] = b"".join(
                black if (row[x >> 3] >> (7 - (x & 7))) & 1 else white for x in range(width))
        if height > CANVAS_H:
            raise OutsideCanvas("pixel at x=0 y=%d" % CANVAS_H)
        return stride * height
    if depth == 1:
        # Byte by byte, each row starting on a fresh byte, until the row count equals the
        # height (tested after each byte, so a height of 0 is never reached).
        pos = offset
        while True:
            byte = flash.read(pos, 1)[0]
            pos += 1
            for bit in range(7, -1, -1):
                row = scan.y
                scan.put(black if (byte >> bit) & 1 else white)
                if scan.y != row:
                    break
            if scan.y == height:
                return pos - offset
    size = SAMPLE_SIZE[depth]
    samples = max(width * height, 0)
    if whole_rows:
        data = flash.read(offset, width * min(height, CANVAS_H) * size)
        for y in range(min(height, CANVAS_H)):
            base = y * width * size
            canvas.rows[y][:3 * width] = b"".join(
                sample_to_rgb(data, base + i * size, depth) for i in range(width))
        if height > CANVAS_H:
            raise OutsideCanvas("pixel at x=0 y=%d" % CANVAS_H)
    else:
        # Any other size leaves the canvas within 241 x 321 samples, if it has any.
        for i in range(samples):
            scan.put(sample_to_rgb(flash.read(offset + i * size, size), 0, depth))
    return samples * size


# ---------------------------------------------------------------- the picture index table

def type_text(type_byte):
    text = "%X" % type_byte
    if type_byte < 10:
        text = "0" + text
    return text + "00"


def records(flash):
    for n in range(PICTURE_COUNT):
        raw = flash.read(TABLE_OFFSET + n * RECORD_SIZE, RECORD_SIZE)
        width, height = struct.unpack_from("<hh", raw, 0)
        type_byte = raw[4]
        address = struct.unpack_from("<I", raw, 8)[0]
        yield n, width, height, type_byte, address & 0x0FFFFFFF


# ---------------------------------------------------------------- checks of the exported files

class Report:
    def __init__(self):
        self.passed = 0
        self.failed = 0

    def ok(self):
        self.passed += 1

    def fail(self, picture, what):
        self.failed += 1
        print("FAIL picture %04d: %s" % (picture, what))


def size_field(value):
    """A width or height as the header stores it: a negative 16-bit value keeps only its
    two bytes (0xFFFF for -1), the upper two bytes stay zero."""
    return value if value >= 0 else value & 0xFFFF


def check_bmp(report, n, path, width, height, expected_rgb, bits=24):
    """A BMP of width x height cells, 24 bits a pixel; expected_rgb holds the rows top first.
    bits is the bit count of the header (0 before anything was decoded)."""
    with open(path, "rb") as f:
        raw = f.read()
    rows = max(height, 0) if width >= 0 else 0
    stride = (max(width, 0) * 3 + 3) // 4 * 4
    size = 54 + rows * stride
    def field(fmt, at):
        return struct.unpack_from(fmt, raw, at)[0] if len(raw) >= 54 else None
    fields = [
        ("signature", raw[0:2], b"BM"),
        ("file size field", field("<I", 2), size),
        ("reserved", field("<I", 6), 0),
        ("data offset", field("<I", 10), 54),
        ("info header size", field("<I", 14), 40),
        ("width", field("<I", 18), size_field(width)),
        ("height", field("<I", 22), size_field(height)),
        ("planes", field("<H", 26), 1),
        ("bits", field("<H", 28), bits),
        ("compression", field("<I", 30), 0),
        ("image size field", field("<I", 34), size - 54),
        ("resolutions and colour counts", raw[38:54], bytes(16)),
        ("file length", len(raw), size),
    ]
    bad = ["%s is %r, expected %r" % (name, got, want) for name, got, want in fields if got != want]
    if bad:
        report.fail(n, "BMP %s: %s" % (path, "; ".join(bad)))
        return
    if width <= 0 or height <= 0:
        report.ok()  # no pixels: the header is the whole file
        return
    pad = stride - width * 3
    if pad:
        for row in range(height):
            start = 54 + row * stride + width * 3
            if raw[start:start + pad] != bytes(pad):
                report.fail(n, "BMP %s: padding of file row %d is not zero" % (path, row))
                return
    try:
        with Image.open(path) as image:
            got = image.convert("RGB").tobytes()
    except Exception as error:  # PIL's own errors vary by version
        report.fail(n, "BMP %s: PIL cannot read it: %s" % (path, error))
        return
    if got != expected_rgb:
        for i in range(0, min(len(got), len(expected_rgb)), 3):
            if got[i:i + 3] != expected_rgb[i:i + 3]:
                p = i // 3
                report.fail(n, "BMP %s: first differing pixel x=%d y=%d: file RGB%s, firmware RGB%s" % (
                    path, p % width, p // width, tuple(got[i:i + 3]), tuple(expected_rgb[i:i + 3])))
                return
        report.fail(n, "BMP %s: %d pixel bytes, expected %d" % (path, len(got), len(expected_rgb)))
        return
    report.ok()


def check_gpf2(report, n, path, flash, width, height, code, offset, consumed):
    with open(path, "rb") as f:
        raw = f.read()
    header = (b"GraphPatchFile_2" + bytes(4) + struct.pack("<HH", width & 0xFFFF, height & 0xFFFF) +
              bytes((code, 0)) + bytes(6))
    data = flash.read(offset, consumed + 1)
    body_end = 32 + len(data)
    padding = 16 - body_end % 16
    problems = []
    if raw[:32] != header:
        problems.append("header %s, expected %s" % (raw[:32].hex(" "), header.hex(" ")))
    if len(raw) % 16:
        problems.append("length %d is not a multiple of 16" % len(raw))
    if len(raw) != body_end + padding:
        problems.append("length %d, expected %d (%d data bytes = consumed %d + 1, %d padding)" % (
            len(raw), body_end + padding, len(data), consumed, padding))
    if raw[32:body_end] != data:
        got = raw[32:body_end]
        first = next((i for i in range(min(len(got), len(data))) if got[i] != data[i]), min(len(got), len(data)))
        problems.append("data differ from the fullflash at data byte %d (flash offset 0x%X)" % (first, offset + first))
    elif raw[body_end:] != bytes(len(raw) - body_end):
        problems.append("padding is not all zero")
    if problems:
        report.fail(n, "GPF2 %s: %s" % (path, "; ".join(problems)))
    else:
        report.ok()


def main(argv):
    if len(argv) != 4:
        print(__doc__.strip().splitlines()[2], file=sys.stderr)
        return 2
    if Image is None:
        if os.environ.get("CI"):
            print("FAIL: PIL (python3-pil) is not installed; it is required under CI")
            print("0 passed, 1 failed")
            return 1
        print("SKIP: PIL (python3-pil) is not installed; independent check not run")
        return 0
    flash_path, bmp_dir, gpf2_dir = argv[1:]
    with open(flash_path, "rb") as f:
        flash = Flash(f.read())

    report = Report()
    canvas = Canvas()
    depth = 0          # nothing decoded yet: an unknown code is refused
    meta = (0, 0)      # width and height that the last decode wrote into the canvas
    meta_bits = 0      # and the bit depth of its BMP: none before the first decode
    meta_known = True  # whether the BMP of the canvas at meta is known exactly
    counts = {"decoded": 0, "refused": 0, "offset zero": 0, "outside canvas": 0, "refused rows saved": 0}

    def expected_region(width, height):
        return canvas.region(width, height) if 1 <= width <= CANVAS_W and 1 <= height <= CANVAS_H else b""

    def bmp_may_be_missing(width, height):
        # A size the canvas cannot hold: writing it would stop at the first cell outside,
        # and with no pixel rows there is nothing worth a file either.
        return width > CANVAS_W or height > CANVAS_H

    for n, width, height, type_byte, offset in records(flash):
        code = int(type_text(type_byte)[:2], 16)
        bmp_path = os.path.join(bmp_dir, "%04d.bmp" % n)
        gpf2_path = os.path.join(gpf2_dir, "%04d.gpf2" % n)
        have_bmp, have_gpf2 = os.path.exists(bmp_path), os.path.exists(gpf2_path)

        if offset == 0:
            # The positioning read would fall before the file: the row is stopped before
            # anything else and its file is not written.
            counts["offset zero"] += 1
            for path, present in ((bmp_path, have_bmp), (gpf2_path, have_gpf2)):
                if present:
                    report.fail(n, "%s written although the data offset is 0" % path)
                else:
                    report.ok()
            continue

        depth = DEPTH_OF_CODE.get(code, depth)
        compressed = code > 0x80
        accepted = depth in (8, 12, 16, 24) or (depth == 1 and not compressed)

        if not accepted:
            # Refused: nothing decoded, the canvas keeps the previous picture and the batch
            # saves what it holds. Leaving the file out is tolerated.
            counts["refused"] += 1
            if have_bmp and meta_known:
                counts["refused rows saved"] += 1
                check_bmp(report, n, bmp_path, meta[0], meta[1], expected_region(*meta), meta_bits)
            if have_gpf2:
                check_gpf2(report, n, gpf2_path, flash, width, height, code, offset, 0)
            continue

        meta = (width, height)
        meta_bits = 24
        try:
            consumed = decode(flash, offset, width, height, depth, compressed, canvas)
        except OutsideCanvas as error:
            # A run-time error: the row is stopped and need not be saved.
            counts["outside canvas"] += 1
            meta_known = False
            print("note picture %04d: %dx%d type %02X runs outside the canvas (%s)" % (
                n, width, height, code, error))
            continue
        # Rows of a negative width are padded by a rule that has no sensible reading.
        meta_known = not (width < 0 < height)
        counts["decoded"] += 1
        if not have_bmp:
            if not bmp_may_be_missing(width, height):
                report.fail(n, "%s missing" % bmp_path)
        elif meta_known:
            check_bmp(report, n, bmp_path, width, height, expected_region(width, height))
        if not have_gpf2:
            report.fail(n, "%s missing" % gpf2_path)
        else:
            check_gpf2(report, n, gpf2_path, flash, width, height, code, offset, consumed)

    print("independent check: %s" % ", ".join("%d %s" % (v, k) for k, v in counts.items()))
    print("%d passed, %d failed" % (report.passed, report.failed))
    return 1 if report.failed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
