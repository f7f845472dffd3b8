// The bytes of the surface that an accepted record describes, and the bytes that the validator holds
// its buffers against: the same for most records, and for the others this says how they differ.
#pragma once

#include <cstdint>

#include "fuzz/broken_property.h"
#include "fuzz/exact.h"
#include "fuzz/met_cases.h"
#include "fuzz/record_kind.h"

namespace fuzz {

inline constexpr Exact kTwoTo31 = Exact{1} << 31;
inline constexpr Exact kTwoTo32 = Exact{1} << 32;
inline constexpr Exact kTwoTo64 = Exact{1} << 64;

// total_size - size, as far as there is something left.
template <typename Record>
Exact surface_bytes_of(const Record& record) {
  return record.total_size < record.size ? 0 : Exact{record.total_size} - record.size;
}

// The same counted in 64 bits, where a smaller total_size wraps.
template <typename Record>
Exact counted_surface_bytes(const Record& record) {
  return (kTwoTo64 + record.total_size - record.size) % kTwoTo64;
}

inline Exact bound_of(const SurfaceMetadata& record) {
  return counted_surface_bytes(record);
}

// The low half, whose sign fills the upper one.
inline Exact bound_of(const MemoryLayout& record) {
  const Exact low = counted_surface_bytes(record) % kTwoTo32;
  return low < kTwoTo31 ? low : kTwoTo64 - kTwoTo32 + low;
}

// What a caller asks of total_size and size to have exact bounds. The records that he turns away
// by it are the exceptions of require_known_bound().
inline bool has_exact_bounds(const SurfaceMetadata& record) {
  return record.total_size >= record.size;
}
inline bool has_exact_bounds(const MemoryLayout& record) {
  return record.total_size >= record.size && record.total_size - record.size < kTwoTo31;
}

template <typename Record>
void require_known_bound(const Record& record) {
  const Exact surface_bytes = surface_bytes_of(record);
  const Exact bound = bound_of(record);
  if (has_exact_bounds(record)) {
    REQUIRE(bound == surface_bytes);
    meet(Case::surface_is_exact);
  } else if (record.total_size < record.size) {
    REQUIRE(bound >= kTwoTo64 - record.size);
    meet(Case::surface_wraps);
  } else if (bound < surface_bytes) {
    REQUIRE(surface_bytes >= kTwoTo32 && surface_bytes % kTwoTo32 < kTwoTo31);
    meet(Case::surface_is_cut);
  } else {
    // It is the surface's own size where the upper half has all bits set.
    REQUIRE(surface_bytes % kTwoTo32 >= kTwoTo31);
    REQUIRE(bound > surface_bytes || surface_bytes >= kTwoTo64 - kTwoTo31);
    meet(Case::surface_is_sign_extended);
  }
}

}  // namespace fuzz
