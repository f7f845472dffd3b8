// Lists of formats that a GPU can render to or sample from, and the condition under which each list
// holds. A predicate is one mask of lists per format against one mask of lists per chip and usage.
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

// Bit n of a mask stands for lists[n].
using ListMask = uint16_t;
inline constexpr std::size_t kMaxLists = 16;

constexpr ListMask lists_that_hold(std::span<const CapabilityList> lists, const ChipRow& chip,
                                   Usage usage) {
  uint32_t mask = 0;
  for (std::size_t i = 0; i < lists.size(); ++i) {
    const bool yes = is_of(chip, lists[i].families) && holds(lists[i].condition, chip, usage);
    mask |= uint32_t{yes} << i;
  }
  return static_cast<ListMask>(mask);
}

constexpr std::array<ListMask, kFormatCount> lists_that_name_formats(
    std::span<const CapabilityList> lists) {
  std::array<ListMask, kFormatCount> masks{};
  for (std::size_t i = 0; i < lists.size(); ++i) {
    for_each_id(lists[i].ids,
                [&](FormatId id) { masks[id] = static_cast<ListMask>(masks[id] | (1U << i)); });
  }
  return masks;
}

// Both masks of one predicate. `ChipMasks` has one mask for each usage that the predicate tells
// apart.
template <typename ChipMasks>
struct CapabilityTables {
  std::array<ListMask, kFormatCount> of_format;
  std::array<ChipMasks, kChipRowCount> of_chip;
};

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
