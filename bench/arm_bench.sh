#!/usr/bin/env bash
# Builds one library of N small C files for a Cortex-M4 (hard float,
# FPv4-SP-D16, -Og, debug level 2) four ways, with two slots each:
#
#   (a) quillmake in the direct form: cc1, then as, per file;
#   (b) ninja running arm-none-eabi-gcc -c, the commands of quillmake's
#       external-driver form (use_external_gcc "Yes");
#   (c) ninja running the commands of the direct form (cc1 && as && rm);
#   (d) quillmake in the external-driver form.
#
#   bench/arm_bench.sh [quillmake binary] [files] [runs] [wait]
#
# Defaults: 500 files, each figure the best of 3 runs (the worst is shown
# beside it), in rounds of the four forms in turn. Beside the wall time of a
# full build stands the processor time of all its processes. Before each
# full build the script waits, up to `wait` seconds (default 60), until the
# processors were 75% idle for two seconds; the last line counts the builds
# that started without that. The build.ninja files are made from what
# `quillmake -show` prints for each form, so ninja runs the very commands
# quillmake runs; before it times anything the script checks that, and that
# both forms compile with the same optimization and debug options. After
# each timed build it checks that the archive holds N objects and that a
# second run has nothing to do, and at the end that quillmake and ninja made
# the same archive from the same commands. ninja runs each command through
# /bin/sh and deletes the dependency file once it has read it into its own
# log; quillmake runs the programs itself, removes the .asm file of the
# direct form and the old archive itself, and keeps the dependency files.
# See README.md.
set -euo pipefail

quillmake=$(realpath "${1:-build-release/bin/quillmake}")
files=${2:-500}
runs=${3:-3}
wait=${4:-60}
root=$(realpath "$(mktemp -d "${TMPDIR:-/tmp}/quillmake-arm-bench-XXXXXX")")
trap 'rm -rf "$root"' EXIT

# solution FILE EXTERNAL: a solution of one library of all the sources, in
# the direct form or through the external driver.
solution() {
    local external=$1 f
    echo '<!DOCTYPE Tarnbench_Project_File>'
    echo '<solution Name="ArmBench" target="8" version="2">'
    echo '  <configuration Name="Common" arm_core_type="Cortex-M4" arm_fp_abi="Hard"' \
         'arm_fpu_type="FPv4-SP-D16" build_output_directory="out"' \
         'build_intermediate_directory="obj/$(ProjectName)" c_user_include_directories="inc"' \
         'linker_use_indirect_files="No"'
    if [[ $external == Yes ]]; then
        echo '    use_external_gcc="Yes" gcc_prefix="arm-none-eabi-" build_toolchain_directory=""'
    fi
    echo '  />'
    echo '  <configuration Name="Debug" gcc_optimization_level="Debug" gcc_debugging_level="Level 2" />'
    echo '  <project Name="lib">'
    echo '    <configuration Name="Common" project_type="Library" />'
    for ((f = 0; f < files; ++f)); do echo "    <file file_name=\"src/f$f.c\" />"; done
    echo '  </project>'
    echo '</solution>'
}

# generate DIRECTORY: the sources, a header per file and one shared by all,
# and the two solutions direct.tbp and external.tbp.
generate() {
    local dir=$1 f
    mkdir -p "$dir/src" "$dir/inc"
    printf '#pragma once\n#include <stddef.h>\n#include <stdint.h>\n#define BENCH_SEED 5381u\n#define BENCH_TABLE 8\n' > "$dir/inc/bench.h"
    for ((f = 0; f < files; ++f)); do
        printf '#pragma once\n#define F%d_SALT %du\nuint32_t f%d_mix(const uint8_t *data, size_t length);\n' \
            "$f" "$f" "$f" > "$dir/inc/f$f.h"
        printf '#include <string.h>\n#include "bench.h"\n#include "f%d.h"\n\nstatic uint32_t table[BENCH_TABLE];\n\nuint32_t f%d_mix(const uint8_t *data, size_t length)\n{\n    uint32_t sum = BENCH_SEED + F%d_SALT;\n    for (size_t i = 0; i < length; ++i)\n        sum = (sum << 5) + sum + data[i];\n    memmove(table + 1, table, sizeof table - sizeof table[0]);\n    table[0] = sum;\n    return sum ^ table[BENCH_TABLE - 1];\n}\n' \
            "$f" "$f" "$f" > "$dir/src/f$f.c"
    done
    solution No > "$dir/direct.tbp"
    solution Yes > "$dir/external.tbp"
}

clean='rm -rf out obj .ninja_log .ninja_deps'
quill() { "$quillmake" -config Debug -threadnum 2 "$@"; }

