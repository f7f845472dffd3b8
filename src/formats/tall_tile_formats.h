// The 2-byte formats that use the taller tile. The two family sets differ.
#pragma once

#include "formats/format_ids.h"

namespace korvel {

inline constexpr IdRange kTallTileFormatsFamily5[] = {{49, 52}, {103}, {506}, {511}, {514},
                                                      {517},    {619}, {647}, {678}};
inline constexpr IdRange kTallTileFormatsFamily67[] = {{48, 52}, {103}, {511}, {514},
                                                       {517},    {658}, {666}, {678}};

// The same habit of single-sampled sample tiles, with lists of its own.
inline constexpr IdRange kTallSampleTileFormatsFamily5[] = {{48, 52}, {511}, {514}, {517}};
inline constexpr IdRange kTallSampleTileFormatsFamily67[] = {{48, 52}, {511}, {514}, {517}, {678}};

static_assert(is_sorted_list(kTallTileFormatsFamily5) && is_sorted_list(kTallTileFormatsFamily67));
static_assert(is_sorted_list(kTallSampleTileFormatsFamily5) &&
              is_sorted_list(kTallSampleTileFormatsFamily67));

}  // namespace korvel
