#!/usr/bin/env bash
# Builds the same C solution with quillmake -host, ninja and make, side by
# side: P library projects of F files each and a program that links them,
# built from scratch with two slots, again with nothing to do, and again
# after one project's header is touched; then a solution of N small files
# built once per tool and timed with nothing to do.
#
#   bench/host_bench.sh [quillmake binary] [projects] [files] [no-op files] [runs]
#
# Defaults: 20 projects of 100 files, 10,000 files for the no-op case, and
# each figure the best of 3 runs (the worst is shown beside it). All three
# tools run the very commands that `quillmake -host -show` prints; the script
# checks that before it times anything. Two differences remain: quillmake
# deletes the old archive itself, where ninja and make run `rm -f`; and the
# solution turns off linker_use_indirect_files, so that an archive of 100
# objects is one command line rather than a response file. See README.md.
set -euo pipefail
source "$(dirname "$(realpath "$0")")/timing.sh"

quillmake=$(realpath "${1:-build-release/bin/quillmake}")
projects=${2:-20}
files=${3:-100}
noopFiles=${4:-10000}
runs=${5:-3}
root=$(realpath "$(mktemp -d "${TMPDIR:-/tmp}/quillmake-host-bench-XXXXXX")")
trap 'rm -rf "$root"' EXIT

# generate DIRECTORY PROJECTS FILES: the sources, the solution bench.tbp, and
# build.ninja and a Makefile that run the commands listed in commands.txt.
generate() {
    local dir=$1 count=$2 perProject=$3
    mkdir -p "$dir/inc" "$dir/app"
    local p f objects libraries dependencies=
    printf '#pragma once\n#include <stddef.h>\n#define COMMON_BASE 7\n' > "$dir/inc/common.h"
    {
        printf '#include <stdio.h>\n'
        for ((p = 0; p < count; ++p)); do printf 'int p%d_f0(int x);\n' "$p"; done
        printf 'int main(void)\n{\n    int sum = 0;\n'
        for ((p = 0; p < count; ++p)); do printf '    sum += p%d_f0(%d);\n' "$p" "$p"; done
        printf '    printf("%%d\\n", sum);\n    return 0;\n}\n'
    } > "$dir/app/main.c"

    local compile="gcc -xc -c -fmessage-length=0 -Iinc -MD -MF"
    local compileTail="-ffunction-sections -fdata-sections -g"
    exec 3> "$dir/bench.tbp" 4> "$dir/build.ninja" 5> "$dir/Makefile" 6> "$dir/commands.txt"
    echo '<!DOCTYPE Tarnbench_Project_File>' >&3
    echo '<solution Name="Bench" version="2">' >&3
    echo '  <configuration Name="Debug" />' >&3
    echo '  <configuration Name="Common" build_output_directory="out"' \
         'build_intermediate_directory="obj/$(ProjectName)" c_user_include_directories="inc"' \
         'linker_use_indirect_files="No" />' >&3
    printf 'rule cc\n  command = $cmd\n  deps = gcc\n  depfile = $dep\nrule run\n  command = $cmd\n' >&4
    printf '.DEFAULT_GOAL := out/app\n$(shell mkdir -p out' >&5
    for ((p = 0; p < count; ++p)); do printf ' obj/p%d' "$p" >&5; done
    printf ' obj/app)\n-include $(wildcard obj/*/*.d)\n' >&5

    # One compile: its line in each of the four files.
    compileFile() {
        local project=$1 name=$2
        local object=obj/$project/$name.o depfile=$dir/obj/$project/$name.d
        local command="$compile $depfile -MQ $object $compileTail $dir/$project/$name.c -o $object"
        echo "    <file file_name=\"$project/$name.c\" />" >&3
        printf 'build %s: cc %s/%s.c\n  dep = %s\n  cmd = %s\n' "$object" "$project" "$name" "$depfile" "$command" >&4
        printf '%s: %s/%s.c\n\t%s\n' "$object" "$project" "$name" "$command" >&5
        echo "$command" >&6
    }

    for ((p = 0; p < count; ++p)); do
        mkdir -p "$dir/p$p"
        printf '#pragma once\n#include "common.h"\n#define P%d_BASE %d\n' "$p" "$p" > "$dir/inc/p$p.h"
        echo "  <project Name=\"p$p\">" >&3
        echo '    <configuration Name="Common" project_type="Library" />' >&3
        objects=
        for ((f = 0; f < perProject; ++f)); do
            printf '#include <stdio.h>\n#include <string.h>\n#include "p%d.h"\n\nint p%d_f%d(int x)\n{\n    char text[32];\n    snprintf(text, sizeof text, "%%d", x + COMMON_BASE + P%d_BASE + %d);\n    return (int)strlen(text);\n}\n' \
                "$p" "$p" "$f" "$p" "$f" > "$dir/p$p/f$f.c"
            compileFile "p$p" "f$f"
            objects+=" $dir/obj/p$p/f$f.o"
        done
        echo '  </project>' >&3
        local archive="ar -rcs out/p$p.a$objects"
        printf 'build out/p%d.a: run%s\n  cmd = rm -f out/p%d.a && %s && ranlib out/p%d.a\n' \
            "$p" "${objects//$dir\//}" "$p" "$archive" "$p" >&4
        printf 'out/p%d.a:%s\n\t@rm -f out/p%d.a\n\t%s\n\tranlib out/p%d.a\n' \
            "$p" "${objects//$dir\//}" "$p" "$archive" "$p" >&5
        printf '%s\nranlib out/p%d.a\n' "$archive" "$p" >&6
        libraries+=" $dir/out/p$p.a"
        dependencies+="${dependencies:+;}p$p"
    done

    echo '  <project Name="app">' >&3
    echo "    <configuration Name=\"Common\" project_type=\"Executable\" project_dependencies=\"$dependencies\" />" >&3
    compileFile app main
    echo '  </project>' >&3
    echo '</solution>' >&3
    local link="gcc -g -Wl,--start-group $dir/obj/app/main.o$libraries -Wl,--end-group -o out/app"
    printf 'build out/app: run obj/app/main.o%s\n  cmd = %s\n' "${libraries//$dir\//}" "$link" >&4
    printf 'out/app: obj/app/main.o%s\n\t%s\n' "${libraries//$dir\//}" "$link" >&5
    echo "$link" >&6
    exec 3>&- 4>&- 5>&- 6>&-
}

