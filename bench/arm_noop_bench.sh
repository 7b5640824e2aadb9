#!/usr/bin/env bash
# Times a build with nothing to do of one ARM solution of N small C files in
# P library projects, beside the same solution built with -host: after a
# full build with each toolchain, R no-op runs of each, taking turns, in
# milliseconds (best, median, worst), and the same of the difference within
# each turn. The no-op build reads the solution, expands each file's
# properties, stats its inputs and outputs and reads its dependency file,
# for both toolchains alike; the ARM toolchain has more properties and
# macros per file.
#
#   bench/arm_noop_bench.sh [quillmake binary] [files] [projects] [runs]
set -euo pipefail
source "$(dirname "$(realpath "$0")")/timing.sh"

quillmake=$(realpath "${1:-build-release/bin/quillmake}")
files=${2:-2000}
projects=${3:-20}
runs=${4:-5}
root=$(realpath "$(mktemp -d "${TMPDIR:-/tmp}/quillmake-arm-noop-XXXXXX")")
trap 'rm -rf "$root"' EXIT
cd "$root"

perProject=$((files / projects))
mkdir -p inc
printf '#pragma once\n#include <stdint.h>\n#define BASE 7\n' > inc/common.h
{
    echo '<!DOCTYPE Tarnbench_Project_File>'
    echo '<solution Name="Noop" target="8" version="2">'
    echo '  <configuration Name="Debug" />'
    echo '  <configuration Name="Common" arm_core_type="Cortex-M4" arm_fp_abi="Hard" arm_fpu_type="FPv4-SP-D16"' \
         'build_output_directory="out/$(Configuration)" c_user_include_directories="inc"' \
         'build_intermediate_directory="obj/$(Configuration)/$(ProjectName)" linker_use_indirect_files="No" />'
    for ((p = 0; p < projects; ++p)); do
        mkdir -p "p$p"
        echo "  <project Name=\"p$p\">"
        echo '    <configuration Name="Common" project_type="Library" />'
        for ((f = 0; f < perProject; ++f)); do
            printf '#include "common.h"\nint32_t p%d_f%d(int32_t x) { return x * %d + BASE; }\n' "$p" "$f" "$f" > "p$p/f$f.c"
            echo "    <file file_name=\"p$p/f$f.c\" />"
        done
        echo '  </project>'
    done
    echo '</solution>'
} > noop.tbp
# The same solution for the machine's own tools, which take no target.
sed 's/ target="8"//' noop.tbp > host.tbp

# Builds a solution fully, with the options that follow it, and checks that
# nothing is left to do.
build() {
    local solution=$1
    shift
    "$quillmake" "$@" -config Debug -threadnum 2 "$solution" > /dev/null 2>&1 || { echo "build failed: $*" >&2; exit 1; }
    [[ -z $("$quillmake" "$@" -config Debug -threadnum 2 -show "$solution") ]] ||
        { echo "work left after a build: $*" >&2; exit 1; }
}

# "best median worst" in milliseconds of a list of microseconds.
summary() {
    sort -n | awk '{ v[NR] = $1 / 1000 } END { printf "%6.1f %6.1f %6.1f\n", v[1], v[int((NR + 1) / 2)], v[NR] }'
}

build noop.tbp
build host.tbp -host
# The two no-ops take turns, so that a change in the machine's load falls on
# both alike.
# The first of each pair alternates too, and each pair's difference is kept:
# their median is steadier than the difference of the two medians.
arm=() host=() difference=()
for ((r = 0; r < runs; ++r)); do
    if ((r % 2 == 0)); then
        a=$(timedMicroseconds "$quillmake" -config Debug -threadnum 2 noop.tbp)
        h=$(timedMicroseconds "$quillmake" -host -config Debug -threadnum 2 host.tbp)
    else
        h=$(timedMicroseconds "$quillmake" -host -config Debug -threadnum 2 host.tbp)
        a=$(timedMicroseconds "$quillmake" -config Debug -threadnum 2 noop.tbp)
    fi
    arm+=("$a") host+=("$h") difference+=("$((a - h))")
done
echo "$files files in $projects libraries; no-op of $runs runs each, taking turns, milliseconds; load $(cut -d' ' -f1-3 /proc/loadavg)"
printf '%-24s %6s %6s %6s\n' "" best median worst
printf '%-24s %s\n' "ARM, direct form" "$(printf '%s\n' "${arm[@]}" | summary)"
printf '%-24s %s\n' "-host" "$(printf '%s\n' "${host[@]}" | summary)"
printf '%-24s %s\n' "ARM minus -host, paired" "$(printf '%s\n' "${difference[@]}" | summary)"
