// The single rules behind the entries of reference.h, for its own files and for tests of one rule.
// None of them runs the identification: the entries do, once per call, but for
// get_slice_pitch_alignment, which does so for each of the two properties that it looks up.
#pragma once

#include <cstdint>
#include <initializer_list>

#include "reference.h"

namespace reference {

// The format that has a four-character code, "WXB7", in place of a number.
inline constexpr uint32_t kFourCcFormat = 0x37425857;

// Arithmetic. Everything 32-bit wraps.

// Up to a power of two; a = 0 gives 0.
uint32_t round_up(uint32_t x, uint32_t a);
uint64_t round_up_64(uint64_t x, uint64_t a);

// Up to an exact multiple of any a above 0. x is above 0.
uint32_t round_up_to_multiple(uint32_t x, uint32_t a);

// x / y, a DivisionFault for y = 0. Signed quotients are truncated toward 0.
uint32_t divide(uint32_t x, uint32_t y);
int32_t divide_signed(int32_t x, int32_t y);

// (x + y - 1) / y, unsigned and signed.
uint32_t ceil_divide(uint32_t x, uint32_t y);
int32_t ceil_divide_signed(int32_t x, int32_t y);

// 0 counts as a power of two.
bool is_power_of_two(uint32_t x);

// One number or an inclusive range of them.
struct Range {
  uint32_t first;
  uint32_t last;
  constexpr Range(uint32_t number) : first(number), last(number) {}
  constexpr Range(uint32_t lowest, uint32_t highest) : first(lowest), last(highest) {}
};

bool among(uint32_t number, std::initializer_list<Range> ranges);

// The services library.

__attribute__((format(printf, 3, 4))) void log_message(Process& process, const char* function,
                                                       const char* format, ...);
uint32_t call_library_open(Process& process, uint32_t flags);
void call_library_close(Process& process);
uint32_t call_device_open(Process& process, uint32_t index, uint32_t flags);
void call_device_close(Process& process, uint32_t handle);
uint32_t call_device_getinfo(Process& process, uint32_t handle, uint32_t* chip_id);
uint32_t call_device_getinfo_ext(Process& process, uint32_t handle, uint32_t* secure_word);
void call_memset(Process& process, int32_t value, uint64_t size);
// Prints a UUID; answers the length of the whole text, negative on failure.
int32_t call_snprintf_uuid(Process& process, char* text, uint64_t size, const uint8_t* uuid);

// Identification and the chip's properties.

void identify_gpu(Process& process);
void identify_gpu_if_needed(Process& process);

// The facts of the chip that the library believes to run on: none of them unless it is identified.
const ChipFacts& facts(const Process& process);

bool is_supported_chip(const Process& process);
uint32_t chip_group(const Process& process);  // 5, 6 or 7; 0 outside the supported-chip list

uint32_t base_alignment(const Process& process);
uint32_t linear_alignment(const Process& process);
uint32_t aux_alignment(const Process& process);
uint32_t small_alignment(const Process& process);
uint32_t pixel_alignment(const Process& process);
uint32_t tiled_alignment(const Process& process);
uint32_t min_level_extent(const Process& process);
uint32_t level_offset_alignment(const Process& process);
uint32_t level_size_alignment(const Process& process);
bool wide_enough_for_tiling(const Process& process, int32_t width, uint32_t bpp);

struct Dimensions {
  uint32_t width;
  uint32_t height;
};

// Pixels of the tile that holds one multisampled block.
Dimensions sample_tile_dims(const Process& process, uint32_t format, bool half_width,
                            int32_t samples);

// Formats. A number without a record is a one-byte single-plane format without flags.

struct FormatRecord {
  uint32_t flags;
  uint32_t bytes;
  uint32_t planes;
};

inline constexpr uint32_t kFlagVideo = 0x200;
inline constexpr uint32_t kFlagPackedPair = 0x1000;
inline constexpr uint32_t kFlagBlockCompressed = 0x2000;
inline constexpr uint32_t kFlagDepthStencil = 0x10000;

bool has_record(uint32_t format);  // below 722
FormatRecord format_record(uint32_t format);
bool has_flag(uint32_t format, uint32_t flags);  // any of them
uint32_t element_bytes(uint32_t format);
Dimensions format_block_dims(uint32_t format);
uint32_t format_plane_bytes(uint32_t format, uint32_t plane);
uint32_t npot_substitute_format(uint32_t format);
uint32_t listed_substitute_format(uint32_t format);
uint32_t plane_format(uint32_t format, uint32_t plane);
uint32_t format_pitch_alignment(const Process& process, uint32_t format, uint32_t samples,
                                uint32_t tiling_mode);

bool ubwc_supported(const Process& process, uint32_t format);

// Alignment.

bool tall_tile_format_family5(uint32_t format);
bool tall_tile_format_family67(uint32_t format);

// The padded pitch that the memory channels like, for a multiple of 64 up to 2048 elements.
uint32_t padded_pitch(uint32_t size_class, uint32_t pitch, bool second_half);
uint32_t pitch_padding_lookup(uint32_t w, uint32_t e, uint32_t selector);

uint32_t align_width_family5(uint32_t width, uint32_t e, uint32_t format, uint32_t tiling_mode,
                             uint32_t selector, int32_t min_padded_row_bytes);
uint32_t minimal_width_family5(uint32_t width, uint32_t e, uint32_t format, uint32_t samples,
                               uint32_t tiling_mode, uint32_t tiling_allowed, uint32_t selector,
                               int32_t min_padded_row_bytes, uint32_t divisor);
uint32_t align_height_family5(uint32_t height, uint32_t e, uint32_t format, uint32_t tiling_mode);

uint32_t align_width_family67(const Process& process, uint32_t width, uint32_t plane, uint32_t e,
                              uint32_t samples, uint32_t format, uint32_t tiling_mode,
                              uint32_t tiling_mode_again, uint32_t selector,
                              int32_t min_padded_row_bytes, uint32_t divisor, uint32_t extra_width);
uint32_t align_height_family67(uint32_t height, uint32_t plane, uint32_t samples, uint32_t format,
                               uint32_t tiling_mode, uint32_t extra_rows);
uint32_t extra_width_padding(const Process& process, uint32_t format);
uint32_t extra_height_padding(const Process& process);

// The alignment of the layout entries, messages included, without the identification.
Dimensions align_for_layout(Process& process, int32_t width, int32_t height, uint32_t plane,
                            uint32_t format, uint32_t samples, uint32_t tiling_mode,
                            uint32_t selector, int32_t min_padded_row_bytes, uint32_t divisor,
                            uint32_t want_extra_padding);

}  // namespace reference
