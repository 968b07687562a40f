#!/usr/bin/env bash
# --json: each listing parsed back and checked against the text of the same command, field by
# field; the plan of `patch` against the patch it wrote (in place, moved, refused).
#
# usage: json_output.sh PATH/TO/korvatek-cli
set -u
source "$(dirname "$0")/common.sh" "$@"
make_demo
both() {  # NAME ARGS...: the text output in NAME.txt, the JSON in NAME.json
    local name=$1
    shift
    "$CLI" "$@" >"$name.txt" 2>/dev/null || fail "$*"
    "$CLI" "$@" --json >"$name.json" 2>/dev/null || fail "$* --json"
}
both info info "$FLASH"
both pictures pictures "$FLASH"
both fonts fonts "$FLASH"
both glyphs glyphs "$FLASH" 0
"$PY" - <<'PY' && pass || fail "a listing's JSON differs from its text"
import json
load = lambda name: json.load(open(name + ".json"))
text = lambda name: [line.split("\t") for line in open(name + ".txt").read().splitlines()]
info = load("info")
assert [f"{k}: {info[k]}" for k in ("model", "pack", "firmware", "fonts", "pictures")] == \
    open("info.txt").read().splitlines(), "info"
rows = text("pictures")
pictures = load("pictures")["pictures"]
assert len(rows) == len(pictures) == 1701
for row, p in zip(rows, pictures):
    t = p["type"]
    assert all(isinstance(p[k], int) for k in p), p
    assert row[:4] == [f'{p["number"]:04d}', f'{p["number"]:03X}', str(p["width"]), str(p["height"])], row
    assert row[4] == ("0" if t < 10 else "") + f"{t:X}00", (row, t)
    assert row[5:] == [f'{p["recordOffset"]:X}', f'{p["dataOffset"]:07X}'] and p["dataAddress"] & 0x0FFFFFFF == p["dataOffset"]
fonts = load("fonts")["fonts"]
assert [[f["caption"], f'{f["descriptorOffset"]:X}', str(f["size"])] for f in fonts] == text("fonts")
two = lambda v: f"{v:02d}"
glyphs = load("glyphs")["glyphs"]
assert len(glyphs) == len(text("glyphs")) > 700
for row, g in zip(text("glyphs"), glyphs):
    assert row[:9] == [f'{g["code"]:04d}', two(g["advance"]), str(g["width"]), str(g["height"]), two(g["shiftLeft"]),
                       two(g["spaceBelow"]), f'{g["headerOffset"]:X}', f'{g["reference"]:X}'[-len(row[7]):],
                       f'{g["length"]:02X}'], (row, g)
PY

# The plan: picture 1 in place, picture 9 moved to free space, a picture that does not exist.
"$CLI" export "$FLASH" 1 -o p1.gpf2 >/dev/null 2>&1
"$CLI" export "$FLASH" 2 -o p2.bmp >/dev/null 2>&1
run patch "$FLASH" -o plan.vkp --json 1=p2.bmp:16 9=p1.gpf2 4242=p1.gpf2
expect_rc 1 "patch with a refused replacement"
"$PY" - <<'PY' && pass || fail "the plan differs from the patch written"
import json
plan = json.load(open("cmd.out"))
assert plan["output"] == "plan.vkp" and plan["exitCode"] == 1
first, moved, refused = plan["replacements"]
assert (first["picture"], first["result"], moved["picture"], moved["result"]) == (1, "inPlace", 9, "moved")
assert refused == {"picture": 4242, "source": "p1.gpf2", "result": "refused",
                   "messages": ["No such picture in the list: 4242"]}
lines = [l for l in open("plan.vkp", newline="").read().split("\r\n") if l[:1] == "0"]
data = {int(l.split(":")[0], 16) for l in lines}
for p in (first, moved):
    assert p["address"] in data, p                       # its data lines start where the plan says
    covered = sum(16 for a in data if p["address"] <= a < p["address"] + p["bytes"])
    assert p["bytes"] <= covered < p["bytes"] + 16, (p, covered)
assert moved["address"] >= 0x1320000 and plan["freeSpaceBytes"] == moved["bytes"]
PY
run patch "$FLASH" -o none.vkp --json 4242=p1.gpf2
"$PY" -c 'import json; p = json.load(open("cmd.out")); assert p["output"] is None and p["exitCode"] == 1' &&
    [ ! -e none.vkp ] && pass || fail "nothing accepted: output null, nothing written"
finish
