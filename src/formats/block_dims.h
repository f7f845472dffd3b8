// Block dimensions: the rectangle of texels that one element of a format holds.
#pragma once

#include <array>
#include <cstdint>

#include "formats/extent.h"
#include "formats/format_ids.h"
#include "formats/format_table.h"

namespace korvel {

struct BlockDimsRow {
  SmallExtent<Texels> block;  // neither side is 0
  IdRange ids[kRowRanges];
};

// clang-format off
inline constexpr BlockDimsRow kBlockDimsRows[] = {
    // Every BC and the smallest ASTC block.
    {{ 4,  4}, {{70, 84}, {94, 99}, {133, 135}, {568}, {582}, {596, 609}, {628, 629}, {638, 639},
                {681, 682}}},
    // ASTC, with the library's own formats of the same blocks.
    {{ 5,  4}, {{137, 139}, {569}, {583}, {630}, {640}}},
    {{ 5,  5}, {{141, 143}, {570}, {584}, {631, 632}, {641, 642}}},
    {{ 6,  5}, {{145, 147}, {571}, {585}, {633}, {643}}},
    {{ 6,  6}, {{149, 151}, {572}, {586}, {634, 635}, {644, 645}}},
    {{ 8,  5}, {{153, 155}, {573}, {587}}},
    {{ 8,  6}, {{157, 159}, {574}, {588}}},
    {{ 8,  8}, {{161, 163}, {575}, {589}}},
    {{10,  5}, {{165, 167}, {576}, {590}}},
    {{10,  6}, {{169, 171}, {577}, {591}}},
    {{10,  8}, {{173, 175}, {578}, {592}}},
    {{10, 10}, {{177, 179}, {579}, {593}}},
    {{12, 10}, {{181, 183}, {580}, {594}}},
    {{12, 12}, {{185, 187}, {581}, {595}}},
    // The library's own block sizes.
    {{ 3,  3}, {{626}, {636}}},
    {{ 4,  3}, {{627}, {637}}},
    // Packed YUV: three texels share one element.
    {{ 3,  1}, {{654, 656}}},
};
// clang-format on

inline constexpr auto kBlockDims = [] {
  std::array<SmallExtent<Texels>, kFormatCount> dims{};
  dims.fill({1, 1});
  for (const BlockDimsRow& row : kBlockDimsRows) {
    for_each_id(row.ids, [&](FormatId id) { dims[id] = row.block; });
  }
  return dims;
}();

// `format` is below kFormatCount.
constexpr Extent<Texels> format_block_dims(FormatId format) {
  return widened(kBlockDims[format]);
}

// A format without the block flags has blocks of one texel. Rules that count in blocks for such
// formats only may therefore multiply by the block dimensions of any format.
static_assert([] {
  for (FormatId id = 0; id < kFormatCount; ++id) {
    const Extent<Texels> block = format_block_dims(id);
    const bool counts_in_blocks = (format_record(id).flags & kFormatFlagsBlock) != 0;
    if (!counts_in_blocks && (block.width != 1 || block.height != 1)) return false;
  }
  return true;
}());
static_assert(rows_are_disjoint(kBlockDimsRows));

}  // namespace korvel
