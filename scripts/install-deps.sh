#!/usr/bin/env bash
# Installs the Debian packages that building and testing quillmake need.
# Usage: scripts/install-deps.sh [--fuzz | --coverage]
# Only missing packages are installed; apt runs as root (through sudo if need be).
set -euo pipefail

packages=(g++ cmake ninja-build libgtest-dev zlib1g-dev libbz2-dev)
# The ARM cross tools that the installation links to (Debian 12's clang is
# clang-14), their C and C++ libraries, and the emulator that runs their
# programs in the tests.
packages+=(gcc-arm-none-eabi binutils-arm-none-eabi libnewlib-arm-none-eabi
  libstdc++-arm-none-eabi-newlib qemu-system-arm clang lld)
# Code analysis runs clang-tidy; the C++ modules scan needs a clang-scan-deps
# that writes P1689, which Debian 12 has in clang-tools-19, with the headers
# of clang 19.
packages+=(clang-tidy clang-tools-19 clang-19 libclang-common-19-dev)
# The user guide's test joins compilation databases as the guide shows.
packages+=(jq)
case "${1:-}" in
  --fuzz) packages+=(clang-14 libclang-rt-14-dev) ;;
  --coverage) packages+=(gcovr) ;;
esac

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done
[[ ${#missing[@]} -eq 0 ]] && exit 0

sudo=()
[[ $(id -u) -ne 0 ]] && sudo=(sudo)
echo "installing: ${missing[*]}"
"${sudo[@]}" apt-get update -q
"${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "${missing[@]}" </dev/null
