#!/usr/bin/env bash
# Builds quillmake with gcov instrumentation in build-coverage/, runs the whole
# test suite there and prints the line and branch coverage of src/ (the code,
# not its tests). Branches that only throw, or that the compiler made and no
# source line can take, are left out of the branch figure.
# Usage: scripts/coverage.sh [--files]   (--files adds the figure of each file)
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh --coverage

dir=build-coverage
scripts/build.sh "$dir" -DCMAKE_BUILD_TYPE=Debug -DQUILLMAKE_BENCH=OFF \
  -DCMAKE_CXX_FLAGS="--coverage" -DCMAKE_C_FLAGS="--coverage" \
  -DCMAKE_EXE_LINKER_FLAGS="--coverage"
find "$dir" -name '*.gcda' -delete
(cd "$dir" && ctest --output-on-failure -j "$(nproc)")

report=(gcovr --root . --object-directory "$dir" -j "$(nproc)"
  --filter 'src/' --exclude '.*_test\.cpp' --exclude '.*_test_fixture\.h' --exclude '.*_test_tree\.h'
  --exclude-throw-branches --exclude-unreachable-branches)
if [[ "${1:-}" == "--files" ]]; then
  "${report[@]}" --txt - --sort-percentage
  "${report[@]}" --branches --txt - --sort-percentage
fi
"${report[@]}" --print-summary --txt "$dir/coverage.txt"
