#!/usr/bin/env bash
# Installs what is needed, builds quillmake, builds the bundled firmware
# example for a Cortex-M3 and runs it on an emulated board, then builds the
# hosted example with the machine's own tools (-host) and runs its program.
set -euo pipefail
cd "$(dirname "$0")/.."
step() { printf '\n== %s\n' "$*"; }

step "Checking the packages that building needs"
scripts/install-deps.sh
step "Building quillmake in build/ (the first build takes several minutes on two cores)"
scripts/build.sh build -DCMAKE_BUILD_TYPE=RelWithDebInfo
step "Building the firmware example examples/cortex-m3/cortex-m3.tbp, configuration Debug, with -echo to show each command"
build/bin/quillmake -config Debug -echo examples/cortex-m3/cortex-m3.tbp
step "Running the firmware on QEMU's mps2-an385 board (Cortex-M3), printing through semihosting"
timeout 60 qemu-system-arm -M mps2-an385 -nographic -semihosting-config enable=on,target=native \
  -kernel examples/cortex-m3/Output/Debug/hello.axf
step "Building the example examples/hosted/hosted.tbp, configuration Debug, with -echo to show each command"
build/bin/quillmake -host -config Debug -echo examples/hosted/hosted.tbp
step "Running the program it made: examples/hosted/Output/Debug/calc 12"
examples/hosted/Output/Debug/calc 12
step "Done. quillmake is build/bin/quillmake; the examples' outputs are in examples/cortex-m3/Output/Debug/ and examples/hosted/Output/Debug/"
ls examples/hosted/Output/Debug
