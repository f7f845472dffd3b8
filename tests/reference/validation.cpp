// Whether a stored record may be trusted. Records are bytes at offsets here; they come from outside
// and may stand at any address.
#include <cstring>

#include "rules.h"

namespace reference {

namespace {

constexpr uint32_t kInvalid = 0xFFFFFFFF;

uint32_t u32_at(const uint8_t* bytes) {
  return static_cast<uint32_t>(bytes[0]) | (static_cast<uint32_t>(bytes[1]) << 8) |
         (static_cast<uint32_t>(bytes[2]) << 16) | (static_cast<uint32_t>(bytes[3]) << 24);
}

uint64_t u64_at(const uint8_t* bytes) {
  return static_cast<uint64_t>(u32_at(bytes)) | (static_cast<uint64_t>(u32_at(bytes + 4)) << 32);
}

// As the 64-bit conversions of printf take it.
unsigned long long wide(uint64_t x) {
  return x;
}

enum class Kind { resource, surface };

// What both kinds of record hold, wherever they hold it.
struct Whole {
  Kind kind;
  const char* function;
  uint64_t total_size;
  uint64_t surface_size;  // what the buffers must stay within
  uint32_t linear_fallback;
  uint32_t levels;
};

struct Level {
  uint32_t slices, tiled;
  uint64_t size;
  uint32_t planes;
  uint32_t lrz_valid;
  uint64_t lrz_offset, lrz_size;
  uint32_t lrz_pitch;
  uint64_t lrz_slice_pitch;
  uint32_t lrz_width, lrz_height;
  uint32_t lrz_fc_valid;
  uint64_t lrz_fc_offset, lrz_fc_size;
};

struct Plane {
  uint64_t image_offset, image_size;
  uint32_t image_pitch;
  uint64_t image_slice_pitch;
  uint32_t image_element_size, image_width, image_height;
  uint32_t actual_width, actual_height;  // of the image itself; only the surface record has them
  uint32_t flag_valid;
  uint64_t flag_offset, flag_size;
  uint32_t flag_pitch;
  uint64_t flag_slice_pitch;
};

const uint8_t* level_bytes(Kind kind, const uint8_t* record, uint32_t l) {
  if (kind == Kind::resource) return record + 72 + 360 * l;
  return record + 40 + 348 * l;
}

const uint8_t* plane_bytes(Kind kind, const uint8_t* level, uint32_t p) {
  if (kind == Kind::resource) return level + 24 + 88 * p;
  return level + 20 + 80 * p;
}

Level read_level(Kind kind, const uint8_t* at) {
  Level level{};
  level.slices = u32_at(at + 0);
  level.tiled = u32_at(at + 4);
  level.size = u64_at(at + 8);
  level.planes = u32_at(at + 16);
  if (kind == Kind::resource) {
    level.lrz_valid = u32_at(at + 288);
    level.lrz_offset = u64_at(at + 296);
    level.lrz_size = u64_at(at + 304);
    level.lrz_pitch = u32_at(at + 312);
    level.lrz_slice_pitch = u64_at(at + 320);
    level.lrz_width = u32_at(at + 328);
    level.lrz_height = u32_at(at + 332);
    level.lrz_fc_valid = u32_at(at + 336);
    level.lrz_fc_offset = u64_at(at + 344);
    level.lrz_fc_size = u64_at(at + 352);
  } else {
    level.lrz_valid = u32_at(at + 260);
    level.lrz_offset = u64_at(at + 264);
    level.lrz_size = u64_at(at + 272);
    level.lrz_pitch = u32_at(at + 280);
    level.lrz_slice_pitch = u64_at(at + 284);
    level.lrz_width = u32_at(at + 292);
    level.lrz_height = u32_at(at + 296);
    level.lrz_fc_valid = u32_at(at + 300);
    level.lrz_fc_offset = u64_at(at + 304);
    level.lrz_fc_size = u64_at(at + 312);
  }
  return level;
}

Plane read_plane(Kind kind, const uint8_t* at) {
  Plane plane{};
  plane.image_offset = u64_at(at + 0);
  plane.image_size = u64_at(at + 8);
  plane.image_pitch = u32_at(at + 16);
  if (kind == Kind::resource) {
    plane.image_slice_pitch = u64_at(at + 24);
    plane.image_element_size = u32_at(at + 32);
    plane.image_width = u32_at(at + 36);
    plane.image_height = u32_at(at + 40);
    plane.flag_valid = u32_at(at + 48);
    plane.flag_offset = u64_at(at + 56);
    plane.flag_size = u64_at(at + 64);
    plane.flag_pitch = u32_at(at + 72);
    plane.flag_slice_pitch = u64_at(at + 80);
  } else {
    plane.image_slice_pitch = u64_at(at + 20);
    plane.image_element_size = u32_at(at + 28);
    plane.image_width = u32_at(at + 32);
    plane.image_height = u32_at(at + 36);
    plane.actual_width = u32_at(at + 40);
    plane.actual_height = u32_at(at + 44);
    plane.flag_valid = u32_at(at + 48);
    plane.flag_offset = u64_at(at + 52);
    plane.flag_size = u64_at(at + 60);
    plane.flag_pitch = u32_at(at + 68);
    plane.flag_slice_pitch = u64_at(at + 72);
  }
  return plane;
}

bool add_overflows(uint64_t a, uint64_t b, uint64_t* sum) {
  *sum = a + b;
  return *sum < a;
}

// offset + (slices - 1) * slice_pitch + size against the bound. A sum beyond 64 bits is beyond any.
bool exceeds(uint64_t offset, uint64_t slice_pitch, uint32_t slices, uint64_t size,
             uint64_t bound) {
  const uint64_t steps = slices - 1;
  uint64_t end = offset;
  if (steps != 0 && slice_pitch > UINT64_MAX / steps) return true;
  if (add_overflows(end, steps * slice_pitch, &end)) return true;
  if (add_overflows(end, size, &end)) return true;
  return end > bound;
}

uint32_t check_flag_buffer(Process& process, const Whole& whole, uint32_t l, const Level& level,
                           uint32_t p, const Plane& plane) {
  const char* const function = whole.function;
  if (plane.flag_valid == 0) return 0;
  if (plane.flag_valid != 1) {
    log_message(process, function,
                "Metadata level flagbuffer valid bit invalid {level %u, plane %u, valid %u}", l, p,
                plane.flag_valid);
    return kInvalid;
  }
  if (level.tiled == 0) {
    log_message(process, function,
                "Metadata level flagbuffer enabled but tiling is disabled {level %u, plane %u}", l,
                p);
    return kInvalid;
  }
  if (exceeds(plane.flag_offset, plane.flag_slice_pitch, level.slices, plane.flag_size,
              whole.surface_size)) {
    log_message(process, function,
                "Metadata level flagbuffer buffer exceeds surface bounds {level %u, plane %u, flag "
                "offset %llu, flag slice pitch %llu, slices %u, flag size %llu, surface size %llu}",
                l, p, wide(plane.flag_offset), wide(plane.flag_slice_pitch), level.slices,
                wide(plane.flag_size), wide(whole.surface_size));
    return kInvalid;
  }
  if (plane.flag_pitch == 0 || plane.flag_pitch > plane.flag_slice_pitch) {
    log_message(process, function,
                "Metadata level flagbuffer pitch mismatch {level %u, plane %u, flag pitch %u, flag "
                "slice pitch %llu}",
                l, p, plane.flag_pitch, wide(plane.flag_slice_pitch));
    return kInvalid;
  }
  if (plane.flag_slice_pitch < plane.flag_size) {
    log_message(process, function,
                "Metadata level flagbuffer slice pitch mismatch {level %u, plane %u, flag slice "
                "pitch %llu, flag size %llu}",
                l, p, wide(plane.flag_slice_pitch), wide(plane.flag_size));
    return kInvalid;
  }
  return 0;
}

// The size and shape of an image that records its allocated size only.
uint32_t check_resource_image(Process& process, const char* function, uint32_t l, uint32_t p,
                              const Plane& plane) {
  if (plane.image_size < plane.image_pitch * plane.image_height ||
      plane.image_size > plane.image_slice_pitch) {
    log_message(process, function,
                "Metadata level image size mismatch {level %u, plane %u, image size %llu, image "
                "pitch %u, image height %u, image slice pitch %llu}",
                l, p, wide(plane.image_size), plane.image_pitch, plane.image_height,
                wide(plane.image_slice_pitch));
    return kInvalid;
  }
  if (plane.image_pitch < plane.image_element_size * plane.image_width) {
    log_message(process, function,
                "Metadata level image pitch mismatch {level %u, plane %u, image pitch %u, image "
                "width %u, image element size %u}",
                l, p, plane.image_pitch, plane.image_width, plane.image_element_size);
    return kInvalid;
  }
  if (plane.image_width == 0 || plane.image_height == 0 || plane.image_element_size == 0) {
    log_message(process, function,
                "Metadata level image invalid dimensions {level %u, plane %u, image width %u, "
                "image height %u, image element size %u}",
                l, p, plane.image_width, plane.image_height, plane.image_element_size);
    return kInvalid;
  }
  return 0;
}

// The same for one that records the image's own size beside it.
uint32_t check_surface_image(Process& process, const char* function, uint32_t l, uint32_t p,
                             const Plane& plane) {
  if (plane.image_size < plane.image_pitch * plane.actual_height ||
      plane.image_size > plane.image_slice_pitch) {
    log_message(process, function,
                "Metadata level image size mismatch {level %u, plane %u, image size %llu, image "
                "pitch %u, actual height %u, image slice pitch %llu}",
                l, p, wide(plane.image_size), plane.image_pitch, plane.actual_height,
                wide(plane.image_slice_pitch));
    return kInvalid;
  }
  if (plane.image_pitch < plane.image_element_size * plane.actual_width) {
    log_message(process, function,
                "Metadata level image pitch mismatch {level %u, plane %u, image pitch %u, actual "
                "width %u, image element size %u}",
                l, p, plane.image_pitch, plane.actual_width, plane.image_element_size);
    return kInvalid;
  }
  if (plane.image_width == 0 || plane.image_height == 0 || plane.actual_width == 0 ||
      plane.actual_height == 0 || plane.image_element_size == 0) {
    log_message(process, function,
                "Metadata level image invalid dimensions {level %u, plane %u, image width %u, "
                "image height %u, actual width %u, actual height %u, image element size %u}",
                l, p, plane.image_width, plane.image_height, plane.actual_width,
                plane.actual_height, plane.image_element_size);
    return kInvalid;
  }
  return 0;
}

uint32_t check_plane(Process& process, const Whole& whole, uint32_t l, const Level& level,
                     uint32_t p, const Plane& plane) {
  if (exceeds(plane.image_offset, plane.image_slice_pitch, level.slices, plane.image_size,
              whole.surface_size)) {
    log_message(process, whole.function,
                "Metadata level image buffer exceeds surface bounds {level %u, plane %u, image "
                "offset %llu, image slice pitch %llu, slices %u, image size %llu, surface size "
                "%llu}",
                l, p, wide(plane.image_offset), wide(plane.image_slice_pitch), level.slices,
                wide(plane.image_size), wide(whole.surface_size));
    return kInvalid;
  }
  if (whole.kind == Kind::resource) {
    if (check_resource_image(process, whole.function, l, p, plane) != 0) return kInvalid;
  } else {
    if (check_surface_image(process, whole.function, l, p, plane) != 0) return kInvalid;
  }
  return check_flag_buffer(process, whole, l, level, p, plane);
}

uint32_t check_lrz(Process& process, const Whole& whole, uint32_t l, const Level& level) {
  const char* const function = whole.function;
  if (level.lrz_valid == 1) {
    if (exceeds(level.lrz_offset, level.lrz_slice_pitch, level.slices, level.lrz_size,
                whole.surface_size)) {
      log_message(process, function,
                  "Metadata level lrz buffer exceeds surface bounds {level %u, lrz offset %llu, "
                  "lrz slice pitch %llu, slices %u, lrz size %llu, surface size %llu}",
                  l, wide(level.lrz_offset), wide(level.lrz_slice_pitch), level.slices,
                  wide(level.lrz_size), wide(whole.surface_size));
      return kInvalid;
    }
    if (level.lrz_size < level.lrz_pitch * level.lrz_height ||
        level.lrz_size > level.lrz_slice_pitch) {
      log_message(process, function,
                  "Metadata level lrz size mismatch {level %u, lrz size %llu, lrz pitch %u, lrz "
                  "height %u, lrz slice pitch %llu}",
                  l, wide(level.lrz_size), level.lrz_pitch, level.lrz_height,
                  wide(level.lrz_slice_pitch));
      return kInvalid;
    }
    if (level.lrz_pitch < level.lrz_width) {
      log_message(process, function,
                  "Metadata level lrz pitch mismatch {level %u, lrz pitch %u, lrz width %u}", l,
                  level.lrz_pitch, level.lrz_width);
      return kInvalid;
    }
    if (level.lrz_width == 0 || level.lrz_height == 0) {
      log_message(process, function,
                  "Metadata level lrz dimensions are invalid {level %u, lrz width %u, lrz height "
                  "%u}",
                  l, level.lrz_width, level.lrz_height);
      return kInvalid;
    }
  }
  if (level.lrz_fc_valid == 1 &&
      exceeds(level.lrz_fc_offset, 0, 1, level.lrz_fc_size, whole.surface_size)) {
    log_message(process, function,
                "Metadata level lrz fc buffer exceeds surface bounds {level %u, lrz fc offset "
                "%llu, lrz fc size %llu, surface size %llu}",
                l, wide(level.lrz_fc_offset), wide(level.lrz_fc_size), wide(whole.surface_size));
    return kInvalid;
  }
  return 0;
}

uint32_t check_level_fields(Process& process, const Whole& whole, uint32_t l, const Level& level) {
  const char* const function = whole.function;
  if (level.size == 0 || level.size > whole.total_size) {
    log_message(process, function,
                "Metadata level size is invalid value {level %u, size %llu, surface size %llu}", l,
                wide(level.size), wide(whole.total_size));
    return kInvalid;
  }
  if (level.slices < 1 || level.slices > 2048) {
    log_message(process, function, "Metadata level slices is invalid value {level %u, slices %u}",
                l, level.slices);
    return kInvalid;
  }
  if (level.tiled > 1) {
    log_message(process, function, "Metadata level tiled is invalid value {level %u, tiled %u}", l,
                level.tiled);
    return kInvalid;
  }
  if (level.planes < 1 || level.planes > 3) {
    log_message(process, function, "Metadata level planes is invalid value {level %u, planes %u}",
                l, level.planes);
    return kInvalid;
  }
  if (level.lrz_valid > 1) {
    log_message(process, function,
                "Metadata level lrz valid bit is invalid value {level %u, lrz valid %u}", l,
                level.lrz_valid);
    return kInvalid;
  }
  if (level.lrz_fc_valid > 1) {
    log_message(process, function,
                "Metadata level lrz fc valid bit is invalid value {level %u, lrz fc valid %u}", l,
                level.lrz_fc_valid);
    return kInvalid;
  }
  if (level.lrz_valid != level.lrz_fc_valid) {
    log_message(process, function,
                "Metadata level lrz valid bits mismatch {level %u, lrz valid %u, lrz fc valid %u}",
                l, level.lrz_valid, level.lrz_fc_valid);
    return kInvalid;
  }
  return 0;
}

uint32_t check_levels(Process& process, const Whole& whole, const uint8_t* record) {
  const char* const function = whole.function;
  uint32_t tracked_tiled = 0;
  uint32_t tracked_lrz = 0;
  for (uint32_t l = 0; l < whole.levels; ++l) {
    const uint8_t* const at = level_bytes(whole.kind, record, l);
    const Level level = read_level(whole.kind, at);
    if (check_level_fields(process, whole, l, level) != 0) return kInvalid;

    if (l == 0) {
      tracked_tiled = level.tiled;
      tracked_lrz = level.lrz_valid;
    } else {
      if (level.tiled != tracked_tiled) {
        if (tracked_tiled == 0) {
          log_message(process, function,
                      "Metadata level tiled bit transitioned from untiled to tiled %u", l);
          return kInvalid;
        }
        tracked_tiled = 0;
        if (whole.linear_fallback == 0) {
          log_message(process, function,
                      "Metadata level has linear fallback but didnt enable bit in struct %u", l);
          return kInvalid;
        }
      }
      if (level.lrz_valid != tracked_lrz) {
        log_message(process, function,
                    "Metadata lrz buffer is present for some levels but not for others %u", l);
        return kInvalid;
      }
    }

    if (check_lrz(process, whole, l, level) != 0) return kInvalid;
    for (uint32_t p = 0; p < level.planes; ++p) {
      const Plane plane = read_plane(whole.kind, plane_bytes(whole.kind, at, p));
      if (check_plane(process, whole, l, level, p, plane) != 0) return kInvalid;
    }
  }
  return 0;
}

// Samples, levels and format, alike in both kinds of record.
uint32_t check_counts_and_format(Process& process, const char* function, uint32_t samples,
                                 uint32_t levels, uint32_t format) {
  if (samples != 1 && samples != 2 && samples != 4 && samples != 8) {
    log_message(process, function, "Metadata samples invalid count %u", samples);
    return kInvalid;
  }
  if (levels == 0 || levels > 15) {
    log_message(process, function, "Metadata levels is invalid value %u", levels);
    return kInvalid;
  }
  if (!has_record(format) || element_bytes(format) == 0) {
    log_message(process, function, "Metadata format is not recognized %u", format);
    return kInvalid;
  }
  return 0;
}

// 64 bytes for each text, as the messages are built on.
struct UuidTexts {
  char stored[64] = "";
  char given[64] = "";

