// What a GPU can do with a format: lists of formats, and the condition under which each list holds.
// A predicate is one mask of the lists that name the format against one mask of the lists that hold
// for the chip and the use.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "formats/format_ids.h"
#include "identify/chip_row.h"
#include "identify/gpu_identity.h"
#include "platform/log.h"

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

// What a chip's model adds to or takes from its family's formats.
constexpr bool model_has(uint32_t model_code, bool ModelData::*capability) {
  for (const ModelData& model : kModelData) {
    if (model.model_code == model_code) return model.*capability;
  }
  return false;
}

// 16-bit two-plane YUV in unsigned-normalised and unsigned-integer forms: formats 709-714.
constexpr bool model_supports_yuv16_ext(uint32_t model_code) {
  return model_has(model_code, &ModelData::yuv16_ext);
}

// P016 and its relatives: formats 105 and 715-721.
constexpr bool model_supports_p016(uint32_t model_code) {
  return model_has(model_code, &ModelData::p016);
}

// Two models of family 5 do not sample the formats of kSampleExclusions.
constexpr bool model_excludes_sampling(uint32_t model_code) {
  return model_has(model_code, &ModelData::family5_sample_excluded);
}

// What the caller asks about: depth/stencil use or any other, of one sample or of several.
enum Use : uint32_t {
  kColour = 0,
  kMultisampled = 0x1,
  kDepthStencil = 0x2,
  kUses = 4,
};

constexpr uint32_t use_asked_about(bool depth_stencil, bool multisampled) {
  return (depth_stencil ? kDepthStencil : 0U) + (multisampled ? kMultisampled : 0U);
}

constexpr bool is_of(const ChipRow& chip, Families families) {
  switch (chip.family_id) {
    case 5: return (families & kFamily5) != 0;
    case 6: return (families & kFamily6) != 0;
    case 7: return (families & kFamily7) != 0;
    default: return false;
  }
}

constexpr bool holds(Condition condition, const ChipRow& chip, uint32_t use) {
  switch (condition) {
    case Condition::always: return true;
    case Condition::depth_stencil: return (use & kDepthStencil) != 0;
    case Condition::colour: return (use & kDepthStencil) == 0;
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
  std::array<std::array<ListMask, kUses>, kChipRowCount> holding;  // by chip row and use
  std::array<ListMask, kFormatCount> naming;                       // by format
};

constexpr ListMask lists_that_hold(std::span<const CapabilityList> lists, const ChipRow& chip,
                                   uint32_t use) {
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
    for (uint32_t use = 0; use < kUses; ++use) {
      masks.holding[row][use] = lists_that_hold(lists, kChipRows[row], use);
    }
  }
  return masks;
}

// Of a format of the table. A row that is no chip has no capability.
constexpr bool has_capability(const CapabilityMasks& masks, std::size_t row, FormatId format,
                              uint32_t use) {
  return (masks.naming[format] & masks.holding[row][use]) != 0;
}

// The first call, every call on an unknown chip, and formats beyond the table. Out of line, so that
// all others need no stack frame: 19 instructions in the place of 22 on Windows for 64-bit Arm, 23 in
// the place of 30 on Linux.
[[gnu::cold, gnu::noinline]] inline uint32_t answer_otherwise(FormatId format, uint32_t use,
                                                              const CapabilityMasks& masks,
                                                              const char* predicate) {
  const std::size_t row = identified_row();
  if (row < kRowFirstChip) {
    KORVEL_LOG(predicate, "Unknown Family ID %u", kChipRows[row].family_id);
    return 0;
  }
  return format < kFormatCount && has_capability(masks, row, format, use) ? 1 : 0;
}

// What a predicate answers for any 32-bit format number; `predicate` is the name that its message
// carries.
inline uint32_t answer_capability(FormatId format, uint32_t use, const CapabilityMasks& masks,
                                  const char* predicate) {
  const std::size_t row = known_row();
  if (row < kRowFirstChip || format >= kFormatCount) [[unlikely]] {
    return answer_otherwise(format, use, masks, predicate);
  }
  return has_capability(masks, row, format, use) ? 1 : 0;
}

// Every list is sorted, and no format stands in two lists of one family: each has one condition.
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
