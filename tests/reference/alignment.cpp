// How wide and how high a plane becomes, by family. Everything wraps. Numbers are unsigned, but for
// the rules that say that they count in signed numbers.
#include "rules.h"

namespace reference {

namespace {

constexpr uint32_t kEitherBlockFlag = kFlagBlockCompressed | kFlagPackedPair;

uint32_t greatest_common_divisor(uint32_t a, uint32_t b) {
  while (b != 0) {
    const uint32_t rest = a % b;
    a = b;
    b = rest;
  }
  return a;
}

// Pixels; k is the bytes of an element with its samples.
uint32_t tile_width_of(uint32_t k, uint32_t format, bool tall) {
  if (k == 1) {
    if (format == 660 || format == 661) return 256;
    return 128;
  }
  if (k == 2) {
    if (tall) return 64;
    return 128;
  }
  if (k == 8) return 32;
  if (k == 16) return 16;
  if (k == 32 || k == 64) return 8;
  return 64;
}

// Rows.
uint32_t tile_height_of(uint32_t k, uint32_t format, bool tall) {
  if (k == 1) {
    if (format == 660 || format == 661) return 16;
    return 32;
  }
  if (k == 2) {
    if (tall) return 32;
    return 16;
  }
  return 16;
}

uint32_t tile_width_family67(uint32_t format, uint32_t samples) {
  uint32_t width =
      tile_width_of(element_bytes(format) * samples, format, tall_tile_format_family67(format));
  if (has_flag(format, kEitherBlockFlag)) {
    width *= format_block_dims(format).width;
  }
  return width;
}

uint32_t tile_height_family67(uint32_t format, uint32_t samples) {
  uint32_t height =
      tile_height_of(element_bytes(format) * samples, format, tall_tile_format_family67(format));
  if (has_flag(format, kEitherBlockFlag)) {
    height *= format_block_dims(format).height;
  }
  return height;
}

// Bytes of a row of whole tiles.
uint32_t tile_row_bytes(uint32_t bytes, uint32_t e, uint32_t format) {
  if (e == 1) {
    if (format == 660 || format == 661) return round_up(bytes, 256);
    return round_up(bytes, 128);
  }
  if (e == 2) {
    if (tall_tile_format_family5(format)) return round_up(bytes, 128);
    return round_up(bytes, 256);
  }
  if (e == 4 || e == 8 || e == 16 || e == 32) return round_up(bytes, 256);
  if (e == 64) return round_up(bytes, 512);
  return bytes;
}

uint32_t round_up_to_64_or_64(uint32_t width) {
  if (width == 0) return 64;
  return round_up(width, 64);
}

// Elements of 3, 6 and 12 bytes: a row of whole 64-element groups of the next power of two. Signed.
uint32_t align_odd_size(uint32_t w, uint32_t e, uint32_t format) {
  const uint32_t u = element_bytes(npot_substitute_format(format)) * e * 64;
  const int32_t groups = ceil_divide_signed(static_cast<int32_t>(w * e), static_cast<int32_t>(u));
  const int32_t bytes = static_cast<int32_t>(static_cast<uint32_t>(groups) * u);
  return static_cast<uint32_t>(bytes / static_cast<int32_t>(e));
}

bool row_is_short(uint32_t w, uint32_t e, int32_t min_padded_row_bytes) {
  return static_cast<int32_t>(w * e) <= min_padded_row_bytes;
}

// A row of tiles in elements, before any rounding to 64. Faults for elements of no size.
uint32_t tiled_width_family5(uint32_t width, uint32_t e, uint32_t format) {
  if (e >= 4) {
    return divide(tile_row_bytes(width * e, e, format), e);
  }
  return divide(tile_row_bytes(round_up_to_64_or_64(width) * e, e, format), e);
}

// The table has no row for elements of no size or of 32 bytes and more.
bool has_no_padding_row(uint32_t e) {
  return e == 0 || e >= 32;
}

uint32_t pad_pitch_family5(uint32_t w, uint32_t e, uint32_t selector) {
  if (has_no_padding_row(e)) return w;
  const uint32_t padded = pitch_padding_lookup(w, e, selector);
  if (padded > 16384) return 16384;
  return padded;
}

uint32_t pad_pitch_family67(const Process& process, uint32_t w, uint32_t e, uint32_t selector) {
  if (has_no_padding_row(e)) return w;
  const uint32_t padded = pitch_padding_lookup(w, e, selector);
  if (chip_group(process) == 7) {
    // Signed: a model without a limit of its own is limited to 0.
    const int32_t limit = facts(process).max_surface_pitch;
    if (static_cast<int32_t>(padded) > limit) return static_cast<uint32_t>(limit);
    return padded;
  }
  if (padded > 16384) return 16384;
  return padded;
}

bool never_padded(uint32_t format) {
  return format == kFourCcFormat || has_flag(format, kFlagVideo | kFlagBlockCompressed);
}

uint32_t round_up_by_pitch(uint32_t width, uint32_t pitch_bytes, uint32_t divisor) {
  const uint32_t q = divide(pitch_bytes, divisor);
  if (q == 0) return width;
  return (width + q - 1) & (0u - q);
}

bool counts_in_blocks_family5(uint32_t format) {
  return has_flag(format, kFlagBlockCompressed) || among(format, {107, 614, 654, 655, 656});
}

uint32_t linear_base_width_family5(uint32_t width, uint32_t format, uint32_t tiling_mode_again,
                                   uint32_t samples, uint32_t divisor) {
  const uint32_t f1 = npot_substitute_format(format);
  const uint32_t b1 = element_bytes(f1);
  uint32_t a = 0;
  if (tiling_mode_again != 0) {
    a = tile_width_of(b1 * samples, f1, tall_tile_format_family5(f1));
  } else {
    const uint32_t k = element_bytes(npot_substitute_format(f1)) * samples;
    if (!counts_in_blocks_family5(f1)) {
      a = 64 / greatest_common_divisor(64, k);
    } else if (k < 64) {
      a = divide(64, k);
    } else {
      a = 1;
    }
  }
  if (counts_in_blocks_family5(f1)) {
    a *= format_block_dims(f1).width;
  }
  uint32_t p = 0;
  if (!counts_in_blocks_family5(format)) {
    p = round_up(b1 * a * samples, 64);
  } else {
    p = divide(a, format_block_dims(format).width) * element_bytes(format);
  }
  return round_up_by_pitch(width, p, divisor);
}

uint32_t base_aligned_width_family67(uint32_t width, uint32_t plane, uint32_t samples,
                                     uint32_t format, uint32_t tiling_mode,
                                     uint32_t tiling_mode_again, uint32_t divisor) {
  const uint32_t block_width = format_block_dims(format).width;
  if (tiling_mode == 1) {
    const uint32_t tile = tile_width_family67(plane_format(format, plane), samples);
    const uint32_t texels = width * block_width;
    if (texels == 0) return divide(tile, block_width);
    return divide(round_up_to_multiple(texels, tile), block_width);
  }
  const uint32_t f1 = listed_substitute_format(format);
  uint32_t a = 0;
  if (tiling_mode_again == 1) {
    a = tile_width_family67(f1, samples);
  } else {
    const uint32_t k = element_bytes(listed_substitute_format(f1)) * samples;
    if (has_flag(f1, kEitherBlockFlag)) {
      a = 1;
      if (k < 64) {
        a = divide(64, k);
      }
      a *= format_block_dims(f1).width;
    } else {
      a = 64 / greatest_common_divisor(64, k);
    }
  }
  uint32_t p = 0;
  if (has_flag(format, kEitherBlockFlag)) {
    p = element_bytes(format) * divide(a, block_width);
  } else {
    p = round_up(element_bytes(f1) * a * samples, 64);
  }
  return round_up_by_pitch(width, p, divisor);
}

uint32_t extra_padding_units(const Process& process) {
  return facts(process).extra_padding_units * facts(process).extra_padding_factor;
}

}  // namespace

bool tall_tile_format_family5(uint32_t format) {
  return among(format, {{49, 52}, 103, 506, 511, 514, 517, 619, 647, 678});
}

bool tall_tile_format_family67(uint32_t format) {
  return among(format, {{48, 52}, 103, 511, 514, 517, 658, 666, 678});
}

uint32_t align_width_family5(uint32_t width, uint32_t e, uint32_t format, uint32_t tiling_mode,
                             uint32_t selector, int32_t min_padded_row_bytes) {
  const uint32_t w64 = round_up_to_64_or_64(width);
  if (tiling_mode == 1) {
    const uint32_t tiles = tiled_width_family5(width, e, format);
    if (e >= 4) return round_up_to_64_or_64(tiles);
    return tiles;
  }
  if (never_padded(format)) return w64;
  if (!is_power_of_two(e)) return align_odd_size(w64, e, format);
  if (row_is_short(w64, e, min_padded_row_bytes)) return w64;
  return pad_pitch_family5(w64, e, selector);
}

uint32_t minimal_width_family5(uint32_t width, uint32_t e, uint32_t format, uint32_t samples,
                               uint32_t tiling_mode, uint32_t tiling_allowed, uint32_t selector,
                               int32_t min_padded_row_bytes, uint32_t divisor) {
  if (tiling_mode == 1) return tiled_width_family5(width, e, format);
  const uint32_t b = linear_base_width_family5(width, format, tiling_allowed, samples, divisor);
  if (never_padded(format)) return b;
  if (!is_power_of_two(e)) return align_odd_size(b, e, format);
  if (row_is_short(b, e, min_padded_row_bytes)) return b;
  return pad_pitch_family5(b, e, selector);
}

uint32_t align_height_family5(uint32_t height, uint32_t e, uint32_t format, uint32_t tiling_mode) {
  if (tiling_mode != 1) {
    if (format == 670) return round_up(height, 64);
    return height;
  }
  if (e == 2 && tall_tile_format_family5(format)) return round_up(height, 32);
  if (e == 1 && (format == 660 || format == 661)) return round_up(height, 16);
  if (e > 1) return round_up(height, 16);
  return round_up(height, 32);
}

uint32_t align_width_family67(const Process& process, uint32_t width, uint32_t plane, uint32_t e,
                              uint32_t samples, uint32_t format, uint32_t tiling_mode,
                              uint32_t tiling_mode_again, uint32_t selector,
                              int32_t min_padded_row_bytes, uint32_t divisor,
                              uint32_t extra_width) {
  const uint32_t b = base_aligned_width_family67(width + extra_width, plane, samples, format,
                                                 tiling_mode, tiling_mode_again, divisor);
  if (tiling_mode == 1) return b;
  if (never_padded(format)) return b;
  if (!is_power_of_two(e)) return align_odd_size(b, e, format);
  if (row_is_short(b, e, min_padded_row_bytes)) return b;
  return pad_pitch_family67(process, b, e, selector);
}

// Rows of blocks. The last step counts in signed numbers: the rows of texels may wrap below 0, and
// so may the whole tiles of them. What is negative then stays negative when it is divided.
uint32_t align_height_family67(uint32_t height, uint32_t plane, uint32_t samples, uint32_t format,
                               uint32_t tiling_mode, uint32_t extra_rows) {
  const Dimensions block = format_block_dims(format);
  uint32_t a = 1;
  if (tiling_mode == 1) {
    a = tile_height_family67(plane_format(format, plane), samples);
  } else {
    if (format == 670) return round_up(height + extra_rows, 64);
    if (has_flag(format, kEitherBlockFlag)) {
      a = block.height;
    }
  }
  const int32_t step = static_cast<int32_t>(a);
  int32_t r = static_cast<int32_t>((height + extra_rows) * block.height);
  if (r > 0) {
    const int32_t steps_before = divide_signed(r - 1, step);
    r = static_cast<int32_t>(a + static_cast<uint32_t>(steps_before) * a);
  } else {
    r = step;
  }
  return static_cast<uint32_t>(divide_signed(r, static_cast<int32_t>(block.height)));
}

uint32_t extra_width_padding(const Process& process, uint32_t format) {
  uint32_t unit = 16;
  if (among(format, {{103, 107}, 614, 657, 658, 663, 664, 679, 680, {709, 721}})) {
    unit = 32;
  }
  if (among(format, {615, 619, 660, 661, 662})) {
    unit = 64;
  }
  const uint32_t n = extra_padding_units(process);
  if (among(n, {1, 2, 3, 4, 6, 8, 16})) return unit * n;
  return 0;
}

uint32_t extra_height_padding(const Process& process) {
  const uint32_t n = extra_padding_units(process);
  if (among(n, {1, 2, 3, 6, 8, 16})) return 16 * n;
  if (n == 4) return 32;
  return 0;
}

}  // namespace reference
