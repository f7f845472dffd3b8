// What a GPU can do with a format: lists of formats, and the condition under which each list holds.
// A predicate is one mask of the lists that name the format against one mask of the lists that hold
// for the chip and the use.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
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
enum Use : uint32_t {
  kColour,
  kDepthStencil,
  kColourMultisampled,
  kUses,
};

constexpr bool is_of(const ChipRow& chip, Families families) {
  switch (chip.family_id) {
    case 5: return (families & kFamily5) != 0;
    case 6: return (families & kFamily6) != 0;
    case 7: return (families & kFamily7) != 0;
    default: return false;
  }
}

constexpr bool holds(Condition condition, const ChipRow& chip, Use use) {
  switch (condition) {
    case Condition::always: return true;
    case Condition::depth_stencil: return use == kDepthStencil;
    case Condition::colour: return use != kDepthStencil;
    case Condition::colour_single_sampled: return use == kColour;
    case Condition::yuv16_ext: return model_supports_yuv16_ext(chip.model_code);
    case Condition::p016: return model_supports_p016(chip.model_code);
    case Condition::not_excluded: return !model_excludes_sampling(chip.model_code);
  }
  return false;
}

// Bit n of a mask stands for lists[n].
using ListMask = uint16_t;
inline constexpr std::size_t kMaxLists = 16;

// The masks of one predicate.
struct CapabilityMasks {
  std::array<ListMask, kFormatCount> naming;                       // by format
  std::array<std::array<ListMask, kUses>, kChipRowCount> holding;  // by chip row and use
};

constexpr ListMask lists_that_hold(std::span<const CapabilityList> lists, const ChipRow& chip,
                                   Use use) {
  uint32_t mask = 0;
  for (std::size_t n = 0; n < lists.size(); ++n) {
    const bool yes = is_of(chip, lists[n].families) && holds(lists[n].condition, chip, use);
    mask |= yes ? 1U << n : 0;
  }
  return static_cast<ListMask>(mask);
}

constexpr CapabilityMasks capability_masks(std::span<const CapabilityList> lists) {
  CapabilityMasks masks{};
  for (std::size_t n = 0; n < lists.size(); ++n) {
    for_each_id(lists[n].ids, [&](FormatId format) {
      masks.naming[format] = static_cast<ListMask>(masks.naming[format] | 1U << n);
    });
  }
  for (uint32_t row = 0; row < kChipRowCount; ++row) {
    for (const Use use : {kColour, kDepthStencil, kColourMultisampled}) {
      masks.holding[row][use] = lists_that_hold(lists, kChipRows[row], use);
    }
  }
  return masks;
}

// Any 32-bit format number. A row that is no chip has no capability.
constexpr bool is_capable(const CapabilityMasks& masks, uint32_t row, FormatId format, Use use) {
  return format < kFormatCount && (masks.naming[format] & masks.holding[row][use]) != 0;
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
