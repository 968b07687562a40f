# The start every command-line test script shares: the CLI's path from the one argument, a
# private work folder (removed on exit) with its own TMP, stderr joined to stdout, the Python
# test library on the path, the pass/fail counters with the closing summary line, and the
# checks the scripts have in common.
# Sourced as: source "$(dirname "$0")/common.sh" "$@"
if [ $# -ne 1 ] || [ ! -x "$1" ]; then echo "usage: $0 PATH/TO/korvatek-cli" >&2; exit 2; fi
CLI=$(realpath "$1")
HERE=$(cd "$(dirname "$0")" && pwd)
export PYTHONPATH=$HERE  # korvatek_testlib for the Python checks
PY=/usr/bin/python3
exec 2>&1
WORK=$(mktemp -d)
trap 'chmod -R u+rwx "$WORK" 2>/dev/null; rm -rf "$WORK"' EXIT
cd "$WORK" || exit 1
mkdir tmp
export TMP=$WORK/tmp  # the commands keep their temporary files here

passed=0 failed=0
pass() { passed=$((passed + 1)); }
fail() { failed=$((failed + 1)); echo "FAIL: $*"; }
finish() { echo "$passed passed, $failed failed"; [ "$failed" -eq 0 ]; exit; }
lib() { "$PY" "$HERE/korvatek_testlib.py" "$@"; }
# The Windows program (run through wine) has no pipes, devices, POSIX permissions, inodes or
# limits to ask about; those cases are for the POSIX program.
posix() {
    if [ -n "${KORVATEK_CLI_WINDOWS:-}" ]; then echo "skipped on Windows: $1"; return 1; fi
}

# Runs the CLI with stdout in cmd.out and stderr in cmd.err (and in ERR); sets RC. A signal, or
# a hang stopped by the timeout (124), is a failure.
run() {
    timeout 300 "$CLI" "$@" </dev/null >cmd.out 2>cmd.err
    RC=$? ERR=$(cat cmd.err)
    [ $RC -lt 124 ] || fail "korvatek-cli $* crashed or hung (status $RC)"
    return $RC
}
stderr() { head -n 4 cmd.err | tr '\n' '|'; }
expect_rc() { [ "$RC" -eq "$1" ] && pass || fail "$2: exit $RC, expected $1 (stderr: $(stderr))"; }
expect_line() { grep -Fqx -- "$1" cmd.err && pass || fail "$2: no line '$1' on stderr: $(stderr)"; }
expect_err() { grep -Fq -- "$1" cmd.err && pass || fail "$2: '$1' not on stderr: $(stderr)"; }
expect_missing() { [ ! -e "$1" ] && pass || fail "$2: $1 was written"; }
same() { cmp -s "$1" "$2" && pass || fail "$3: $(cmp "$1" "$2" 2>&1 | head -n 1)"; }  # GOT WANT WHAT
# A refusal: the status, the message as a line of stderr (any message when none is given;
# make-font names the file after the message), OUTPUT not written.
refused() {  # STATUS MESSAGE OUTPUT ARGS...
    local rc=$1 msg=$2 out=$3
    shift 3
    rm -rf "$out"
    run "$@"
    expect_rc "$rc" "$*"
    if [ -z "$msg" ]; then [ -s cmd.err ] && pass || fail "$*: no message on stderr"
    elif [ "$1" = make-font ]; then expect_err "$msg" "$*"
    else expect_line "$msg" "$*"; fi
    expect_missing "$out" "$*"
}
# Adds a checker's "N passed, M failed" to the counts and shows its FAIL lines; a checker that
# was skipped (SKIP) adds nothing.
add_counts() {  # OUTPUT WHAT
    grep -E '^(FAIL|SKIP|independent)' "$1" | head -n 40 | sed "s/^/$2: /"
    grep -q '^SKIP' "$1" && return
    # shellcheck disable=SC2046  # the summary line split into its words
    set -- "$2" $(grep -E '^[0-9]+ passed, [0-9]+ failed$' "$1" | tail -n 1)
    [ $# -eq 5 ] && passed=$((passed + $2)) failed=$((failed + $4)) || fail "$1 printed no summary"
}
# The demonstration fullflash as $FLASH, and the check that a command left it as it was.
make_demo() {
    FLASH=$WORK/demo.bin
    "$CLI" demo-flash "$FLASH" >/dev/null 2>demo.err || { fail "demo-flash: $(cat demo.err)"; finish; }
    flash_sum=$(sha256sum <"$FLASH")
}
unchanged() { [ "$(sha256sum <"$FLASH")" = "$flash_sum" ] && pass || fail "$1 changed the fullflash"; }
# A replaced output is a new file renamed into place, never the old one written over: it gets
# a new inode, a hard link to the old file keeps the old bytes, and a reader that holds the old
# file open reads them to the end.
replaced_beside() {  # OUTPUT ARGS...: runs the command, which must replace OUTPUT
    local out=$1 old_inode=""
    shift
    if posix "inodes and hard links of $out"; then
        cp "$out" "$out.before" && ln -f "$out" "$out.link" && old_inode=$(stat -c %i "$out")
        exec 3<"$out"
    fi
    run "$@"
    expect_rc 0 "$* over an existing file"
    [ -n "$old_inode" ] || return 0
    [ "$(stat -c %i "$out")" != "$old_inode" ] && pass || fail "$*: $out was written in place (same inode)"
    same "$out.link" "$out.before" "$*: a hard link to the old $out"
    cmp -s - "$out.before" <&3 && pass || fail "$*: a reader holding the old $out open saw it change"
    exec 3<&-
    rm -f "$out.before" "$out.link"
}
