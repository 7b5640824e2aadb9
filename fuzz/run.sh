#!/usr/bin/env bash
# Builds a libFuzzer harness with address and undefined-behaviour checks and
# runs it for a while:
#
#   fuzz/run.sh <target> [seconds] [libFuzzer options...]
#
# The harness is fuzz/<target>_fuzzer.cpp. New inputs collect in
# fuzz/corpus-<target>/ (not checked in), seeded from fuzz/seeds/<target>/;
# the binary and any crashing input go to fuzz/artifacts/<target>/.
# Installs clang++-14 and libclang-rt-14-dev if they are missing.
set -euo pipefail

# The sources each harness needs besides itself. Add a target with one row.
declare -A target_sources=(
    [xml]="src/project/xml/qxml_document.cpp
           src/project/xml/xml_document.cpp
           src/project/xml/xml_element.cpp
           src/project/xml/xml_node.cpp
           src/project/xml/xml_parser.cpp
           src/project/xml/xml_writer.cpp"
    [indirect]="src/frontend/arg_parse.cpp
                src/frontend/program_log.cpp"
    [expression]="src/support/base_type.cpp
                  src/support/c_style_lexer.cpp
                  src/support/expression.cpp
                  src/support/expression_parser.cpp
                  src/support/expression_value.cpp
                  src/support/lexer.cpp
                  src/support/simple_expression_parser.cpp"
    [json]="src/support/exceptions.cpp
            src/support/json_parser.cpp
            src/support/json_value.cpp"
    [xmlpp]="src/environment/date_time_macros.cpp
             src/environment/system_macros.cpp
             src/environment/user_directories.cpp
             src/support/base_type.cpp
             src/support/c_style_lexer.cpp
             src/support/expression.cpp
             src/support/expression_parser.cpp
             src/support/expression_value.cpp
             src/support/lexer.cpp
             src/support/simple_expression_parser.cpp
             src/project/macro_expansion.cpp
             src/project/macro_property_class.cpp
             src/project/property_class.cpp
             src/project/xml/include_chain.cpp
             src/project/xml/qxml_document.cpp
             src/project/xml/xml_document.cpp
             src/project/xml/xml_element.cpp
             src/project/xml/xml_node.cpp
             src/project/xml/xml_parser.cpp
             src/project/xml/xml_pp.cpp
             src/project/xml/xml_subtree.cpp
             src/project/xml/xml_writer.cpp
             src/project/xml/xmlpp2.cpp
             src/support/exceptions.cpp
             src/support/file_info.cpp
             src/support/file_path.cpp
             src/support/file_time.cpp
             src/support/file_utils.cpp
             src/support/normalise_path.cpp
             src/support/trace.cpp"
)

root=$(cd "$(dirname "$0")/.." && pwd)
target=${1:-}
if [[ -z $target || -z ${target_sources[$target]+set} ]]; then
    echo "usage: fuzz/run.sh <target> [seconds] [libFuzzer options...]" >&2
    echo "targets: ${!target_sources[*]}" >&2
    exit 2
fi
seconds=${2:-60}
shift $(( $# >= 2 ? 2 : 1 ))

cd "$root"
scripts/install-deps.sh --fuzz
artifacts=fuzz/artifacts/$target
corpus=fuzz/corpus-$target
seeds=fuzz/seeds/$target
mkdir -p "$artifacts" "$corpus"

# shellcheck disable=SC2086 # the source list is split on purpose
clang++-14 -std=c++20 -g -O1 -fsanitize=fuzzer,address,undefined \
    -fno-sanitize-recover=undefined -Isrc \
    "fuzz/${target}_fuzzer.cpp" ${target_sources[$target]} \
    -o "$artifacts/${target}_fuzzer"

options=(-max_total_time="$seconds" -artifact_prefix="$artifacts/" -print_final_stats=1)
[[ -f fuzz/$target.dict ]] && options+=(-dict="fuzz/$target.dict")
inputs=("$corpus")
[[ -d $seeds ]] && inputs+=("$seeds")
exec "$artifacts/${target}_fuzzer" "${options[@]}" "$@" "${inputs[@]}"
