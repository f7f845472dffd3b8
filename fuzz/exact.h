// Byte counts that nothing wraps: 64-bit fields multiplied by slice counts fit 128 bits.
#pragma once

#include <cstdint>

namespace fuzz {

__extension__ using Exact = unsigned __int128;

// A buffer as a record describes it: one slice of every array layer.
struct StoredBuffer {
  uint64_t offset;
  uint64_t size;  // bytes of one slice
  uint64_t slice_pitch;
  uint32_t slices;  // 1 or more
};

constexpr Exact end_of(const StoredBuffer& buffer) {
  return Exact{buffer.offset} + Exact{buffer.slices - 1} * buffer.slice_pitch + buffer.size;
}

// Whether any slice of one shares a byte with any slice of the other. Two buffers are apart when
// each ends before the other begins, or when they share one slice pitch and each fits into the
// slices' gaps of the other.
constexpr bool overlap(const StoredBuffer& a, const StoredBuffer& b) {
  if (a.size == 0 || b.size == 0) return false;
  if (end_of(a) <= b.offset || end_of(b) <= a.offset) return false;
  if (a.slice_pitch != b.slice_pitch || a.slice_pitch == 0) return true;
  const StoredBuffer& first = a.offset <= b.offset ? a : b;
  const StoredBuffer& second = a.offset <= b.offset ? b : a;
  const uint64_t distance = (second.offset - first.offset) % a.slice_pitch;
  return distance < first.size || Exact{distance} + second.size > a.slice_pitch;
}

}  // namespace fuzz
