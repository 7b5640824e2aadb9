#!/usr/bin/env bash
# Installs what is needed, builds quillmake, builds the bundled example
# solution with the machine's own tools (-host) and runs the program it makes.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
scripts/build.sh build -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
set -x
build/bin/quillmake -host -config Debug -echo examples/hosted/hosted.tbp
examples/hosted/Output/Debug/calc 12
