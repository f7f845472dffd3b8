#include "tests/fetches/arm64_access.h"

namespace fetches {

namespace {

// The encodings that are understood. Bits of an instruction word are written with the highest first;
// x is any bit. The fields:
//   size, opc     together the bytes of a register and the direction
//   V             1 for vector registers
//   Q             16-byte vectors, else 8-byte ones
//   L             1 loads, 0 stores
//   imm, option   what is added to the base register: a number, or a register
//   p             1 where the base register is moved after the access
//   Rn, Rt, Rt2   base register, registers that are loaded or stored
enum class Form {
  pair,            // ldp, stp, ldnp, stnp, ldpsw
  number_scaled,   // ldr, ldrb, ldrh, ldrsb, ldrsh, ldrsw and their stores, from 0 steps on
  number,          // ldur and the like; ldr with its base moved before or after
  register_added,  // ldr with an index register
  structures,      // ld1 to ld4 and st1 to st4 of whole vectors
  one_structure,   // ld1 to ld4 and st1 to st4 of one lane, ld1r to ld4r
};

struct Encoding {
  Form form;
  uint32_t fixed_bits;
  uint32_t values;
};

constexpr Encoding kEncodings[] = {
    // opc 101 V 0 xx L imm7 Rt2 Rn Rt
    {Form::pair, 0x3A000000, 0x28000000},
    // size 111 V 01 opc imm12 Rn Rt
    {Form::number_scaled, 0x3B000000, 0x39000000},
    // size 111 V 00 opc 0 imm9 xx Rn Rt
    {Form::number, 0x3B200000, 0x38000000},
    // size 111 V 00 opc 1 Rm option S 10 Rn Rt
    {Form::register_added, 0x3B200C00, 0x38200800},
    // 0 Q 001100 0 L 000000 opcode size Rn Rt
    {Form::structures, 0xBFBF0000, 0x0C000000},
    // 0 Q 001100 1 L 0 Rm opcode size Rn Rt
    {Form::structures, 0xBFA00000, 0x0C800000},
    // 0 Q 001101 0 L R 00000 opcode S size Rn Rt
    {Form::one_structure, 0xBF9F0000, 0x0D000000},
    // 0 Q 001101 1 L R Rm opcode S size Rn Rt
    {Form::one_structure, 0xBF800000, 0x0D800000},
};

constexpr uint32_t bits(uint32_t word, unsigned highest, unsigned lowest) {
  return word >> lowest & ((1U << (highest - lowest + 1)) - 1);
}

constexpr bool bit(uint32_t word, unsigned index) {
  return bits(word, index, index) != 0;
}

constexpr int64_t signed_number(uint32_t number, unsigned sign_bit) {
  const int64_t sign = int64_t{1} << sign_bit;
  return (int64_t{number} ^ sign) - sign;
}

constexpr unsigned base_of(uint32_t word) {
  return bits(word, 9, 5);
}

// Moving the base register after the access leaves its address where the base is.
constexpr bool base_moves_after(uint32_t pair_or_number_mode) {
  return pair_or_number_mode == 1;
}

std::optional<Arm64Access> pair_access(uint32_t word) {
  const bool vectors = bit(word, 26);
  const bool loads = bit(word, 22);
  const uint32_t opc = bits(word, 31, 30);
  // General: 4 bytes, 4 with a sign, 8. Vectors: 4, 8, 16.
  if (opc == 3 || (!vectors && opc == 1 && !loads)) return std::nullopt;
  const unsigned log2_bytes = vectors ? 2 + opc : (opc == 2 ? 3 : 2);
  const std::size_t bytes = std::size_t{1} << log2_bytes;
  const int64_t steps = signed_number(bits(word, 21, 15), 6);
  return Arm64Access{.bytes = 2 * bytes,
                     .loads = loads,
                     .stores = !loads,
                     .base = base_of(word),
                     .offset_bytes = base_moves_after(bits(word, 24, 23))
                                         ? 0
                                         : steps * static_cast<int64_t>(bytes)};
}

// Bytes and direction of one register; the address is left to the form.
struct OneRegister {
  unsigned log2_bytes;
  Arm64Access access;
};

std::optional<OneRegister> one_register(uint32_t word) {
  const uint32_t size = bits(word, 31, 30);
  const uint32_t opc = bits(word, 23, 22);
  unsigned log2_bytes = size;
  bool loads = opc != 0;
  if (bit(word, 26)) {  // a vector register, of 1, 2, 4, 8 bytes, or 16
    const bool whole = opc >= 2;
    if (whole && size != 0) return std::nullopt;
    if (whole) log2_bytes = 4;
    loads = opc == 1 || opc == 3;
  } else {  // opc 2 and 3 widen with the sign to 64 and to 32 bits
    if (opc == 2 && size == 3) return std::nullopt;  // prefetches
    if (opc == 3 && size >= 2) return std::nullopt;
  }
  return OneRegister{log2_bytes,
                     {.bytes = std::size_t{1} << log2_bytes,
                      .loads = loads,
                      .stores = !loads,
                      .base = base_of(word)}};
}

std::optional<Arm64Access> number_scaled_access(uint32_t word) {
  auto found = one_register(word);
  if (!found) return std::nullopt;
  found->access.offset_bytes = int64_t{bits(word, 21, 10)} << found->log2_bytes;
  return found->access;
}

std::optional<Arm64Access> number_access(uint32_t word) {
  auto found = one_register(word);
  if (!found) return std::nullopt;
  const uint32_t mode = bits(word, 11, 10);
  found->access.offset_bytes = base_moves_after(mode) ? 0 : signed_number(bits(word, 20, 12), 8);
  return found->access;
}

std::optional<Arm64Access> register_added_access(uint32_t word) {
  auto found = one_register(word);
  if (!found) return std::nullopt;
  switch (bits(word, 15, 13)) {
    case 2: found->access.index = Arm64Index::unsigned_word; break;
    case 3:
    case 7: found->access.index = Arm64Index::whole; break;
    case 6: found->access.index = Arm64Index::signed_word; break;
    default: return std::nullopt;
  }
  found->access.index_register = bits(word, 20, 16);
  found->access.index_shift = bit(word, 12) ? found->log2_bytes : 0;
  return found->access;
}

// Whole vectors one after another, however their elements are dealt out.
std::optional<Arm64Access> structures_access(uint32_t word) {
  std::size_t vectors = 0;
  switch (bits(word, 15, 12)) {
    case 0x7: vectors = 1; break;  // ld1
    case 0x8:                      // ld2
    case 0xA: vectors = 2; break;  // ld1 of two
    case 0x4:                      // ld3
    case 0x6: vectors = 3; break;  // ld1 of three
    case 0x0:                      // ld4
    case 0x2: vectors = 4; break;  // ld1 of four
    default: return std::nullopt;
  }
  const bool loads = bit(word, 22);
  return Arm64Access{.bytes = vectors * (bit(word, 30) ? 16 : 8),
                     .loads = loads,
                     .stores = !loads,
                     .base = base_of(word)};
}

// One element for each of one to four vectors.
std::optional<Arm64Access> one_structure_access(uint32_t word) {
  const uint32_t opcode = bits(word, 15, 13);
  const uint32_t size = bits(word, 11, 10);
  const bool loads = bit(word, 22);
  unsigned log2_bytes = 0;
  switch (opcode >> 1) {
    case 0: break;
    case 1:
      if ((size & 1) != 0) return std::nullopt;
      log2_bytes = 1;
      break;
    case 2:
      if (size > 1 || (size == 1 && bit(word, 12))) return std::nullopt;
      log2_bytes = size == 1 ? 3 : 2;
      break;
    default:  // the one element goes into every lane
      if (!loads || bit(word, 12)) return std::nullopt;
      log2_bytes = size;
  }
  const std::size_t elements = 1 + 2 * (opcode & 1) + bits(word, 21, 21);
  return Arm64Access{
      .bytes = elements << log2_bytes, .loads = loads, .stores = !loads, .base = base_of(word)};
}

}  // namespace

std::optional<Arm64Access> arm64_access(uint32_t instruction) {
  for (const Encoding& encoding : kEncodings) {
    if ((instruction & encoding.fixed_bits) != encoding.values) continue;
    switch (encoding.form) {
      case Form::pair: return pair_access(instruction);
      case Form::number_scaled: return number_scaled_access(instruction);
      case Form::number: return number_access(instruction);
      case Form::register_added: return register_added_access(instruction);
      case Form::structures: return structures_access(instruction);
      case Form::one_structure: return one_structure_access(instruction);
    }
  }
  return std::nullopt;
}

}  // namespace fetches
