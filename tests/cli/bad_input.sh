#!/usr/bin/env bash
# korvatek-cli on inputs that are not a usable fullflash, and on bad command lines.
#   - info, pictures, picture, export on truncated, empty, random, missing, unreadable files
#     and on a directory: exit 1, a message on stderr, the input untouched, nothing written;
#   - a fullflash whose picture table is garbage: listed, decoded or refused, never a crash;
#   - usage errors: exit 2 with a usage line; --help on every command: exit 0.
#
# usage: bad_input.sh PATH/TO/korvatek-cli
set -u

if [ $# -ne 1 ] || [ ! -x "$1" ]; then
    echo "usage: $0 PATH/TO/korvatek-cli" >&2
    exit 2
fi
CLI=$(realpath "$1")
exec 2>&1  # one stream, so that failures appear in order
PY=/usr/bin/python3
WORK=$(mktemp -d)
trap 'chmod -R u+rwx "$WORK" 2>/dev/null; rm -rf "$WORK"' EXIT
cd "$WORK" || exit 1

passed=0
failed=0
pass() { passed=$((passed + 1)); }
fail() {
    failed=$((failed + 1))
    echo "FAIL: $*"
}

# A fingerprint of a path: content hash of a file, listing of a directory, or "missing".
fingerprint() {
    if [ -d "$1" ]; then
        echo "dir:$(find "$1" -printf '%P %s %m %T@\n' | sort | sha256sum)"
    elif [ -e "$1" ]; then
        echo "file:$(stat -c '%s %a' "$1"):$({ sha256sum <"$1"; } 2>/dev/null || echo unreadable)"
    else
        echo missing
    fi
}

# Runs one command in an empty folder; sets RC, OUT, ERR and NEW (files it left behind).
run_in_box() {
    rm -rf box && mkdir box
    (cd box && "$CLI" "$@" >../cmd.out 2>../cmd.err)
    RC=$?
    OUT=$(cat cmd.out)
    ERR=$(cat cmd.err)
    NEW=$(cd box && find . -mindepth 1 | head -n 5 | tr '\n' ' ')
}

if [ ! -x "$PY" ]; then PY=python3; fi
if ! "$CLI" demo-flash demo.bin >/dev/null 2>demo.err; then
    fail "demo-flash failed: $(cat demo.err)"
    echo "$passed passed, $failed failed"
    exit 1
fi

# ---- inputs that are not a fullflash
head -c 1048576 demo.bin >trunc_1MiB.bin
head -c 28311552 demo.bin >trunc_27MiB.bin
: >empty.bin
mkdir directory.bin
"$PY" -c '
import random, sys
sys.stdout.buffer.write(random.Random(71).randbytes(32 << 20))' >random.bin
cp demo.bin unreadable.bin
chmod 000 unreadable.bin

inputs=(trunc_1MiB.bin trunc_27MiB.bin empty.bin directory.bin missing.bin random.bin unreadable.bin)
for input in "${inputs[@]}"; do
    if [ "$input" = unreadable.bin ] && [ "$(id -u)" -eq 0 ]; then
        echo "note: running as root, which can read a mode-000 file: unreadable-file cases skipped"
        continue
    fi
    path=$WORK/$input
    for form in info pictures picture export; do
        case $form in
            info | pictures) args=("$form" "$path") ;;
            picture) args=(picture "$path" 5) ;;
            export) args=(export "$path" 5 -o x.gpf2) ;;
        esac
        before=$(fingerprint "$path")
        run_in_box "${args[@]}"
        what="korvatek-cli ${args[*]#$WORK/}"
        if [ $RC -ge 128 ]; then
            fail "$what crashed (status $RC)"
        elif [ $RC -ne 1 ]; then
            fail "$what exited $RC, expected 1 (stderr: $ERR)"
        else
            pass
        fi
        if [ -n "$ERR" ]; then pass; else fail "$what: no message on stderr"; fi
        if [ -z "$OUT" ]; then pass; else fail "$what printed on stdout: $(echo "$OUT" | head -n 2)"; fi
        if [ -z "$NEW" ]; then pass; else fail "$what left files behind: $NEW"; fi
        if [ "$(fingerprint "$path")" = "$before" ]; then pass; else fail "$what changed its input"; fi
    done
done

