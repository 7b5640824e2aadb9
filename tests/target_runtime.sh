#!/usr/bin/env bash
# The ARM runtime of the build tree: every library a link names exists for
# every variant, and for each Cortex-M family a C and a C++ program, linked
# by ld alone the way a link without a compiler driver does, with the
# installation's libraries and start-up file, run on an emulated board with
# the exact output and exit status. The printf selection decides whether
# %f is formatted and how large the image is.
# Usage: tests/target_runtime.sh <source-dir> <build-dir>
set -euo pipefail
source=$1 build=$2
lib=$build/lib
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

# Every library of every variant: the helper library by architecture.
exts=$(sed -n 's/^ *"\(_[a-z0-9_]*\)|.*/\1/p' "$source/cmake/target_runtime.cmake")
[[ $(wc -w <<<"$exts") -ge 20 ]] || fail "the variant list has $(wc -w <<<"$exts") entries"
for ext in $exts; do
  for name in $ext ${ext}_small; do
    libs=(libc libm libprobeio libunwind libcxxabi libcxxabi_noexcept)
    case $ext in
      _v6m_* | _v8mbl_*) ;;
      _v7m_* | _v7em_* | _v8mml_* | _v81mml_*) libs+=(libcm) ;;
      *) libs+=(libarm) ;;
    esac
    for l in "${libs[@]}"; do
      arm-none-eabi-ar t "$lib/$l$name.a" >/dev/null 2>&1 || fail "$l$name.a is missing or not an archive"
    done
  done
done

cat >"$work/main.c" <<'EOF'
#include <stdio.h>
int main(void) {
  int number = 0;
  float value = 0;
  sscanf("17 0.5", "%d %f", &number, &value);
  printf("%d %.2f\n", number + 25, 2 * value + 1.5);
  return 42;
}
EOF
cat >"$work/main.cpp" <<'EOF'
#include <cstdio>
struct Greeter { int value; Greeter() : value(7) { std::puts("constructed"); } };
static Greeter greeter;
int main() {
  try { throw greeter.value + 1; } catch (int caught) { std::printf("caught %d\n", caught); }
  return greeter.value;
}
EOF

# <name> <code origin> <RAM origin>: a linker script with the sections and
# symbols of the start-up file and the debug I/O library.
script() {
  cat >"$work/$1.ld" <<EOF
MEMORY { CODE (rx) : ORIGIN = $2, LENGTH = 1M
         RAM (rwx) : ORIGIN = $3, LENGTH = 16K }
ENTRY(Reset_Handler)
SECTIONS {
  .vectors : { __vectors_start__ = .; KEEP(*(.vectors)) } > CODE
  .text : {
    *(.text .text.*) *(.rodata .rodata.*) . = ALIGN(4);
    __preinit_array_start = .; KEEP(*(.preinit_array)) __preinit_array_end = .;
    __init_array_start = .; KEEP(*(SORT(.init_array.*) .init_array)) __init_array_end = .;
    __fini_array_start = .; KEEP(*(SORT(.fini_array.*) .fini_array)) __fini_array_end = .;
  } > CODE
  .ARM.extab : { *(.ARM.extab*) } > CODE
  .ARM.exidx : { __exidx_start = .; *(.ARM.exidx*) __exidx_end = .; } > CODE
  .data : ALIGN(4) { __data_start__ = .; *(.data .data.*) . = ALIGN(4); __data_end__ = .; } > RAM AT > CODE
  __data_load_start__ = LOADADDR(.data);
  .bss (NOLOAD) : ALIGN(4) { __bss_start__ = .; *(.bss .bss.* COMMON) . = ALIGN(4); __bss_end__ = .; } > RAM
  .heap (NOLOAD) : ALIGN(8) { __heap_start__ = .; . += __HEAPSIZE__; __heap_end__ = .; } > RAM
  .stack (NOLOAD) : ALIGN(8) { __stack_start__ = .; . += __STACKSIZE__; __stack_end__ = .; } > RAM
  __stack_process_start__ = .; __stack_process_end__ = .;
  end = .; __end__ = .;
}
EOF
}
script mps2 0x00000000 0x20000000
script an505 0x10000000 0x38000000
script microbit 0x00000000 0x20000000

