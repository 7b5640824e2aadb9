#!/usr/bin/env bash
# Builds quillmake for release (optimised, in build-release/) and installs it,
# stripped, under a prefix (default /usr/local): the installation in
# <prefix>/lib/quillmake/, and a link to the program in <prefix>/bin.
# Usage: scripts/install.sh [prefix]
set -euo pipefail
cd "$(dirname "$0")/.."
prefix=${1:-/usr/local}
scripts/install-deps.sh
scripts/build.sh build-release -DCMAKE_BUILD_TYPE=Release -DQUILLMAKE_TESTS=OFF -DQUILLMAKE_BENCH=OFF
cmake --install build-release --prefix "$prefix" --strip
echo "installed: $prefix/bin/quillmake -> $prefix/lib/quillmake/bin/quillmake"
