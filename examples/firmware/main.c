/* Firmware for a Cortex-M3 that prints through the debug I/O (semihosting
   on QEMU's mps2-an385 board) and returns its status to the host. */
#include <stdio.h>

static unsigned fibonacci(unsigned n) {
    unsigned a = 0, b = 1;
    while (n--) {
        const unsigned next = a + b;
        a = b;
        b = next;
    }
    return a;
}

int main(void) {
    printf("hello from a Cortex-M3: fibonacci(20) = %u\n", fibonacci(20));
    return fibonacci(20) == 6765 ? 0 : 1;
}
