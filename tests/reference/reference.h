// An independent, plain reimplementation of korvel_utils, which the tests compare the library with.
//
// Nothing here is shared with the library: every rule is written out again, slowly and directly,
// over a chip whose hardware facts the test hands in. One Process stands for one process with the
// library loaded: how its device behaves, what the library has learned about the chip so far, what
// it logged and which operations of the services library it called.
//
// The functions carry the names and the argument order of the library's exports behind a Process.
// Where the library would divide by zero they throw DivisionFault.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <korvel_utils.h>

namespace reference {

// Everything that the rules ask about one chip.
struct ChipFacts {
  uint32_t chip_id = 0;
  uint32_t family_id = 0;
  uint32_t model_code = 0;
  uint32_t rev_id = 0;
  bool known = false;  // has a row in the identification tables; all else is ignored without one
  bool supported = false;  // in the supported-chip list, in the group of its family

  // Membership in the set of each property column.
  bool base_alignment = false;
  bool linear_alignment = false;
  bool aux_alignment = false;
  bool small_alignment = false;
  bool pixel_alignment = false;
  bool tiled_alignment = false;
  bool min_level_extent = false;
  bool level_offset_alignment = false;
  bool level_size_alignment = false;
  bool wide_enough_for_tiling = false;

  // Membership in the chip sets of the compression rules.
  bool ubwc_never = false;
  bool ubwc_depth_excluded = false;
  bool ubwc_yuv_a = false;
  bool ubwc_yuv_b = false;
  bool ubwc_yuv16 = false;

  // Facts of the chip's model code.
  bool yuv16_ext = false;
  bool p016 = false;
  bool family5_sample_excluded = false;
  int32_t max_surface_pitch = 0;  // elements, 0 when the model is not listed

  // The extra padding counts in extra_padding_units * extra_padding_factor.
  uint32_t extra_padding_units = 0;   // by family
  uint32_t extra_padding_factor = 0;  // by model code
};

// What the services library answers. The default is a device that works and cannot do secure
// contexts.
struct Device {
  uint32_t library_open_result = 0;  // non-zero: the library cannot be opened
  uint32_t handle = 1;               // 0: the device cannot be opened
  uint32_t getinfo_result = 0;       // non-zero: the query fails
  uint32_t getinfo_ext_result = 0;   // non-zero: the extended query fails
  uint32_t secure_word = 0;          // what the extended query reports
  bool snprintf_fails = false;       // os_snprintf answers -1 and writes nothing
};

// What the library knows about the chip. The chip id is all ones until it has asked.
struct Identity {
  uint32_t chip_id = 0xFFFFFFFF;
  uint32_t family_id = 0;
  uint32_t model_code = 0;
  uint32_t rev_id = 0;
};

struct Message {
  std::string function;            // the reporting function
  std::string format;              // as handed to os_alog
  std::string text;                // with its arguments filled in
  std::size_t services_calls = 0;  // how many entries Process::service_calls had by then
};

// Thrown where the machine's division by zero would be raised.
struct DivisionFault {};

struct Process {
  ChipFacts chip;  // what is in the machine; the device reports chip.chip_id
  Device device;
  Identity identity;

