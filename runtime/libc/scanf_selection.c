/* The formatter of the scanf family, which reaches it as __vfscanf: the link
   defines __vfscanf as one of the names below. The integer selections share
   the C library's integer-only scanner, the floating-point ones its full
   scanner; both match character groups. Built twice, with FLOATING 0 and
   1. */
#include <stdarg.h>
#include <stdio.h>

struct _reent;

#if FLOATING
int _vfscanf_r(struct _reent *, FILE *, const char *, va_list);
int __ssvfscanf_r(struct _reent *, FILE *, const char *, va_list);
#define STREAM_SCANNER _vfscanf_r
#define STRING_SCANNER __ssvfscanf_r
#define SCANNER __vfscanf_float_long
#else
int _vfiscanf_r(struct _reent *, FILE *, const char *, va_list);
int __ssvfiscanf_r(struct _reent *, FILE *, const char *, va_list);
#define STREAM_SCANNER _vfiscanf_r
#define STRING_SCANNER __ssvfiscanf_r
#define SCANNER __vfscanf_int
#endif

/* The small C library converts floating point only when _scanf_float is
   linked. */
#if FLOATING && defined(_NANO_FORMATTED_IO)
int _scanf_float();
#define LINK_FLOAT_CONVERSIONS() __asm__ volatile("" : : "r"(&_scanf_float))
#else
#define LINK_FLOAT_CONVERSIONS() ((void)0)
#endif

/* sscanf and its kin hand over a string stream, read by the string-only
   scanner. */
int SCANNER(struct _reent *reent, FILE *stream, const char *format, va_list arguments) {
    LINK_FLOAT_CONVERSIONS();
    if (stream->_flags & __SSTR)
        return STRING_SCANNER(reent, stream, format, arguments);
    return STREAM_SCANNER(reent, stream, format, arguments);
}

#define NAME_OF(symbol) SPELLING(symbol)
#define SPELLING(symbol) #symbol
#define SELECTION(name) int __vfscanf_##name(struct _reent *, FILE *, const char *, va_list) \
    __attribute__((alias(NAME_OF(SCANNER))));
#define GROUPS(name) SELECTION(name) SELECTION(name##_cc)

#if FLOATING
SELECTION(float_long_cc)
GROUPS(float_long_long)
#else
SELECTION(int_cc)
GROUPS(long)
GROUPS(long_long)
#endif
