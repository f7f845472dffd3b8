// That the watch sees what it must: each access, its size, its direction.
#include "tests/fetches/watched_memory.h"

#include <gtest/gtest.h>

#include <cstring>

#include "tests/fetches/trace_rules.h"

namespace fetches {
namespace {

struct Case {
  const char* what;
  void (*call)(unsigned char*);
  std::vector<Touch> expected;
};

constexpr bool kLoads = true;
constexpr bool kStores = true;

std::string text_of_all(const std::vector<Touch>& touches) {
  std::string text;
  for (const Touch& touch : touches) text += text_of(touch) + "\n";
  return text;
}

void check(const Case& c, std::size_t shift_bytes) {
  WatchedMemory memory(8192, 0, shift_bytes);
  std::memset(memory.data(), 0, memory.size());
  const Trace trace = memory.watch([&] { c.call(memory.data()); });
  EXPECT_EQ(trace.stopped, "") << c.what;
  EXPECT_EQ(text_of_all(trace.touches), text_of_all(c.expected)) << c.what;
}

// Each instruction by itself, at byte 64.
#if defined(__x86_64__)
const Case kInstructions[] = {
    {"1 byte",
     [](unsigned char* p) { asm volatile("movb 64(%0), %%al" ::"r"(p)
                                         : "rax"); },
     {{64, 1, kLoads, false}}},
    {"2 bytes",
     [](unsigned char* p) { asm volatile("movzwl 64(%0), %%eax" ::"r"(p)
                                         : "rax"); },
     {{64, 2, kLoads, false}}},
    {"4 bytes",
     [](unsigned char* p) { asm volatile("movl 64(%0), %%eax" ::"r"(p)
                                         : "rax"); },
     {{64, 4, kLoads, false}}},
    {"8 bytes",
     [](unsigned char* p) { asm volatile("movq 64(%0), %%rax" ::"r"(p)
                                         : "rax"); },
     {{64, 8, kLoads, false}}},
    {"16 bytes",
     [](unsigned char* p) { asm volatile("movdqu 64(%0), %%xmm0" ::"r"(p)
                                         : "xmm0"); },
     {{64, 16, kLoads, false}}},
    {"4 bytes with a sign",
     [](unsigned char* p) { asm volatile("movslq 64(%0), %%rax" ::"r"(p)
                                         : "rax"); },
     {{64, 4, kLoads, false}}},
    {"4 bytes of a vector",
     [](unsigned char* p) { asm volatile("movd 64(%0), %%xmm0" ::"r"(p)
                                         : "xmm0"); },
     {{64, 4, kLoads, false}}},
    {"8 bytes of a vector",
     [](unsigned char* p) { asm volatile("movq 64(%0), %%xmm0" ::"r"(p)
                                         : "xmm0"); },
     {{64, 8, kLoads, false}}},
    {"the upper half of a vector",
     [](unsigned char* p) { asm volatile("movhps 64(%0), %%xmm0" ::"r"(p)
                                         : "xmm0"); },
     {{64, 8, kLoads, false}}},
    {"the lower half of a vector",
     [](unsigned char* p) { asm volatile("movlps 64(%0), %%xmm0" ::"r"(p)
                                         : "xmm0"); },
     {{64, 8, kLoads, false}}},
    {"2 bytes of a vector",
     [](unsigned char* p) { asm volatile("pinsrw $1, 64(%0), %%xmm0" ::"r"(p)
                                         : "xmm0"); },
     {{64, 2, kLoads, false}}},
    {"a comparison",
     [](unsigned char* p) { asm volatile("cmpl $3, 64(%0)" ::"r"(p)
                                         : "cc"); },
     {{64, 4, kLoads, false}}},
    {"a test",
     [](unsigned char* p) { asm volatile("testl $3, 64(%0)" ::"r"(p)
                                         : "cc"); },
     {{64, 4, kLoads, false}}},
    {"a multiplication",
     [](unsigned char* p) { asm volatile("imull 64(%0), %%eax" ::"r"(p)
                                         : "rax", "cc"); },
     {{64, 4, kLoads, false}}},
    {"a wide multiplication",
     [](unsigned char* p) { asm volatile("mulq 64(%0)" ::"r"(p)
                                         : "rax", "rdx", "cc"); },
     {{64, 8, kLoads, false}}},
    {"with an index",
     [](unsigned char* p) { asm volatile("movl 32(%0,%1,8), %%eax" ::"r"(p), "r"(4ULL)
                                         : "rax"); },
     {{64, 4, kLoads, false}}},
    {"a push",
     [](unsigned char* p) {
       // beyond the bytes below the stack pointer that the compiler may use
       asm volatile("sub $128, %%rsp\n pushq 64(%0)\n pop %%rax\n add $128, %%rsp" ::"r"(p)
                    : "rax", "cc", "memory");
     },
     {{64, 8, kLoads, false}}},
    {"vectors added",
     [](unsigned char* p) {
       asm volatile("lea 64(%0), %%rax\n and $-16, %%rax\n paddq (%%rax), %%xmm0" ::"r"(p)
                    : "rax", "cc", "xmm0");
     },
     {{64, 16, kLoads, false}}},
    {"vectors exclusively or-ed",
     [](unsigned char* p) {
       asm volatile("lea 64(%0), %%rax\n and $-16, %%rax\n pxor (%%rax), %%xmm0" ::"r"(p)
                    : "rax", "cc", "xmm0");
     },
     {{64, 16, kLoads, false}}},
    {"words interleaved",
     [](unsigned char* p) {
       asm volatile("lea 64(%0), %%rax\n and $-16, %%rax\n punpckldq (%%rax), %%xmm0" ::"r"(p)
                    : "rax", "cc", "xmm0");
     },
     {{64, 16, kLoads, false}}},
    {"an aligned vector",
     [](unsigned char* p) {
       asm volatile("lea 64(%0), %%rax\n and $-16, %%rax\n movaps (%%rax), %%xmm0" ::"r"(p)
                    : "rax", "cc", "xmm0");
     },
     {{64, 16, kLoads, false}}},
    {"a vector's bytes compared",
     [](unsigned char* p) {
       asm volatile("lea 64(%0), %%rax\n and $-16, %%rax\n pcmpeqb (%%rax), %%xmm0" ::"r"(p)
                    : "rax", "cc", "xmm0");
     },
     {{64, 16, kLoads, false}}},
    {"vectors and-ed",
     [](unsigned char* p) {
       asm volatile("lea 64(%0), %%rax\n and $-16, %%rax\n andps (%%rax), %%xmm0" ::"r"(p)
                    : "rax", "cc", "xmm0");
     },
     {{64, 16, kLoads, false}}},
    {"halves mixed",
     [](unsigned char* p) {
       asm volatile("lea 64(%0), %%rax\n and $-16, %%rax\n shufps $0x44, (%%rax), %%xmm0" ::"r"(p)
                    : "rax", "cc", "xmm0");
     },
     {{64, 16, kLoads, false}}},
    {"16 bytes of numbers",
     [](unsigned char* p) { asm volatile("movups 64(%0), %%xmm0" ::"r"(p)
                                         : "xmm0"); },
     {{64, 16, kLoads, false}}},
    {"a double",
     [](unsigned char* p) { asm volatile("movsd 64(%0), %%xmm0" ::"r"(p)
                                         : "xmm0"); },
     {{64, 8, kLoads, false}}},
    {"a float",
     [](unsigned char* p) { asm volatile("movss 64(%0), %%xmm0" ::"r"(p)
                                         : "xmm0"); },
     {{64, 4, kLoads, false}}},
    {"the upper half, a double",
     [](unsigned char* p) { asm volatile("movhpd 64(%0), %%xmm0" ::"r"(p)
                                         : "xmm0"); },
     {{64, 8, kLoads, false}}},
    {"1 byte widened",
     [](unsigned char* p) { asm volatile("movzbl 64(%0), %%eax" ::"r"(p)
                                         : "rax"); },
     {{64, 1, kLoads, false}}},
    {"a sum",
     [](unsigned char* p) { asm volatile("addq 64(%0), %%rax" ::"r"(p)
                                         : "rax", "cc"); },
     {{64, 8, kLoads, false}}},
    {"a difference",
     [](unsigned char* p) { asm volatile("sbbl 64(%0), %%eax" ::"r"(p)
                                         : "rax", "cc"); },
     {{64, 4, kLoads, false}}},
    {"a register compared",
     [](unsigned char* p) { asm volatile("cmpq 64(%0), %%rax" ::"r"(p)
                                         : "cc"); },
     {{64, 8, kLoads, false}}},
    {"with a register compared",
     [](unsigned char* p) { asm volatile("cmpq %%rax, 64(%0)" ::"r"(p)
                                         : "cc"); },
     {{64, 8, kLoads, false}}},
    {"a byte compared",
     [](unsigned char* p) { asm volatile("cmpb $0, 64(%0)" ::"r"(p)
                                         : "cc"); },
     {{64, 1, kLoads, false}}},
    {"a register tested",
     [](unsigned char* p) { asm volatile("testq %%rax, 64(%0)" ::"r"(p)
                                         : "cc"); },
     {{64, 8, kLoads, false}}},
    {"a bit tested",
     [](unsigned char* p) { asm volatile("btl $3, 64(%0)" ::"r"(p)
                                         : "cc"); },
     {{64, 4, kLoads, false}}},
    {"a product with a number",
     [](unsigned char* p) { asm volatile("imulq $3, 64(%0), %%rax" ::"r"(p)
                                         : "rax", "cc"); },
     {{64, 8, kLoads, false}}},
    {"4 bytes stored",
     [](unsigned char* p) { asm volatile("movl $5, 64(%0)" ::"r"(p)); },
     {{64, 4, false, kStores}}},
    {"16 bytes stored",
     [](unsigned char* p) { asm volatile("movups %%xmm0, 64(%0)" ::"r"(p)); },
     {{64, 16, false, kStores}}},
    {"the upper half of a vector stored",
     [](unsigned char* p) { asm volatile("movhps %%xmm0, 64(%0)" ::"r"(p)); },
     {{64, 8, false, kStores}}},
    {"a change",
     [](unsigned char* p) { asm volatile("addq $5, 64(%0)" ::"r"(p)
                                         : "cc"); },
     {{64, 8, kLoads, kStores}}},
    {"a change of a bit",
     [](unsigned char* p) { asm volatile("orb $5, 64(%0)" ::"r"(p)
                                         : "cc"); },
     {{64, 1, kLoads, kStores}}},
    {"a negation",
     [](unsigned char* p) { asm volatile("negl 64(%0)" ::"r"(p)
                                         : "cc"); },
     {{64, 4, kLoads, kStores}}},
    {"a shift",
     [](unsigned char* p) { asm volatile("shlw $1, 64(%0)" ::"r"(p)
                                         : "cc"); },
     {{64, 2, kLoads, kStores}}},
    {"a subtraction of a register",
     [](unsigned char* p) { asm volatile("subq %0, 64(%0)" ::"r"(p)
                                         : "cc"); },
     {{64, 8, kLoads, kStores}}},
    {"an exclusive or",
     [](unsigned char* p) { asm volatile("xorl %%eax, 64(%0)" ::"r"(p)
                                         : "cc"); },
     {{64, 4, kLoads, kStores}}},
    {"an exchange",
     [](unsigned char* p) { asm volatile("xchgl %%eax, 64(%0)" ::"r"(p)
                                         : "rax"); },
     {{64, 4, kLoads, kStores}}},
    {"a sum exchanged",
     [](unsigned char* p) { asm volatile("lock xaddl %%eax, 64(%0)" ::"r"(p)
                                         : "rax", "cc"); },
     {{64, 4, kLoads, kStores}}},
    {"an exchange where equal",
     [](unsigned char* p) { asm volatile("lock cmpxchgl %%ecx, 64(%0)" ::"r"(p)
                                         : "rax", "cc"); },
     {{64, 4, kLoads, kStores}}},
    {"an exchange where equal, not locked",
     [](unsigned char* p) { asm volatile("cmpxchgl %%ecx, 64(%0)" ::"r"(p)
                                         : "rax", "cc"); },
     {{64, 4, kLoads, kStores}}},
    {"a string, 8 bytes at a time",
     [](unsigned char* p) {
       unsigned char copy[16];
       unsigned char* to = copy;
       const unsigned char* from = p + 64;
       uint64_t count = 2;
       asm volatile("rep movsq" : "+D"(to), "+S"(from), "+c"(count) : : "memory");
     },
     {{64, 8, kLoads, false}, {72, 8, kLoads, false}}},
    {"a string within the memory",
     [](unsigned char* p) {
       unsigned char* to = p + 128;
       const unsigned char* from = p + 64;
       asm volatile("movsb" : "+D"(to), "+S"(from) : : "memory");
     },
     {{128, 1, false, kStores}, {64, 1, kLoads, false}}},
};
#else
const Case kInstructions[] = {
    {"1 byte",
     [](unsigned char* p) { asm volatile("ldrb w0, [%0, 64]" ::"r"(p)
                                         : "x0"); },
     {{64, 1, kLoads, false}}},
    {"2 bytes",
     [](unsigned char* p) { asm volatile("ldrh w0, [%0, 64]" ::"r"(p)
                                         : "x0"); },
     {{64, 2, kLoads, false}}},
    {"4 bytes",
     [](unsigned char* p) { asm volatile("ldr w0, [%0, 64]" ::"r"(p)
                                         : "x0"); },
     {{64, 4, kLoads, false}}},
    {"8 bytes",
     [](unsigned char* p) { asm volatile("ldr x0, [%0, 64]" ::"r"(p)
                                         : "x0"); },
     {{64, 8, kLoads, false}}},
    {"16 bytes",
     [](unsigned char* p) { asm volatile("ldr q0, [%0, 64]" ::"r"(p)
                                         : "v0"); },
     {{64, 16, kLoads, false}}},
    {"two of 4 bytes",
     [](unsigned char* p) { asm volatile("ldp w0, w1, [%0, 64]" ::"r"(p)
                                         : "x0", "x1"); },
     {{64, 8, kLoads, false}}},
    {"two of 8 bytes",
     [](unsigned char* p) { asm volatile("ldp x0, x1, [%0, 64]" ::"r"(p)
                                         : "x0", "x1"); },
     {{64, 16, kLoads, false}}},
    {"two of 16 bytes",
     [](unsigned char* p) { asm volatile("ldp q0, q1, [%0, 64]" ::"r"(p)
                                         : "v0", "v1"); },
     {{64, 32, kLoads, false}}},
    {"4 bytes with a sign",
     [](unsigned char* p) { asm volatile("ldrsw x0, [%0, 64]" ::"r"(p)
                                         : "x0"); },
     {{64, 4, kLoads, false}}},
    {"off the steps of its size",
     [](unsigned char* p) {
       asm volatile("add x1, %0, 65\n ldur w0, [x1, -1]" ::"r"(p) : "x0", "x1");
     },
     {{64, 4, kLoads, false}}},
    {"the base moved before",
     [](unsigned char* p) { asm volatile("mov x1, %0\n ldr x0, [x1, 64]!" ::"r"(p)
                                         : "x0", "x1"); },
     {{64, 8, kLoads, false}}},
    {"the base moved after",
     [](unsigned char* p) {
       asm volatile("add x1, %0, 64\n ldr x0, [x1], 8\n ldr w0, [x1]" ::"r"(p) : "x0", "x1");
     },
     {{64, 8, kLoads, false}, {72, 4, kLoads, false}}},
    {"with an index",
     [](unsigned char* p) { asm volatile("ldr x0, [%0, %1, lsl 3]" ::"r"(p), "r"(8ULL)
                                         : "x0"); },
     {{64, 8, kLoads, false}}},
    {"with an index below 0",
     [](unsigned char* p) {
       asm volatile("add x1, %0, 72\n ldr x0, [x1, %w1, sxtw 3]" ::"r"(p), "r"(-1) : "x0", "x1");
     },
     {{64, 8, kLoads, false}}},
    {"whole vectors",
     [](unsigned char* p) {
       asm volatile("add x1, %0, 64\n ld1 {v0.16b, v1.16b}, [x1]" ::"r"(p) : "x1", "v0", "v1");
     },
     {{64, 32, kLoads, false}}},
    {"one lane",
     [](unsigned char* p) {
       asm volatile("add x1, %0, 64\n ld1 {v0.s}[1], [x1]" ::"r"(p) : "x1", "v0");
     },
     {{64, 4, kLoads, false}}},
    {"4 bytes stored",
     [](unsigned char* p) { asm volatile("str w0, [%0, 64]" ::"r"(p)); },
     {{64, 4, false, kStores}}},
    {"two of 8 bytes stored",
     [](unsigned char* p) { asm volatile("stp xzr, xzr, [%0, 64]" ::"r"(p)); },
     {{64, 16, false, kStores}}},
};
#endif

TEST(WatchedMemory, SeesEachInstruction) {
  for (const Case& c : kInstructions) check(c, 0);
}

TEST(WatchedMemory, SeesAnAccessAcrossTwoPagesOnce) {
  // Byte 64 is the last one of a page.
  for (const Case& c : kInstructions) check(c, 4096 - 65);
}

unsigned load_byte(const unsigned char* at) {
  return *static_cast<const volatile unsigned char*>(at);
}

TEST(WatchedMemory, FindsAByteThatIsLoadedTwice) {
  WatchedMemory memory(100);
  const Trace once = memory.watch([&] {
    load_byte(memory.data() + 7);
    load_byte(memory.data() + 8);
  });
  EXPECT_EQ(broken_rule(once, memory.size()), "");
  const Trace twice = memory.watch([&] {
    load_byte(memory.data() + 7);
    uint16_t both = 0;
    const auto* at = reinterpret_cast<const volatile uint16_t*>(memory.data() + 6);
    both = *at;
    EXPECT_EQ(both, 0);
  });
  EXPECT_EQ(broken_rule(twice, memory.size()), "byte 7 is loaded twice");
}

TEST(WatchedMemory, FindsAByteThatIsReadBack) {
  WatchedMemory memory(100);
  const Trace trace = memory.watch([&] {
    load_byte(memory.data() + 9);
    *static_cast<volatile unsigned char*>(memory.data() + 9) = 3;  // may be stored, once it is read
    load_byte(memory.data() + 9);
  });
  EXPECT_EQ(broken_rule(trace, memory.size()), "byte 9 is read back");
  EXPECT_EQ(memory.data()[9], 3);
}

TEST(WatchedMemory, FindsWhatLiesBeyondIt) {
  WatchedMemory memory(100, 0, 16);
  const Trace before = memory.watch([&] { load_byte(memory.data() - 1); });
  EXPECT_EQ(broken_rule(before, memory.size()), "a load of 1 bytes at -1, beyond the 100 bytes");
  const Trace behind = memory.watch([&] { load_byte(memory.data() + 100); });
  EXPECT_EQ(broken_rule(behind, memory.size()), "a load of 1 bytes at 100, beyond the 100 bytes");
  bool came_back = false;
  const Trace far_behind = memory.watch([&] {
    load_byte(memory.data() + 65536);
    came_back = true;
  });
  EXPECT_FALSE(came_back);
  EXPECT_NE(broken_rule(far_behind, memory.size()), "");
}

TEST(WatchedMemory, SeesWhatTheCLibraryReads) {
  WatchedMemory memory(100);
  std::memset(memory.data(), 1, memory.size());
  unsigned char same[100];
  std::memset(same, 1, sizeof same);
  int (*volatile compare)(const void*, const void*, std::size_t) = std::memcmp;
  const Trace trace = memory.watch([&] { EXPECT_EQ(compare(memory.data(), same, 100), 0); });
  EXPECT_EQ(trace.stopped, "");
  const std::vector<bool> loaded = loaded_bytes(trace, memory.size());
  EXPECT_EQ(std::count(loaded.begin(), loaded.end(), true), 100);
}

TEST(WatchedMemory, GivesWayToAnotherWriterBehindTheFirstLoad) {
  WatchedMemory memory(100, 50);  // byte 50 begins a page
  memory.data()[50] = 1;
  memory.data()[60] = 2;
  memory.flip_after_first_load({{60, {7}}, {50, {8}}}, AfterFlips::kStopWatching);
  std::vector<unsigned> seen;
  const Trace trace = memory.watch([&] {
    for (const std::size_t at : {49, 50, 50, 60, 60, 50}) {
      const unsigned byte = load_byte(memory.data() + at);
      seen.push_back(byte);
    }
  });
  EXPECT_EQ(seen, (std::vector<unsigned>{0, 1, 8, 2, 7, 8}));
  EXPECT_EQ(trace.flips, 2U);
  // Byte 49 is not watched, and nothing is once the last word has changed.
  EXPECT_EQ(text_of_all(trace.touches),
            "a load of 1 bytes at 50\na load of 1 bytes at 50\na load of 1 bytes at 60\n");
}

}  // namespace
}  // namespace fetches
