/* The debug I/O library: system calls of the C library carried out by the
   debugger through __do_debug_operation, which the link points at one of
   the mechanisms below. Operation numbers and parameter blocks are those of
   the ARM semihosting interface, so a debugger serves every mechanism the
   same way. */
#ifndef PROBEIO_H
#define PROBEIO_H

enum {
    DEBUG_OPEN = 0x01,
    DEBUG_CLOSE = 0x02,
    DEBUG_WRITE = 0x05,
    DEBUG_READ = 0x06,
    DEBUG_ISTTY = 0x09,
    DEBUG_SEEK = 0x0a,
    DEBUG_FLEN = 0x0c,
    DEBUG_REMOVE = 0x0e,
    DEBUG_CLOCK = 0x10,
    DEBUG_TIME = 0x11,
    DEBUG_ERRNO = 0x13,
    DEBUG_EXIT = 0x18,
    DEBUG_EXIT_EXTENDED = 0x20,
};

/* The reasons of DEBUG_EXIT for a program that ended normally and for one
   that failed. */
#define DEBUG_APPLICATION_EXIT 0x20026
#define DEBUG_RUNTIME_ERROR 0x20023

int __do_debug_operation(int operation, void *parameters);
int __do_debug_operation_bkpt(int operation, void *parameters);
int __do_debug_operation_mempoll(int operation, void *parameters);
int __do_debug_operation_dcc(int operation, void *parameters);

#endif
