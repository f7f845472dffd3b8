// The planes of multi-plane formats: the format that describes each, and its element size.
#pragma once

#include <korvel_utils.h>

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "formats/format_ids.h"
#include "formats/format_table.h"

namespace korvel {

// Alignment arguments may name any plane; those from here on exist in no format.
inline constexpr uint32_t kPlanes = KORVEL_MAX_PLANES;

struct PlaneFormatRow {
  FormatId format;
  FormatId plane[kPlanes];  // the format itself where no other describes the plane
  uint32_t bytes[kPlanes];  // of an element, 0 for a plane that the format lacks
};

// clang-format off
inline constexpr PlaneFormatRow kPlaneFormatRows[] = {
    // format plane 0 1    2      bytes
    // 64-bit depth/stencil: depth and stencil apart, although the record counts one element of 8 bytes.
    { 20,    { 40, 552,  20},   {4, 1, 0}},
    {551,    { 40, 552, 551},   {4, 1, 0}},
    // 8 bits a channel.
    {103,    {657, 658, 103},   {1, 2, 0}},
    {106,    {106, 106, 106},   {1, 2, 0}},
    {110,    {110, 110, 110},   {1, 2, 0}},
    {504,    {504, 504, 504},   {1, 2, 0}},
    {505,    {505, 505, 505},   {1, 2, 0}},
    {506,    {657, 658, 506},   {1, 2, 0}},
    {615,    {625, 625, 625},   {1, 1, 1}},
    {616,    {625, 625, 625},   {1, 1, 1}},
    {619,    {657, 659, 619},   {1, 2, 0}},
    {647,    {657, 659, 647},   {1, 2, 0}},
    {660,    {661, 662, 660},   {1, 2, 0}},
    // 10 and 16 bits a channel.
    {104,    {663, 664, 104},   {2, 4, 0}},
    {105,    {715, 716, 105},   {2, 4, 0}},
    {654,    {655, 656, 654},   {4, 8, 0}},
    {709,    {710, 711, 709},   {2, 4, 0}},
    {712,    {713, 714, 712},   {2, 4, 0}},
    {717,    {718, 719, 717},   {2, 4, 0}},
};
// clang-format on

// Every format whose record counts several planes has a row, with as many planes; otherwise only
// the 64-bit depth/stencil formats have one, and only their first plane departs from the record.
static_assert([] {
  for (FormatId id = 0; id < kFormatCount; ++id) {
    const FormatRecord& record = format_record(id);
    const auto* row = std::find_if(std::begin(kPlaneFormatRows), std::end(kPlaneFormatRows),
                                   [id](const PlaneFormatRow& r) { return r.format == id; });
    const bool depth_64 = (record.flags & FORMAT_FLAG_64_BIT_DEPTH) != 0 &&
                          (record.flags & FORMAT_FLAG_DEPTH_STENCIL) != 0;
    if ((row != std::end(kPlaneFormatRows)) != (record.planes > 1 || depth_64)) return false;
    if (row == std::end(kPlaneFormatRows) || depth_64) continue;
    const auto unused = static_cast<uint32_t>(std::count(row->bytes, row->bytes + kPlanes, 0U));
    const uint32_t planes = kPlanes - unused;
    if (row->bytes[0] != record.bytes || planes != record.planes) return false;
  }
  return true;
}());

}  // namespace korvel