  UuidTexts(Process& process, const uint8_t* stored_uuid, const uint8_t* given_uuid) {
    call_snprintf_uuid(process, stored, sizeof(stored), stored_uuid);
    call_snprintf_uuid(process, given, sizeof(given), given_uuid);
  }
};

}  // namespace

uint32_t validate_resource_memory_layout_metadata(Process& process, const void* record,
                                                  const uint8_t* device_uuid,
                                                  const uint8_t* driver_uuid) {
  const char* const function = "validate_resource_memory_layout_metadata";
  const uint8_t* const at = static_cast<const uint8_t*>(record);

  const uint32_t signature = u32_at(at + 0);
  if (signature != 0xDA7ACA5E) {
    log_message(process, function, "Metadata has bad signature %u", signature);
    return kInvalid;
  }
  if (std::memcmp(at + 8, device_uuid, 16) != 0) {
    const UuidTexts texts(process, at + 8, device_uuid);
    log_message(process, function,
                "Metadata device version mismatch {store uuid %s, struct uuid %s}", texts.stored,
                texts.given);
    return kInvalid;
  }
  if (u32_at(at + 24 + 4) != u32_at(driver_uuid + 4)) {
    const UuidTexts texts(process, at + 24, driver_uuid);
    log_message(process, function,
                "Metadata driver version mismatch {store uuid %s, struct uuid %s}", texts.stored,
                texts.given);
    return kInvalid;
  }

  const uint32_t layout_version = u32_at(at + 24 + 8);
  uint32_t expected_size = 0;
  int32_t version = 0;
  if (layout_version == u32_at(driver_uuid + 8)) {
    expected_size = 5512;
    version = 3;
  } else if (layout_version == 1) {
    expected_size = 5472;
    version = 1;
  } else if (layout_version == 2) {
    expected_size = 5504;
    version = 2;
  } else if (layout_version == 3) {
    expected_size = 5512;
    version = 3;
  } else {
    const UuidTexts texts(process, at + 24, driver_uuid);
    log_message(process, function,
                "Metadata memory layout version mismatch {store uuid %s, struct uuid %s}",
                texts.stored, texts.given);
    return kInvalid;
  }

  const uint32_t size = u32_at(at + 4);
  if (size != expected_size) {
    log_message(process, function,
                "Size of metadata is mismatched {stored size %u, struct size: %u, version: %d }",
                size, expected_size, version);
    return kInvalid;
  }

  const uint64_t total_size = u64_at(at + 40);
  const uint32_t surface_size_32 = static_cast<uint32_t>((total_size - expected_size) & 0xFFFFFFFF);
  uint64_t surface_size = surface_size_32;
  if (surface_size_32 >= 0x80000000) {
    surface_size += 0xFFFFFFFF00000000;
  }

  const uint32_t alignment = u32_at(at + 48);
  if (alignment == 0 || !is_power_of_two(alignment)) {
    log_message(process, function, "Metadata alignment is not pot %u", alignment);
    return kInvalid;
  }
  if (total_size == 0 || surface_size_32 % alignment != 0) {
    log_message(process, function, "Metadata surface size is not aligned {size %llu, alignment %u}",
                wide(total_size), alignment);
    return kInvalid;
  }
  const uint32_t levels = u32_at(at + 68);
  if (check_counts_and_format(process, function, u32_at(at + 56), levels, u32_at(at + 52)) != 0) {
    return kInvalid;
  }
  const Whole whole = {Kind::resource, function, total_size, surface_size, u32_at(at + 64), levels};
  return check_levels(process, whole, at);
}

uint32_t validate_surface_metadata(Process& process, const void* record, const uint8_t* device_uuid,
                                   const uint8_t* driver_uuid) {
  const char* const function = "validate_surface_metadata";
  const uint8_t* const at = static_cast<const uint8_t*>(record);

  const uint32_t signature = u32_at(at + 5296);
  if (signature != 0xDE5CDA7A) {
    log_message(process, function, "Metadata has bad signature %u", signature);
    return kInvalid;
  }
  const uint32_t size = u32_at(at + 5292);
  if (size != 5300) {
    log_message(process, function,
                "Size of metadata is mismatched {stored size %u, struct size %u}", size, 5300u);
    return kInvalid;
  }
  if (std::memcmp(at + 5260, device_uuid, 16) != 0) {
    const UuidTexts texts(process, at + 5260, device_uuid);
    log_message(process, function,
                "Metadata device version mismatch {store uuid %s, struct uuid %s}", texts.stored,
                texts.given);
    return kInvalid;
  }
  if (u32_at(at + 5276) != u32_at(driver_uuid)) {
    const UuidTexts texts(process, at + 5276, driver_uuid);
    log_message(process, function,
                "Metadata driver version mismatch {store uuid %s, struct uuid %s}", texts.stored,
                texts.given);
    return kInvalid;
  }
  if (u64_at(at + 0) == 0) {
    log_message(process, function, "Metadata guid has invalid value %u", 0u);
    return kInvalid;
  }
  const uint32_t alignment = u32_at(at + 16);
  if (alignment == 0 || !is_power_of_two(alignment)) {
    log_message(process, function, "Metadata alignment is not pot %u", alignment);
    return kInvalid;
  }
  const uint64_t total_size = u64_at(at + 8);
  const uint64_t surface_size = total_size - 5300;
  if (total_size == 0 || surface_size % alignment != 0) {
    log_message(process, function, "Metadata surface size is not aligned {size %llu, alignment %u}",
                wide(total_size), alignment);
    return kInvalid;
  }
  const uint32_t levels = u32_at(at + 36);
  if (check_counts_and_format(process, function, u32_at(at + 24), levels, u32_at(at + 20)) != 0) {
    return kInvalid;
  }
  const Whole whole = {Kind::surface, function, total_size, surface_size, u32_at(at + 32), levels};
  return check_levels(process, whole, at);
}

}  // namespace reference
