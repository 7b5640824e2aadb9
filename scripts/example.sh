#!/usr/bin/env bash
# Installs what is needed, builds quillmake and runs it on the bundled example
# solution. The exit status is quillmake's.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
scripts/build.sh build -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
set -x
build/bin/quillmake -config Debug examples/blink/blink.tbp
