// What the alignment entries have in common: the checks with their messages, and the three
// alignments behind them: full, that of fragment density maps (fdm), and minimal.
#pragma once

#include <korvel_utils.h>

#include <cstdint>

#include "align/alignment_request.h"
#include "align/extra_padding.h"
#include "align/family5_rules.h"
#include "align/family67_rules.h"
#include "formats/extent.h"
#include "identify/chip_row.h"
#include "identify/gpu_identity.h"
#include "platform/log.h"

namespace korvel {

// Whether the alignment rules know the surfaces of the GPU of this machine.
inline bool is_supported_chip() {
  return identified_chip().supported;
}

// Whether a size does not reach the rules: it is negative, or they do not know the chip's surfaces.
constexpr bool is_refused(const ChipRow& chip, SignedExtent<Elements> size) {
  return is_negative(size) || !chip.supported;
}

// What takes the place of the rules' answer where a size does not reach them: 1 x 1 for a negative
// size, else the size itself.
constexpr Extent<Elements> extent_without_rules(SignedExtent<Elements> size) {
  if (is_negative(size)) return {1, 1};
  return {static_cast<uint32_t>(size.width), static_cast<uint32_t>(size.height)};
}

// Prints why a size does not reach the rules, under the name `entry`, and returns what takes the
// place of their answer. Out of line, so that gcc keeps the calls behind it in registers.
[[gnu::cold, gnu::noinline]] inline Extent<Elements> refused_extent(const char* entry,
                                                                    int32_t width, int32_t height) {
  if (width < 0 || height < 0) {
    KORVEL_LOG(entry, "Invalid width or height: W = %d, H = %d", width, height);
  } else {
    KORVEL_LOG(entry, "Unknown Chip ID %d", static_cast<int32_t>(reported_chip_id()));
  }
  return extent_without_rules({width, height});
}

// Sizes that pass go to the rules, as rules(size).
template <typename Rules>
inline Extent<Elements> checked_extent(const char* entry, const ChipRow& chip,
                                       SignedExtent<Elements> size, Rules rules) {
  if (is_refused(chip, size)) {
    return refused_extent(entry, size.width, size.height);
  }
  return rules(
      Extent<Elements>{static_cast<uint32_t>(size.width), static_cast<uint32_t>(size.height)});
}

// The full alignment of a plane; `entry` is the name that messages carry.
inline Extent<Elements> full_extent(const char* entry, const ChipRow& chip,
                                    SignedExtent<Elements> size, const AlignmentRequest& request,
                                    uint32_t plane) {
  return checked_extent(entry, chip, size, [&](Extent<Elements> checked) {
    return chip.family_id == 5 ? align_family5(chip, checked, request, plane)
                               : align_family67(chip, checked, request, plane);
  });
}

// The full alignment with a divisor and padding, which the layouts use for their planes.
inline Extent<Elements> fdm_extent(const ChipRow& chip, SignedExtent<Elements> size,
                                   const AlignmentRequest& request, uint32_t plane) {
  return full_extent("compute_fmt_aligned_width_and_height_fdm", chip, size, request, plane);
}

// The smallest alignment of a plane that the hardware takes.
inline Extent<Elements> minimal_extent(const ChipRow& chip, SignedExtent<Elements> size,
                                       const AlignmentRequest& request, uint32_t plane) {
  constexpr const char* kName = "compute_fmt_minimal_aligned_width_and_height";
  return checked_extent(kName, chip, size, [&](Extent<Elements> checked) {
    return chip.family_id == 5 ? align_minimally_family5(chip, checked, request, plane)
                               : align_family67(chip, checked, request, plane);
  });
}

// The alignment that knows no format: only the format-aware entries do any aligning. On a supported
// chip a size that passes leaves the outputs as they are.
inline void align_without_format(SignedExtent<Elements> size, uint32_t* out_width,
                                 uint32_t* out_height) {
  const ChipRow& chip = identified_chip();
  if (!is_negative(size) && chip.supported) return;
  const Extent<Elements> refused =
      refused_extent("compute_aligned_width_and_height", size.width, size.height);
  *out_width = refused.width;
  *out_height = refused.height;
}

}  // namespace korvel
