// Which row pitches spread well over the memory channels. A pitch whose rows come back to the same
// 2048-byte position too soon or too late is widened; the widths are found by trying.
#include "rules.h"

namespace reference {

namespace {

// Rows of this many bytes meet a 2048-byte boundary again after how many rows.
uint32_t rows_until_repeat(uint32_t row_bytes) {
  uint32_t n = 1;
  while ((n * 2048) % row_bytes != 0) {
    ++n;
  }
  return n * 2048 / row_bytes;
}

bool acceptable(uint32_t period, bool second_half) {
  if (period == 1) return false;
  if (second_half) return period < 17;
  return period <= 4;
}

uint32_t search(uint32_t size_class, uint32_t p, bool second_half) {
  if (p == 0) return 0;
  const uint32_t s = 1u << size_class;
  const uint32_t step = 1024 / s;
  const uint32_t span = 2048 / s;
  for (uint32_t q = p; q - p <= 2048; q += step) {
    uint32_t r = q % span;
    if (r == 0) {
      r = span;
    }
    if (acceptable(rows_until_repeat(r * s), second_half)) {
      return q;
    }
  }
  return p;
}

struct Table {
  uint32_t entry[5][66];

  Table() : entry() {
    for (uint32_t size_class = 0; size_class < 5; ++size_class) {
      for (uint32_t k = 0; k <= 32; ++k) {
        entry[size_class][k] = search(size_class, 64 * k, false);
        entry[size_class][33 + k] = search(size_class, 64 * k, true);
      }
    }
  }
};

uint32_t table_entry(uint32_t size_class, uint32_t index) {
  static const Table table;
  return table.entry[size_class][index];
}

}  // namespace

uint32_t padded_pitch(uint32_t size_class, uint32_t pitch, bool second_half) {
  return table_entry(size_class, ceil_divide(pitch, 64) + (second_half ? 33 : 0));
}

// The value before the family's clamp, for elements of 1 to 31 bytes.
uint32_t pitch_padding_lookup(uint32_t w, uint32_t e, uint32_t selector) {
  uint32_t size_class = 0;
  while ((2u << size_class) <= e) {
    ++size_class;
  }
  const bool second_half = selector == 2;
  if (w <= 2048) {
    return padded_pitch(size_class, w, second_half);
  }
  const uint32_t beyond = w % 2048;
  if (beyond != 0) {
    return (w - beyond) + padded_pitch(size_class, beyond, second_half);
  }
  return w;
}

}  // namespace reference
