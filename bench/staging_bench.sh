#!/usr/bin/env bash
# Runs the same work with quillmake, ninja and make, side by side: a staging
# project that copies N small files (default 2,000), built from scratch with
# two slots, then again with nothing to do; and two commands that sleep, to
# measure quillmake's own processor time while its children run.
#
#   bench/staging_bench.sh [quillmake binary] [files] [runs]
#
# Each figure is the best of `runs` (default 5). See README.md.
set -euo pipefail

quillmake=$(realpath "${1:-build-release/bin/quillmake}")
files=${2:-2000}
runs=${3:-5}
work=$(mktemp -d "${TMPDIR:-/tmp}/quillmake-staging-bench-XXXXXX")
trap 'rm -rf "$work"' EXIT
cd "$work"

# The inputs and the three descriptions of the same copies.
mkdir -p src
{
    echo '<!DOCTYPE Tarnbench_Project_File>'
    echo '<solution Name="Bench" version="2">'
    echo '  <configuration Name="Debug" />'
    echo '  <project Name="Stage">'
    echo '    <configuration Name="Common" project_type="Staging" build_output_directory="out"
                   stage_set_readonly="Don&apos;t" />'
    for ((i = 0; i < files; ++i)); do
        printf 'file %d\n' "$i" > "src/f$i.txt"
        echo "    <file file_name=\"src/f$i.txt\" />"
    done
    echo '  </project>'
    echo '</solution>'
} > stage.tbp
{
    echo 'rule cp'
    echo '  command = cp $in $out'
    for ((i = 0; i < files; ++i)); do
        echo "build out/src/f$i.txt: cp src/f$i.txt"
    done
} > build.ninja
{
    echo 'all: $(patsubst src/%,out/src/%,$(wildcard src/*.txt))'
    echo 'out/src/%.txt: src/%.txt'
    printf '\t@mkdir -p $(dir $@)\n'
    printf '\t@cp $< $@\n'
} > Makefile
mkdir -p sleep
cat > sleep.tbp <<'EOF'
<!DOCTYPE Tarnbench_Project_File>
<solution Name="Sleep" version="2">
  <configuration Name="Debug" />
  <project Name="Stage">
    <configuration Name="Common" project_type="Staging" build_output_directory="out"
                   stage_command="sleep 3" stage_set_readonly="Don't" />
    <file file_name="a" />
    <file file_name="b" />
  </project>
</solution>
EOF
touch a b

# Best wall time in milliseconds of running "$@" `runs` times, with `prepare`
# run before each.
best() {
    local prepare=$1
    shift
    local best_ms=
    for ((r = 0; r < runs; ++r)); do
        eval "$prepare"
        local start end ms
        start=$(date +%s%N)
        "$@" > /dev/null
        end=$(date +%s%N)
        ms=$(((end - start) / 1000000))
        if [[ -z $best_ms || $ms -lt $best_ms ]]; then best_ms=$ms; fi
    done
    echo "$best_ms"
}

clean='rm -rf out .ninja_log .ninja_deps'
echo "files: $files, best of $runs runs"
printf '%-12s %14s %14s\n' tool "full build ms" "no-op ms"
q_full=$(best "$clean" "$quillmake" stage.tbp -config Debug -threadnum 2)
q_noop=$(best ":" "$quillmake" stage.tbp -config Debug -threadnum 2)
printf '%-12s %14s %14s\n' quillmake "$q_full" "$q_noop"
n_full=$(best "$clean" ninja -j2)
n_noop=$(best ":" ninja -j2)
printf '%-12s %14s %14s\n' ninja "$n_full" "$n_noop"
m_full=$(best "$clean" make -j2)
m_noop=$(best ":" make -j2)
printf '%-12s %14s %14s\n' make "$m_full" "$m_noop"

rm -rf out
/usr/bin/time -f '%e %U %S' -o sleep.time "$quillmake" sleep.tbp -config Debug -threadnum 2 > /dev/null
read -r wall user system < sleep.time
echo "two 3-second commands on two slots: ${wall} s wall, quillmake ${user} s user + ${system} s system" \
     "($(awk -v w="$wall" -v u="$user" -v s="$system" 'BEGIN { printf "%.2f", 100 * (u + s) / w }')% of wall)"