  std::vector<Message> messages;
  // The other operations, in order: "hxl_library_open(FLAGS)", "hxl_library_close()",
  // "hxl_device_open(INDEX, FLAGS)", "hxl_device_close(HANDLE)", "hxl_device_getinfo(HANDLE)",
  // "hxl_device_getinfo_ext(HANDLE)", "os_memset(VALUE, SIZE)" and "os_snprintf(SIZE)", all numbers
  // decimal.
  std::vector<std::string> service_calls;
};

// Identification.

int32_t get_device_uuid(Process& process, uint8_t* out, int32_t out_length, uint32_t family_id,
                        uint32_t model_code, uint32_t rev_id);

int32_t get_override_device_uuid(Process& process, uint8_t* out, int32_t out_length,
                                 uint32_t family_id, uint32_t model_code, uint32_t rev_id,
                                 uint16_t word_0);

int32_t get_driver_uuid(Process& process, uint8_t* out, int32_t out_length);

int32_t uuid_to_str(Process& process, char* text, int32_t text_size, const uint8_t* uuid,
                    uint32_t uuid_length);

uint32_t isSecureContextSupportedByGpu(Process& process);

uint32_t get_gpu_pixel_alignment(Process& process);

uint32_t get_slice_pitch_alignment(Process& process, uint32_t tiling_mode);

// Formats.

uint32_t isFormatRenderableByGpu(Process& process, int32_t format, int32_t depth_stencil_use);

uint32_t isFormatSampleableByGpu(Process& process, int32_t format, uint32_t sample_count,
                                 int32_t depth_stencil_view);

uint32_t isUBWCSupportedByGpu(Process& process, uint32_t format);

void compute_compressedfmt_aligned_width_and_height(Process& process, int32_t texel_width,
                                                    int32_t texel_height, uint32_t format,
                                                    uint64_t ignored_1, uint64_t ignored_2,
                                                    uint64_t ignored_3, uint32_t* aligned_width,
                                                    uint32_t* aligned_height, uint32_t* bpp);

// Alignment.

void compute_aligned_width_and_height(Process& process, int32_t width, int32_t height, uint32_t a3,
                                      uint32_t a4, uint32_t a5, uint32_t a6, uint32_t* out_width,
                                      uint32_t* out_height);

uint32_t compute_surface_padding(Process& process, int32_t width, uint32_t a2, int32_t tiling_mode,
                                 uint32_t a4, uint32_t a5);

void compute_fmt_aligned_width_and_height(Process& process, int32_t width, int32_t height,
                                          uint32_t plane, uint32_t format, uint32_t samples,
                                          uint32_t tiling_mode, uint32_t selector,
                                          int32_t min_padded_row_bytes, uint32_t* out_width,
                                          uint32_t* out_height);

void compute_fmt_minimal_aligned_width_and_height(Process& process, int32_t width, int32_t height,
                                                  uint32_t plane, uint32_t format, uint32_t samples,
                                                  uint32_t tiling_mode, uint32_t tiling_allowed,
                                                  uint32_t selector, int32_t min_padded_row_bytes,
                                                  uint32_t divisor, uint32_t want_extra_padding,
                                                  uint32_t* out_width, uint32_t* out_height);

void compute_fmt_aligned_width_and_height_in_bytes(Process& process,
                                                   const AlignInBytesParams* params,
                                                   const AlignInBytesResult* result);

void compute_fmt_aligned_width_and_height_fdm(Process& process, int32_t width, int32_t height,
                                              uint32_t plane, uint32_t format, uint32_t samples,
                                              uint32_t tiling_mode, uint32_t selector,
                                              int32_t min_padded_row_bytes, uint32_t divisor,
                                              uint32_t want_extra_padding, uint32_t* out_width,
                                              uint32_t* out_height);

// Layout.

uint32_t korvel_get_metadata_blob_size(Process& process);

uint64_t korvel_get_aligned_gpu_buffer_size(Process& process, const void* blob);

uint32_t korvel_init_memory_layout(Process& process, void* blob, int32_t width, int32_t height,
                                   int32_t depth, uint32_t format, uint32_t samples,
                                   uint32_t tiling_mode, uint64_t flags, uint32_t planes);

void korvel_init_single_level_surface(Process& process, MemoryLayout* record, int32_t width,
                                      int32_t height, int32_t depth, uint32_t format,
                                      uint32_t samples, uint32_t tiling_mode, uint64_t flags,
                                      uint32_t planes);

void korvel_init_multi_level_surface(Process& process, MemoryLayout* record, uint32_t width,
                                     uint32_t height, int32_t depth, uint32_t format,
                                     uint32_t samples, uint32_t tiling_mode, uint64_t flags,
                                     uint32_t planes);

// Validation.

uint32_t validate_resource_memory_layout_metadata(Process& process, const void* record,
                                                  const uint8_t* device_uuid,
                                                  const uint8_t* driver_uuid);

uint32_t validate_surface_metadata(Process& process, const void* record, const uint8_t* device_uuid,
                                   const uint8_t* driver_uuid);

}  // namespace reference
