#!/usr/bin/env bash
# Patches checked before they reach a phone: status on a fullflash before and after apply, on a
# half-applied image and with a wrong old byte; revert and merge against apply; clashes; the
# JSON status against the text one; and patches that cannot be read.
#
# usage: patch_status.sh PATH/TO/korvatek-cli
set -u
source "$(dirname "$0")/common.sh" "$@"
make_demo
quiet() { "$CLI" "$@" >/dev/null 2>&1 || fail "korvatek-cli $*"; }
quiet export "$FLASH" 1 -o p1.gpf2
quiet export "$FLASH" 2 -o p2.bmp
quiet patch "$FLASH" -o a.vkp 1=p2.bmp:16
quiet patch "$FLASH" -o b.vkp 9=p1.gpf2
quiet patch "$FLASH" -o c.vkp 1=p2.bmp:8    # picture 1 again, with other bytes than a.vkp
quiet apply "$FLASH" a.vkp -o a.bin
stdout_line() { grep -Fqx -- "$1" cmd.out && pass || fail "$2: no line '$1' on stdout: $(head -n 3 cmd.out | tr '\n' '|')"; }
states() { cut -f4 cmd.out | grep -v ': ' | sort | uniq -c | tr -s ' ' | tr '\n' '|'; }

# ---- before and after apply; a line whose old and new bytes are equal changes nothing
lines=$(grep -c '^0' a.vkp)
run status "$FLASH" a.vkp; expect_rc 3 "status before apply"
stdout_line "a.vkp: not applied (0 applied, $((lines - 1)) not applied, 0 conflicting, 0 outside the fullflash, 1 changing nothing)" "before"
[ "$(wc -l <cmd.out)" -eq $((lines + 1)) ] && pass || fail "status lists every data line once"
run status a.bin a.vkp; expect_rc 0 "status after apply"
stdout_line "a.vkp: applied ($((lines - 1)) applied, 0 not applied, 0 conflicting, 0 outside the fullflash, 1 changing nothing)" "after"

