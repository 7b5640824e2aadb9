#ifndef MATHLIB_H
#define MATHLIB_H

#ifdef __cplusplus
extern "C" {
#endif

/* The sum of the first n whole numbers. */
long sum_to(long n);

/* value * 8, in assembly. */
long scale_by_eight(long value);

#ifdef __cplusplus
}
#endif

#endif
