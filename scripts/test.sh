#!/usr/bin/env bash
# Installs what is needed, builds quillmake and runs the whole test suite twice:
# in the normal build (build/) and in a build with the address and
# undefined-behaviour sanitizers (build-asan/).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh

jobs=$(nproc)
scripts/build.sh build -DCMAKE_BUILD_TYPE=RelWithDebInfo
(cd build && ctest --output-on-failure -j "$jobs")

scripts/build.sh build-asan -DCMAKE_BUILD_TYPE=Debug -DQUILLMAKE_SANITIZE=ON -DQUILLMAKE_BENCH=OFF
(cd build-asan && ASAN_OPTIONS=detect_leaks=1 ctest --output-on-failure -j "$jobs")
