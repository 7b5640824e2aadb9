/* long scale_by_eight(long value): value shifted left by three. */
    .text
    .globl scale_by_eight
    .type scale_by_eight, %function
scale_by_eight:
#if defined(__x86_64__)
    leaq 0(,%rdi,8), %rax
    ret
#elif defined(__aarch64__)
    lsl x0, x0, #3
    ret
#elif defined(__i386__)
    movl 4(%esp), %eax
    shll $3, %eax
    ret
#else
#error "scale.S has no code for this machine"
#endif
    .size scale_by_eight, . - scale_by_eight
    .section .note.GNU-stack, "", %progbits
