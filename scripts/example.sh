#!/usr/bin/env bash
# Installs what is needed, builds quillmake, builds the bundled firmware
# example for a Cortex-M3 with the default ARM toolchain and runs it on an
# emulated board.
set -euo pipefail
cd "$(dirname "$0")/.."
step() { printf '\n== %s\n' "$*"; }

step "Checking the packages that building needs"
scripts/install-deps.sh
step "Building quillmake in build/ (the first build takes several minutes on two cores)"
scripts/build.sh build -DCMAKE_BUILD_TYPE=RelWithDebInfo
step "Building the firmware example examples/firmware/firmware.tbp (Cortex-M3, the default toolchain), configuration Debug, with -echo to show each command"
build/bin/quillmake -config Debug -echo examples/firmware/firmware.tbp
step "Running the firmware on QEMU's mps2-an385 board (Cortex-M3), printing through semihosting"
timeout 60 qemu-system-arm -M mps2-an385 -nographic -semihosting-config enable=on,target=native \
  -kernel examples/firmware/Output/Debug/hello.elf
step "Done. quillmake is build/bin/quillmake; the firmware is examples/firmware/Output/Debug/hello.elf"
ls examples/firmware/Output/Debug
