#!/usr/bin/env bash
# Installs what is needed, builds quillmake, builds the bundled example
# solution with the machine's own tools (-host) and runs the program it makes.
set -euo pipefail
cd "$(dirname "$0")/.."
step() { printf '\n== %s\n' "$*"; }

step "Checking the packages that building needs"
scripts/install-deps.sh
step "Building quillmake in build/ (the first build takes several minutes on two cores)"
scripts/build.sh build -DCMAKE_BUILD_TYPE=RelWithDebInfo
step "Building the example examples/hosted/hosted.tbp, configuration Debug, with -echo to show each command"
build/bin/quillmake -host -config Debug -echo examples/hosted/hosted.tbp
step "Running the program it made: examples/hosted/Output/Debug/calc 12"
examples/hosted/Output/Debug/calc 12
step "Done. quillmake is build/bin/quillmake; the example's outputs are in examples/hosted/Output/Debug/"
ls examples/hosted/Output/Debug
