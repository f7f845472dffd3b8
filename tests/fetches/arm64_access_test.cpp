// Instruction words as aarch64-linux-gnu-as makes them of the text beside them.
#include "tests/fetches/arm64_access.h"

#include <gtest/gtest.h>

#include <string>

namespace fetches {
namespace {

constexpr unsigned kStackPointer = 31;

struct Case {
  uint32_t word;
  const char* assembly;
  Arm64Access expected;
};

constexpr Arm64Access load(std::size_t bytes, unsigned base, int64_t offset_bytes = 0) {
  return {
      .bytes = bytes, .loads = true, .stores = false, .base = base, .offset_bytes = offset_bytes};
}

constexpr Arm64Access store(std::size_t bytes, unsigned base, int64_t offset_bytes = 0) {
  return {
      .bytes = bytes, .loads = false, .stores = true, .base = base, .offset_bytes = offset_bytes};
}

constexpr Arm64Access indexed(Arm64Access access, Arm64Index index, unsigned index_register,
                              unsigned index_shift) {
  access.index = index;
  access.index_register = index_register;
  access.index_shift = index_shift;
  return access;
}

constexpr Case kUnderstood[] = {
    {0xF9400020, "ldr x0, [x1]", load(8, 1)},
    {0xB9401062, "ldr w2, [x3, 16]", load(4, 3, 16)},
    {0xF97FFFE2, "ldr x2, [sp, 32760]", load(8, kStackPointer, 32760)},
    {0x397FFCA4, "ldrb w4, [x5, 4095]", load(1, 5, 4095)},
    {0x794004A4, "ldrh w4, [x5, 2]", load(2, 5, 2)},
    {0x39C004A4, "ldrsb w4, [x5, 1]", load(1, 5, 1)},
    {0x79800CA4, "ldrsh x4, [x5, 6]", load(2, 5, 6)},
    {0xB98008A4, "ldrsw x4, [x5, 8]", load(4, 5, 8)},
    {0x3D400C41, "ldr b1, [x2, 3]", load(1, 2, 3)},
    {0xBD400841, "ldr s1, [x2, 8]", load(4, 2, 8)},
    {0xFD400441, "ldr d1, [x2, 8]", load(8, 2, 8)},
    {0x3DC00841, "ldr q1, [x2, 32]", load(16, 2, 32)},
    {0xB9000CE6, "str w6, [x7, 12]", store(4, 7, 12)},
    {0x390000FF, "strb wzr, [x7]", store(1, 7)},
    {0x3D8004E6, "str q6, [x7, 16]", store(16, 7, 16)},
    {0xB85FC020, "ldur w0, [x1, -4]", load(4, 1, -4)},
    {0xF84FF020, "ldur x0, [x1, 255]", load(8, 1, 255)},
    {0x3CD00020, "ldur q0, [x1, -256]", load(16, 1, -256)},
    {0x78001020, "sturh w0, [x1, 1]", store(2, 1, 1)},
    {0xF8408420, "ldr x0, [x1], 8", load(8, 1)},
    {0xF8408C20, "ldr x0, [x1, 8]!", load(8, 1, 8)},
    {0x385FFC20, "ldrb w0, [x1, -1]!", load(1, 1, -1)},
    {0xF81F0FE0, "str x0, [sp, -16]!", store(8, kStackPointer, -16)},
    {0xF8626820, "ldr x0, [x1, x2]", indexed(load(8, 1), Arm64Index::whole, 2, 0)},
    {0xF8627820, "ldr x0, [x1, x2, lsl 3]", indexed(load(8, 1), Arm64Index::whole, 2, 3)},
    {0xB8625820, "ldr w0, [x1, w2, uxtw 2]", indexed(load(4, 1), Arm64Index::unsigned_word, 2, 2)},
    {0xB862C820, "ldr w0, [x1, w2, sxtw]", indexed(load(4, 1), Arm64Index::signed_word, 2, 0)},
    {0x7862F820, "ldrh w0, [x1, x2, sxtx 1]", indexed(load(2, 1), Arm64Index::whole, 2, 1)},
    {0x3CE27820, "ldr q0, [x1, x2, lsl 4]", indexed(load(16, 1), Arm64Index::whole, 2, 4)},
    {0x3C226820, "str b0, [x1, x2]", indexed(store(1, 1), Arm64Index::whole, 2, 0)},
    {0x29400440, "ldp w0, w1, [x2]", load(8, 2)},
    {0xA9600440, "ldp x0, x1, [x2, -512]", load(16, 2, -512)},
    {0xA8C27BFD, "ldp x29, x30, [sp], 32", load(16, kStackPointer)},
    {0xA9C10440, "ldp x0, x1, [x2, 16]!", load(16, 2, 16)},
    {0x2D410440, "ldp s0, s1, [x2, 8]", load(8, 2, 8)},
    {0x6D408440, "ldp d0, d1, [x2, 8]", load(16, 2, 8)},
    {0xAD410440, "ldp q0, q1, [x2, 32]", load(32, 2, 32)},
    {0x69408440, "ldpsw x0, x1, [x2, 4]", load(8, 2, 4)},
    {0xA8410440, "ldnp x0, x1, [x2, 16]", load(16, 2, 16)},
    {0xA9BE7BFD, "stp x29, x30, [sp, -32]!", store(16, kStackPointer, -32)},
    {0xAD000440, "stp q0, q1, [x2]", store(32, 2)},
    {0x4C407020, "ld1 {v0.16b}, [x1]", load(16, 1)},
    {0x0C407020, "ld1 {v0.8b}, [x1]", load(8, 1)},
    {0x4C40A820, "ld1 {v0.4s, v1.4s}, [x1]", load(32, 1)},
    {0x4CDF6C20, "ld1 {v0.2d-v2.2d}, [x1], 48", load(48, 1)},
    {0x4CC22020, "ld1 {v0.16b-v3.16b}, [x1], x2", load(64, 1)},
    {0x4C408820, "ld2 {v0.4s, v1.4s}, [x1]", load(32, 1)},
    {0x0C404420, "ld3 {v0.4h-v2.4h}, [x1]", load(24, 1)},
    {0x4C400020, "ld4 {v0.16b-v3.16b}, [x1]", load(64, 1)},
    {0x4C007020, "st1 {v0.16b}, [x1]", store(16, 1)},
    {0x0D400C20, "ld1 {v0.b}[3], [x1]", load(1, 1)},
    {0x0D405820, "ld1 {v0.h}[3], [x1]", load(2, 1)},
    {0x0D409020, "ld1 {v0.s}[1], [x1]", load(4, 1)},
    {0x4DDF8420, "ld1 {v0.d}[1], [x1], 8", load(8, 1)},
    {0x0D609020, "ld2 {v0.s, v1.s}[1], [x1]", load(8, 1)},
    {0x0D402420, "ld3 {v0.b-v2.b}[1], [x1]", load(3, 1)},
    {0x4D60A420, "ld4 {v0.d-v3.d}[1], [x1]", load(32, 1)},
    {0x4D40C820, "ld1r {v0.4s}, [x1]", load(4, 1)},
    {0x4DDFCC20, "ld1r {v0.2d}, [x1], 8", load(8, 1)},
    {0x4D60C420, "ld2r {v0.8h, v1.8h}, [x1]", load(4, 1)},
    {0x0D009020, "st1 {v0.s}[1], [x1]", store(4, 1)},
};

TEST(Arm64Access, IsDecoded) {
  for (const Case& c : kUnderstood) {
    SCOPED_TRACE(c.assembly);
    const std::optional<Arm64Access> access = arm64_access(c.word);
    ASSERT_TRUE(access.has_value());
    EXPECT_EQ(access->bytes, c.expected.bytes);
    EXPECT_EQ(access->loads, c.expected.loads);
    EXPECT_EQ(access->stores, c.expected.stores);
    EXPECT_EQ(access->base, c.expected.base);
    EXPECT_EQ(access->offset_bytes, c.expected.offset_bytes);
    EXPECT_EQ(access->index, c.expected.index);
    EXPECT_EQ(access->index_register, c.expected.index_register);
    EXPECT_EQ(access->index_shift, c.expected.index_shift);
  }
}

TEST(Arm64Access, IsRefusedWhereNotUnderstood) {
  struct Refused {
    uint32_t word;
    const char* assembly;
  };
  constexpr Refused kRefused[] = {
      {0x58000000, "ldr x0, ."},
      {0xF9800020, "prfm pldl1keep, [x1]"},
      {0xF8801020, "prfum pldl1keep, [x1, 1]"},
      {0x88DFFC20, "ldar w0, [x1]"},
      {0x885F7C20, "ldxr w0, [x1]"},
      {0xC87F8440, "ldaxp x0, x1, [x2]"},
      {0xB8200041, "ldadd w0, w1, [x2]"},
      {0x88A07C41, "cas w0, w1, [x2]"},
      {0xB8BFC020, "ldapr w0, [x1]"},
      {0xF8208041, "swp x0, x1, [x2]"},
      {0x69000440, "stgp x0, x1, [x2]"},
      {0xF8200420, "ldraa x0, [x1]"},
      {0x8B020020, "add x0, x1, x2"},
      {0xD4200000, "brk 0"},
      {0xD65F03C0, "ret"},
      {0xD50B7420, "dc zva, x0"},
  };
  for (const Refused& c : kRefused) {
    EXPECT_FALSE(arm64_access(c.word).has_value()) << c.assembly;
  }
}

}  // namespace
}  // namespace fetches
