// What the compiler's stack protector needs, which a C run-time library would bring.
//
// A function whose frame holds an array keeps a copy of the guard word behind the array and compares
// the two before it returns: what wrote beyond the array has changed the copy.

  // The load configuration record tells the system of this word. The loader knows this value, which
  // all compilers for Windows preset, and puts a random one in its place before any code can run.
  .data
  .balign 8
  .globl __stack_chk_guard
__stack_chk_guard:
  .quad 0x00002B992DDFA232

  // Ends the process where it stands: its stack is not to be trusted, so that no handler may run on
  // it. The system reports "stack cookie check failure", which is number 2.
  .text
  .balign 16
  .globl __stack_chk_fail
__stack_chk_fail:
#if defined(__x86_64__)
  movl $2, %ecx
  int $0x29
#else
  hint #34  // bti c
  mov w0, #2
  brk #0xF003
#endif

  // As in load_configuration.S.
  .globl @feat.00
  .set @feat.00, 0x801
