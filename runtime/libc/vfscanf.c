/* vfscanf through the scanner that the link selects. */
#include <stdarg.h>
#include <stdio.h>

int __vfscanf(struct _reent *, FILE *, const char *, va_list);

int vfscanf(FILE *stream, const char *format, va_list arguments) {
    return __vfscanf(_REENT, stream, format, arguments);
}
