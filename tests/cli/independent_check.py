#!/usr/bin/python3
"""Second opinion on the batch exports of korvatek-cli.

usage: independent_check.py FLASH BMP_DIR GPF2_DIR

BMP_DIR and GPF2_DIR hold the output of `korvatek-cli export FLASH all --format bmp|gpf2`.
The picture decoder of korvatek_testlib, which shares no code with the C++ one, decodes every
picture from the firmware bytes the way a batch export does (in picture order, on one canvas
that keeps what earlier pictures left, with the bit depth that carries over from the previous
picture when a type code is not a known one); every exported BMP (header, row padding, pixels
through PIL) and GPF2 (header, the copied firmware bytes, zero padding) must match.

Exit status 0 when everything matches, 1 on any mismatch. Without PIL the check is skipped
(exit 0), except under CI (environment variable CI set), where that is a failure.
"""

import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from korvatek_testlib import (CANVAS_H, CANVAS_W, DEPTH_OF_CODE, Canvas, Flash, OutsideCanvas, Tally,  # noqa: E402
                              bmp_header_problems, decode, first_difference, gpf_header, pad16, read, records,
                              type_text)

try:
    from PIL import Image
except ImportError:
    Image = None


# ---------------------------------------------------------------- checks of the exported files

def check_bmp(tally, n, path, width, height, expected_rgb, bits=24):
    """A BMP of width x height cells, 24 bits a pixel, its header saying bits; expected_rgb
    holds the rows top first."""
    what = "picture %04d: BMP %s: " % (n, path)
    problems = bmp_header_problems(read(path), width, height, 24, bits)
    if not tally.ok(not problems, what + "; ".join(problems)) or width <= 0 or height <= 0:
        return
    try:
        with Image.open(path) as image:
            got = image.convert("RGB").tobytes()
    except Exception as error:  # PIL's own errors vary by version
        tally.ok(False, what + "PIL cannot read it: %s" % error)
        return
    got_px = [got[i:i + 3] for i in range(0, len(got), 3)]
    want_px = [expected_rgb[i:i + 3] for i in range(0, len(expected_rgb), 3)]
    tally.ok(got == expected_rgb, what + "file against firmware, " + first_difference(got_px, want_px, width))


def check_gpf2(tally, n, path, flash, width, height, code, offset, consumed):
    """Header, the firmware data consumed and one byte more, zero padding."""
    raw = read(path)
    want = pad16(gpf_header(2, width, height, code) + flash.read(offset, consumed + 1))
    tally.ok(raw == want, "picture %04d: GPF2 %s (%d bytes, expected %d): %s" % (
        n, path, len(raw), len(want), first_difference(raw, want)))


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
    flash = Flash(read(flash_path))
    report = Tally()
    canvas = Canvas()
    depth = 0          # nothing decoded yet: an unknown code is refused
    meta = (0, 0)      # width and height that the last decode wrote into the canvas
    meta_bits = 0      # and the bit depth of its BMP: none before the first decode
    meta_known = True  # whether the BMP of the canvas at meta is known exactly
    counts = {"decoded": 0, "refused": 0, "offset zero": 0, "outside canvas": 0, "refused rows saved": 0}

    def expected_region(width, height):
        return canvas.region(width, height) if 1 <= width <= CANVAS_W and 1 <= height <= CANVAS_H else b""

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
                report.ok(not present, "picture %04d: %s written although the data offset is 0" % (n, path))
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
            # A size the canvas cannot hold may stop at the first cell outside: no file then.
            report.ok(width > CANVAS_W or height > CANVAS_H, "picture %04d: %s missing" % (n, bmp_path))
        elif meta_known:
            check_bmp(report, n, bmp_path, width, height, expected_region(width, height))
        if report.ok(have_gpf2, "picture %04d: %s missing" % (n, gpf2_path)):
            check_gpf2(report, n, gpf2_path, flash, width, height, code, offset, consumed)

    print("independent check: %s" % ", ".join("%d %s" % (v, k) for k, v in counts.items()))
    return report.summary()


if __name__ == "__main__":
    sys.exit(main(sys.argv))
