#!/usr/bin/env bash
# Configures and builds one build tree.
# Usage: scripts/build.sh <build-dir> [extra cmake arguments...]
set -euo pipefail
cd "$(dirname "$0")/.."
dir=$1; shift
cmake -S . -B "$dir" -G Ninja -DQUILLMAKE_WERROR=ON "$@" >/dev/null
ninja -C "$dir"
