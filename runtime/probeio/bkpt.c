/* Debug operations through the semihosting trap: BKPT 0xAB on M-profile
   cores, SVC 0xAB in Thumb state and SVC 0x123456 in ARM state elsewhere.
   The debugger (or emulator) stops the core, carries out the operation and
   puts its result in r0. On a Cortex-M without a debugger the breakpoint
   escalates to a HardFault, which the start-up file's handler steps over
   with -1 in r0. */
#include "probeio.h"

int __do_debug_operation_bkpt(int operation, void *parameters) {
    register int r0 __asm__("r0") = operation;
    register void *r1 __asm__("r1") = parameters;
#if defined(__ARM_ARCH_PROFILE) && __ARM_ARCH_PROFILE == 'M'
    __asm__ volatile("bkpt 0xab" : "+r"(r0) : "r"(r1) : "memory");
#elif defined(__thumb__)
    /* Taken as an exception, SVC overwrites the link register of
       supervisor mode. */
    __asm__ volatile("svc 0xab" : "+r"(r0) : "r"(r1) : "memory", "lr");
#else
    __asm__ volatile("svc 0x123456" : "+r"(r0) : "r"(r1) : "memory", "lr");
#endif
    return r0;
}
