#!/usr/bin/env bash
# ldplan on fixtures: exact scripts, errors, and a Cortex-M program linked
# against the default placement and run under QEMU. Usage: tests/ldplan.sh <ldplan>
set -euo pipefail
ldplan=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
segments='FLASH RX 0x00000000 0x00400000;RAM RWX 0x20000000 0x00400000'

# Segments and the default placement: the head of the script.
"$ldplan" -memory-map-segments "$segments" -symbols '__STACKSIZE__=2048;__do_op=__do_op_bkpt' default.ld
expected='/* Made by ldplan: changes are lost when it is made again. */

MEMORY
{
  FLASH (rx) : ORIGIN = 0x00000000, LENGTH = 0x00400000
  RAM (rwx) : ORIGIN = 0x20000000, LENGTH = 0x00400000
}

PROVIDE(__STACKSIZE__ = 2048);
PROVIDE(__do_op = __do_op_bkpt);
PROVIDE(__STACKSIZE_PROCESS__ = 0);
PROVIDE(__HEAPSIZE__ = 1024);

ENTRY(Reset_Handler)'
[[ "$(head -n 14 default.ld)" == "$expected" ]] || fail "default.ld begins: $(head -n 14 default.ld)"

# A memory map with an import and macros, and a placement of its own.
mkdir sub
echo '<Root><MemorySegment name="SRAM" start="0x20000000" size="$(RAMSIZE)"/></Root>' >sub/ram.xml
echo '<Root><MemorySegment name="ROM" start="0x08000000" size="0x10000" access="ReadOnly"/>
  <Import filename="sub/ram.xml"/></Root>' >map.xml
cat >placement.xml <<'EOF'
<Root>
  <MemorySegment name="ROM" start="+0x1000" size="0x2000">
    <ProgramSection name=".boot" start="+0x10" keep="Yes" inputsections="*(.boot) *(.boot2)" fill="0xFF"/>
    <ProgramSection name=".data" runin="$(RAM)" alignment="4" load_address_symbol="__data_load_start__"
                    address_symbol="__data_start__ start" end_symbol="__data_end__" size_symbol="__data_size__"/>
    <ProgramSection name=".heap" load="No" size="__HEAPSIZE__"/>
  </MemorySegment>
</Root>
EOF
"$ldplan" -memory-map-file map.xml -memory-map-macros RAMSIZE=0x8000 -section-placement-file placement.xml \
  -check-segment-overflow -check-section-overflow -default-fill-pattern 0xA5A5A5A5 -symbols '' placed.ld
expected='/* Made by ldplan: changes are lost when it is made again. */

MEMORY
{
  ROM (rx) : ORIGIN = 0x08000000, LENGTH = 0x00010000
  SRAM (rwx) : ORIGIN = 0x20000000, LENGTH = 0x00008000
  ROM_part1 (rx) : ORIGIN = 0x08001000, LENGTH = 0x00002000
}

PROVIDE(__STACKSIZE__ = 1024);
PROVIDE(__STACKSIZE_PROCESS__ = 0);
PROVIDE(__HEAPSIZE__ = 1024);

SECTIONS
{
  .boot ORIGIN(ROM_part1) + 0x00000010 :
  {
    KEEP(*(.boot))
    KEEP(*(.boot2))
    ASSERT(. <= ORIGIN(ROM_part1) + LENGTH(ROM_part1), "section .boot does not fit in segment ROM_part1");
  } > ROM_part1 =0xFF

  .data : ALIGN(4)
  {
    __data_start__ = .;
    start = .;
    *(.data .data.*)
    __data_end__ = .;
    ASSERT(. <= ORIGIN(SRAM) + LENGTH(SRAM), "section .data does not fit in segment SRAM");
  } > SRAM AT > ROM_part1 =0xA5A5A5A5
  __data_size__ = SIZEOF(.data);
  __data_load_start__ = LOADADDR(.data);
  ASSERT(LOADADDR(.data) + SIZEOF(.data) <= ORIGIN(ROM_part1) + LENGTH(ROM_part1), "section .data does not fit in segment ROM_part1")

  .heap (NOLOAD) :
  {
    __ldplan_start_heap = .;
    *(.heap .heap.*)
    ASSERT(. - __ldplan_start_heap <= __HEAPSIZE__, "section .heap is larger than its size __HEAPSIZE__");
    . += . - __ldplan_start_heap < __HEAPSIZE__ ? __HEAPSIZE__ - (. - __ldplan_start_heap) : 0;
    ASSERT(. <= ORIGIN(ROM_part1) + LENGTH(ROM_part1), "section .heap does not fit in segment ROM_part1");
  } > ROM_part1
}'
[[ "$(cat placed.ld)" == "$expected" ]] || fail "placed.ld differs: $(diff <(echo "$expected") placed.ld)"

