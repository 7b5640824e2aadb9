#!/usr/bin/env bash
# Fails while docs/property-reference.md differs from what the property
# tables give now, and says how to bring it up to date.
# Usage: tests/property_reference.sh <property_reference program> <source-dir> <build-dir>
set -euo pipefail
fresh=$(mktemp)
trap 'rm -f "$fresh"' EXIT
"$1" "$fresh"
committed=$2/docs/property-reference.md
cmp -s "$committed" "$fresh" && { echo "docs/property-reference.md is up to date"; exit 0; }
diff -u "$committed" "$fresh" | head -n 40 || true
echo "docs/property-reference.md is stale; regenerate it with:"
echo "  cmake --build $3 --target update_property_reference"
exit 1
