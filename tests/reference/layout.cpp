// Where the planes, levels, flag buffers and the extra buffer of a surface lie.
#include <cstring>

#include "rules.h"

namespace reference {

namespace {

constexpr uint64_t kAskUbwc = 1ull << 28;
constexpr uint64_t kAskExtra = 1ull << 56;
constexpr uint64_t kAskExtended = 1ull << 60;
constexpr uint64_t kExtraSliceBytes = 8224;

constexpr uint32_t kFailure = 0xFFFFFFFF;

// A signed count of slices times a 64-bit size.
uint64_t times_depth(int32_t depth, uint64_t size) {
  return static_cast<uint64_t>(static_cast<int64_t>(depth)) * size;
}

bool wants_extended(uint64_t flags) {
  return (flags & kAskExtra) != 0 && (flags & kAskExtended) != 0;
}

uint32_t validate_memory_layout_input_params(Process& process, int32_t width, int32_t height,
                                             int32_t depth, uint32_t format, uint32_t samples,
                                             uint32_t tiling_mode) {
  const char* const function = "validate_memory_layout_input_params";
  if (width <= 0 || height <= 0 || depth <= 0) {
    log_message(process, function, "Invalid width, height, or depth: W = %d, H = %d, D = %d", width,
                height, depth);
    return kFailure;
  }
  if (format == 0 || !has_record(format)) {
    log_message(process, function, "Unknown Format %u", format);
    return kFailure;
  }
  if (has_flag(format, kFlagDepthStencil) && tiling_mode != 1) {
    log_message(process, function, "Invalid configuration, cannot support linear depth/stencil");
    return kFailure;
  }
  if (samples != 1 && samples != 2 && samples != 4 && samples != 8) {
    log_message(process, function, "Invalid input sample count %u", samples);
    return kFailure;
  }
  return 0;
}

bool record_counts_are_bad(Process& process, const char* function, uint32_t levels,
                           uint32_t planes) {
  if (levels > 15) {
    log_message(process, function, "Invalid level count %u", levels);
    return true;
  }
  if (planes > 3) {
    log_message(process, function, "Invalid plane count %u", planes);
    return true;
  }
  return false;
}

uint32_t slice_alignment(const Process& process, uint32_t tiling_mode) {
  if (tiling_mode == 1) return tiled_alignment(process);
  return linear_alignment(process);
}

// Texels to blocks. Both sizes stay as they are for formats without blocks.
void count_in_blocks(Process& process, uint32_t format, int32_t* w, int32_t* h) {
  if (!has_flag(format, kFlagBlockCompressed)) return;
  if (*w < 0 || *h < 0) {
    log_message(process, "compute_compressedfmt_aligned_width_and_height",
                "Invalid texel width or texel height: W = %d, H = %d", *w, *h);
    *w = 1;
    *h = 1;
    return;
  }
  const Dimensions block = format_block_dims(format);
  const int32_t across = ceil_divide_signed(*w, static_cast<int32_t>(block.width));
  *w = static_cast<int32_t>(round_up(static_cast<uint32_t>(across), pixel_alignment(process)));
  *h = ceil_divide_signed(*h, static_cast<int32_t>(block.height));
}

uint32_t padding_selector(uint32_t tiling_mode) {
  if (tiling_mode == 1) return 2;
  return 1;
}

bool makes_flag_buffers(const Process& process, uint32_t format, uint64_t flags) {
  return ubwc_supported(process, format) && (flags & kAskUbwc) != 0;
}

void finish_record(MemoryLayout* record, int32_t depth, uint64_t flags, uint64_t image_bytes) {
  uint64_t bytes = image_bytes;
  if ((flags & kAskExtra) != 0) {
    record->extra_slice_pitch = kExtraSliceBytes;
    record->extra_offset = image_bytes;
    record->extra_size = times_depth(depth, kExtraSliceBytes);
    record->extra_valid = 1;
    bytes += record->extra_size;
  } else {
    record->extra_valid = 0;
  }
  record->extended = wants_extended(flags) ? 1 : 0;
  record->total_size = round_up_64(bytes, record->alignment) + record->size;
}

// One plane of a single-level surface, `start` bytes into a slice.
void lay_out_plane(Process& process, PlaneLayout* plane, uint32_t p, int32_t w, int32_t h,
                   uint32_t format, uint32_t samples, uint32_t tiling_mode, uint64_t flags,
                   uint64_t start) {
  const uint32_t extended = wants_extended(flags) ? 1 : 0;
  const Dimensions aligned = align_for_layout(
      process, w, h, p, format, samples, tiling_mode, padding_selector(tiling_mode),
      static_cast<int32_t>(aux_alignment(process)), 1, extended);
  const uint32_t element = element_bytes(format) * samples;
  const uint32_t pitch = element * aligned.width;
  const uint32_t slice_32 = round_up(pitch * aligned.height, slice_alignment(process, tiling_mode));
  const uint64_t slice = round_up_64(slice_32, base_alignment(process));

  plane->image_width = aligned.width;
  plane->image_height = aligned.height;
  plane->image_element_size = element;
  plane->image_pitch = pitch;
  plane->image_offset = start;
  plane->image_size = slice;
  plane->image_slice_pitch = slice;

  if (!makes_flag_buffers(process, format, flags)) {
    plane->flag_valid = 0;
    return;
  }
  const Dimensions tile = sample_tile_dims(process, format, p != 0, static_cast<int32_t>(samples));
  const uint32_t family = process.identity.family_id;
  uint32_t flag_rows = 0;
  if (family == 5 || family == 6 || family == 7) {
    flag_rows = round_up(ceil_divide(aligned.height, tile.height), 16);
  }
  const uint32_t flag_pitch =
      round_up(ceil_divide(aligned.width, tile.width), linear_alignment(process));
  const uint32_t flag_size = round_up(flag_rows * flag_pitch, base_alignment(process));
  plane->flag_valid = 1;
  plane->flag_pitch = flag_pitch;
  plane->flag_offset = start;
  plane->flag_size = flag_size;
  plane->image_offset += flag_size;
  plane->image_slice_pitch += flag_size;
  plane->flag_slice_pitch = plane->image_slice_pitch;
}

void lay_out_single_level(Process& process, MemoryLayout* record, int32_t width, int32_t height,
                          int32_t depth, uint32_t format, uint32_t samples, uint32_t tiling_mode,
                          uint64_t flags, uint32_t planes) {
  uint64_t running = 0;
  int32_t w = 1;
  int32_t h = 1;
  for (uint32_t l = 0; l < record->levels; ++l) {
    if ((width >> l) > 0) {
      w = width >> l;
    }
    if ((height >> l) > 0) {
      h = height >> l;
    }
    count_in_blocks(process, format, &w, &h);
    LevelLayout* level = &record->level[l];
    level->slices = static_cast<uint32_t>(depth);
    level->tiled = tiling_mode;
    level->planes = planes;
    uint64_t sum = 0;
    for (uint32_t p = 0; p < planes; ++p) {
      PlaneLayout* plane = &level->plane[p];
      lay_out_plane(process, plane, p, w, h, format, samples, tiling_mode, flags, running);
      running += plane->image_slice_pitch;
      sum += plane->image_slice_pitch;
    }
    level->size = times_depth(depth, sum);
  }
  for (uint32_t l = 0; l < record->levels; ++l) {
    record->level[l].lrz_valid = 0;
    record->level[l].lrz_fc_valid = 0;
  }
  finish_record(record, depth, flags, times_depth(depth, running));
}

// The next power of two; a power of two stays. 0 and anything above 2^31 give 0.
uint32_t next_power_of_two(uint32_t x) {
  uint32_t power = 1;
  if (x == 0) return 0;
  while (power != 0 && power < x) {
    power *= 2;
  }
  return power;
}

// Flags along one side of a level: those of level 0 halved, never below the chip's least.
uint32_t flags_along(const Process& process, uint32_t texels, uint32_t tile, uint32_t level) {
  uint32_t count = ceil_divide(next_power_of_two(texels), tile) >> level;
  if (count < 1) {
    count = 1;
  }
  if (count < min_level_extent(process)) {
    count = min_level_extent(process);
  }
  return count;
}

// The gathered flag buffers in front of the images; answers the bytes of one slice's.
uint64_t place_flag_area(const Process& process, MemoryLayout* record) {
  uint64_t offset = 0;
  for (uint32_t l = 0; l < record->levels; ++l) {
    record->level[l].plane[0].flag_offset = offset;
    offset += record->level[l].plane[0].flag_size;
  }
  const uint64_t area = round_up_64(offset, level_size_alignment(process));
  for (uint32_t l = 0; l < record->levels; ++l) {
    record->level[l].plane[0].flag_slice_pitch = area;
  }
  return area;
}

// One plane's chain of levels from `start` on; answers where the next chain may begin.
uint64_t place_chain(const Process& process, MemoryLayout* record, uint32_t p, uint32_t planes,
                     int32_t depth, uint64_t start) {
  const uint64_t chain = round_up_64(start, level_offset_alignment(process));
  uint64_t r = 0;
  for (uint32_t l = 0; l < record->levels; ++l) {
    LevelLayout* level = &record->level[l];
    PlaneLayout* plane = &level->plane[p];
    plane->image_offset = chain + r;
    r += plane->image_size;
    level->size = times_depth(depth, plane->image_size);
    if (planes >= 2 && plane->flag_valid == 1) {
      plane->flag_offset = plane->image_offset;
      plane->image_offset += plane->flag_size;
      level->size += times_depth(depth, plane->flag_size);
      r += plane->flag_size;
    }
  }
  const uint64_t chain_size = round_up_64(r, base_alignment(process));
  for (uint32_t l = 0; l < record->levels; ++l) {
    PlaneLayout* plane = &record->level[l].plane[p];
    plane->image_slice_pitch = chain_size;
    if (planes >= 2 && plane->flag_valid == 1) {
      plane->flag_slice_pitch = chain_size;
    }
  }
  return chain + times_depth(depth, chain_size);
}

}  // namespace

uint32_t korvel_get_metadata_blob_size(Process& /*process*/) {
  return 5536;
}

uint64_t korvel_get_aligned_gpu_buffer_size(Process& /*process*/, const void* blob) {
  if (blob == nullptr) return 0;
  const uint8_t* const bytes = static_cast<const uint8_t*>(blob);
  uint32_t record_offset = 0;
  uint64_t total_size = 0;
  uint32_t size = 0;
  std::memcpy(&record_offset, bytes + 16, 4);
  std::memcpy(&total_size, bytes + record_offset + 40, 8);
  std::memcpy(&size, bytes + record_offset + 4, 4);
  return total_size - size;
}

uint32_t korvel_init_memory_layout(Process& process, void* blob, int32_t width, int32_t height,
                                   int32_t depth, uint32_t format, uint32_t samples,
                                   uint32_t tiling_mode, uint64_t flags, uint32_t planes) {
  const char* const function = "korvel_init_memory_layout";
  identify_gpu_if_needed(process);
  bool refused = validate_memory_layout_input_params(process, width, height, depth, format, samples,
                                                     tiling_mode) != 0;
  if (!refused && planes > 3) {
    log_message(process, function, "Invalid plane count %u", planes);
    refused = true;
  }
  if (refused) {
    log_message(process, function, "Memory Layout input parameter validation failed!");
    return kFailure;
  }
  if (blob == nullptr) return kFailure;

  LayoutMetadata* const metadata = static_cast<LayoutMetadata*>(blob);
  metadata->header.magic = 0x00FACADE;
  metadata->header.header_version = 1;
  metadata->header.blob_size = 5536;
  metadata->header.record_kind = 3;
  metadata->header.record_offset = 24;
  metadata->header.record_size = 5512;

  MemoryLayout* const record = &metadata->layout;
  record->signature = 0xDA7ACA5E;
  record->size = 5512;
  get_device_uuid(process, record->device_uuid, 16, process.identity.family_id,
                  process.identity.model_code, process.identity.rev_id);
  get_driver_uuid(process, record->driver_uuid, 16);
  record->format = format;
  record->samples = samples;
  record->linear_fallback = 0;
  record->levels = 1;

  uint32_t mode = tiling_mode;
  if (has_flag(format, kFlagDepthStencil)) {
    mode = 1;
  }
  record->alignment = format_pitch_alignment(process, format, samples, mode);
  lay_out_single_level(process, record, width, height, depth, format, samples, mode, flags, planes);
  return 0;
}

void korvel_init_single_level_surface(Process& process, MemoryLayout* record, int32_t width,
                                      int32_t height, int32_t depth, uint32_t format,
                                      uint32_t samples, uint32_t tiling_mode, uint64_t flags,
                                      uint32_t planes) {
  identify_gpu_if_needed(process);
  if (record_counts_are_bad(process, "korvel_init_single_level_surface", record->levels, planes)) {
    return;
  }
  lay_out_single_level(process, record, width, height, depth, format, samples, tiling_mode, flags,
                       planes);
}

void korvel_init_multi_level_surface(Process& process, MemoryLayout* record, uint32_t width,
                                     uint32_t height, int32_t depth, uint32_t format,
                                     uint32_t samples, uint32_t tiling_mode, uint64_t flags,
                                     uint32_t planes) {
  identify_gpu_if_needed(process);
  if (record_counts_are_bad(process, "korvel_init_multi_level_surface", record->levels, planes)) {
    return;
  }
  const uint32_t extended = wants_extended(flags) ? 1 : 0;
  const uint32_t base_width = round_up(width, 64);
  const uint32_t base_height = height;
  int32_t w = 1;
  int32_t h = 1;
  for (uint32_t l = 0; l < record->levels; ++l) {
    LevelLayout* level = &record->level[l];
    for (uint32_t p = 0; p < planes; ++p) {
      PlaneLayout* plane = &level->plane[p];
      const uint32_t element = element_bytes(format) * samples;
      if ((static_cast<int32_t>(base_width) >> l) >= 1) {
        w = static_cast<int32_t>(base_width) >> l;
      }
      if ((static_cast<int32_t>(base_height) >> l) >= 1) {
        h = static_cast<int32_t>(base_height) >> l;
      }
      count_in_blocks(process, format, &w, &h);
      level->slices = static_cast<uint32_t>(depth);
      level->tiled = tiling_mode;
      level->planes = planes;

      const Dimensions aligned =
          align_for_layout(process, w, h, p, format, samples, tiling_mode,
                           padding_selector(tiling_mode), 0x7FFFFFFF, element, extended);
      const uint32_t pitch = element * aligned.width;
      plane->image_element_size = element;
      plane->image_width = aligned.width;
      plane->image_height = aligned.height;
      plane->image_pitch = pitch;
      plane->image_size = round_up(pitch * aligned.height, slice_alignment(process, tiling_mode));

      if (makes_flag_buffers(process, format, flags)) {
        const Dimensions tile =
            sample_tile_dims(process, format, p != 0, static_cast<int32_t>(samples));
        const uint32_t flag_pitch = flags_along(process, base_width, tile.width, l);
        const uint32_t flag_rows = flags_along(process, base_height, tile.height, l);
        plane->flag_valid = 1;
        plane->flag_pitch = flag_pitch;
        plane->flag_size = flag_rows * flag_pitch;
      } else {
        plane->flag_valid = 0;
      }
    }
  }

  uint64_t position = 0;
  if (tiling_mode == 1 && planes == 1) {
    position = times_depth(depth, place_flag_area(process, record));
  }
  for (uint32_t p = 0; p < planes; ++p) {
    position = place_chain(process, record, p, planes, depth, position);
  }
  for (uint32_t l = 0; l < record->levels; ++l) {
    record->level[l].lrz_valid = 0;
    record->level[l].lrz_fc_valid = 0;
  }
  finish_record(record, depth, flags, position);
}

}  // namespace reference
