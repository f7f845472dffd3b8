// Instructions of baseline x86-64, as compilers make them of loads and stores.
#include "tests/fetches/instruction_cases.h"

namespace fetches {

// What the text may change, whichever it is.
#define INSTRUCTION_CASE(text, ...)                                                  \
  {                                                                                  \
    text,                                                                            \
        [](unsigned char* memory) {                                                  \
          asm volatile(text ::"r"(memory)                                            \
                       : "rax", "rcx", "rdx", "rsi", "rdi", "xmm0", "cc", "memory"); \
        },                                                                           \
        __VA_ARGS__                                                                  \
  }

// The memory's first byte is at %0.
std::vector<InstructionCase> instruction_cases() {
  return {
      INSTRUCTION_CASE("movb 64(%0), %%al", {load(64, 1)}),
      INSTRUCTION_CASE("movzbl 64(%0), %%eax", {load(64, 1)}),
      INSTRUCTION_CASE("movzwl 64(%0), %%eax", {load(64, 2)}),
      INSTRUCTION_CASE("movl 64(%0), %%eax", {load(64, 4)}),
      INSTRUCTION_CASE("movslq 64(%0), %%rax", {load(64, 4)}),
      INSTRUCTION_CASE("movq 64(%0), %%rax", {load(64, 8)}),
      INSTRUCTION_CASE("addq 64(%0), %%rax", {load(64, 8)}),
      INSTRUCTION_CASE("sbbl 64(%0), %%eax", {load(64, 4)}),
      INSTRUCTION_CASE("imull 64(%0), %%eax", {load(64, 4)}),
      INSTRUCTION_CASE("imulq $3, 64(%0), %%rax", {load(64, 8)}),
      INSTRUCTION_CASE("mulq 64(%0)", {load(64, 8)}),
      INSTRUCTION_CASE("cmpb $0, 64(%0)", {load(64, 1)}),
      INSTRUCTION_CASE("cmpl $3, 64(%0)", {load(64, 4)}),
      INSTRUCTION_CASE("cmpq 64(%0), %%rax", {load(64, 8)}),
      INSTRUCTION_CASE("cmpq %%rax, 64(%0)", {load(64, 8)}),
      INSTRUCTION_CASE("testl $3, 64(%0)", {load(64, 4)}),
      INSTRUCTION_CASE("testq %%rax, 64(%0)", {load(64, 8)}),
      INSTRUCTION_CASE("btl $3, 64(%0)", {load(64, 4)}),
      INSTRUCTION_CASE("cmovel 64(%0), %%eax", {load(64, 4)}),
      INSTRUCTION_CASE("mov $4, %%ecx\n movl 32(%0,%%rcx,8), %%eax", {load(64, 4)}),
      INSTRUCTION_CASE("sub $128, %%rsp\n pushq 64(%0)\n pop %%rax\n add $128, %%rsp",
                       {load(64, 8)}),
      INSTRUCTION_CASE("movd 64(%0), %%xmm0", {load(64, 4)}),
      INSTRUCTION_CASE("movss 64(%0), %%xmm0", {load(64, 4)}),
      INSTRUCTION_CASE("movq 64(%0), %%xmm0", {load(64, 8)}),
      INSTRUCTION_CASE("movsd 64(%0), %%xmm0", {load(64, 8)}),
      INSTRUCTION_CASE("movlps 64(%0), %%xmm0", {load(64, 8)}),
      INSTRUCTION_CASE("movhps 64(%0), %%xmm0", {load(64, 8)}),
      INSTRUCTION_CASE("movhpd 64(%0), %%xmm0", {load(64, 8)}),
      INSTRUCTION_CASE("pinsrw $1, 64(%0), %%xmm0", {load(64, 2)}),
      INSTRUCTION_CASE("movdqu 64(%0), %%xmm0", {load(64, 16)}),
      INSTRUCTION_CASE("movups 64(%0), %%xmm0", {load(64, 16)}),
      INSTRUCTION_CASE("movaps 64(%0), %%xmm0", {load(64, 16)}, true),
      INSTRUCTION_CASE("movdqa 64(%0), %%xmm0", {load(64, 16)}, true),
      INSTRUCTION_CASE("pcmpeqb 64(%0), %%xmm0", {load(64, 16)}, true),
      INSTRUCTION_CASE("pcmpeqd 64(%0), %%xmm0", {load(64, 16)}, true),
      INSTRUCTION_CASE("paddq 64(%0), %%xmm0", {load(64, 16)}, true),
      INSTRUCTION_CASE("pxor 64(%0), %%xmm0", {load(64, 16)}, true),
      INSTRUCTION_CASE("andps 64(%0), %%xmm0", {load(64, 16)}, true),
      INSTRUCTION_CASE("punpckldq 64(%0), %%xmm0", {load(64, 16)}, true),
      INSTRUCTION_CASE("punpcklqdq 64(%0), %%xmm0", {load(64, 16)}, true),
      INSTRUCTION_CASE("unpcklps 64(%0), %%xmm0", {load(64, 16)}, true),
      INSTRUCTION_CASE("pshufd $0, 64(%0), %%xmm0", {load(64, 16)}, true),
      INSTRUCTION_CASE("shufps $0x44, 64(%0), %%xmm0", {load(64, 16)}, true),
      INSTRUCTION_CASE("movb $5, 64(%0)", {store(64, 1)}),
      INSTRUCTION_CASE("sete 64(%0)", {store(64, 1)}),
      INSTRUCTION_CASE("movw $5, 64(%0)", {store(64, 2)}),
      INSTRUCTION_CASE("movl $5, 64(%0)", {store(64, 4)}),
      INSTRUCTION_CASE("movq %0, 64(%0)", {store(64, 8)}),
      INSTRUCTION_CASE("movd %%xmm0, 64(%0)", {store(64, 4)}),
      INSTRUCTION_CASE("movss %%xmm0, 64(%0)", {store(64, 4)}),
      INSTRUCTION_CASE("movq %%xmm0, 64(%0)", {store(64, 8)}),
      INSTRUCTION_CASE("movlps %%xmm0, 64(%0)", {store(64, 8)}),
      INSTRUCTION_CASE("movhps %%xmm0, 64(%0)", {store(64, 8)}),
      INSTRUCTION_CASE("movups %%xmm0, 64(%0)", {store(64, 16)}),
      INSTRUCTION_CASE("movdqu %%xmm0, 64(%0)", {store(64, 16)}),
      INSTRUCTION_CASE("movaps %%xmm0, 64(%0)", {store(64, 16)}, true),
      INSTRUCTION_CASE("movdqa %%xmm0, 64(%0)", {store(64, 16)}, true),
      INSTRUCTION_CASE("addq $5, 64(%0)", {change(64, 8)}),
      INSTRUCTION_CASE("subq %0, 64(%0)", {change(64, 8)}),
      INSTRUCTION_CASE("orb $5, 64(%0)", {change(64, 1)}),
      INSTRUCTION_CASE("xorl %%eax, 64(%0)", {change(64, 4)}),
      INSTRUCTION_CASE("incl 64(%0)", {change(64, 4)}),
      INSTRUCTION_CASE("negl 64(%0)", {change(64, 4)}),
      INSTRUCTION_CASE("notq 64(%0)", {change(64, 8)}),
      INSTRUCTION_CASE("shlw $1, 64(%0)", {change(64, 2)}),
      INSTRUCTION_CASE("btsl $3, 64(%0)", {change(64, 4)}),
      INSTRUCTION_CASE("xchgl %%eax, 64(%0)", {change(64, 4)}),
      INSTRUCTION_CASE("lock xaddl %%eax, 64(%0)", {change(64, 4)}),
      INSTRUCTION_CASE("cmpxchgl %%ecx, 64(%0)", {change(64, 4)}),
      INSTRUCTION_CASE("lock cmpxchgl %%ecx, 64(%0)", {change(64, 4)}),
      INSTRUCTION_CASE("lea 64(%0), %%rsi\n lea 128(%0), %%rdi\n movsb",
                       {store(128, 1), load(64, 1)}),
      INSTRUCTION_CASE("lea 64(%0), %%rsi\n lea 128(%0), %%rdi\n mov $2, %%ecx\n rep movsq",
                       {store(128, 8), load(64, 8), store(136, 8), load(72, 8)}),
      INSTRUCTION_CASE("lea 64(%0), %%rsi\n lea 128(%0), %%rdi\n cmpsb",
                       {load(64, 1), load(128, 1)}),
      INSTRUCTION_CASE("lea 64(%0), %%rdi\n mov $2, %%ecx\n rep stosl",
                       {store(64, 4), store(68, 4)}),
  };
}

#undef INSTRUCTION_CASE

}  // namespace fetches