# shown SOLUTION: the commands quillmake would run, one a line, thread
# numbers dropped; fails when quillmake reports an error.
shown() {
    eval "$clean"
    local output
    output=$(quill -show "$1" 2> shown.err) && ! grep -q . shown.err ||
        { echo "quillmake -show $1 failed in $PWD:" >&2; cat shown.err >&2; return 1; }
    sed -e 's/^[0-9]*>//' <<< "$output"
}

# toNinja: build.ninja from the commands of `shown` on standard input. A
# compile is one edge: the driver's command, or cc1 && as && rm of the
# .asm file; the archive is rm, ar and, in the external form, ranlib.
toNinja() {
    awk -v dir="$PWD/" '
        function rel(p) { return index(p, dir) == 1 ? substr(p, length(dir) + 1) : p }
        function after(flag,   i) { for (i = 1; i < NF; ++i) if ($i == flag) return $(i + 1); return "" }
        function before(flag,   i) { for (i = 2; i <= NF; ++i) if ($i == flag) return $(i - 1); return "" }
        $1 == "rm" { next }
        $1 ~ /(^|\/)cc1$/ { asm = after("-o"); order[++m] = asm; cc1[asm] = $0; source[asm] = before("-o"); depfile[asm] = after("-MD"); next }
        $1 ~ /(^|\/)as$/ { asm = before("-o"); as[asm] = $0; object[asm] = after("-o"); next }
        $1 ~ /gcc$/ {
            compiles[++n] = sprintf("build %s: cc %s\n  dep = %s\n  cmd = %s\n", rel(after("-o")), before("-o"), after("-MF"), $0)
            next
        }
        $1 ~ /ar$/ {
            archive = $3; archiveCommand = $0
            for (i = 4; i <= NF; ++i) archiveInputs = archiveInputs " " rel($i)
            next
        }
        $1 ~ /ranlib$/ { ranlib = " && " $0; next }
        { print "unexpected command: " $0 > "/dev/stderr"; exit 1 }
        END {
            printf "rule cc\n  command = $cmd\n  deps = gcc\n  depfile = $dep\nrule run\n  command = $cmd\n"
            for (i = 1; i <= n; ++i) printf "%s", compiles[i]
            for (j = 1; j <= m; ++j) {
                asm = order[j]
                if (!(asm in as)) { print "no assembler run for " asm > "/dev/stderr"; exit 1 }
                printf "build %s: cc %s\n  dep = %s\n  cmd = %s && %s && exec rm -f %s\n",
                    rel(object[asm]), source[asm], depfile[asm], cc1[asm], as[asm], asm
            }
            printf "build %s: run%s\n  cmd = rm -f %s && %s%s\n", archive, archiveInputs, archive, archiveCommand, ranlib
        }'
}

# checkNinja FILE SHOWN: fails unless ninja would run, apart from removing
# files, exactly the commands quillmake showed, one compile per source.
checkNinja() {
    ninja -f "$1" -t commands | sed -e 's/ && /\n/g' | grep -v '^\(exec \)\?rm ' | sort > ninja.txt
    grep -v '^rm ' "$2" | sort | diff -u - ninja.txt > /dev/null ||
        { echo "$1 differs from the commands quillmake shows in $PWD" >&2; exit 1; }
    [[ $(grep -c '^build obj/.*: cc ' "$1") == "$files" ]] ||
        { echo "$1 has no compile for some of the $files files" >&2; exit 1; }
}

# Fails unless the compiles of the two forms have the same optimization and
# debug options (those starting -O, -g or -fdebug).
checkSameLevels() {
    local direct external
    direct=$(grep -m1 '/cc1 ' direct.txt | tr ' ' '\n' | grep -E '^-(O|g|fdebug)' | sort | tr '\n' ' ')
    external=$(grep -m1 'gcc .* -c ' external.txt | tr ' ' '\n' | grep -E '^-(O|g|fdebug)' | sort | tr '\n' ' ')
    [[ $direct == "$external" ]] ||
        { echo "optimization or debug options differ: direct '$direct', external '$external'" >&2; exit 1; }
}

# Fails unless the build left an archive of every object and has nothing
# more to do.
checkBuilt() {
    local tool=$1 solution=$2 count
    count=$(arm-none-eabi-ar t out/lib.a | wc -l)
    [[ $count == "$files" ]] || { echo "$tool: out/lib.a holds $count objects, not $files" >&2; exit 1; }
    case $tool in
    quillmake) [[ -z $(quill -show "$solution") ]] ;;
    ninja) ninja -f "$solution" -n | grep -q "no work to do" ;;
    esac || { echo "$tool: work left after a build of $solution in $PWD" >&2; exit 1; }
}

