#!/usr/bin/env bash
# Installs the build tree into a temporary prefix and builds the hosted
# example from another directory with the quillmake that the PATH finds.
# Only quillmake may appear in <prefix>/bin: the installation's own tools,
# its links to the ARM cross tools among them, must not shadow the system's.
# Usage: tests/install.sh <source-dir> <build-dir>
set -euo pipefail
source=$1 build=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAIL: $*"; exit 1; }

cmake --install "$build" --prefix "$work/prefix" >/dev/null
[[ "$(ls "$work/prefix/bin")" == quillmake ]] || fail "<prefix>/bin holds: $(ls "$work/prefix/bin")"
for f in quillmake config.xml gcc_warning_options.xml cp rm mkdir chmod mv echo; do
  [[ -e "$work/prefix/lib/quillmake/bin/$f" ]] || fail "lib/quillmake/bin/$f is missing"
done
# The ARM tools lie where the tool macros look by default, and start.
for f in gcc/arm-none-eabi/bin/{cc1,as,ld,ar,objcopy} llvm/bin/clang; do
  tool=$work/prefix/lib/quillmake/$f
  [[ -x "$tool" ]] || fail "lib/quillmake/$f is missing"
  "$tool" --version >/dev/null 2>&1 </dev/null || fail "lib/quillmake/$f --version exited with $?"
done
# The system headers of the compiler proper and of the C library.
for f in gcc/arm-none-eabi/include/stddef.h gcc/arm-none-eabi/include-fixed/limits.h include/stdio.h; do
  [[ -f "$work/prefix/lib/quillmake/$f" ]] || fail "lib/quillmake/$f is missing"
done

cp -R "$source/examples/hosted" "$work/example"
rm -rf "$work/example/Output"
cd "$work/example"
PATH="$work/prefix/bin:/usr/bin:/bin" quillmake -host -config Debug hosted.tbp >"$work/out" 2>&1 ||
  fail "the build failed: $(cat "$work/out")"
expected='calc (Debug): sum_to(12) = 78, scale_by_eight(12) = 96
calc.txt: staged beside the program by the docs project.'
[[ "$(Output/Debug/calc 12)" == "$expected" ]] || fail "calc printed: $(Output/Debug/calc 12)"
echo "installed and built the example through the PATH"
