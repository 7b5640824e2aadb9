#!/usr/bin/env bash
# Installs the Debian packages that building and testing quillmake need.
# Usage: scripts/install-deps.sh [--fuzz | --coverage]
# Only missing packages are installed; apt runs as root (through sudo if need be).
set -euo pipefail

packages=(g++ cmake ninja-build libgtest-dev zlib1g-dev libbz2-dev)
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