# <LibExt> <board> <script> <compiler options>; v8-M Baseline code runs on
# a v8-M Mainline core.
rows=(
  "_v6m_t_le_eabi microbit microbit -mcpu=cortex-m0"
  "_v7m_t_le_eabi mps2-an385 mps2 -mcpu=cortex-m3"
  "_v7m_t_le_eabi_small mps2-an385 mps2 -mcpu=cortex-m3"
  "_v7em_t_le_eabi mps2-an386 mps2 -mcpu=cortex-m4 -mfloat-abi=soft"
  "_v7em_fpv4_sp_d16_hard_t_le_eabi mps2-an386 mps2 -mcpu=cortex-m4 -mfpu=fpv4-sp-d16 -mfloat-abi=hard"
  "_v8mbl_t_le_eabi mps2-an505 an505 -mcpu=cortex-m23"
  "_v8mml_t_le_eabi mps2-an505 an505 -march=armv8-m.main -mfloat-abi=soft"
  "_v8mml_fpv5_sp_d16_hard_t_le_eabi mps2-an505 an505 -march=armv8-m.main -mfpu=fpv5-sp-d16 -mfloat-abi=hard"
)
run() { # <elf> <board> <expected output> <expected status>
  local out status=0
  out=$(timeout 20 qemu-system-arm -M "$2" -nographic -semihosting-config enable=on,target=native \
    -kernel "$1" 2>&1 </dev/null) || status=$?
  [[ "$out" == "$3" && $status == "$4" ]] ||
    fail "$(basename "$1") on $2 printed '$out' with status $status, not '$3' with status $4"
}
for row in "${rows[@]}"; do
  read -r ext board ld options <<<"$row"
  dir=$work/$ext
  mkdir -p "$dir"
  arm-none-eabi-gcc $options -mthumb -Os -ffunction-sections -c "$work/main.c" -o "$dir/main.o"
  arm-none-eabi-g++ $options -mthumb -Os -ffunction-sections -c "$work/main.cpp" -o "$dir/cpp.o"
  arm-none-eabi-gcc $options -mthumb -Os -ffunction-sections -c "$build/targets/Cortex_M/startup.c" \
    -o "$dir/startup.o"
  helper=()
  [[ -e $lib/libcm$ext.a ]] && helper=("$lib/libcm$ext.a")
  link() { # <output> <debug I/O> <printf and scanf selection> <objects and libraries...>
    local output=$1 io=$2 selection=$3
    shift 3
    arm-none-eabi-ld -X --omagic -EL -T "$work/$ld.ld" --gc-sections --defsym=__STACKSIZE__=2048 \
      --defsym=__HEAPSIZE__=4096 --defsym=__do_debug_operation=__do_debug_operation_$io \
      --defsym=__vfprintf=__vfprintf_$selection --defsym=__vfscanf=__vfscanf_$selection \
      -o "$dir/$output" "$dir/startup.o" "$@" --start-group "$lib/libm$ext.a" "$lib/libc$ext.a" \
      "$lib/libprobeio$ext.a" "${helper[@]}" --end-group || fail "$ext: linking $output failed"
  }
  # No debugger polls the mailbox and M-profile cores have no DCC: both
  # fall back to the semihosting breakpoint.
  link float.elf mempoll float_long "$dir/main.o"
  link int.elf dcc int "$dir/main.o"
  link cpp.elf bkpt int "$dir/cpp.o" --defsym=__dso_handle=0 "$lib/libcxxabi$ext.a" "$lib/libunwind$ext.a"
  run "$dir/float.elf" "$board" "42 2.50" 42
  # Without floating point, the C library prints %f as "f", the small one
  # as nothing.
  if [[ $ext == *_small ]]; then run "$dir/int.elf" "$board" "42 " 42; else run "$dir/int.elf" "$board" "42 f" 42; fi
  run "$dir/cpp.elf" "$board" $'constructed\ncaught 8' 7
  sizes=$(arm-none-eabi-size "$dir/int.elf" "$dir/float.elf" | awk 'NR > 1 { print $1 }' | tr '\n' ' ')
  read -r int float <<<"$sizes"
  ((int < float)) || fail "$ext: the integer printf image ($int bytes) is not smaller than the float one ($float)"
done
((failures == 0)) || exit 1
echo "every library present; ${#rows[@]} variants ran their programs as expected"