# ---- a fullflash that identifies but whose picture table is garbage
# Every record gets random bytes (sizes up to 65535 or negative, unknown types, data anywhere
# or past the end); some records get sizes that run off the canvas in each format.
cp demo.bin damaged.bin
"$PY" - damaged.bin <<'EOF'
import random, struct, sys
rng = random.Random(1701)
with open(sys.argv[1], "r+b") as f:
    f.seek(0x1B01958)
    table = bytearray(f.read(1701 * 12))
    for n in range(1701):
        rec = bytearray(rng.randbytes(12))
        kind = n % 5
        if kind == 1:    # plausible address, random size and type
            struct.pack_into("<I", rec, 8, 0xA0000000 | rng.randrange(0x2000000))
        elif kind == 2:  # oversized, known type
            struct.pack_into("<HHB", rec, 0, rng.choice([241, 300, 1000, 0x7FFF]), rng.choice([1, 321, 500]),
                             rng.choice([0x01, 0x05, 0x85, 0x07, 0x87, 0x08, 0x88, 0x0A, 0x8A]))
            struct.pack_into("<I", rec, 8, 0xA0000000 | rng.randrange(0x2000000))
        elif kind == 3:  # data that ends past the end of the image
            struct.pack_into("<HHB", rec, 0, rng.randrange(1, 241), rng.randrange(1, 321),
                             rng.choice([0x05, 0x85, 0x08, 0x88, 0x8A, 0x01]))
            struct.pack_into("<I", rec, 8, 0xA0000000 | (0x2000000 - rng.randrange(1, 64)))
        table[n * 12:n * 12 + 12] = rec
    f.seek(0x1B01958)
    f.write(table)
EOF
damaged_sum=$(fingerprint damaged.bin)
run_in_box pictures "$WORK/damaged.bin"
if [ $RC -eq 0 ] && [ "$(echo "$OUT" | wc -l)" -eq 1701 ]; then pass; else
    fail "pictures on a damaged table: status $RC, $(echo "$OUT" | wc -l) lines (stderr: ${ERR:0:200})"
fi
for n in 0 1 2 3 4 5 6 7 8 12 13 17 18 22 23 27 28 1700; do
    for ext in gpf2 bmp; do
        run_in_box export "$WORK/damaged.bin" "$n" -o "p.$ext"
        if [ $RC -ge 128 ]; then
            fail "export damaged.bin $n -o p.$ext crashed (status $RC)"
        elif [ $RC -eq 0 ] && [ -s "box/p.$ext" ]; then
            pass
        elif [ $RC -eq 1 ] && [ -n "$ERR" ] && [ -z "$NEW" ]; then
            pass
        else
            fail "export damaged.bin $n -o p.$ext: status $RC, files '$NEW', stderr '${ERR:0:200}'"
        fi
    done
    run_in_box picture "$WORK/damaged.bin" "$n"
    if [ $RC -le 1 ]; then pass; else fail "picture damaged.bin $n: status $RC (stderr: ${ERR:0:200})"; fi
done
for format in gpf2 bmp; do
    run_in_box export "$WORK/damaged.bin" all --dir out --format "$format"
    if [ $RC -le 1 ]; then pass; else fail "export damaged.bin all --format $format: status $RC (stderr: ${ERR:0:200})"; fi
done
if [ "$(fingerprint damaged.bin)" = "$damaged_sum" ]; then pass; else fail "damaged.bin was changed"; fi

# ---- usage errors: exit 2 and a usage line on stderr, nothing written
usage_case() {
    run_in_box "$@"
    local what="korvatek-cli $*"
    what=${what//$WORK\//}
    if [ $RC -eq 2 ]; then pass; else fail "$what exited $RC, expected 2 (stderr: ${ERR:0:200})"; fi
    if echo "$ERR" | grep -qi usage; then pass; else fail "$what: no usage line on stderr ('${ERR:0:200}')"; fi
    if [ -z "$NEW" ]; then pass; else fail "$what left files behind: $NEW"; fi
}
usage_case
usage_case frobnicate "$WORK/demo.bin"
usage_case info
usage_case info "$WORK/demo.bin" extra
usage_case picture "$WORK/demo.bin" abc
usage_case picture "$WORK/demo.bin"
usage_case export "$WORK/demo.bin" 5
usage_case export "$WORK/demo.bin" 5 -o
usage_case export "$WORK/demo.bin" all --format png --dir d
usage_case export "$WORK/demo.bin" all --format bmp
usage_case pictures "$WORK/demo.bin" --bogus

# ---- --help on every command: exit 0, the command's usage on stdout
for command in info pictures picture export patch apply decode encode convert make lumbra \
    fonts glyphs glyph font-size font-patch make-font demo-flash; do
    run_in_box "$command" --help
    if [ $RC -eq 0 ] && echo "$OUT" | grep -q -- "$command"; then pass; else
        fail "korvatek-cli $command --help: status $RC, stdout '$(echo "$OUT" | head -n 1)', stderr '$(echo "$ERR" | head -n 1)'"
    fi
    if [ -z "$NEW" ]; then pass; else fail "korvatek-cli $command --help left files behind: $NEW"; fi
done
run_in_box --help
if [ $RC -eq 0 ] && [ -n "$OUT" ]; then pass; else fail "korvatek-cli --help: status $RC"; fi

echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
