/* Debug operations through a mailbox in memory that the debugger polls
   while the core runs, so that no breakpoint stops it.

   The debugger finds __debug_io_mailbox by its symbol and writes
   DEBUG_MAILBOX_ATTACHED into `attached` each time it polls. The program
   writes the parameter block's address, then the operation; the debugger
   carries out a non-zero operation, writes the result and sets the operation
   back to zero. Until a debugger has marked the mailbox, operations go
   through the semihosting trap instead, which emulators serve. */
#include "probeio.h"

#define DEBUG_MAILBOX_ATTACHED 0x4d424f58u /* "MBOX" */

struct debug_mailbox {
    volatile unsigned attached;
    volatile int operation;
    void *volatile parameters;
    volatile int result;
};

struct debug_mailbox __debug_io_mailbox;

static inline void memory_barrier(void) {
#if defined(__ARM_ARCH) && __ARM_ARCH >= 7
    __asm__ volatile("dmb" ::: "memory");
#else
    __asm__ volatile("" ::: "memory");
#endif
}

int __do_debug_operation_mempoll(int operation, void *parameters) {
    struct debug_mailbox *mailbox = &__debug_io_mailbox;
    if (mailbox->attached != DEBUG_MAILBOX_ATTACHED)
        return __do_debug_operation_bkpt(operation, parameters);
    mailbox->parameters = parameters;
    mailbox->result = -1;
    memory_barrier();
    mailbox->operation = operation;
    while (mailbox->operation != 0)
        ;
    memory_barrier();
    return mailbox->result;
}
