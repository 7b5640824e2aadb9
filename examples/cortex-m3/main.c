/* Prints through semihosting, so that the board's host shows the text and
   takes the exit status. */
#include <stdio.h>

int scale(int x);

int main(void) {
    const int result = scale(7);
    printf("hello from a Cortex-M3: scale(7) = %d\n", result);
    return result == 42 ? 0 : 1;
}
