/* Toggles a pin forever: the smallest firmware there is. */
static volatile unsigned int *const gpioOut = (unsigned int *)0x40020014u;

int main(void) {
    for (;;) {
        *gpioOut ^= 1u << 5;
        for (volatile int i = 0; i < 100000; ++i) {
        }
    }
}