clean='rm -rf out obj .ninja_log .ninja_deps'
quill() { "$quillmake" -host -config Debug -threadnum 2 "$@" bench.tbp; }

# Fails unless quillmake would run exactly the commands of commands.txt (its
# archive step deletes the old archive itself, so that line is left out).
checkCommands() {
    eval "$clean"
    quill -show | sed -e 's/^[0-9]*>//' | grep -v '^rm ' | sort > shown.txt
    sort commands.txt | diff -u - shown.txt > /dev/null ||
        { echo "quillmake -show differs from the generated commands in $PWD" >&2; exit 1; }
    eval "$clean"
}

# Fails if `tool` would still build something.
nothingToDo() {
    case $1 in
    quillmake) [[ -z $(quill -show) ]] ;;
    ninja) ninja -n | grep -q "no work to do" ;;
    make) make -q ;;
    esac || { echo "$1: work left after a build in $PWD" >&2; exit 1; }
}

# "best (worst)" of `runs` runs of "$@", with `prepare` run before each.
range() {
    local prepare=$1
    shift
    local best= worst= r ms
    for ((r = 0; r < runs; ++r)); do
        eval "$prepare"
        ms=$(timed "$@")
        if [[ -z $best || $ms -lt $best ]]; then best=$ms; fi
        if [[ -z $worst || $ms -gt $worst ]]; then worst=$ms; fi
    done
    echo "$best ($worst)"
}

# After a sleep, so that the header is a second newer than every object.
touchHeader='sleep 1.1; touch inc/p0.h'

echo "$projects libraries of $files files and a program; best (worst) of $runs runs, milliseconds; load $(cut -d' ' -f1-3 /proc/loadavg)"
generate "$root/full" "$projects" "$files"
cd "$root/full"
checkCommands
printf '%-10s %18s %14s %18s\n' tool "full build -j2" "no-op" "touch one header"
for tool in quillmake ninja make; do
    case $tool in
    quillmake) command=(quill) ;;
    ninja) command=(ninja -j2) ;;
    make) command=(make -j2) ;;
    esac
    full=$(range "$clean" "${command[@]}")
    nothingToDo $tool
    noop=$(range ":" "${command[@]}")
    touched=$(range "$touchHeader" "${command[@]}")
    printf '%-10s %18s %14s %18s\n' "$tool" "$full" "$noop" "$touched"
done

echo
echo "$noopFiles files in $projects libraries and a program, built once per tool; no-op best (worst) of $runs runs; load $(cut -d' ' -f1-3 /proc/loadavg)"
generate "$root/noop" "$projects" $((noopFiles / projects))
cd "$root/noop"
checkCommands
printf '%-10s %18s %14s\n' tool "full build -j2" "no-op"
ninjaFull=$(timed ninja -j2)
nothingToDo ninja
ninjaNoop=$(range ":" ninja -j2)
eval "$clean"
quillFull=$(timed quill)
nothingToDo quillmake
quillNoop=$(range ":" quill)
# make reads the dependency files that quillmake's build left.
nothingToDo make
makeNoop=$(range ":" make -j2)
printf '%-10s %18s %14s\n' quillmake "$quillFull" "$quillNoop" ninja "$ninjaFull" "$ninjaNoop" make "-" "$makeNoop"
