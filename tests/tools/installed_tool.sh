#!/usr/bin/env bash
# Installs the build into a temporary prefix and runs the installed `vexpers`
# tool's four commands end to end: their output, their files and their exit
# codes (0 ok, 1 data error, 2 usage error).
set -euo pipefail
build=${1:?usage: installed_tool.sh BUILD_DIR DATA_DIR}
data=${2:?usage: installed_tool.sh BUILD_DIR DATA_DIR}
prefix=$(mktemp -d)
work=$(mktemp -d)
trap 'rm -rf "$prefix" "$work"' EXIT
cmake --install "$build" --prefix "$prefix" >/dev/null
tool="$prefix/bin/vexpers"
[ -x "$tool" ] || { echo "no installed tool at $tool"; exit 1; }

fail() { echo "FAIL: $*"; exit 1; }
# expect CODE COMMAND...: runs the command, checks its exit code.
expect() {
  local want=$1; shift
  local got=0
  "$@" >"$work/out" 2>"$work/err" || got=$?
  [ "$got" -eq "$want" ] || { cat "$work/out" "$work/err"; fail "'$*' exited $got, expected $want"; }
}

# demo: the embedded default in memory, then both formats through files.
expect 0 "$tool" demo
grep -q '^ok$' "$work/out" || fail "demo did not say ok"
grep -q 'the tree read writes the same bytes' "$work/out" || fail "demo did not rewrite the same bytes"
expect 0 "$tool" demo --format binary --out "$work/scene.vxb"
expect 0 "$tool" demo --objects 5 --out "$work/small.json"
expect 0 "$tool" demo --help
grep -q -- '--objects' "$work/out" || fail "demo --help does not describe --objects"

# dump: the small scene matches the checked-in text.
expect 0 "$tool" dump "$work/small.json"
diff "$data/scene5.dump.txt" "$work/out" || fail "dump differs from the checked-in text"
expect 0 "$tool" dump "$work/scene.vxb"
grep -q 'DemoNode\* #1' "$work/out" || fail "dump lacks the first node's id"

# convert: binary to JSON and back gives the same bytes.
expect 0 "$tool" convert "$work/scene.vxb" "$work/scene.json"
expect 0 "$tool" convert "$work/scene.json" "$work/again.bin"
# --compact: one line that reads back to the same tree.
expect 0 "$tool" convert "$work/scene.vxb" "$work/compact.json" --compact
[ "$(wc -l < "$work/compact.json")" -eq 1 ] || fail "compact JSON is not one line"
expect 0 "$tool" convert "$work/compact.json" "$work/fromcompact.json"
cmp -s "$work/scene.json" "$work/fromcompact.json" || fail "compact JSON does not read back to the same tree"
cmp "$work/scene.vxb" "$work/again.bin" || fail "binary -> json -> binary changed the bytes"
expect 0 "$tool" convert "$work/scene.json" "$work/out.data" --to binary
cmp "$work/scene.vxb" "$work/out.data" || fail "--to binary wrote other bytes"
expect 2 "$tool" convert "$work/scene.json" "$work/out.data"

# check: good files pass; a cut file fails with the offset of the problem.
expect 0 "$tool" check "$work/scene.json"
grep -q 'ok: .* nodes' "$work/out" || fail "check did not report the counts"
head -c 1000 "$work/scene.vxb" >"$work/cut.vxb"
expect 1 "$tool" check "$work/cut.vxb"
grep -q 'offset 1000' "$work/err" || { cat "$work/err"; fail "check did not name the offset"; }
expect 1 "$tool" check "$work/missing.json"

# Usage errors and help.
expect 2 "$tool"
expect 2 "$tool" frobnicate
expect 2 "$tool" dump
expect 2 "$tool" demo --objects zero
expect 0 "$tool" --help
for command in dump convert check; do
  expect 0 "$tool" "$command" --help
  grep -q "usage: vexpers $command" "$work/out" || fail "$command --help"
done
echo "installed tool: ok"
