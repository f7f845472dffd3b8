// What other interfaces call the formats that have a name here.
#pragma once

#include <cstdint>
#include <iterator>
#include <string_view>

namespace tool {

enum class Match : uint8_t {
  same,   // the same bits in the same places
  alike,  // laid out alike, but with other channels: the user has to say what is meant
};

struct FormatAlias {
  std::string_view name;  // without the prefix
  uint32_t format;
  Match match;
};

// Prefixes in front of such names.
inline constexpr std::string_view kAliasPrefixes[] = {"VK_FORMAT_", "DRM_FORMAT_"};

// Names with VK_FORMAT_ that differ in more than their ending, and those of DRM with their four
// letters. Sorted by name.
// clang-format off
inline constexpr FormatAlias kFormatAliases[] = {
    {"A1R5G5B5_UNORM_PACK16", 86, Match::same},
    {"A2B10G10R10_UINT_PACK32", 25, Match::same},
    {"A2B10G10R10_UNORM_PACK32", 24, Match::same},
    {"A4R4G4B4_UNORM_PACK16", 115, Match::same},
    {"A8B8G8R8_SRGB_PACK32", 29, Match::same},
    {"A8B8G8R8_UNORM_PACK32", 28, Match::same},
    {"AB24", 28, Match::same},
    {"AB30", 24, Match::same},
    {"AB48", 11, Match::same},
    {"AB4H", 10, Match::same},
    {"ABGR16161616", 11, Match::same},
    {"ABGR16161616F", 10, Match::same},
    {"ABGR2101010", 24, Match::same},
    {"ABGR8888", 28, Match::same},
    {"AR12", 115, Match::same},
    {"AR15", 86, Match::same},
    {"AR24", 87, Match::same},
    {"ARGB1555", 86, Match::same},
    {"ARGB4444", 115, Match::same},
    {"ARGB8888", 87, Match::same},
    {"ASTC_10X10_SRGB_BLOCK", 179, Match::same},
    {"ASTC_10X10_UNORM_BLOCK", 178, Match::same},
    {"ASTC_10X5_SRGB_BLOCK", 167, Match::same},
    {"ASTC_10X5_UNORM_BLOCK", 166, Match::same},
    {"ASTC_10X6_SRGB_BLOCK", 171, Match::same},
    {"ASTC_10X6_UNORM_BLOCK", 170, Match::same},
    {"ASTC_10X8_SRGB_BLOCK", 175, Match::same},
    {"ASTC_10X8_UNORM_BLOCK", 174, Match::same},
    {"ASTC_12X10_SRGB_BLOCK", 183, Match::same},
    {"ASTC_12X10_UNORM_BLOCK", 182, Match::same},
    {"ASTC_12X12_SRGB_BLOCK", 187, Match::same},
    {"ASTC_12X12_UNORM_BLOCK", 186, Match::same},
    {"ASTC_4X4_SRGB_BLOCK", 135, Match::same},
    {"ASTC_4X4_UNORM_BLOCK", 134, Match::same},
    {"ASTC_5X4_SRGB_BLOCK", 139, Match::same},
    {"ASTC_5X4_UNORM_BLOCK", 138, Match::same},
    {"ASTC_5X5_SRGB_BLOCK", 143, Match::same},
    {"ASTC_5X5_UNORM_BLOCK", 142, Match::same},
    {"ASTC_6X5_SRGB_BLOCK", 147, Match::same},
    {"ASTC_6X5_UNORM_BLOCK", 146, Match::same},
    {"ASTC_6X6_SRGB_BLOCK", 151, Match::same},
    {"ASTC_6X6_UNORM_BLOCK", 150, Match::same},
    {"ASTC_8X5_SRGB_BLOCK", 155, Match::same},
    {"ASTC_8X5_UNORM_BLOCK", 154, Match::same},
    {"ASTC_8X6_SRGB_BLOCK", 159, Match::same},
    {"ASTC_8X6_UNORM_BLOCK", 158, Match::same},
    {"ASTC_8X8_SRGB_BLOCK", 163, Match::same},
    {"ASTC_8X8_UNORM_BLOCK", 162, Match::same},
    {"B10G11R11_UFLOAT_PACK32", 26, Match::same},
    {"BC1_RGBA_SRGB_BLOCK", 72, Match::same},
    {"BC1_RGBA_UNORM_BLOCK", 71, Match::same},
    {"BC1_RGB_SRGB_BLOCK", 72, Match::same},
    {"BC1_RGB_UNORM_BLOCK", 71, Match::same},
    {"BC2_SRGB_BLOCK", 75, Match::same},
    {"BC2_UNORM_BLOCK", 74, Match::same},
    {"BC3_SRGB_BLOCK", 78, Match::same},
    {"BC3_UNORM_BLOCK", 77, Match::same},
    {"BC4_SNORM_BLOCK", 81, Match::same},
    {"BC4_UNORM_BLOCK", 80, Match::same},
    {"BC5_SNORM_BLOCK", 84, Match::same},
    {"BC5_UNORM_BLOCK", 83, Match::same},
    {"BC6H_SFLOAT_BLOCK", 96, Match::same},
    {"BC6H_UFLOAT_BLOCK", 95, Match::same},
    {"BC7_SRGB_BLOCK", 99, Match::same},
    {"BC7_UNORM_BLOCK", 98, Match::same},
    {"D32_SFLOAT_S8_UINT", 20, Match::same},
    {"E5B9G9R9_UFLOAT_PACK32", 67, Match::same},
    {"G10X6_B10X6R10X6_2PLANE_420_UNORM_3PACK16", 104, Match::same},
    {"G16_B16R16_2PLANE_420_UNORM", 105, Match::same},
    {"G8B8G8R8_422_UNORM", 107, Match::same},
    {"G8_B8R8_2PLANE_420_UNORM", 103, Match::same},
    {"GR1616", 35, Match::same},
    {"GR32", 35, Match::same},
    {"GR88", 49, Match::same},
    {"NV21", 103, Match::alike},
    {"R16", 56, Match::same},
    {"R5G6B5_UNORM_PACK16", 85, Match::same},
    {"R8", 61, Match::same},
    {"RG16", 85, Match::same},
    {"RGB565", 85, Match::same},
    {"UYVY", 107, Match::alike},
    {"VYUY", 107, Match::alike},
    {"X8_D24_UNORM_PACK32", 45, Match::alike},
    {"XB24", 28, Match::alike},
    {"XB30", 24, Match::alike},
    {"XBGR2101010", 24, Match::alike},
    {"XBGR8888", 28, Match::alike},
    {"XR15", 86, Match::alike},
    {"XR24", 88, Match::same},
    {"XRGB1555", 86, Match::alike},
    {"XRGB8888", 88, Match::same},
    {"YUYV", 107, Match::same},
    {"YVYU", 107, Match::alike},
};
// clang-format on

static_assert([] {
  for (std::size_t i = 1; i < std::size(kFormatAliases); ++i) {
    if (!(kFormatAliases[i - 1].name < kFormatAliases[i].name)) return false;
  }
  return true;
}());

}  // namespace tool
