#!/usr/bin/env bash
# Fails if the subsystem libraries stop forming a stack: every library may use
# only those below it, in its CMake links and in its #includes (tests
# included), so that no cycle can form between them.
# Usage: tests/library_stack.sh <source-dir>
set -euo pipefail
cd "${1:-$(dirname "$0")/..}/src"

# Bottom to top: a library, its directory, and its include prefix.
stack=(support xml environment project build toolchain frontend)
declare -A directory=([support]=support [xml]=project/xml [environment]=environment [project]=project
                      [build]=build [toolchain]=toolchain [frontend]=frontend)

level() {
  local i
  for i in "${!stack[@]}"; do [[ ${stack[$i]} == "$1" ]] && { echo "$i"; return; }; done
  echo -1
}

# The library that owns an #include path such as "project/xml/xml_node.h".
owner() {
  case $1 in
    project/xml/*) echo xml ;;
    *) echo "${1%%/*}" ;;
  esac
}

failures=0
fail() { echo "$*" >&2; failures=$((failures + 1)); }

for lib in "${stack[@]}"; do
  mine=$(level "$lib")
  dir=${directory[$lib]}

  # The libraries that target_link_libraries names for this one.
  links=$(sed -n "s/^target_link_libraries($lib \(.*\))$/\1/p" "$dir/CMakeLists.txt" |
          sed 's/\bPUBLIC\b\|\bPRIVATE\b\|\bINTERFACE\b//g')
  for used in $links; do
    theirs=$(level "$used")
    ((theirs >= 0)) || continue
    ((theirs < mine)) || fail "$dir/CMakeLists.txt: $lib links $used, which is not below it"
  done

  # The headers that its sources and tests include. Files of a library
  # nested in this one's directory (project/xml in project) are its own.
  exclude=()
  [[ $lib == project ]] && exclude=(-not -path 'project/xml/*')
  while IFS=: read -r file line text; do
    used=$(owner "$(sed 's/.*#include "\([^"]*\)".*/\1/' <<<"$text")")
    theirs=$(level "$used")
    ((theirs >= 0)) || continue
    ((theirs <= mine)) || fail "$file:$line: $lib includes from $used, which is above it"
  done < <(find "$dir" -maxdepth 2 \( -name '*.cpp' -o -name '*.h' \) "${exclude[@]}" -print0 |
           xargs -0 grep -Hn '^#include "[a-z]*/' || true)
done

if ((failures)); then
  echo "the libraries no longer form a stack (bottom to top: ${stack[*]})" >&2
  exit 1
fi
echo "the libraries form a stack: ${stack[*]}"
