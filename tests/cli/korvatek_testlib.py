"""Pieces shared by the command-line tests: a tally, BMP, PNG and container files, the picture
and glyph decoders that share no code with the C++ ones, and patch text.

The Python checks import it; the shell scripts make fixture files with its command line:
    gpf2 OUT WIDTH HEIGHT TYPEHEX [DATAHEX]           a padded GPF2 made by hand
    bmp OUT BITS WIDTH HEIGHT rrggbb[aa][*count]...   a BMP, colours top row first
    poke IN OUT OFFSET HEX                            IN with bytes replaced at OFFSET
    hex OUT HEX...                                    raw bytes
"""

import os
import re
import struct
import subprocess
import sys
import zlib

# ---------------------------------------------------------------- tally and command runs


class Tally:
    def __init__(self, shown=40):
        self.passed = self.failed = 0
        self.shown = shown

    def ok(self, condition, what):
        if condition:
            self.passed += 1
        else:
            self.failed += 1
            if self.failed <= self.shown:
                print("FAIL: " + what, flush=True)
        return condition

    def summary(self):
        print("%d passed, %d failed" % (self.passed, self.failed))
        return 1 if self.failed else 0


def run(cli, *args, cwd=None, timeout=60):
    """(status, stdout, stderr) of one command; a hang reads as status None."""
    try:
        p = subprocess.run([cli, *args], capture_output=True, timeout=timeout, cwd=cwd)
    except subprocess.TimeoutExpired:
        return None, "", "timed out"
    return p.returncode, p.stdout.decode("utf-8", "replace"), p.stderr.decode("utf-8", "replace")


def run_quietly(tally, cli, *args):
    """Runs a command that writes -o OUT (replacing no file) and must succeed without a word on
    stderr; returns its stdout, None when it failed."""
    out = args[args.index("-o") + 1]
    if os.path.exists(out):
        os.remove(out)
    rc, text, err = run(cli, *args)
    tally.ok(rc == 0 and err == "", "korvatek-cli %s: exit %s, stderr %r" % (" ".join(args), rc, err))
    return text if rc == 0 else None


def read(path):
    try:
        with open(path, "rb") as f:
            return f.read()
    except OSError:
        return None


def write(path, blob):
    with open(path, "wb") as f:
        f.write(blob)


