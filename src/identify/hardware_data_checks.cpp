// What must hold of the hardware data, whoever's rows they are. Nothing here reaches the library's
// code.

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>

#include "identify/chip_row.h"
#include "identify/hardware_data.h"

namespace korvel {
namespace {

constexpr std::size_t kChips = std::size(kChipData);

template <typename Test>
constexpr std::size_t chips_where(Test test) {
  return static_cast<std::size_t>(std::count_if(std::begin(kChipData), std::end(kChipData), test));
}

template <typename Test>
constexpr std::size_t models_where(Test test) {
  return static_cast<std::size_t>(
      std::count_if(std::begin(kModelData), std::end(kModelData), test));
}

template <typename Test>
constexpr bool every_chip(Test test) {
  return chips_where(test) == kChips;
}

template <typename Value>
constexpr std::size_t distinct(Value ChipData::*word) {
  std::array<Value, kChips> values{};
  std::transform(std::begin(kChipData), std::end(kChipData), values.begin(),
                 [word](const ChipData& chip) { return chip.*word; });
  std::sort(values.begin(), values.end());
  return static_cast<std::size_t>(std::unique(values.begin(), values.end()) - values.begin());
}

constexpr bool family_fits_top_byte(const ChipData& chip) {
  switch (chip.chip_id >> 24) {
    case 0x06: return chip.family_id == 5;
    case 0x07: return chip.family_id == 5 || chip.family_id == 6;
    case 0x43: return chip.family_id == 6;
    case 0x44:
    case 0x50: return chip.family_id == 7;
    default: return false;
  }
}

constexpr uint32_t generation(uint32_t model_code) {
  return model_code >> 16;
}

// The generation bytes that a family's models use.
constexpr std::size_t generations_of(uint32_t family_id) {
  std::array<bool, 256> used{};
  for (const ChipData& chip : kChipData) {
    if (chip.family_id == family_id) used[generation(chip.model_code)] = true;
  }
  return static_cast<std::size_t>(std::count(used.begin(), used.end(), true));
}

constexpr bool no_generation_in_two_families() {
  return every_chip([](const ChipData& chip) {
    return std::none_of(std::begin(kChipData), std::end(kChipData), [&chip](const ChipData& other) {
      return other.family_id != chip.family_id &&
             generation(other.model_code) == generation(chip.model_code);
    });
  });
}

template <typename Member>
constexpr bool covers_all_families(Member ChipColumns::*column) {
  for (uint32_t family_id : {5U, 6U, 7U}) {
    if (chips_where([=](const ChipData& chip) {
          return chip.family_id == family_id && chip.columns.*column;
        }) == 0) {
      return false;
    }
  }
  return true;
}

constexpr bool model_has_chips(uint32_t model_code) {
  return chips_where([=](const ChipData& chip) { return chip.model_code == model_code; }) != 0;
}

// Identity.
static_assert(std::is_sorted(std::begin(kChipData), std::end(kChipData),
                             [](const ChipData& a, const ChipData& b) {
                               return a.chip_id <= b.chip_id;
                             }),
              "chip ids ascend, each once");
static_assert(every_chip([](const ChipData& chip) { return chip.chip_id < 0x80000000; }));
static_assert(every_chip(family_fits_top_byte));
static_assert(distinct(&ChipData::model_code) == 65 && std::size(kModelData) == 65);
static_assert(distinct(&ChipData::rev_id) == 124);
static_assert(kChips > 124, "a few neighbours share a revision id");
static_assert(every_chip([](const ChipData& chip) {
  return chip.rev_id >> 16 == (chip.model_code & 0xFFFF);
}));
static_assert(std::is_sorted(std::begin(kModelData), std::end(kModelData),
                             [](const ModelData& a, const ModelData& b) {
                               return a.model_code <= b.model_code;
                             }),
              "model codes ascend, each once");
static_assert(models_where([](const ModelData& model) {
                return model_has_chips(model.model_code);
              }) == std::size(kModelData));
static_assert(generations_of(5) == 1 && generations_of(6) == 1 && generations_of(7) == 2);
static_assert(no_generation_in_two_families());

// Property columns.
static_assert(covers_all_families(&ChipColumns::base_alignment));
static_assert(covers_all_families(&ChipColumns::linear_alignment));
static_assert(covers_all_families(&ChipColumns::aux_alignment));
static_assert(covers_all_families(&ChipColumns::small_alignment));
static_assert(covers_all_families(&ChipColumns::pixel_alignment));
static_assert(covers_all_families(&ChipColumns::tiled_alignment));
static_assert(covers_all_families(&ChipColumns::min_level_extent));
static_assert(covers_all_families(&ChipColumns::level_offset_alignment));
static_assert(covers_all_families(&ChipColumns::level_size_alignment));
static_assert(covers_all_families(&ChipColumns::wide_enough_for_tiling));

// Alignment.
static_assert(models_where([](const ModelData& model) {
                return model.max_surface_pitch != 0 && model.max_surface_pitch != 16384;
              }) == 0);
static_assert(every_chip([](const ChipData& chip) {
                return chip.family_id == 7 || model_data(chip.model_code).max_surface_pitch == 0;
              }),
              "only family 7 looks the pitch limit up");

// Bandwidth compression.
static_assert(chips_where([](const ChipData& chip) { return chip.ubwc.depth_excluded; }) == 45);
static_assert(chips_where([](const ChipData& chip) { return chip.ubwc.yuv_a; }) == 61);
static_assert(chips_where([](const ChipData& chip) { return chip.ubwc.yuv_b; }) == 63);
static_assert(chips_where([](const ChipData& chip) { return chip.ubwc.yuv16; }) == 28);
static_assert(chips_where([](const ChipData& chip) {
                return chip.ubwc.yuv_a && chip.ubwc.yuv_b;
              }) == 0);
static_assert(chips_where([](const ChipData& chip) {
                return chip.ubwc.yuv16 && !chip.ubwc.yuv_b;
              }) == 0);
static_assert(chips_where([](const ChipData& chip) { return chip.ubwc.never; }) == 2);
static_assert(
    [] {
      uint32_t difference = 0;
      for (const ChipData& chip : kChipData) {
        if (chip.ubwc.never) difference ^= chip.chip_id;
      }
      return difference == 1U << 17;
    }(),
    "the two ids that compress nothing differ only in bit 17");

// Format capabilities by model.
static_assert(models_where([](const ModelData& model) { return model.yuv16_ext; }) == 14);
static_assert(models_where([](const ModelData& model) { return model.p016; }) == 9);
static_assert(models_where([](const ModelData& model) { return model.p016 && !model.yuv16_ext; }) ==
              0);
static_assert([] {
  // Ten models of one generation, four of another, and the five that lack P016 are of the ten.
  std::array<std::size_t, 256> with_ext{};
  std::array<std::size_t, 256> with_p016{};
  for (const ModelData& model : kModelData) {
    with_ext[generation(model.model_code)] += model.yuv16_ext;
    with_p016[generation(model.model_code)] += model.p016;
  }
  const auto ten = std::find(with_ext.begin(), with_ext.end(), 10U) - with_ext.begin();
  const auto four = std::find(with_ext.begin(), with_ext.end(), 4U) - with_ext.begin();
  return ten < 256 && four < 256 && with_p016[static_cast<std::size_t>(ten)] == 5 &&
         with_p016[static_cast<std::size_t>(four)] == 4;
}());
static_assert(
    [] {
      std::array<uint32_t, 2> excluded{};
      std::size_t found = 0;
      for (const ModelData& model : kModelData) {
        if (model.family5_sample_excluded) excluded.at(found++) = model.model_code;
      }
      return found == 2 && excluded[1] - excluded[0] == 2;
    }(),
    "two model codes, two apart");
static_assert(every_chip([](const ChipData& chip) {
  return chip.family_id == 5 || !model_data(chip.model_code).family5_sample_excluded;
}));

}  // namespace
}  // namespace korvel
