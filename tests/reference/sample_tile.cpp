// The tile that holds one multisampled block; its size sets the size of the compression flags.
#include "rules.h"

namespace reference {

namespace {

constexpr Dimensions kNone = {0, 0};

// By samples and bytes per pixel; tall_tile turns the one-sample two-byte tile into 16 x 8.
Dimensions tile_of_pixels(uint32_t bytes, int32_t samples, bool tall_tile) {
  const bool small = bytes == 1 || bytes == 2 || bytes == 4;
  if (samples == 1) {
    if (bytes == 2 && tall_tile) return {16, 8};
    if (small) return {16, 4};
    if (bytes == 8) return {8, 4};
    if (bytes == 16) return {4, 4};
    return kNone;
  }
  if (samples == 2) {
    if (small) return {8, 4};
    if (bytes == 8) return {4, 4};
    if (bytes == 16) return {4, 2};
    return kNone;
  }
  if (samples == 4) {
    if (small) return {4, 4};
    if (bytes == 8) return {4, 2};
    if (bytes == 16) return {2, 2};
    return kNone;
  }
  if (samples == 8) {
    if (small) return {4, 2};
    if (bytes == 8) return {2, 2};
    return kNone;
  }
  return kNone;
}

Dimensions video_tile_family6(uint32_t f, bool half_width) {
  if (among(f, {614, 617, 618, 662, 663, 668, 680, 107})) return {32, 4};
  if (among(f, {620, 664, 669})) return {16, 4};
  if (among(f, {625, 657, 665, 679})) return {32, 8};
  if (f == 666) return {16, 8};
  if (f == 654) return {half_width ? 24u : 48u, 4};
  if (f == 655) return {48, 4};
  if (f == 656) return {24, 4};
  if (f == 660) return {half_width ? 32u : 64u, 4};
  if (f == 661) return {64, 4};
  if (f == 104) return {half_width ? 16u : 32u, 4};
  if (among(f, {103, 106, 506})) return {half_width ? 16u : 32u, 8};
  return kNone;
}

Dimensions video_tile_family7(uint32_t f, bool half_width) {
  if (among(f, {710, 713, 715, 718, 720})) return {32, 4};
  if (among(f, {711, 714, 716, 719, 721})) return {16, 4};
  if (f == 658) return {16, 8};
  if (among(f, {709, 712, 717, 105})) return {half_width ? 16u : 32u, 4};
  return video_tile_family6(f, half_width);
}

}  // namespace

Dimensions sample_tile_dims(const Process& process, uint32_t format, bool half_width,
                            int32_t samples) {
  const uint32_t family = process.identity.family_id;
  if (family == 5) {
    const bool tall = among(format, {{48, 52}, 511, 514, 517});
    const Dimensions tile = tile_of_pixels(element_bytes(format), samples, tall);
    if (tile.width == 0) return {1, 1};
    return tile;
  }
  if (family == 6 || family == 7) {
    if (format == kFourCcFormat) return kNone;
    if (!has_flag(format, kFlagVideo)) {
      const bool tall = among(format, {{48, 52}, 511, 514, 517, 678});
      return tile_of_pixels(element_bytes(format), samples, tall);
    }
    if (family == 6) return video_tile_family6(format, half_width);
    return video_tile_family7(format, half_width);
  }
  return {1, 1};
}

}  // namespace reference
