// Functions with the calling convention of 64-bit Windows.
//
// On x86-64 it is another one than Linux's. On Arm both systems pass integers and pointers alike,
// in variadic calls too; they part at floating-point arguments of variadic calls, which the library
// has none of.
#pragma once

#if defined(__x86_64__)
#define WINDOWS_CONVENTION __attribute__((ms_abi))
#else
#define WINDOWS_CONVENTION
#endif