def first_difference(got, want, width=None):
    for i, (a, b) in enumerate(zip(got, want)):
        if a != b:
            where = "x=%d y=%d" % (i % width, i // width) if width else "offset %d" % i
            return "%s: %r, expected %r" % (where, a, b)
    return "%d items, expected %d" % (len(got), len(want))


def runs_and_noise(rng, count, pixel, cell=lambda c: c):
    """count items from pixel(): runs and noise mixed, ending in exactly three equal cells after
    a different one (the run-length encoder writes the last cells exactly only then)."""
    flat = []
    while len(flat) < count:
        flat += [pixel()] * (rng.choice((1, 2, 3, 7, 126, 127, 128, 200)) if rng.random() < 0.25 else 1)
    flat = flat[:count]
    if count >= 4:
        flat[-3:] = [flat[-1]] * 3
        while cell(flat[-4]) == cell(flat[-1]):
            flat[-4] = pixel()
    return flat


# ---------------------------------------------------------------- BMP files


def bmp_bytes(width, height, bits, cells, offset=54, compression=0, magic=b"BM"):
    """cells: (blue, green, red, fourth) top row first; 24-bit rows padded to 4 bytes."""
    rows = bytearray()
    for y in range(height - 1, -1, -1):
        row = b"".join(bytes(c[:bits // 8]) for c in cells[y * width:(y + 1) * width])
        rows += row + bytes(-len(row) % 4)
    head = magic + struct.pack("<IIIIiiHHII", 54 + len(rows), 0, offset, 40, width, height, 1, bits,
                               compression, len(rows)) + bytes(16)
    return head + bytes(rows)


def read_bmp(blob):
    """(width, height, bits, cells top row first) of a 24- or 32-bit BMP; 24-bit cells have
    three bytes (blue, green, red)."""
    offset, = struct.unpack_from("<I", blob, 10)
    width, height = struct.unpack_from("<ii", blob, 18)
    bits, = struct.unpack_from("<H", blob, 28)
    size = bits // 8
    stride = (width * size + 3) // 4 * 4
    cells = []
    for y in range(height):
        base = offset + (height - 1 - y) * stride
        cells += [tuple(blob[base + size * x:base + size * x + size]) for x in range(width)]
    return width, height, bits, cells


def bmp_header_problems(blob, width, height, bits, header_bits=None):
    """What differs from the BMP the program writes for a width x height picture: the header,
    the length, zero row padding. A negative size keeps only its two bytes in the header
    (0xFFFF for -1) and gives no rows; header_bits is the bit count field where it is not
    bits (0 before anything was decoded)."""
    stride = (max(width, 0) * bits // 8 + 3) // 4 * 4
    rows = max(height, 0) if width >= 0 else 0
    size = 54 + stride * rows
    want = b"BM" + struct.pack("<IIIIIIHHII", size, 0, 54, 40, width & 0xFFFF if width < 0 else width,
                               height & 0xFFFF if height < 0 else height, 1,
                               bits if header_bits is None else header_bits, 0, size - 54) + bytes(16)
    problems = []
    if blob[:54] != want:
        problems.append("header %s, expected %s" % (blob[:54].hex(), want.hex()))
    if len(blob) != size:
        problems.append("%d bytes, expected %d" % (len(blob), size))
    pad = stride - max(width, 0) * bits // 8
    if pad and any(blob[54 + r * stride + stride - pad:54 + (r + 1) * stride] != bytes(pad) for r in range(rows)):
        problems.append("row padding is not zero")
    return problems


# ---------------------------------------------------------------- PNG writer

PNG_SIGNATURE = b"\x89PNG\r\n\x1a\n"
ADAM7 = ((0, 0, 8, 8), (4, 0, 8, 8), (0, 4, 4, 8), (2, 0, 4, 4), (0, 2, 2, 4), (1, 0, 2, 2), (0, 1, 1, 2))


def png_chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def _png_row(pixels, depth):
    """Samples packed big-endian, the last byte filled up with zero bits."""
    bits = "".join(format(s, "0%db" % depth) for px in pixels for s in px)
    size = -(-len(bits) // 8)
    return int(bits.ljust(size * 8, "0"), 2).to_bytes(size, "big")


def png_bytes(rows, colour_type=2, depth=8, palette=None, trns=None, interlace=False, extra_chunks=(),
              idat_pieces=1, ihdr_size=None):
    """rows: pixels as tuples of samples, top row first; every row filtered with type 0."""
    height, width = len(rows), len(rows[0])
    w, h = ihdr_size or (width, height)
    if interlace:
        raw = b"".join(b"\0" + _png_row(rows[y][x0::dx], depth) for x0, y0, dx, dy in ADAM7
                       if x0 < width and y0 < height for y in range(y0, height, dy))
    else:
        raw = b"".join(b"\0" + _png_row(row, depth) for row in rows)
    out = PNG_SIGNATURE + png_chunk(b"IHDR", struct.pack(">IIBBBBB", w, h, depth, colour_type, 0, 0, int(interlace)))
    out += b"".join(png_chunk(k, d) for k, d in extra_chunks)
    if palette is not None:
        out += png_chunk(b"PLTE", b"".join(bytes(c) for c in palette))
    if trns is not None:
        out += png_chunk(b"tRNS", trns)
    data = zlib.compress(raw, 9)
    step = -(-len(data) // idat_pieces)
    out += b"".join(png_chunk(b"IDAT", data[i:i + step]) for i in range(0, len(data), step))
    return out + png_chunk(b"IEND", b"")


# ---------------------------------------------------------------- GPF, GPF2 and DAT containers

MAGIC1, MAGIC2 = b"GraphicPatchFile", b"GraphPatchFile_2"
TYPE_OF_TARGET = {"1": 0x01, "8": 0x85, "16": 0x88, "24": 0x8A}


def gpf_header(version, width, height, code, second=0):
    if version == 2:
        return MAGIC2 + bytes(4) + struct.pack("<HHBB", width & 0xFFFF, height & 0xFFFF, code, second) + bytes(6)
    return MAGIC1 + bytes(4) + bytes((width, height, code, second)) + bytes(8)


def pad16(blob):
    """At least one zero byte, up to a multiple of 16."""
    return blob + bytes(16 - len(blob) % 16)


def gpf2(width, height, code, data=b""):
    return pad16(gpf_header(2, width, height, code) + data)


def container_fields(blob):
    """(version, width, height, type code) of a GPF or GPF2, None for anything else."""
    head = blob[:32].ljust(32, b"\0")
    if head[:16] == MAGIC2:
        return (2,) + struct.unpack_from("<HHB", head, 20)
    if head[:16] == MAGIC1:
        return (1,) + tuple(head[20:23])
    return None


# ---------------------------------------------------------------- firmware pictures

TABLE_OFFSET = 0x1B01958
PICTURE_COUNT = 1701
CANVAS_W, CANVAS_H = 241, 321  # x = 0..240, y = 0..320
TRANSPARENT_RGB = bytes((169, 171, 169))
# Bit depth of each type code the picture list can give back; any other code keeps the depth
# of the previous picture.
DEPTH_OF_CODE = {0x01: 1, 0x05: 8, 0x85: 8, 0x07: 12, 0x87: 12, 0x08: 16, 0x88: 16, 0x0A: 24, 0x8A: 24}
SAMPLE_SIZE = {8: 1, 12: 2, 16: 2, 24: 4}


def _rgb8(v):
    if v == 0xC0:
        return TRANSPARENT_RGB
    return bytes((round((v >> 5) * 255 / 7), round(((v >> 2) & 7) * 255 / 7), (v & 3) * 85))


def _rgb12(b0, b1):
    if (b0, b1) == (0xAA, 0xFA):
        return TRANSPARENT_RGB
    return bytes(((b1 & 0x0F) * 17, (b0 >> 4) * 17, (b0 & 0x0F) * 17))


def _rgb16(b0, b1):
    if (b0, b1) == (0x00, 0xE0):
        return TRANSPARENT_RGB
    return bytes((round((b1 >> 3) * 255 / 31), round((((b1 & 7) << 3) | (b0 >> 5)) * 255 / 63),
                  round((b0 & 31) * 255 / 31)))


TABLE8 = [_rgb8(v) for v in range(256)]
TABLE12 = [_rgb12(w & 0xFF, w >> 8) for w in range(65536)]  # indexed by b0 + 256 * b1
TABLE16 = [_rgb16(w & 0xFF, w >> 8) for w in range(65536)]


def rgb24(sample):
    """A B, G, R, alpha sample shown without alpha: each channel c + a - 255, at least 0."""
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
    """Image bytes; reads past the end give zero bytes."""

    def __init__(self, data):
        self.data = data
        self.size = len(data)

    def read(self, pos, count):
        chunk = self.data[pos:pos + count]
        return chunk + bytes(count - len(chunk))


class Canvas:
    """241 x 321 RGB cells that keep their contents from one picture to the next."""

    def __init__(self):
        self.rows = [bytearray(CANVAS_W * 3) for _ in range(CANVAS_H)]

    def region(self, width, height):
        return b"".join(bytes(self.rows[y][:3 * width]) for y in range(height))


class Scan:
    """Scan position of the decoder: left to right, top row first, wrapping at the width."""

    def __init__(self, canvas, width):
        self.canvas, self.width, self.x, self.y = canvas, width, 0, 0

    def put(self, rgb):
        if not (0 <= self.x < CANVAS_W and 0 <= self.y < CANVAS_H):
            raise OutsideCanvas("pixel at x=%d y=%d" % (self.x, self.y))
        self.canvas.rows[self.y][3 * self.x:3 * self.x + 3] = rgb
        self.x += 1
        if self.x == self.width:
            self.x, self.y = 0, self.y + 1

    def put_all(self, pixels):
        """Stores RGB triples, a row segment at a time where the width allows."""
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
            i, self.x = i + k, self.x + k
            if self.x == self.width:
                self.x, self.y = 0, self.y + 1


def decode(flash, offset, width, height, depth, compressed, canvas):
    """Decodes one picture onto the canvas and returns the number of data bytes consumed.
    Raises OutsideCanvas where the scan leaves the canvas (pixels before that stay)."""
    scan = Scan(canvas, width)
    if compressed:
        # Control groups until the picture is full or the data end; a run that passes the
        # last row is carried out in full.
        size, pos = SAMPLE_SIZE[depth], offset
        while scan.y < height and pos < flash.size:
            n = flash.read(pos, 1)[0]
            pos += 1
            count = 256 - n if n >= 128 else 1
            chunk = flash.read(pos, count * size)
            pos += count * size
            pixels = [sample_to_rgb(chunk, i * size, depth) for i in range(count)]
            scan.put_all(pixels if n >= 128 else pixels * n)
        return pos - offset
    black, white = bytes(3), bytes((255, 255, 255))
    # With a width the canvas holds, monochrome rows are whole: fill them in one go, up to
    # the last canvas row; a taller picture runs outside at the start of the row after it.
    rows = min(height, CANVAS_H)
    if depth == 1 and 1 <= width <= CANVAS_W and height >= 1:
        stride = (width + 7) // 8
        data = flash.read(offset, stride * rows)
        for y in range(rows):
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
    # Any size leaves the canvas within 241 x 321 samples, if it has that many.
    size, samples = SAMPLE_SIZE[depth], max(width * height, 0)
    data = flash.read(offset, min(samples, CANVAS_W * CANVAS_H + 1) * size)
    scan.put_all([sample_to_rgb(data, i, depth) for i in range(0, len(data), size)])
    return samples * size


def type_text(type_byte):
    return ("0" if type_byte < 10 else "") + "%X" % type_byte + "00"


def records(flash):
    """(number, width, height, type byte, data offset) of every picture index record."""
    for n in range(PICTURE_COUNT):
        raw = flash.read(TABLE_OFFSET + n * 12, 12)
        width, height = struct.unpack_from("<hh", raw, 0)
        yield n, width, height, raw[4], struct.unpack_from("<I", raw, 8)[0] & 0x0FFFFFFF


def check_encoded(tally, cli, source, base, width, height, target, cells):
    """Encodes SOURCE for TARGET into BASE.gpf2 and decodes it back, checking the header, the
    stream unpacked here against cells (blue, green, red, fourth byte; alpha applied for the
    24-bit target), the zero padding, the BMP without --alpha (header, pixels, information
    text) and with it (the cells for 24 bits, else the same BMP). Returns the container."""
    code = TYPE_OF_TARGET[target]
    if run_quietly(tally, cli, "encode", source, "-o", base + ".gpf2", "--type", target) is None:
        return None
    blob = read(base + ".gpf2")
    tally.ok(blob[:32] == gpf_header(2, width, height, code), "%s.gpf2: header %s" % (base, blob[:32].hex(" ")))
    if width * height < 4:  # too short to end in a run of three; a single cell gives no data
        tally.ok(width * height != 1 or blob[32:] == bytes(16), "%s.gpf2: %d bytes for one cell" % (base, len(blob)))
        return blob
    canvas = Canvas()  # the container unpacked here, without alpha
    used = decode(Flash(blob[32:]), 0, width, height, DEPTH_OF_CODE[code], code > 0x80, canvas)
    rgb = canvas.region(width, height)
    got = [rgb[i:i + 3] for i in range(0, len(rgb), 3)]
    want = [rgb24(c) if code == 0x8A else bytes((c[2], c[1], c[0])) for c in cells]
    tally.ok(got == want, "%s.gpf2 unpacked here: %s" % (base, first_difference(got, want, width)))
    tail = blob[32 + used:]
    tally.ok(1 <= len(tail) <= 16 and tail == bytes(len(tail)), "%s.gpf2: %d data bytes, then %s" % (base, used, tail.hex()))
    info = run_quietly(tally, cli, "decode", base + ".gpf2", "-o", base + ".a0.bmp")
    want_info = "Width: %d\nHeight: %d\nBits: %d\nCompression: %s\n\nLenght: 0x%X\n" % (
        width, height, DEPTH_OF_CODE[code], "Yes" if code > 0x80 else "No", used)
    tally.ok(info == want_info, "decode %s.gpf2 printed %r, expected %r" % (base, info, want_info))
    a0 = read(base + ".a0.bmp") or b""
    problems = bmp_header_problems(a0, width, height, 24)
    tally.ok(not problems and [bytes(c[::-1]) for c in read_bmp(a0)[3]] == got, "%s.a0.bmp: %s" % (base, problems or "pixels"))
    run_quietly(tally, cli, "decode", base + ".gpf2", "-o", base + ".a1.bmp", "--alpha")
    a1 = read(base + ".a1.bmp") or b""
    if code == 0x8A:
        problems = bmp_header_problems(a1, width, height, 32)
        tally.ok(not problems and read_bmp(a1)[3] == [tuple(c) for c in cells], "%s.a1.bmp: %s" % (base, problems or "cells"))
    else:
        tally.ok(a1 == a0, "%s: --alpha changed the BMP of a %s-bit target" % (base, target))
    return blob


# ---------------------------------------------------------------- fonts


def u32(d, at):
    return int.from_bytes(bytes(d[at:at + 4]).ljust(4, b"\0"), "little")


def valhex(text):
    """Hex text as the program reads it: four digits or fewer are 16-bit signed."""
    v, bits = int(text or "0", 16), 16 if len(text) <= 4 else 32
    return v - (1 << bits) if v >= 1 << (bits - 1) else v


def font_descriptor(d, font):
    return (u32(d, 0x15C001C) & 0x0FFFFFFF) + 24 * font


def font_rows(d, font):
    """The glyph rows of a font read from the image: (the nine cells the list shows, record
    offset, raw reference, 5-byte record header). Font 0 lifts entries 375..783 by 0x10000."""
    desc = font_descriptor(d, font)
    start, end = u32(d, desc) & 0x0FFFFFFF, u32(d, desc + 8) & 0x0FFFFFFF
    area = u32(d, 0x15C0020) & 0x0FFFFFFF
    rows = []
    for i in range(round((end - start) / 8 - 1) + 1):
        raw = u32(d, start + 4 + 8 * i)
        ref = "%X" % raw
        ref = ref[-4:] if ref.startswith("FF") else ref
        at = area + valhex(ref) + (0x10000 if font == 0 and 374 < i < 784 else 0)
        hdr = bytes(d[at:at + 5]).ljust(5, b"\0")
        cells = ["%04d" % (i + 1), "%02d" % hdr[0], str(hdr[1]), str(hdr[2]), "%02d" % hdr[3], "%02d" % hdr[4],
                 "%X" % at, ref, "%02X" % ((hdr[1] // 8 + 1) * hdr[2])]
        rows.append((cells, at, raw, hdr))
    return rows


def glyph_cell(d, hdr, at):
    """(width, height, rows) of the glyph cell as the glyph decoder fills it: 1 ink, 0 paper,
    None never written. Raises OutsideCanvas when the 101 x 101 glyph grid cannot hold it."""
    W, w, h, left, bottom = hdr
    H = h + bottom
    if left > 127:  # a negative shift widens the cell
        W, left = W + 257 - left, 0
    if w == 0 or h == 0:
        w = h = 0
    grid = {}

    def put(x, y, v):
        if not (0 <= x <= 100 and 0 <= y <= 100):
            raise OutsideCanvas("glyph pixel at x=%d y=%d" % (x, y))
        grid[(x, y)] = v
    # The bitmap: rows start on a fresh byte; a glyph with no rows still draws one byte.
    pos, x, y = at + 5, left, 0
    while True:
        byte = d[pos] if pos < len(d) else 0
        pos += 1
        for bit in range(7, -1, -1):
            put(x, y, (byte >> bit) & 1)
            x += 1
            if x == left + w:
                x, y = left, y + 1
                break
        if y == h:
            break
        if y > 101:
            raise OutsideCanvas("glyph rows past the grid")
    # Paper: the left margin, the right margin, then the rows below.
    for count, x, y, x0, x1 in ((left * h, 0, 0, 0, left), ((W - w - left) * h, left + w, 0, left + w, W),
                                (W * (H - h), 0, h, 0, W)):
        for _ in range(max(count, 0)):
            put(x, y, 0)
            x += 1
            if x == x1:
                x, y = x0, y + 1
    return W, H, [[grid.get((x, y)) for x in range(W)] for y in range(H)]


def ink_of(blob):
    """Rows of 1 (mean below 127: ink) and 0 of a 24-bit glyph BMP."""
    w, h, _, cells = read_bmp(blob)
    return [[1 if sum(c) < 381 else 0 for c in cells[y * w:(y + 1) * w]] for y in range(h)]


def glyph_bmp(ink):
    return bmp_bytes(len(ink[0]) if ink else 0, len(ink), 24, [(0, 0, 0) if v else (255, 255, 255) for row in ink for v in row])


def glyph_record(ink):
    """The record a bitmap becomes when it replaces a glyph: the header (cell width, ink width
    and height, left and bottom margins) and the trimmed ink, rows byte-aligned, padding bits
    set; and the ink's (left, top) corner."""
    H, W = len(ink), len(ink[0]) if ink else 0
    rows = [y for y in range(H) if any(ink[y])]
    cols = [x for x in range(W) if any(ink[y][x] for y in range(H))]
    if not rows:
        return bytes((W, 0, 0, W, H)), (W, H)
    left, top, w, h = cols[0], rows[0], cols[-1] + 1 - cols[0], rows[-1] + 1 - rows[0]
    out = bytearray(bytes((W, w, h, left, H - top - h)))
    for y in range(top, top + h):
        bits = ink[y][left:left + w] + [1] * (-w % 8)
        out += bytes(int("".join(map(str, bits[k:k + 8])), 2) for k in range(0, len(bits), 8))
    return bytes(out), (left, top)


# ---------------------------------------------------------------- patch text

PATCH_LINE = re.compile(r"0([0-9A-F]+): ([0-9A-F]+) ([0-9A-F]+)")


def patch_line(at, old, new):
    return "0%X: %s %s" % (at, old.hex().upper(), new.hex().upper())


def vkp_lines(blob):
    """The lines of a patch, or None when a line does not end in CR LF."""
    if not blob.endswith(b"\r\n") or blob.count(b"\n") != blob.count(b"\r\n"):
        return None
    return blob.decode("latin-1").split("\r\n")[:-1]


def apply_vkp(image, text):
    """Applies the patch lines to a copy of image; returns it and the addresses whose old bytes
    do not match."""
    out, wrong = bytearray(image), []
    for line in text.split("\r\n"):
        m = PATCH_LINE.fullmatch(line)
        if m:
            at, old, new = int(m.group(1), 16), bytes.fromhex(m.group(2)), bytes.fromhex(m.group(3))
            if out[at:at + len(old)] != old:
                wrong.append(at)
            out[at:at + len(new)] = new
    return bytes(out), wrong



# ---------------------------------------------------------------- command line for the shell


def _cells(items):
    out = []
    for item in items:
        colour, _, count = item.partition("*")
        v = bytes.fromhex(colour)
        out += [(v[2], v[1], v[0], v[3] if len(v) > 3 else 255)] * int(count or 1)
    return out


def main(argv):
    cmd, a = argv[1], argv[2:]
    if cmd == "gpf2":
        write(a[0], gpf2(int(a[1]), int(a[2]), int(a[3], 16), bytes.fromhex(a[4] if len(a) > 4 else "")))
    elif cmd == "bmp":
        write(a[0], bmp_bytes(int(a[2]), int(a[3]), int(a[1]), _cells(a[4:])))
    elif cmd == "poke":
        blob, at, value = bytearray(read(a[0])), int(a[2]), bytes.fromhex(a[3])
        blob[at:at + len(value)] = value
        write(a[1], bytes(blob))
    elif cmd == "hex":
        write(a[0], bytes.fromhex("".join(a[1:])))
    else:
        print("unknown command " + cmd, file=sys.stderr)
        return 2
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
