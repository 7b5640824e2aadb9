#!/usr/bin/env bash
# Every option that README.md names is one that `quillmake -help` lists, or
# is said in the README to be one that -help doesn't list.
# Usage: tests/readme_options.sh <source-dir> <quillmake>
set -euo pipefail
readme=$1/README.md
help=$("$2" -help 2>/dev/null)
status=0
for option in $(grep -o '`-[a-z][a-z_-]*' "$readme" | tr -d '`' | sort -u); do
  grep -qE -- "(^|[[:space:]])$option([[:space:]]|$)" <<<"$help" && continue
  grep -q -- "\`$option\`, an option that \`-help\` doesn't list" "$readme" && continue
  echo "README names $option, which -help doesn't list"
  status=1
done
exit $status
