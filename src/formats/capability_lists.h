// Lists of formats that a GPU can render to or sample from, and the condition under which each list
// holds. A predicate is one mask of lists per format against one mask of lists per chip and usage.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>

#include "formats/format_ids.h"
#include "formats/model_checks.h"
#include "identify/chip_row.h"

namespace korvel {

// Families, as bits.
enum Families : uint8_t {
  kFamily5 = 0x1,
  kFamily6 = 0x2,
  kFamily7 = 0x4,
  kFamilies67 = kFamily6 | kFamily7,
  kAllFamilies = kFamily5 | kFamilies67,
};

enum class Condition : uint8_t {
  always,
  depth_stencil,          // asked about depth/stencil use
  colour,                 // asked about any other use
  colour_single_sampled,  // asked about any other use of a resource of one sample
  yuv16_ext,              // the chip's model has the 16-bit YUV extension
  p016,                   // the chip's model has P016
  not_excluded,           // the chip's model is not one of the two that lack these formats
};

struct CapabilityList {
  Families families;
  Condition condition;
  std::span<const IdRange> ids;
};

// What the caller asks about.
struct Usage {
  bool depth_stencil;
  bool single_sampled;
};

constexpr bool is_of(const ChipRow& chip, Families families) {
  switch (chip.family_id) {
    case 5: return (families & kFamily5) != 0;
    case 6: return (families & kFamily6) != 0;
    case 7: return (families & kFamily7) != 0;
    default: return false;
  }
}

constexpr bool holds(Condition condition, const ChipRow& chip, Usage usage) {
  switch (condition) {
    case Condition::always: return true;
    case Condition::depth_stencil: return usage.depth_stencil;
    case Condition::colour: return !usage.depth_stencil;
    case Condition::colour_single_sampled: return !usage.depth_stencil && usage.single_sampled;
    case Condition::yuv16_ext: return model_supports_yuv16_ext(chip.model_code);
    case Condition::p016: return model_supports_p016(chip.model_code);
    case Condition::not_excluded: return !model_excludes_sampling(chip.model_code);
  }
  return false;
}

// Bit n of a mask stands for lists[n]. The sign bit is set for every format, and for a row without
// a chip: what both masks have in common is then negative, and the predicate has more to do than to
// look up.
using ListMask = int16_t;
inline constexpr std::size_t kMaxLists = 15;
inline constexpr ListMask kNoChip = std::numeric_limits<ListMask>::min();

constexpr ListMask list_bit(std::size_t n) {
  return static_cast<ListMask>(1 << n);
}

constexpr ListMask lists_that_hold(std::span<const CapabilityList> lists, const ChipRow& chip,
                                   Usage usage) {
  ListMask mask = 0;
  for (std::size_t i = 0; i < lists.size(); ++i) {
    const bool yes = is_of(chip, lists[i].families) && holds(lists[i].condition, chip, usage);
    if (yes) mask = static_cast<ListMask>(mask | list_bit(i));
  }
  return mask;
}

// Whether the caller asks about depth/stencil use: 0 or 1.
inline constexpr uint32_t kDepthStencilUses = 2;

// Both masks of one predicate, in one array, so that one address serves both: those of the formats,
// then one for each use of each chip row, as they are for resources of one sample.
using CapabilityMasks = std::array<ListMask, kFormatCount + kChipRowCount * kDepthStencilUses>;

// Counted back from the row's last mask, that of depth/stencil use: one instruction less.
constexpr uint32_t chip_mask_index(uint32_t row, int32_t depth_stencil_use) {
  const uint32_t colour = depth_stencil_use == 0 ? 1 : 0;
  return row * kDepthStencilUses - colour + kFormatCount + 1;
}

constexpr CapabilityMasks capability_masks(std::span<const CapabilityList> lists) {
  CapabilityMasks masks{};
  for (FormatId id = 0; id < kFormatCount; ++id) masks[id] = kNoChip;
  for (std::size_t i = 0; i < lists.size(); ++i) {
    for_each_id(lists[i].ids,
                [&](FormatId id) { masks[id] = static_cast<ListMask>(masks[id] | list_bit(i)); });
  }
  for (uint32_t row = 0; row < kChipRowCount; ++row) {
    for (const bool depth_stencil : {false, true}) {
      masks[chip_mask_index(row, depth_stencil ? 1 : 0)] =
          row < kRowFirstChip ? kNoChip
                              : lists_that_hold(lists, kChipRows[row], {depth_stencil, true});
    }
  }
  return masks;
}

// The lists that name the format and hold for the chip: positive when there is one, 0 when there is
// none, negative for a row without a chip. `format` is below kFormatCount.
constexpr ListMask common_lists(const CapabilityMasks& masks, uint32_t row, uint32_t format,
                                int32_t depth_stencil_use) {
  return static_cast<ListMask>(masks[chip_mask_index(row, depth_stencil_use)] & masks[format]);
}

// Every list is sorted, and no format stands in two lists of one family.
constexpr bool lists_are_disjoint(std::span<const CapabilityList> lists) {
  if (lists.size() > kMaxLists) return false;
  for (const CapabilityList& list : lists) {
    if (!is_sorted_list(list.ids)) return false;
  }
  for (const Families family : {kFamily5, kFamily6, kFamily7}) {
    std::array<bool, kFormatCount> listed{};
    bool disjoint = true;
    for (const CapabilityList& list : lists) {
      if ((list.families & family) == 0) continue;
      for_each_id(list.ids, [&](FormatId id) {
        disjoint = disjoint && !listed[id];
        listed[id] = true;
      });
    }
    if (!disjoint) return false;
  }
  return true;
}

}  // namespace korvel
