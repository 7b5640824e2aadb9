/* The vector table of a Cortex-M3 and a reset handler that enters the C
   library's start-up code, which sets up the stack and calls main. */
    .syntax unified
    .thumb

    .section .vectors, "a"
    .word __stack_top
    .word Reset_Handler
    .word Fault_Handler   /* NMI */
    .word Fault_Handler   /* HardFault */

    .text
    .thumb_func
    .global Reset_Handler
Reset_Handler:
    ldr r0, =_start
    bx r0

    .thumb_func
Fault_Handler:
    b .
