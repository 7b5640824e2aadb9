/* Start-up code of Cortex-M programs: the vector table in section .vectors
   and the reset handler, which enables the FPU when the code uses it,
   initialises .data and .bss, runs the constructors and calls main, whose
   result goes to exit.

   Every exception handler is weak: a program overrides one by defining a
   function of the same name. The ones it doesn't define report the
   exception through the debug I/O and end the program with status 128 plus
   the exception number, so that a fault under a debugger or emulator ends
   the run instead of hanging it. */

typedef void (*Handler)(void);

extern char __stack_end__[];
extern char __data_load_start__[], __data_start__[], __data_end__[];
extern char __bss_start__[], __bss_end__[];

extern int main(int argc, char *argv[]);
extern void exit(int status) __attribute__((noreturn));
extern int atexit(void (*function)(void));
extern void __libc_init_array(void);
extern void __libc_fini_array(void);

/* Optional: a program linked without the debug I/O library may lack them. */
extern int _write(int fd, const void *buffer, unsigned length) __attribute__((weak));
extern void _exit(int status) __attribute__((weak, noreturn));

void Reset_Handler(void);
void Default_Handler(void);
void HardFault_Handler(void);

#define DEFAULT_HANDLER __attribute__((weak, alias("Default_Handler")))
void NMI_Handler(void) DEFAULT_HANDLER;
void MemManage_Handler(void) DEFAULT_HANDLER;
void BusFault_Handler(void) DEFAULT_HANDLER;
void UsageFault_Handler(void) DEFAULT_HANDLER;
void SecureFault_Handler(void) DEFAULT_HANDLER;
void SVC_Handler(void) DEFAULT_HANDLER;
void DebugMon_Handler(void) DEFAULT_HANDLER;
void PendSV_Handler(void) DEFAULT_HANDLER;
void SysTick_Handler(void) DEFAULT_HANDLER;

/* The first 32 device interrupts, which every Cortex-M may have. */
#define INTERRUPTS(X) \
    X(0) X(1) X(2) X(3) X(4) X(5) X(6) X(7) X(8) X(9) X(10) X(11) X(12) X(13) X(14) X(15) \
    X(16) X(17) X(18) X(19) X(20) X(21) X(22) X(23) X(24) X(25) X(26) X(27) X(28) X(29) X(30) X(31)
#define DECLARE_INTERRUPT(n) void IRQ##n##_Handler(void) DEFAULT_HANDLER;
#define INTERRUPT_VECTOR(n) IRQ##n##_Handler,
INTERRUPTS(DECLARE_INTERRUPT)

__attribute__((section(".vectors"), used)) const Handler __vectors[] = {
    (Handler)__stack_end__,
    Reset_Handler,
    NMI_Handler,
    HardFault_Handler,
    MemManage_Handler,
    BusFault_Handler,
    UsageFault_Handler,
    SecureFault_Handler,
    0,
    0,
    0,
    SVC_Handler,
    DebugMon_Handler,
    0,
    PendSV_Handler,
    SysTick_Handler,
    INTERRUPTS(INTERRUPT_VECTOR)
};

/* No crti.o is linked, so the constructors' _init and _fini are empty. */
__attribute__((weak)) void _init(void) {}
__attribute__((weak)) void _fini(void) {}

/* The entry point where a linker script names none. */
void _start(void) __attribute__((weak, alias("Reset_Handler")));

void Reset_Handler(void) {
#if defined(__ARM_FP)
    /* Full access to coprocessors 10 and 11 in CPACR. */
    *(volatile unsigned *)0xe000ed88 |= 0xfu << 20;
    __asm__ volatile("dsb\n\tisb" ::: "memory");
#endif
    if (&__data_load_start__[0] != &__data_start__[0])
        for (char *from = __data_load_start__, *to = __data_start__; to < __data_end__;)
            *to++ = *from++;
    for (char *to = __bss_start__; to < __bss_end__;)
        *to++ = 0;
    __libc_init_array();
    atexit(__libc_fini_array);
    static char *arguments[1];
    exit(main(0, arguments));
}

/* A semihosting breakpoint that no debugger serves escalates to a
   HardFault: step over it with -1 as its result, so that the program runs
   on without a debugger. The fault status tells a breakpoint (HFSR.DEBUGEVT,
   DFSR.BKPT on cores without HFSR) before the stacked PC is read. Every
   other fault goes to Default_Handler. */
__attribute__((naked, weak)) void HardFault_Handler(void) {
    __asm__ volatile(
        ".syntax unified\n\t"
#if __ARM_ARCH_ISA_THUMB == 1
        "ldr r0, =0xe000ed30\n\t" /* DFSR */
        "movs r3, #2\n\t"
#else
        "ldr r0, =0xe000ed2c\n\t" /* HFSR */
        "movs r3, #1\n\t"
        "lsls r3, r3, #31\n\t"
#endif
        "ldr r2, [r0]\n\t"
        "tst r2, r3\n\t"
        "beq 3f\n\t"
        "str r3, [r0]\n\t" /* write one to clear */
        "movs r0, #4\n\t"
        "mov r1, lr\n\t"
        "tst r0, r1\n\t"
        "beq 1f\n\t"
        "mrs r0, psp\n\t"
        "b 2f\n"
        "1:\n\t"
        "mrs r0, msp\n"
        "2:\n\t"
        "ldr r1, [r0, #24]\n\t" /* the stacked PC */
        "ldrh r2, [r1]\n\t"
        "ldr r3, =0xbeab\n\t" /* BKPT 0xAB */
        "cmp r2, r3\n\t"
        "bne 3f\n\t"
        "adds r1, r1, #2\n\t"
        "str r1, [r0, #24]\n\t"
        "movs r1, #0\n\t"
        "mvns r1, r1\n\t"
        "str r1, [r0]\n\t" /* the stacked r0 */
        "bx lr\n"
        "3:\n\t"
        "bl Default_Handler\n\t"
        ".ltorg");
}

void Default_Handler(void) {
    unsigned exception;
    __asm__ volatile("mrs %0, ipsr" : "=r"(exception));
    exception &= 0x1ff;
    char text[] = "unhandled exception 000\n";
    for (unsigned digit = 22, rest = exception; digit >= 20; --digit, rest /= 10)
        text[digit] = (char)('0' + rest % 10);
    if (_write)
        _write(2, text, sizeof text - 1);
    if (_exit)
        _exit(128 + (int)exception);
    for (;;)
        ;
}
