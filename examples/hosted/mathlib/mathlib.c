#include "mathlib.h"

long sum_to(long n) {
    long total = 0;
    for (long i = 1; i <= n; ++i)
        total += i;
    return total;
}
