/* The system calls of the C library, carried out by the debugger. The
   standard streams are the debugger's console, opened on first use; other
   files are the host's. The heap lies between __heap_start__ and
   __heap_end__ of the linker script. */
#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/times.h>
#include <time.h>
#include <unistd.h>

#include "probeio.h"

#define MAX_FILES 16

/* The debugger's handle of each file descriptor plus one, 0 for a closed
   descriptor, and the position of each file. */
static int handles[MAX_FILES];
static long positions[MAX_FILES];

static int fail(int error) {
    errno = error;
    return -1;
}

/* The debugger's errno of the last operation that failed. */
static int host_failure(void) {
    const int error = __do_debug_operation(DEBUG_ERRNO, 0);
    return fail(error > 0 ? error : EIO);
}

static int open_handle(const char *name, int mode) {
    unsigned block[3] = {(unsigned)name, (unsigned)mode, strlen(name)};
    return __do_debug_operation(DEBUG_OPEN, block);
}

static int handle_of(int fd) {
    if (fd < 0 || fd >= MAX_FILES)
        return -1;
    if (handles[fd] == 0 && fd <= 2) {
        /* ":tt" is the console: read for stdin, write for stdout, append
           for stderr. */
        static const int modes[3] = {0, 4, 8};
        const int handle = open_handle(":tt", modes[fd]);
        if (handle >= 0)
            handles[fd] = handle + 1;
    }
    return handles[fd] - 1;
}

int _open(const char *name, int flags, ...) {
    int fd = 3;
    while (fd < MAX_FILES && handles[fd] != 0)
        ++fd;
    if (fd == MAX_FILES)
        return fail(EMFILE);
    /* The modes of fopen: "r", "r+", "w", "w+", "a", "a+", each binary. */
    int mode;
    switch (flags & O_ACCMODE) {
    case O_RDONLY:
        mode = 0;
        break;
    case O_WRONLY:
        mode = flags & O_APPEND ? 8 : 4;
        break;
    default:
        mode = flags & O_APPEND ? 10 : flags & O_TRUNC ? 6 : 2;
        break;
    }
    const int handle = open_handle(name, mode | 1);
    if (handle < 0)
        return host_failure();
    handles[fd] = handle + 1;
    positions[fd] = 0;
    return fd;
}

int _close(int fd) {
    int handle = handle_of(fd);
    if (handle < 0)
        return fail(EBADF);
    handles[fd] = 0;
    if (__do_debug_operation(DEBUG_CLOSE, &handle) != 0)
        return host_failure();
    return 0;
}

/* DEBUG_READ and DEBUG_WRITE answer with the count of bytes not moved. */
static int transfer(int operation, int fd, void *buffer, size_t length) {
    const int handle = handle_of(fd);
    if (handle < 0)
        return fail(EBADF);
    unsigned block[3] = {(unsigned)handle, (unsigned)buffer, length};
    const int left = __do_debug_operation(operation, block);
    if (left < 0 || (size_t)left > length)
        return fail(EIO);
    positions[fd] += (long)(length - (size_t)left);
    return (int)(length - (size_t)left);
}

int _write(int fd, const void *buffer, size_t length) { return transfer(DEBUG_WRITE, fd, (void *)buffer, length); }

int _read(int fd, void *buffer, size_t length) { return transfer(DEBUG_READ, fd, buffer, length); }

int _isatty(int fd) {
    int handle = handle_of(fd);
    if (handle < 0)
        return fail(EBADF), 0;
    return __do_debug_operation(DEBUG_ISTTY, &handle) == 1;
}

off_t _lseek(int fd, off_t offset, int whence) {
    int handle = handle_of(fd);
    if (handle < 0)
        return fail(EBADF);
    if (_isatty(fd))
        return fail(ESPIPE);
    long target = offset;
    if (whence == SEEK_CUR)
        target += positions[fd];
    else if (whence == SEEK_END) {
        const int length = __do_debug_operation(DEBUG_FLEN, &handle);
        if (length < 0)
            return host_failure();
        target += length;
    } else if (whence != SEEK_SET)
        return fail(EINVAL);
    if (target < 0)
        return fail(EINVAL);
    unsigned block[2] = {(unsigned)handle, (unsigned)target};
    if (__do_debug_operation(DEBUG_SEEK, block) != 0)
        return host_failure();
    positions[fd] = target;
    return target;
}

int _fstat(int fd, struct stat *status) {
    int handle = handle_of(fd);
    if (handle < 0)
        return fail(EBADF);
    memset(status, 0, sizeof *status);
    if (_isatty(fd)) {
        status->st_mode = S_IFCHR;
        return 0;
    }
    status->st_mode = S_IFREG;
    const int length = __do_debug_operation(DEBUG_FLEN, &handle);
    status->st_size = length > 0 ? length : 0;
    return 0;
}

int _stat(const char *name, struct stat *status) {
    const int fd = _open(name, O_RDONLY);
    if (fd < 0)
        return -1;
    const int result = _fstat(fd, status);
    _close(fd);
    return result;
}

int _unlink(const char *name) {
    unsigned block[2] = {(unsigned)name, strlen(name)};
    return __do_debug_operation(DEBUG_REMOVE, block) == 0 ? 0 : host_failure();
}

int _link(const char *existing, const char *name) {
    (void)existing;
    (void)name;
    return fail(ENOSYS);
}

void *_sbrk(ptrdiff_t increment) {
    extern char __heap_start__[], __heap_end__[];
    static char *top;
    if (!top)
        top = __heap_start__;
    if (increment > __heap_end__ - top || increment < __heap_start__ - top)
        return fail(ENOMEM), (void *)-1;
    char *previous = top;
    top += increment;
    return previous;
}

void _exit(int status) {
    /* Plain DEBUG_EXIT carries no status; the extended form does, and a
       debugger without it gets a plain run-time error. */
    if (status == 0)
        __do_debug_operation(DEBUG_EXIT, (void *)DEBUG_APPLICATION_EXIT);
    else {
        unsigned block[2] = {DEBUG_APPLICATION_EXIT, (unsigned)status};
        __do_debug_operation(DEBUG_EXIT_EXTENDED, block);
        __do_debug_operation(DEBUG_EXIT, (void *)DEBUG_RUNTIME_ERROR);
    }
    for (;;)
        ;
}

int _getpid(void) { return 1; }

int _kill(int pid, int signal) {
    if (pid != _getpid())
        return fail(ESRCH);
    _exit(128 + signal);
}

int _gettimeofday(struct timeval *time, void *zone) {
    (void)zone;
    const int seconds = __do_debug_operation(DEBUG_TIME, 0);
    if (seconds == -1)
        return fail(EIO);
    time->tv_sec = seconds;
    time->tv_usec = 0;
    return 0;
}

clock_t _times(struct tms *buffer) {
    /* DEBUG_CLOCK counts hundredths of a second since the program started. */
    const int hundredths = __do_debug_operation(DEBUG_CLOCK, 0);
    const clock_t ticks = hundredths < 0 ? 0 : (clock_t)hundredths * (CLOCKS_PER_SEC / 100);
    if (buffer) {
        buffer->tms_utime = ticks;
        buffer->tms_stime = buffer->tms_cutime = buffer->tms_cstime = 0;
    }
    return ticks;
}
