#!/usr/bin/env bash
# Times ldplan on a generated memory map of a large microcontroller: three
# memory segments and GROUPS register groups of 50 registers, each register
# with four bit fields (10,000 registers and 40,000 bit fields by default),
# with the default Cortex-M placement and both overflow checks.
#
#   bench/ldplan_bench.sh [ldplan binary] [groups] [runs]
#
# Each figure is the best of RUNS runs (default 20) of the whole program, as
# a build runs it: start, read and evaluate the map and the placement, write
# the script. The script is checked for the three segments. See README.md.
set -euo pipefail

ldplan=$(realpath "${1:-build-release/bin/ldplan}")
groups=${2:-200}
runs=${3:-20}
work=$(mktemp -d "${TMPDIR:-/tmp}/quillmake-ldplan-bench-XXXXXX")
trap 'rm -rf "$work"' EXIT

awk -v groups="$groups" 'BEGIN {
    print "<Root name=\"BenchChip\">"
    print "  <MemorySegment name=\"FLASH\" start=\"0x08000000\" size=\"0x00100000\" access=\"ReadOnly\"/>"
    print "  <MemorySegment name=\"RAM\" start=\"0x20000000\" size=\"0x00020000\"/>"
    print "  <MemorySegment name=\"BACKUP\" start=\"0x40024000\" size=\"0x1000\"/>"
    for (g = 0; g < groups; g++) {
        printf "  <RegisterGroup name=\"P%d\" start=\"0x%08X\" description=\"peripheral %d\">\n", g, 0x40000000 + g * 0x400, g
        for (r = 0; r < 50; r++) {
            printf "    <Register name=\"P%d_R%d\" start=\"+0x%X\" size=\"4\" access=\"%s\">\n", g, r, r * 4, r % 3 ? "ReadWrite" : "ReadOnly"
            for (b = 0; b < 4; b++)
                printf "      <BitField name=\"F%d\" start=\"+%d\" size=\"%d\" description=\"field %d\"/>\n", b, b * 8, 8, b
            print "    </Register>"
        }
        print "  </RegisterGroup>"
    }
    print "</Root>"
}' >"$work/map.xml"

# Wall-clock time and the processor time of the process (user + system), in
# milliseconds, each the best of the runs; on a busy machine the second is the
# steadier figure.
best_wall= best_cpu=
TIMEFORMAT='%3R %3U %3S'
for ((i = 0; i < runs; i++)); do
    read -r wall user sys < <({ time "$ldplan" -memory-map-file "$work/map.xml" -check-segment-overflow \
        -check-section-overflow "$work/out.ld"; } 2>&1)
    wall=$((10#${wall/./})) cpu=$((10#${user/./} + 10#${sys/./}))
    [[ -z $best_wall || $wall -lt $best_wall ]] && best_wall=$wall
    [[ -z $best_cpu || $cpu -lt $best_cpu ]] && best_cpu=$cpu
done
[[ $(grep -c 'ORIGIN = ' "$work/out.ld") == 3 ]] || { echo "the script lacks segments" >&2; exit 1; }
printf 'map: %d bytes, %d registers, %d bit fields\n' "$(stat -c %s "$work/map.xml")" $((groups * 50)) \
    $((groups * 200))
printf 'ldplan -memory-map-file: %d ms wall, %d ms cpu (best of %d)\n' "$best_wall" "$best_cpu" "$runs"
