# The start every command-line test script shares: the CLI's path from the one argument, a
# private work folder (removed on exit) with its own TMP, stderr joined to stdout, the Python
# test library on the path, and the pass/fail counters with the closing summary line.
# Sourced as: source "$(dirname "$0")/common.sh" "$@"
if [ $# -ne 1 ] || [ ! -x "$1" ]; then echo "usage: $0 PATH/TO/korvatek-cli" >&2; exit 2; fi
CLI=$(realpath "$1")
HERE=$(cd "$(dirname "$0")" && pwd)
export PYTHONPATH=$HERE  # korvatek_testlib for the Python checks
PY=/usr/bin/python3
exec 2>&1
WORK=$(mktemp -d)
trap 'rm -rf "$WORK"' EXIT
cd "$WORK" || exit 1
mkdir tmp
export TMP=$WORK/tmp  # the commands keep their temporary files here

passed=0 failed=0
pass() { passed=$((passed + 1)); }
fail() { failed=$((failed + 1)); echo "FAIL: $*"; }
finish() { echo "$passed passed, $failed failed"; [ "$failed" -eq 0 ]; exit; }
lib() { "$PY" "$HERE/korvatek_testlib.py" "$@"; }
# Runs the CLI with stdout in cmd.out and stderr in cmd.err; sets RC. A signal is a failure.
run() {
    "$CLI" "$@" >cmd.out 2>cmd.err
    RC=$?
    [ $RC -lt 128 ] || fail "korvatek-cli $* crashed (status $RC)"
}
stderr() { head -n 4 cmd.err | tr '\n' '|'; }
expect_rc() { [ "$RC" -eq "$1" ] && pass || fail "$2: exit $RC, expected $1 (stderr: $(stderr))"; }
expect_line() { grep -Fqx -- "$1" cmd.err && pass || fail "$2: no line '$1' on stderr: $(stderr)"; }
