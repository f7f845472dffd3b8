// How an aligned size compares with the size that was asked for.
//
// Aligned sizes are at least the sizes asked for, and grow with them, except where the hardware's
// rules leave that on purpose:
//   - a 32-bit product of the rule wraps;
//   - a linear width is rounded up by a mask, which is exact for powers of two only: sample counts
//     and divisors that are no powers of two make a step that is none either;
//   - padded linear widths end at the pitch limit, which may lie below the width;
//   - padding is not monotone: it looks for the next pitch that spreads rows over the memory
//     channels, and 256 eight-byte elements become 384 where 320 stay 320.
// Heights are exact and monotone wherever nothing wraps.
#pragma once

#include <cstdint>

#include "fuzz/alignment_arguments.h"
#include "tests/reference/reference.h"

namespace fuzz {

struct ExtentClaims {
  bool at_least = false;  // an aligned size is the size or more, or the limit or more
  bool monotone = false;  // no smaller size of the same surface has a larger aligned one
  uint32_t limit = UINT32_MAX;
};

// Which entry aligns. The two differ where family 5 aligns linear widths.
enum class Alignment { full, minimal };

// The claims on sizes up to these. Neither width nor height is negative.
ExtentClaims width_claims(const reference::Process& process, const AlignmentArguments& arguments,
                          Alignment alignment);
ExtentClaims height_claims(const reference::Process& process, const AlignmentArguments& arguments);

// Requires what is claimed of one size, and of a smaller and a larger one.
void require_at_least(const ExtentClaims& claims, int32_t asked, uint32_t aligned);
void require_monotone(const ExtentClaims& claims, uint32_t aligned, uint32_t larger_aligned);

}  // namespace fuzz
