/* Debug operations through the debug communications channel of CP14: the
   program sends the operation and the parameter block's address as two
   words and receives the result as one. M-profile cores have no such
   channel and use the semihosting trap. */
#include "probeio.h"

#if defined(__ARM_ARCH_PROFILE) && __ARM_ARCH_PROFILE == 'M'

int __do_debug_operation_dcc(int operation, void *parameters) {
    return __do_debug_operation_bkpt(operation, parameters);
}

#else

/* ARMv4 and v5 keep the channel's status in c0 (bit 1: the debugger hasn't
   read the last word yet, bit 0: a word waits) and its data in c1; ARMv6
   and later keep the status in DBGDSCR (bit 29 and bit 30) and the data in
   DBGDTRTX and DBGDTRRX. The accessors are ARM code where the core has it,
   since Thumb-1 has no coprocessor instructions. */
#if __ARM_ARCH >= 6
#define DCC_STATUS(value) __asm__ volatile("mrc p14, 0, %0, c0, c1, 0" : "=r"(value))
#define DCC_SEND(value) __asm__ volatile("mcr p14, 0, %0, c0, c5, 0" : : "r"(value))
#define DCC_RECEIVE(value) __asm__ volatile("mrc p14, 0, %0, c0, c5, 0" : "=r"(value))
#define DCC_SEND_BUSY (1u << 29)
#define DCC_RECEIVE_READY (1u << 30)
#else
#define DCC_STATUS(value) __asm__ volatile("mrc p14, 0, %0, c0, c0, 0" : "=r"(value))
#define DCC_SEND(value) __asm__ volatile("mcr p14, 0, %0, c1, c0, 0" : : "r"(value))
#define DCC_RECEIVE(value) __asm__ volatile("mrc p14, 0, %0, c1, c0, 0" : "=r"(value))
#define DCC_SEND_BUSY (1u << 1)
#define DCC_RECEIVE_READY (1u << 0)
#endif

#if defined(__ARM_ARCH_ISA_ARM)
#define DCC_CODE __attribute__((target("arm"), noinline))
#else
#define DCC_CODE __attribute__((noinline))
#endif

DCC_CODE static void dcc_send(unsigned word) {
    unsigned status;
    do
        DCC_STATUS(status);
    while (status & DCC_SEND_BUSY);
    DCC_SEND(word);
}

DCC_CODE static unsigned dcc_receive(void) {
    unsigned status, word;
    do
        DCC_STATUS(status);
    while (!(status & DCC_RECEIVE_READY));
    DCC_RECEIVE(word);
    return word;
}

int __do_debug_operation_dcc(int operation, void *parameters) {
    dcc_send((unsigned)operation);
    dcc_send((unsigned)parameters);
    return (int)dcc_receive();
}

#endif
