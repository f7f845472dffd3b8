// Instructions of 64-bit Arm, as compilers make them of loads and stores. Signals need the stack
// pointer, so that none of these has it for its base.
#include "tests/fetches/instruction_cases.h"

namespace fetches {

// What the text may change, whichever it is.
#define INSTRUCTION_CASE(text, ...)                                                        \
  {                                                                                        \
    text,                                                                                  \
        [](unsigned char* memory) {                                                        \
          asm volatile(text ::"r"(memory) : "x0", "x1", "x2", "v0", "v1", "cc", "memory"); \
        },                                                                                 \
        __VA_ARGS__                                                                        \
  }

// The memory's first byte is at %0.
std::vector<InstructionCase> instruction_cases() {
  return {
      INSTRUCTION_CASE("ldrb w0, [%0, 64]", {load(64, 1)}),
      INSTRUCTION_CASE("ldrsb w0, [%0, 64]", {load(64, 1)}),
      INSTRUCTION_CASE("ldrh w0, [%0, 64]", {load(64, 2)}),
      INSTRUCTION_CASE("ldr w0, [%0, 64]", {load(64, 4)}),
      INSTRUCTION_CASE("ldrsw x0, [%0, 64]", {load(64, 4)}),
      INSTRUCTION_CASE("ldr x0, [%0, 64]", {load(64, 8)}),
      INSTRUCTION_CASE("ldr s0, [%0, 64]", {load(64, 4)}),
      INSTRUCTION_CASE("ldr d0, [%0, 64]", {load(64, 8)}),
      INSTRUCTION_CASE("ldr q0, [%0, 64]", {load(64, 16)}),
      INSTRUCTION_CASE("ldp w0, w1, [%0, 64]", {load(64, 8)}),
      INSTRUCTION_CASE("ldp x0, x1, [%0, 64]", {load(64, 16)}),
      INSTRUCTION_CASE("ldp d0, d1, [%0, 64]", {load(64, 16)}),
      INSTRUCTION_CASE("ldp q0, q1, [%0, 64]", {load(64, 32)}),
      INSTRUCTION_CASE("add x1, %0, 65\n ldur w0, [x1, -1]", {load(64, 4)}),
      INSTRUCTION_CASE("mov x1, %0\n ldr x0, [x1, 64]!", {load(64, 8)}),
      INSTRUCTION_CASE("mov x1, 8\n ldr x0, [%0, x1, lsl 3]", {load(64, 8)}),
      INSTRUCTION_CASE("mov x2, 0xFFFFFFFF\n add x1, %0, 72\n ldr x0, [x1, w2, sxtw 3]",
                       {load(64, 8)}),
      INSTRUCTION_CASE("mov w2, 64\n ldr w0, [%0, w2, uxtw]", {load(64, 4)}),
      INSTRUCTION_CASE("add x1, %0, 64\n ld1 {v0.16b, v1.16b}, [x1]", {load(64, 32)}),
      INSTRUCTION_CASE("add x1, %0, 64\n ld1 {v0.s}[1], [x1]", {load(64, 4)}),
      INSTRUCTION_CASE("add x1, %0, 64\n ld1r {v0.2d}, [x1]", {load(64, 8)}),
      INSTRUCTION_CASE("add x1, %0, 64\n ld2 {v0.4s, v1.4s}, [x1]", {load(64, 32)}),
      INSTRUCTION_CASE("add x1, %0, 64\n ldr x0, [x1], 8\n ldr w0, [x1]",
                       {load(64, 8), load(72, 4)}),
      INSTRUCTION_CASE("add x1, %0, 64\n ldp x0, x2, [x1], 16\n ldr w0, [x1]",
                       {load(64, 16), load(80, 4)}),
      INSTRUCTION_CASE("strb w0, [%0, 64]", {store(64, 1)}),
      INSTRUCTION_CASE("str w0, [%0, 64]", {store(64, 4)}),
      INSTRUCTION_CASE("str q0, [%0, 64]", {store(64, 16)}),
      INSTRUCTION_CASE("stp xzr, xzr, [%0, 64]", {store(64, 16)}),
      INSTRUCTION_CASE("add x1, %0, 64\n st1 {v0.8b}, [x1]", {store(64, 8)}),
  };
}

#undef INSTRUCTION_CASE

}  // namespace fetches