# ---- half applied: the bytes of the last line put back; a wrong old byte in the first
last=$(grep '^0' a.vkp | tail -n 1) last_line=$(grep -n '^0' a.vkp | tail -n 1 | cut -d: -f1)
"$PY" - "$last" <<'PY'
import sys
address, old, new = sys.argv[1].replace(":", "").split()
data = bytearray(open("a.bin", "rb").read())
data[int(address, 16):int(address, 16) + len(old) // 2] = bytes.fromhex(old)
open("half.bin", "wb").write(data)
PY
run status half.bin a.vkp; expect_rc 4 "status of a half-applied image"
grep -q "^a.vkp: partly applied ($((lines - 2)) applied, 1 not applied," cmd.out && pass || fail "partly: $(head -n 1 cmd.out)"
address=${last%%:*}
grep -Pq "^$last_line\t0x${address#0}\t.*\tnot applied$" cmd.out && pass || fail "the line put back is named"
second=$(grep -n '^0' a.vkp | sed -n 2p | cut -d: -f1)
"$PY" - "$second" <<'PY'
import sys
lines = open("a.vkp", newline="").read().split("\r\n")
at = int(sys.argv[1]) - 1
address, old, new = lines[at].split()
lines[at] = f"{address} {'%X' % (int(old[0], 16) ^ 1)}{old[1:]} {new}"   # one old bit flipped
open("wrong.vkp", "w", newline="").write("\r\n".join(lines))
PY
run status "$FLASH" wrong.vkp; expect_rc 4 "a wrong old byte"
grep -q "^$second	.*	conflicting$" cmd.out && grep -q "^wrong.vkp: conflicting (" cmd.out && pass || fail "conflicting line $second: $(states)"

# ---- revert: apply, then the revert, gives back the fullflash; it is on the original already
run revert a.vkp -o undo.vkp; expect_rc 0 "revert"
[ "$(head -n 1 undo.vkp)" = $'; Korvatek: this patch takes off a.vkp\r' ] && pass || fail "revert header: $(head -n 1 undo.vkp)"
[ "$(tail -n +2 undo.vkp | grep -c '^;')" -eq "$(grep -c '^;' a.vkp)" ] && pass || fail "revert keeps the comments"
quiet apply a.bin undo.vkp -o back.bin
same back.bin "$FLASH" "apply then apply the revert"
run status "$FLASH" undo.vkp; expect_rc 0 "the revert is applied on the original"
quiet revert undo.vkp -o redo.vkp
[ "$(tail -n +3 redo.vkp)" = "$(cat a.vkp)" ] && pass || fail "reverting the revert gives the patch's lines back"

# ---- merge: disjoint patches equal applying both; identical lines agree; a clash is refused
run merge a.vkp b.vkp -o m.vkp; expect_rc 0 "merge"
quiet apply "$FLASH" m.vkp -o m.bin
quiet apply a.bin b.vkp -o ab.bin
same m.bin ab.bin "merge equals applying both"
run status a.bin a.vkp b.vkp; expect_rc 4 "one patch applied, one not"
run merge a.vkp a.vkp -o twice.vkp; expect_rc 0 "lines that agree byte for byte merge"
refused 1 "" clash.vkp merge a.vkp c.vkp -o clash.vkp
grep -Eq "^a\.vkp line [0-9]+ and c\.vkp line [0-9]+ write different bytes at 0x1B0" cmd.err && pass || fail "clash named: $(stderr)"
run status "$FLASH" a.vkp c.vkp; expect_rc 4 "clashing patches, neither applied"
grep -q "^a.vkp line .* and c.vkp line .* write different bytes at 0x" cmd.out && pass || fail "status names the clash"

# ---- the JSON status says what the text says
for image in "$FLASH" half.bin; do
    run status "$image" a.vkp b.vkp; text_rc=$RC; cp cmd.out status.txt
    run status "$image" a.vkp b.vkp --json
    [ "$RC" -eq "$text_rc" ] && pass || fail "--json exit $RC, text $text_rc"
    "$PY" - "$text_rc" <<'PY' && pass || fail "JSON status differs from the text ($image)"
import json, sys
doc = json.load(open("cmd.out"))
words = {"applied": "applied", "notApplied": "not applied", "conflicting": "conflicting",
         "outside": "outside the fullflash", "changesNothing": "changes nothing", "partlyApplied": "partly applied"}
text = []
for p in doc["patches"]:
    counts = ", ".join(f'{p[k]} {words[k]}' for k in ("applied", "notApplied", "conflicting", "outside"))
    text.append(f'{p["path"]}: {words[p["state"]]} ({counts}, {p["changesNothing"]} changing nothing)')
    text += [f'{l["line"]}\t0x{l["address"]:X}\t{l["bytes"]}\t{words[l["state"]]}' for l in p["lines"]]
assert text == open("status.txt").read().splitlines(), "lines differ"
assert doc["exitCode"] == int(sys.argv[1]) and doc["clashes"] == []
PY
done

# ---- patches that cannot be read: the line named, exit 1, nothing written
"$PY" - <<'PY'
import random
rnd = random.Random(7)
open("garbage.vkp", "wb").write(bytes(rnd.randrange(128, 256) for _ in range(5000)))
open("long.vkp", "wb").write(b"01B01958: " + b"7" * (1 << 20) + b"\r\n")
open("utf16.vkp", "wb").write("01B01958: 00 11\r\n".encode("utf-16"))
open("beyond.vkp", "wb").write(b"; fine\r\n1B01958: 10 10\r\n+1000000\r\n1000000: 00 11\r\n")
PY
expect_named_line() { grep -Eq "$1" cmd.err && pass || fail "$2: line not named: $(stderr)"; }
for bad in garbage long utf16 beyond; do
    n=1; [ $bad = beyond ] && n=4
    named="(patch line: $n \(|\(line $n\))"
    refused 1 "" out.bin apply "$FLASH" $bad.vkp -o out.bin; expect_named_line "$named" "apply $bad"
    [ $bad = utf16 ] && expect_err "UTF-16" "a UTF-16 patch is called so"
    run status "$FLASH" $bad.vkp; expect_rc 1 "status $bad"; expect_named_line "^$bad.vkp: .*$named" "status $bad"
    [ $bad = beyond ] && continue  # without a fullflash nothing lies past its end
    refused 1 "" out.vkp revert $bad.vkp -o out.vkp; expect_named_line "$named" "revert $bad"
    refused 1 "" out.vkp merge a.vkp $bad.vkp -o out.vkp; expect_named_line "^$bad.vkp: .*$named" "merge $bad"
done
unchanged "status, revert and merge"
finish
