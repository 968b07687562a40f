#!/usr/bin/env bash
# korvatek-cli on inputs that are not a usable fullflash, and on bad command lines.
#   - info, pictures, picture, export on truncated, empty, random, missing, unreadable files
#     and on a directory: exit 1, a message on stderr, the input untouched, nothing written;
#     (a fullflash whose picture table is garbage is in end_to_end.sh, under the independent
#     decoder);
#   - usage errors: exit 2 with a usage line; --help on every command: exit 0.
#
# usage: bad_input.sh PATH/TO/korvatek-cli
set -u
source "$(dirname "$0")/common.sh" "$@"
# A fingerprint of a path: content hash of a file, listing of a directory, or "missing".
fingerprint() {
    if [ -d "$1" ]; then echo "dir:$(find "$1" -printf '%P %s %m %T@\n' | sort | sha256sum)"
    elif [ -e "$1" ]; then echo "file:$(stat -c '%s %a' "$1"):$({ sha256sum <"$1"; } 2>/dev/null || echo unreadable)"
    else echo missing; fi
}
# Runs one command in an empty folder; sets RC, OUT, ERR, NEW (files it left) and WHAT.
run_in_box() {
    rm -rf box && mkdir box
    (cd box && timeout 300 "$CLI" "$@" </dev/null >../cmd.out 2>../cmd.err)
    RC=$?
    OUT=$(cat cmd.out) ERR=$(cat cmd.err)
    NEW=$(cd box && find . -mindepth 1 | head -n 5 | tr '\n' ' ')
    WHAT="korvatek-cli $*"
    WHAT=${WHAT//$WORK\//}
    [ $RC -lt 124 ] || fail "$WHAT crashed or hung (status $RC)"
}

make_demo

# ---- inputs that are not a fullflash
head -c 1048576 demo.bin >trunc_1MiB.bin
head -c 28311552 demo.bin >trunc_27MiB.bin
: >empty.bin
mkdir directory.bin
"$PY" -c 'import random, sys; sys.stdout.buffer.write(random.Random(71).randbytes(32 << 20))' >random.bin
cp demo.bin unreadable.bin
chmod 000 unreadable.bin
for input in trunc_1MiB.bin trunc_27MiB.bin empty.bin directory.bin missing.bin random.bin unreadable.bin; do
    if [ "$input" = unreadable.bin ] && [ "$(id -u)" -eq 0 ]; then
        echo "note: running as root, which can read a mode-000 file: unreadable-file cases skipped"
        continue
    fi
    path=$WORK/$input
    for args in "info $path" "pictures $path" "picture $path 5" "export $path 5 -o x.gpf2"; do
        before=$(fingerprint "$path")
        # shellcheck disable=SC2086
        run_in_box $args
        [ $RC -eq 1 ] && pass || fail "$WHAT exited $RC, expected 1 (stderr: $ERR)"
        [ -n "$ERR" ] && pass || fail "$WHAT: no message on stderr"
        [ -z "$OUT" ] && pass || fail "$WHAT printed on stdout: $(echo "$OUT" | head -n 2)"
        [ -z "$NEW" ] && pass || fail "$WHAT left files behind: $NEW"
        [ "$(fingerprint "$path")" = "$before" ] && pass || fail "$WHAT changed its input"
    done
done

# ---- usage errors: exit 2 and a usage line on stderr, nothing written
# shellcheck disable=SC2034  # named in the table below
D=$WORK/demo.bin
while IFS= read -r args; do
    # shellcheck disable=SC2086
    eval "run_in_box $args"
    [ $RC -eq 2 ] && pass || fail "$WHAT exited $RC, expected 2 (stderr: ${ERR:0:200})"
    echo "$ERR" | grep -qi usage && pass || fail "$WHAT: no usage line on stderr ('${ERR:0:200}')"
    [ -z "$NEW" ] && pass || fail "$WHAT left files behind: $NEW"
done <<'EOF'

frobnicate "$D"
info
info "$D" extra
picture "$D" abc
picture "$D"
export "$D" 5
export "$D" 5 -o
export "$D" all --format png --dir d
export "$D" all --format bmp
pictures "$D" --bogus
EOF

# ---- --help on every command: exit 0, the command's usage on stdout
for command in info pictures picture export patch apply decode encode convert make lumbra \
    fonts glyphs glyph font-size font-patch make-font demo-flash; do
    run_in_box "$command" --help
    [ $RC -eq 0 ] && echo "$OUT" | grep -q -- "$command" && pass || fail "$WHAT: status $RC, stdout '$(echo "$OUT" | head -n 1)'"
    [ -z "$NEW" ] && pass || fail "$WHAT left files behind: $NEW"
done
run_in_box --help
[ $RC -eq 0 ] && [ -n "$OUT" ] && pass || fail "korvatek-cli --help: status $RC"
finish
