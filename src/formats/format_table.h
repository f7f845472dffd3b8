// The format table: class bits, element size and plane count of every format. One table serves all
// families.
//
// A new format has a row here and, where it differs from most, in the lists beside this file: its
// blocks (block_dims.h), planes (plane_formats.h), substitute (substitute_formats.h), tiles
// (format_traits.h, sample_tiles.h), compression (ubwc_formats.h), what families render to and sample
// from (isFormat...ByGpu.cpp) and its padding unit (align/extra_padding.h). Numbers from 722 on also
// raise kFormatCount.
#pragma once

#include <array>
#include <cstdint>

#include "formats/format_ids.h"

namespace korvel {

// Class bits. The library tests four of them; the others complete the records.
enum FormatFlag : uint32_t {
  FORMAT_FLAG_SNORM = 0x1,
  FORMAT_FLAG_UNORM = 0x2,
  FORMAT_FLAG_FLOAT = 0x4,
  FORMAT_FLAG_FLOAT32 = 0x8,         // 32-bit channels, beside FLOAT
  FORMAT_FLAG_FURTHER_CLASS = 0x10,  // of 502, 503, 541-545; kept as recorded
  FORMAT_FLAG_UNSIGNED = 0x20,       // beside INTEGER
  FORMAT_FLAG_SIGNED = 0x40,         // beside INTEGER
  FORMAT_FLAG_INTEGER = 0x80,
  FORMAT_FLAG_SRGB = 0x100,
  FORMAT_FLAG_VIDEO = 0x200,  // tested: video or palette, its pitch is never padded
  FORMAT_FLAG_TYPELESS = 0x400,
  FORMAT_FLAG_MULTI_PLANAR = 0x800,
  FORMAT_FLAG_PACKED_PAIR = 0x1000,       // tested: adjacent texels share one packed element
  FORMAT_FLAG_BLOCK_COMPRESSED = 0x2000,  // tested: bytes is per block
  FORMAT_FLAG_DEPTH = 0x4000,
  FORMAT_FLAG_STENCIL = 0x8000,         // also typeless and view forms
  FORMAT_FLAG_DEPTH_STENCIL = 0x10000,  // tested: a depth/stencil target, always laid out tiled
  FORMAT_FLAG_DEPTH_AND_STENCIL = 0x20000,
  FORMAT_FLAG_DEPTH_ONLY = 0x40000,
  FORMAT_FLAG_STENCIL_ONLY = 0x80000,
  FORMAT_FLAG_64_BIT_DEPTH = 0x100000,  // 32-bit depth, 8-bit stencil, 24 bits unused
};

// What stands in units of blocks.
inline constexpr uint32_t kFormatFlagsBlock =
    FORMAT_FLAG_PACKED_PAIR | FORMAT_FLAG_BLOCK_COMPRESSED;

struct FormatRecord {
  uint32_t flags;   // FormatFlag
  uint32_t bytes;   // an element, a block, or an element of plane 0
  uint32_t planes;  // 1 to 3
};

// Ids that no row lists, id 0 among them.
inline constexpr FormatRecord kUnusedFormat = {0, 1, 1};

struct FormatTableRow {
  uint32_t flags;
  uint32_t bytes;
  uint32_t planes;
  IdRange ids[kRowRanges];
};

// clang-format off
inline constexpr FormatTableRow kFormatTableRows[] = {
    // flags   bytes planes ids
    {0x000400, 16, 1, {{1}}},
    {0x00000C, 16, 1, {{2}, {524}}},
    {0x0000A0, 16, 1, {{3}, {530}}},
    {0x0000C0, 16, 1, {{4}, {527}}},
    {0x000400, 12, 1, {{5}}},
    {0x00000C, 12, 1, {{6}}},
    {0x0000A0, 12, 1, {{7}}},
    {0x0000C0, 12, 1, {{8}}},
    {0x000400,  8, 1, {{9}, {15}}},
    {0x000004,  8, 1, {{10}, {522}}},
    {0x000002,  8, 1, {{11}, {565}}},
    {0x0000A0,  8, 1, {{12}, {17}, {528}, {685}}},
    {0x000001,  8, 1, {{13}, {560}}},
    {0x0000C0,  8, 1, {{14}, {18}, {525}, {686}}},
    {0x00000C,  8, 1, {{16}}},
    {0x108400,  8, 1, {{19}}},
    {0x13C00C,  8, 1, {{20}, {551}}},
    {0x10840C,  8, 1, {{21}}},
    {0x108000,  8, 1, {{22}}},
    {0x000400,  4, 1, {{23}, {27}, {33}, {39}, {90}, {92}}},
    {0x000002,  4, 1, {{24}, {28}, {35}, {87, 89}, {507}, {532}, {537, 539}, {564}, {621}, {648},
                       {683}, {684}}},
    {0x0000A0,  4, 1, {{25}, {30}, {36}, {42}, {116}, {512}, {535}, {650}}},
    {0x000004,  4, 1, {{26}, {34}, {67}}},
    {0x000102,  4, 1, {{29}, {91}, {93}, {520}, {622}}},
    {0x000001,  4, 1, {{31}, {37}, {118}, {509}, {531}, {533}, {559}, {649}}},
    {0x0000C0,  4, 1, {{32}, {38}, {43}, {117}, {515}, {534}, {536}, {651}}},
    {0x05400C,  4, 1, {{40}}},
    {0x00000C,  4, 1, {{41}, {547}}},
    {0x008400,  4, 1, {{44}}},
    {0x03C002,  4, 1, {{45}, {501}}},
    {0x008402,  4, 1, {{46}}},
    {0x008000,  4, 1, {{47}}},
    {0x000400,  2, 1, {{48}, {53}}},
    {0x000002,  2, 1, {{49}, {56}, {85}, {86}, {115}, {518}, {519}, {540}, {610, 613}, {652},
                       {653}}},
    {0x0000A0,  2, 1, {{50}, {57}, {514}}},
    {0x000001,  2, 1, {{51}, {58}, {511}}},
    {0x0000C0,  2, 1, {{52}, {59}, {517}}},
    {0x000004,  2, 1, {{54}, {546}}},
    {0x054002,  2, 1, {{55}}},
    {0x000400,  1, 1, {{60}}},
    {0x000002,  1, 1, {{61}, {65}, {66}, {671, 677}}},
    {0x0000A0,  1, 1, {{62}}},
    {0x000001,  1, 1, {{63}}},
    {0x0000C0,  1, 1, {{64}}},
    {0x001002,  2, 1, {{68}, {69}}},
    {0x002400,  8, 1, {{70}, {79}}},
    {0x002002,  8, 1, {{71}, {681}}},
    {0x002102,  8, 1, {{72}, {682}}},
    {0x002400, 16, 1, {{73}, {76}, {82}, {94}, {97}, {133}, {137}, {141}, {145}, {149}, {153},
                       {157}, {161}, {165}, {169}, {173}, {177}, {181}, {185}}},
    {0x002002, 16, 1, {{74}, {77}, {83}, {98}, {134}, {138}, {142}, {146}, {150}, {154}, {158},
                       {162}, {166}, {170}, {174}, {178}, {182}, {186}, {568, 581}}},
    {0x002102, 16, 1, {{75}, {78}, {99}, {135}, {139}, {143}, {147}, {151}, {155}, {159}, {163},
                       {167}, {171}, {175}, {179}, {183}, {187}}},
    {0x002000,  8, 1, {{80}, {81}, {596}, {599}, {600}, {603, 605}}},
    {0x002001, 16, 1, {{84}}},
    {0x002000, 16, 1, {{95}, {96}, {597}, {598}, {601}, {602}, {606}, {626, 635}}},
    {0x000200,  4, 1, {{100}, {101}}},
    {0x000200,  8, 1, {{102}, {108}, {109}}},
    {0x000A02,  1, 2, {{103}, {506}, {619}, {647}, {660}}},
    {0x000A02,  2, 2, {{104}, {105}, {709}, {717}}},
    {0x000A00,  1, 2, {{106}, {110}, {504}, {505}}},
    {0x001202,  2, 1, {{107}, {614}, {617}, {618}}},
    {0x000200,  1, 1, {{111, 113}}},
    {0x000200,  2, 1, {{114}}},
    {0x000012,  1, 1, {{502}}},
    {0x000012,  2, 1, {{503}, {541}}},
    {0x000002,  3, 1, {{508}, {623}}},
    {0x000001,  3, 1, {{510}}},
    {0x0000A0,  3, 1, {{513}}},
    {0x0000C0,  3, 1, {{516}}},
    {0x000102,  3, 1, {{521}, {624}}},
    {0x000004,  6, 1, {{523}}},
    {0x0000C0,  6, 1, {{526}}},
    {0x0000A0,  6, 1, {{529}}},
    {0x000014,  4, 1, {{542}}},
    {0x00001C,  8, 1, {{543}}},
    {0x000014,  2, 1, {{544}}},
    {0x00001C,  4, 1, {{545}}},
    {0x054002,  4, 1, {{548}, {550}}},
    {0x054002,  3, 1, {{549}}},
    {0x0980A0,  1, 1, {{552}}},
    {0x018002,  4, 1, {{553}}},
    {0x000000,  4, 1, {{554}}},
    {0x000000,  8, 1, {{555}}},
    {0x000000, 12, 1, {{556}}},
    {0x000000, 16, 1, {{557}}},
    {0x000001,  6, 1, {{558}}},
    {0x000001, 12, 1, {{561}}},
    {0x000001, 16, 1, {{562}}},
    {0x000002,  6, 1, {{563}}},
    {0x000002, 12, 1, {{566}}},
    {0x000002, 16, 1, {{567}}},
    {0x002100, 16, 1, {{582, 595}, {609}, {636, 645}}},
    {0x002100,  8, 1, {{607}, {608}}},
    {0x000A02,  1, 3, {{615}, {616}}},
    {0x000202,  4, 1, {{620}, {664}, {711}, {716}, {719}}},
    {0x000202,  1, 1, {{625}, {657}, {661}, {679}}},
    {0x000102,  1, 1, {{646}}},
    {0x001A02,  4, 2, {{654}}},
    {0x001202,  4, 1, {{655}}},
    {0x001202,  8, 1, {{656}}},
    {0x000202,  2, 1, {{658}, {659}, {662}, {663}, {680}, {710}, {715}, {718}}},
    {0x0002A0,  1, 1, {{665}}},
    {0x0002A0,  2, 1, {{666, 668}, {713}, {720}}},
    {0x0002A0,  4, 1, {{669}, {714}, {721}}},
    {0x000102,  2, 1, {{678}}},
    {0x000AA0,  2, 2, {{712}}},
};
// clang-format on

static_assert(rows_are_disjoint(kFormatTableRows));

inline constexpr auto kFormatTable = [] {
  std::array<FormatRecord, kFormatCount> table{};
  table.fill(kUnusedFormat);
  for (const FormatTableRow& row : kFormatTableRows) {
    for_each_id(row.ids, [&](FormatId id) { table[id] = {row.flags, row.bytes, row.planes}; });
  }
  return table;
}();

// `format` is below kFormatCount.
constexpr const FormatRecord& format_record(FormatId format) {
  return kFormatTable[format];
}

}  // namespace korvel
