/* The formatter of the printf family, which reaches it as __vfprintf: the
   link defines __vfprintf as one of the names below. The integer selections
   share the C library's integer-only formatter, the floating-point ones its
   full formatter; either is wider than its names ask, never narrower. Built
   twice, with FLOATING 0 and 1. */
#include <stdarg.h>
#include <stdio.h>

struct _reent;

#if FLOATING
int _vfprintf_r(struct _reent *, FILE *, const char *, va_list);
int _svfprintf_r(struct _reent *, FILE *, const char *, va_list);
#define STREAM_FORMATTER _vfprintf_r
#define STRING_FORMATTER _svfprintf_r
#define FORMATTER __vfprintf_float_long
#else
int _vfiprintf_r(struct _reent *, FILE *, const char *, va_list);
int _svfiprintf_r(struct _reent *, FILE *, const char *, va_list);
#define STREAM_FORMATTER _vfiprintf_r
#define STRING_FORMATTER _svfiprintf_r
#define FORMATTER __vfprintf_int
#endif

/* The small C library formats floating point only when _printf_float is
   linked. */
#if FLOATING && defined(_NANO_FORMATTED_IO)
int _printf_float();
#define LINK_FLOAT_CONVERSIONS() __asm__ volatile("" : : "r"(&_printf_float))
#else
#define LINK_FLOAT_CONVERSIONS() ((void)0)
#endif

/* sprintf and its kin hand over a string stream, which the string-only
   formatter writes faster and can grow. */
int FORMATTER(struct _reent *reent, FILE *stream, const char *format, va_list arguments) {
    LINK_FLOAT_CONVERSIONS();
    if (stream->_flags & __SSTR)
        return STRING_FORMATTER(reent, stream, format, arguments);
    return STREAM_FORMATTER(reent, stream, format, arguments);
}

#define NAME_OF(symbol) SPELLING(symbol)
#define SPELLING(symbol) #symbol
#define SELECTION(name) int __vfprintf_##name(struct _reent *, FILE *, const char *, va_list) \
    __attribute__((alias(NAME_OF(FORMATTER))));
#define WIDE(name) SELECTION(name) SELECTION(name##_wchar)

#if FLOATING
SELECTION(float_long_wchar)
WIDE(float_long_long)
WIDE(short_float_long)
WIDE(short_float_long_long)
#else
SELECTION(int_wchar)
WIDE(int_nwp)
WIDE(long)
WIDE(long_nwp)
WIDE(long_long)
WIDE(long_long_nwp)
#endif
