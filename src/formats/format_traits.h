// What the surface rules ask about a format, gathered at compile time into one 16-byte row per
// format.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "formats/block_dims.h"
#include "formats/extent.h"
#include "formats/format_ids.h"
#include "formats/format_table.h"
#include "formats/plane_formats.h"
#include "formats/sample_tiles.h"
#include "formats/substitute_formats.h"

namespace korvel {

// Yes-or-no questions of the rules, one bit each.
enum FormatRule : uint8_t {
  kRuleDepthStencil = 0x1,            // always laid out tiled
  kRuleBlockCompressed = 0x2,         // surface sizes are turned into blocks first
  kRuleBlockFamily5 = 0x4,            // family 5 aligns its linear width in blocks
  kRuleBlockFamily67 = 0x8,           // families 6 and 7 align its linear width in blocks
  kRuleUnpaddedPitch = 0x10,          // its linear pitch is never padded
  kRuleTallSampleTileFamily5 = 0x20,  // 2-byte elements in the tall sample tile
  kRuleTallSampleTileFamily67 = 0x40,
  kRuleWhole64Rows = 0x80,  // its linear heights take whole 64 rows
};

// Which tile a format's elements take where their size leaves a choice.
enum TileVariant : uint8_t {
  kTilePlain,
  kTileWideByte,  // 1-byte elements: twice as wide, half as high
  kTileTall,      // 2-byte elements: half as wide, twice as high
  kTileVariants,
};

struct FormatTraits {
  uint16_t plane_index[kPlanes];  // row of the format that describes each plane
  uint8_t rules;                  // FormatRule
  uint8_t tile_variants;          // TileVariant, families 6 and 7 in bits 0-3, family 5 in bits 4-7
  uint8_t bytes;                  // the record's element size
  uint8_t substitute_bytes;       // that of the substitute: a power of two
  uint8_t plane_bytes[kPlanes];   // element size of each plane, 0 where there is none
  SmallExtent<Texels> block;      // what one element holds
  uint8_t video_sample_tile;      // row of kVideoSampleTiles
};
static_assert(sizeof(FormatTraits) == 16);

// Beyond the formats of the table: any id without a record, and the one four-character code.
inline constexpr uint32_t kTraitsWithoutRecord = kFormatCount;
inline constexpr uint32_t kTraitsWxb7 = kFormatCount + 1;
inline constexpr uint32_t kTraitsCount = kFormatCount + 2;

// The 2-byte formats that use the taller tile. The two family sets differ.
inline constexpr IdRange kTallTileFormatsFamily5[] = {{49, 52}, {103}, {506}, {511}, {514},
                                                      {517},    {619}, {647}, {678}};
inline constexpr IdRange kTallTileFormatsFamily67[] = {{48, 52}, {103}, {511}, {514},
                                                       {517},    {658}, {666}, {678}};
static_assert(is_sorted_list(kTallTileFormatsFamily5) && is_sorted_list(kTallTileFormatsFamily67));

constexpr bool is_wide_byte_format(FormatId format) {
  return format == 660 || format == 661;
}

// Formats that family 5 aligns in blocks although they lack the block-compressed flag.
constexpr bool is_block_like_on_family5(FormatId format) {
  constexpr IdRange kBlockLike[] = {{107}, {614}, {654, 656}};
  return contains(kBlockLike, format);
}

constexpr TileVariant tile_variant(FormatId format, std::span<const IdRange> tall_tile_formats) {
  if (is_wide_byte_format(format)) return kTileWideByte;
  return contains(tall_tile_formats, format) ? kTileTall : kTilePlain;
}

constexpr uint8_t tile_variants(FormatId format) {
  return static_cast<uint8_t>(tile_variant(format, kTallTileFormatsFamily67) |
                              tile_variant(format, kTallTileFormatsFamily5) << 4);
}

constexpr TileVariant tile_variant_family5(const FormatTraits& format) {
  return static_cast<TileVariant>(format.tile_variants >> 4);
}

constexpr TileVariant tile_variant_family67(const FormatTraits& format) {
  return static_cast<TileVariant>(format.tile_variants & 0xF);
}

constexpr uint8_t format_rules(FormatId format) {
  const uint32_t flags = format_record(format).flags;
  const bool compressed = (flags & FORMAT_FLAG_BLOCK_COMPRESSED) != 0;
  const bool video = (flags & FORMAT_FLAG_VIDEO) != 0;
  const auto bit = [](bool yes, FormatRule rule) { return yes ? uint32_t{rule} : 0; };
  return static_cast<uint8_t>(
      bit((flags & FORMAT_FLAG_DEPTH_STENCIL) != 0, kRuleDepthStencil) |
      bit(compressed, kRuleBlockCompressed) |
      bit(compressed || is_block_like_on_family5(format), kRuleBlockFamily5) |
      bit((flags & kFormatFlagsBlock) != 0, kRuleBlockFamily67) |
      bit(compressed || video, kRuleUnpaddedPitch) |
      bit(contains(kTallSampleTileFormatsFamily5, format), kRuleTallSampleTileFamily5) |
      bit(contains(kTallSampleTileFormatsFamily67, format), kRuleTallSampleTileFamily67) |
      bit(format == kFormat64Rows, kRuleWhole64Rows));
}

constexpr FormatTraits traits_of(FormatId format) {
  FormatTraits traits{};
  for (uint16_t& plane : traits.plane_index) plane = static_cast<uint16_t>(format);
  traits.plane_bytes[0] = static_cast<uint8_t>(format_record(format).bytes);
  traits.rules = format_rules(format);
  traits.tile_variants = tile_variants(format);
  traits.bytes = static_cast<uint8_t>(format_record(format).bytes);
  traits.substitute_bytes =
      static_cast<uint8_t>(format_record(npot_substitute_format(format)).bytes);
  traits.block = kBlockDims[format];
  const bool video = (format_record(format).flags & FORMAT_FLAG_VIDEO) != 0;
  traits.video_sample_tile = video ? video_sample_tile_row(format) : kNoVideoFormat;
  return traits;
}

// An unused id of the table serves every id beyond it.
constexpr FormatTraits traits_without_record(uint32_t index, uint8_t rules) {
  FormatTraits traits = traits_of(kFormatUnknown);
  for (uint16_t& plane : traits.plane_index) plane = static_cast<uint16_t>(index);
  traits.rules = rules;
  return traits;
}

inline constexpr auto kFormatTraits = [] {
  std::array<FormatTraits, kTraitsCount> traits{};
  for (FormatId id = 0; id < kFormatCount; ++id) traits[id] = traits_of(id);
  for (const PlaneFormatRow& row : kPlaneFormatRows) {
    for (uint32_t plane = 0; plane < kPlanes; ++plane) {
      traits[row.format].plane_index[plane] = static_cast<uint16_t>(row.plane[plane]);
      traits[row.format].plane_bytes[plane] = static_cast<uint8_t>(row.bytes[plane]);
    }
  }
  traits[kTraitsWithoutRecord] = traits_without_record(kTraitsWithoutRecord, 0);
  traits[kTraitsWxb7] = traits_without_record(kTraitsWxb7, kRuleUnpaddedPitch);
  traits[kTraitsWxb7].video_sample_tile = kUnlistedVideoFormat;
  return traits;
}();

// Rules that look at a tile variant look at that of the substitute or of the format itself:
// substituted formats and their substitutes have none.
static_assert([] {
  for (FormatId id = 0; id < kFormatCount; ++id) {
    const FormatId substitute = npot_substitute_format(id);
    if (substitute == id) continue;
    if ((kFormatTraits[id].tile_variants | kFormatTraits[substitute].tile_variants) != 0) {
      return false;
    }
  }
  return true;
}());

// The rules take the blocks of any plane from the format itself.
static_assert([] {
  for (const FormatTraits& format : kFormatTraits) {
    for (const uint32_t plane : format.plane_index) {
      if (kFormatTraits[plane].block.width != format.block.width) return false;
      if (kFormatTraits[plane].block.height != format.block.height) return false;
    }
  }
  return true;
}());

constexpr bool has_rule(const FormatTraits& format, FormatRule rule) {
  return (format.rules & rule) != 0;
}

// Elements of all other formats hold one texel.
static_assert([] {
  for (const FormatTraits& format : kFormatTraits) {
    const bool one_texel = format.block.width == 1 && format.block.height == 1;
    if (!one_texel && !has_rule(format, kRuleBlockFamily67)) return false;
  }
  return true;
}());

// The tall sample tile is one of 2-byte elements.
static_assert([] {
  for (const FormatTraits& format : kFormatTraits) {
    const bool tall = has_rule(format, kRuleTallSampleTileFamily5) ||
                      has_rule(format, kRuleTallSampleTileFamily67);
    if (tall && format.bytes != 2) return false;
  }
  return true;
}());

// Any 32-bit value; it is never used as an index unless the table holds it.
constexpr const FormatTraits& format_traits(FormatId format) {
  if (format < kFormatCount) [[likely]]
    return kFormatTraits[format];
  return kFormatTraits[format == kFormatWxb7 ? kTraitsWxb7 : kTraitsWithoutRecord];
}

// The format that describes one plane; the format itself for a plane that no format has.
constexpr const FormatTraits& plane_traits(const FormatTraits& format, uint32_t plane) {
  return plane < kPlanes ? kFormatTraits[format.plane_index[plane]] : format;
}

// Bytes of one element of a plane, 0 where the format has no such plane.
constexpr uint32_t plane_bytes(const FormatTraits& format, uint32_t plane) {
  return plane < kPlanes ? format.plane_bytes[plane] : 0;
}

}  // namespace korvel
