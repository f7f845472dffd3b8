// The formats that may be kept in bandwidth compression, by the group that the chips' sets speak
// of.
#pragma once

#include <array>
#include <cstdint>

#include "formats/format_ids.h"
#include "identify/chip_row.h"

namespace korvel {

struct UbwcFormatRow {
  UbwcGroup group;
  IdRange ids[kRowRanges];
};

// clang-format off
inline constexpr UbwcFormatRow kUbwcFormats[] = {
    {kUbwcBase, {{10}, {24}, {28, 29}, {87, 88}, {103}, {107}, {506, 507}, {520}, {614}, {619, 620}}},
    {kUbwcDepth,  {{40}, {45}, {55}, {548}, {610}}},
    {kUbwcFurtherYuv,    {{104}, {654, 664}}},
    {kUbwcPacked, {{683, 684}}},
    {kUbwcYuv16,  {{709, 711}}},
};
// clang-format on

inline constexpr auto kUbwcGroupOf = [] {
  std::array<uint8_t, kFormatCount> group_of{};
  for (const UbwcFormatRow& row : kUbwcFormats) {
    for_each_id(row.ids, [&](FormatId id) { group_of[id] = row.group; });
  }
  return group_of;
}();

static_assert(rows_are_disjoint(kUbwcFormats));

// Any 32-bit format number. An unknown chip has no group and compresses nothing.
constexpr bool ubwc_supported(const ChipRow& chip, FormatId format) {
  return format < kFormatCount && (chip.ubwc & kUbwcGroupOf[format]) != 0;
}
// Nothing is looked up beyond the table: the compiler would see it.
static_assert(!ubwc_supported(kChipRows[kRowFirstChip], kFormatCount));

}  // namespace korvel