# The share of the processors that was idle over the next two seconds, in
# percent (the fields of /proc/stat: user, nice, system, idle, iowait, irq,
# softirq, steal).
idlePercent() {
    local before after
    read -r -a before < /proc/stat
    sleep 2
    read -r -a after < /proc/stat
    local busy=0 idle=0 i
    for ((i = 1; i <= 8; ++i)); do
        if ((i == 4 || i == 5)); then idle=$((idle + after[i] - before[i])); else busy=$((busy + after[i] - before[i])); fi
    done
    echo $((100 * idle / (idle + busy + 1)))
}

# Waits, at most `wait` seconds, until the machine is mostly idle; other
# builds on it change a figure by far more than the forms differ. Counts the
# runs that started without that.
unquiet=0
quiet() {
    local deadline=$((SECONDS + wait))
    while (($(idlePercent) < 75)); do
        if ((SECONDS >= deadline)); then unquiet=$((unquiet + 1)); return; fi
        sleep 3
    done
}

# Milliseconds of one run of "$@", its output dropped: the wall time, then
# the processor time of all its processes (user and system).
timed() {
    local start end cpu
    start=$(date +%s%N)
    cpu=$("$@" > /dev/null 2>&1 && times) || { echo "failed: $*" >&2; exit 1; }
    end=$(date +%s%N)
    # The second line of `times` is what the children used.
    echo "$(((end - start) / 1000000)) $(milliseconds ${cpu#*$'\n'})"
}

# The sum of times written as `times` writes them (1m2.345s) in milliseconds.
milliseconds() {
    local total=0 time seconds
    for time in "$@"; do
        seconds=${time#*m}
        seconds=${seconds%s}
        total=$((total + ${time%%m*} * 60000 + 10#${seconds/./}))
    done
    echo $total
}

generate "$root"
cd "$root"
shown external.tbp > external.txt
toNinja < external.txt > external.ninja
checkNinja external.ninja external.txt
forms=(b d)
if shown direct.tbp > direct.txt; then
    toNinja < direct.txt > direct.ninja
    checkNinja direct.ninja direct.txt
    checkSameLevels
    forms=(a b c d)
else
    echo "The direct form can't build here: (a) and (c) are left out."
fi

declare -A name command solutionOf toolOf archives full fullCpu noop
name=([a]="(a) quillmake, direct form" [b]="(b) ninja, arm-none-eabi-gcc -c"
      [c]="(c) ninja, direct-form commands" [d]="(d) quillmake, external driver")
command=([a]="quill direct.tbp" [b]="ninja -j2 -f external.ninja"
         [c]="ninja -j2 -f direct.ninja" [d]="quill external.tbp")
solutionOf=([a]=direct.tbp [b]=external.ninja [c]=direct.ninja [d]=external.tbp)
toolOf=([a]=quillmake [b]=ninja [c]=ninja [d]=quillmake)

echo "The compile of src/f0.c in each form:"
grep -m1 '/src/f0\.c ' external.txt
if [[ ${#forms[@]} == 4 ]]; then grep -E '(/cc1 .*/src/f0\.c |/as .*/f0\.asm )' direct.txt; fi
echo

# Round by round, each form a full build from scratch and then one with
# nothing to do, so that a change in the machine's load falls on all forms.
echo "$files C files in one library for a Cortex-M4, best (worst) of $runs runs, milliseconds; load $(cut -d' ' -f1-3 /proc/loadavg)"
for ((r = 0; r < runs; ++r)); do
    for form in "${forms[@]}"; do
        eval "$clean"
        quiet
        read -r wall cpu <<< "$(timed ${command[$form]})"
        full[$form]+=" $wall"
        fullCpu[$form]+=" $cpu"
        checkBuilt "${toolOf[$form]}" "${solutionOf[$form]}"
        archives[$form]=$(md5sum < out/lib.a)
        read -r wall cpu <<< "$(timed ${command[$form]})"
        noop[$form]+=" $wall"
    done
done
# The same commands make the same archive.
if [[ -n ${archives[a]:-} && ${archives[a]} != "${archives[c]}" ]] ||
   [[ ${archives[b]} != "${archives[d]}" ]]; then
    echo "quillmake and ninja made different archives from the same commands" >&2
    exit 1
fi

# "best (worst)" of a list of milliseconds.
range() {
    local sorted
    sorted=($(tr ' ' '\n' <<< "$1" | grep . | sort -n))
    echo "${sorted[0]} (${sorted[-1]})"
}

printf '%-34s %18s %18s %12s\n' form "full build -j2" "processor time" "no-op"
for form in "${forms[@]}"; do
    printf '%-34s %18s %18s %12s\n' "${name[$form]}" "$(range "${full[$form]}")" \
        "$(range "${fullCpu[$form]}")" "$(range "${noop[$form]}")"
done
echo "load at the end $(cut -d' ' -f1-3 /proc/loadavg); $unquiet of $((runs * ${#forms[@]})) full builds started on a busy machine"
