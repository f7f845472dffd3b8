#include "fuzz/extent_claims.h"

#include <algorithm>
#include <bit>

#include <korvel_utils.h>
#include "fuzz/broken_property.h"
#include "tests/reference/rules.h"

namespace fuzz {
namespace {

constexpr ExtentClaims kNone = {};
constexpr ExtentClaims kBoth = {true, true};
constexpr uint64_t kWraps = uint64_t{1} << 32;
constexpr uint64_t kWrapsSigned = uint64_t{1} << 31;

// More than any step that linear widths are rounded up to, in elements.
constexpr uint64_t kLargestStep = 65536;
// More than any tile is wide or high, in texels.
constexpr uint64_t kLargestTile = 4096;
constexpr uint32_t kPitchLimit = 16384;  // elements

bool is_tiled(const AlignmentArguments& arguments) {
  return arguments.tiling_mode == KORVEL_TILING_TILED;
}

// Bytes of the plane's elements as the pitch rules count them; 32 bits, wrapping.
uint32_t counted_element_bytes(const AlignmentArguments& arguments) {
  const uint32_t bytes = reference::format_plane_bytes(arguments.format, arguments.plane);
  return is_tiled(arguments) ? bytes * arguments.samples : bytes;
}

bool has_extra_padding(const reference::Process& process, const AlignmentArguments& arguments) {
  return arguments.want_extra_padding != 0 && reference::chip_group(process) != 5;
}

uint64_t padded_width(const reference::Process& process, const AlignmentArguments& arguments) {
  const auto width = static_cast<uint64_t>(arguments.width);
  if (!has_extra_padding(process, arguments)) return width;
  return width + reference::extra_width_padding(process, arguments.format);
}

uint64_t padded_height(const reference::Process& process, const AlignmentArguments& arguments) {
  const auto height = static_cast<uint64_t>(arguments.height);
  if (!has_extra_padding(process, arguments)) return height;
  return height + reference::extra_height_padding(process);
}

ExtentClaims tiled_width_claims(const reference::Process& process,
                                const AlignmentArguments& arguments) {
  const uint64_t width = padded_width(process, arguments);
  uint64_t largest = 0;
  if (reference::chip_group(process) == 5) {
    largest = (width + 64) * counted_element_bytes(arguments) + 512;  // bytes of a row of tiles
  } else {
    largest = width * reference::format_block_dims(arguments.format).width + kLargestTile;
  }
  return largest < kWraps ? kBoth : kNone;
}

// Whether the step that linear widths are rounded up to is a power of two.
bool linear_step_is_exact(const AlignmentArguments& arguments) {
  const uint32_t samples = arguments.samples;
  const bool plain_samples = samples == 0 || (std::has_single_bit(samples) && samples <= 16);
  return plain_samples && std::has_single_bit(arguments.divisor);
}

bool is_never_padded(uint32_t format) {
  return format == reference::kFourCcFormat ||
         reference::has_flag(format, reference::kFlagVideo | reference::kFlagBlockCompressed);
}

uint32_t pitch_limit(const reference::Process& process) {
  if (reference::chip_group(process) != 7) return kPitchLimit;
  return static_cast<uint32_t>(reference::facts(process).max_surface_pitch);
}

ExtentClaims linear_width_claims(const reference::Process& process,
                                 const AlignmentArguments& arguments, Alignment alignment) {
  const bool plain_rounding = reference::chip_group(process) == 5 && alignment == Alignment::full;
  if (!plain_rounding && !linear_step_is_exact(arguments)) return kNone;
  if (is_never_padded(arguments.format)) return kBoth;

  const uint64_t element = counted_element_bytes(arguments);
  const uint64_t largest = padded_width(process, arguments) + kLargestStep;
  if (element != 0 && !std::has_single_bit(element)) {
    const uint64_t row_step = 16 * element * 64;  // bytes, for the largest substitute
    return largest * element + row_step < kWrapsSigned ? kBoth : kNone;
  }
  const int64_t threshold = arguments.min_padded_row_bytes;
  const auto longest_row = static_cast<int64_t>(largest * element);
  const bool is_short = longest_row <= threshold;
  if (element == 0 || is_short) return kBoth;
  return {.at_least = true, .monotone = false, .limit = pitch_limit(process)};
}

}  // namespace

ExtentClaims width_claims(const reference::Process& process, const AlignmentArguments& arguments,
                          Alignment alignment) {
  if (reference::chip_group(process) == 0) return kBoth;
  if (is_tiled(arguments)) return tiled_width_claims(process, arguments);
  return linear_width_claims(process, arguments, alignment);
}

ExtentClaims height_claims(const reference::Process& process, const AlignmentArguments& arguments) {
  const uint64_t block_height = reference::format_block_dims(arguments.format).height;
  // Rows of texels are signed.
  const uint64_t largest = padded_height(process, arguments) * block_height + kLargestTile;
  return reference::chip_group(process) == 0 || largest < kWrapsSigned ? kBoth : kNone;
}

void require_at_least(const ExtentClaims& claims, int32_t asked, uint32_t aligned) {
  if (!claims.at_least) return;
  REQUIRE(aligned >= std::min(static_cast<uint32_t>(asked), claims.limit));
}

void require_monotone(const ExtentClaims& claims, uint32_t aligned, uint32_t larger_aligned) {
  if (!claims.monotone) return;
  REQUIRE(aligned <= larger_aligned);
}

}  // namespace fuzz
