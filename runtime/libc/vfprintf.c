/* vfprintf through the formatter that the link selects. */
#include <stdarg.h>
#include <stdio.h>

int __vfprintf(struct _reent *, FILE *, const char *, va_list);

int vfprintf(FILE *stream, const char *format, va_list arguments) {
    return __vfprintf(_REENT, stream, format, arguments);
}