# Bad input: one error line, status 1, no script.
echo 'not XML' >bad.xml
echo '<Root><MemorySegment name="NOPE"/></Root>' >unknown.xml
while IFS='|' read -r args message; do
  rm -f out.ld
  status=0
  eval "\"\$ldplan\" $args" >stdout 2>stderr || status=$?
  [[ $status == 1 && "$(cat stderr)" == "ldplan: error: $message" && ! -s stdout && ! -e out.ld ]] ||
    fail "ldplan $args: status $status, stderr '$(cat stderr)'"
done <<'EOF'
-memory-map-segments "$segments" out.ld -bogus|unknown option '-bogus'
out.ld|no memory segments: give -memory-map-segments or -memory-map-file
-memory-map-file bad.xml out.ld|memory map file 'bad.xml' is not an XML document
-memory-map-file none.xml out.ld|memory map file 'none.xml' does not exist
-memory-map-segments "FLASH RX 0 0x1000;RAM RW 0x800 0x1000" out.ld|memory segments 'FLASH' and 'RAM' overlap
-memory-map-segments "FLASH RX 0xFFFFF000 0x2000" out.ld|memory segment 'FLASH' (start 0xFFFFF000, size 0x00002000) goes beyond the 32-bit address space
-memory-map-segments "FLASH RQ 0 1" out.ld|bad access 'RQ' of memory segment 'FLASH': expected R, RX, RW or RWX
-memory-map-segments "FLASH RX 0 0x100" out.ld|the runin of section .data names $(RAM), but there is no writable memory segment
-memory-map-segments "$segments" -section-placement-file unknown.xml out.ld|the section placement names memory segment 'NOPE', which doesn't exist
-memory-map-segments "$segments" -symbols "A=1;B" out.ld|bad symbol 'B': expected NAME=VALUE
EOF

# A program linked against the default placement starts, finds its data
# copied and its bss cleared, and exits through semihosting.
cat >prog.c <<'EOF'
extern unsigned __data_load_start__[], __data_start__[], __data_end__[], __bss_start__[], __bss_end__[],
    __stack_end__[], __heap_start__[], __heap_end__[];
void Reset_Handler(void);
__attribute__((section(".vectors"), used)) void *const vectors[] = {__stack_end__, Reset_Handler};
int counter = 42, zeroed;
void Reset_Handler(void) {
    for (unsigned *s = __data_load_start__, *d = __data_start__; d < __data_end__;) *d++ = *s++;
    for (unsigned *d = __bss_start__; d < __bss_end__;) *d++ = 0;
    register int r0 __asm__("r0") = 0x18, r1 __asm__("r1") = 0x20024;  /* exit: failure */
    if (counter == 42 && zeroed == 0 && __heap_end__ - __heap_start__ == 512) r1 = 0x20026;
    __asm__ volatile("bkpt 0xAB" : : "r"(r0), "r"(r1) : "memory");
}
EOF
arm-none-eabi-gcc -mcpu=cortex-m3 -mthumb -O1 -c prog.c -o prog.o
arm-none-eabi-ld -T default.ld --defsym=__HEAPSIZE__=2048 prog.o -o prog.elf || fail "the link failed"
[[ $(timeout 20 qemu-system-arm -M mps2-an385 -nographic -semihosting-config enable=on,target=native \
  -kernel prog.elf 2>&1; echo $?) == 0 ]] || fail "the program did not exit with status 0 under QEMU"

# A program that does not fit fails its link with the segment's name.
"$ldplan" -memory-map-segments 'FLASH RX 0 0x1000;RAM RWX 0x20000000 0x800' -check-segment-overflow small.ld
arm-none-eabi-ld -T small.ld prog.o -o small.elf 2>stderr && fail "an oversized program linked"
grep -qx 'arm-none-eabi-ld: section .stack does not fit in segment RAM' stderr || fail "overflow: $(cat stderr)"

((failures == 0)) || exit 1
echo "ldplan: scripts, errors and a linked program as expected"
