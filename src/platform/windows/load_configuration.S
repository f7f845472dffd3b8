// The record by which the system learns where to look for the services library, where the word of the
// stack guard is, that the DLL keeps to control-flow guard, and where its table of valid call targets
// is. A C run-time library would bring it; there is none.
//
// The library calls nothing through a pointer but its imports, which the guard leaves alone. The
// check routines stand here all the same, so that a checked call, should one come, has somewhere
// to go: the loader points both words at the system's own routines where the guard is on.

  // Where the system looks for what the DLL imports, as LoadLibraryEx's flags say it: the folder that
  // the DLL itself lies in (0x100), where drivers install the services library beside it, then the
  // system's own folder (0x800). Not the program's folder, not the current one, not PATH: whoever can
  // write there could put a libhxluser.dll of his own into the process. docs/security.md has more.
  .set kDependentLoadFlags, 0x100 | 0x800

  .section .rdata, "dr"
  .balign 8
  .globl _load_config_used
_load_config_used:
  .long load_config_end - _load_config_used  // 0x00 Size
  .zero 0x4E - 0x04                          // time stamp, versions, heap, process, ...
  .short kDependentLoadFlags                 // 0x4E DependentLoadFlags
  .quad 0                                    // 0x50 EditList
  .quad __stack_chk_guard                    // 0x58 SecurityCookie
  .zero 0x70 - 0x60                          // handlers of the 32-bit kind
  .quad __guard_check_icall_fptr             // 0x70 GuardCFCheckFunctionPointer
#if defined(__x86_64__)
  .quad __guard_dispatch_icall_fptr          // 0x78 GuardCFDispatchFunctionPointer
#else
  .quad 0                                    // 0x78; calls on Arm are checked first, then made
#endif
  .quad __guard_fids_table                   // 0x80 GuardCFFunctionTable
  .quad __guard_fids_count                   // 0x88 GuardCFFunctionCount
  .long __guard_flags                        // 0x90 GuardFlags
  .zero 0x140 - 0x94
load_config_end:

  // The loader writes these words while it holds the page writable.
  .section .00cfg, "dr"
  .balign 8
  .globl __guard_check_icall_fptr
__guard_check_icall_fptr:
  .quad let_call_pass
#if defined(__x86_64__)
  .globl __guard_dispatch_icall_fptr
__guard_dispatch_icall_fptr:
  .quad make_call
#endif

  .text
  // The target is in x15 on Arm, in rcx on x86-64; the call itself follows.
  .balign 16
let_call_pass:
#if defined(__aarch64__)
  hint #34  // bti c
#endif
  ret

#if defined(__x86_64__)
  // In place of the call; the target is in rax.
  .balign 16
make_call:
  jmpq *%rax
#endif

  // Bit 11: this object takes part in control-flow guard and takes no address of a function that a
  // guarded call may reach. Bit 0: no exception handlers of the 32-bit kind.
  .globl @feat.00
  .set @feat.00, 0x801
