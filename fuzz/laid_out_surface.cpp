#include "fuzz/laid_out_surface.h"

#include <bit>
#include <cstddef>
#include <span>

#include "fuzz/broken_property.h"
#include "fuzz/exact.h"
#include "tests/reference/rules.h"

namespace fuzz {
namespace {

// Images and flag buffers of all planes of all levels, and the extra buffer.
constexpr std::size_t kMostBuffers = 2 * KORVEL_MAX_LEVELS * KORVEL_MAX_PLANES + 1;

class Buffers {
 public:
  void add(const StoredBuffer& buffer) { buffers_[count_++] = buffer; }
  [[nodiscard]] std::span<const StoredBuffer> all() const { return {buffers_, count_}; }

 private:
  StoredBuffer buffers_[kMostBuffers];
  std::size_t count_ = 0;
};

bool is_tiled(const LaidOutSurface& surface) {
  return surface.arguments.tiling_mode == KORVEL_TILING_TILED;
}

// A mip chain of a single linear plane has flag buffers without a place: their offsets stay what
// the caller's record held.
bool flag_buffers_have_places(const LaidOutSurface& surface) {
  return surface.slices == Slices::of_one_plane || surface.arguments.planes >= 2 ||
         is_tiled(surface);
}

uint32_t slices_apart(const LaidOutSurface& surface) {
  const bool several = surface.record.levels * surface.arguments.planes > 1;
  if (several && surface.slices == Slices::of_one_plane) return 1;
  return static_cast<uint32_t>(surface.arguments.depth);
}

Buffers buffers_of(const LaidOutSurface& surface, uint32_t slices) {
  Buffers buffers;
  for (uint32_t l = 0; l < surface.record.levels; ++l) {
    for (uint32_t p = 0; p < surface.arguments.planes; ++p) {
      const PlaneLayout& plane = surface.record.level[l].plane[p];
      buffers.add({plane.image_offset, plane.image_size, plane.image_slice_pitch, slices});
      if (plane.flag_valid == 1 && flag_buffers_have_places(surface)) {
        buffers.add({plane.flag_offset, plane.flag_size, plane.flag_slice_pitch, slices});
      }
    }
  }
  if (surface.record.extra_valid == 1) {
    buffers.add({surface.record.extra_offset, surface.record.extra_size, 0, 1});
  }
  return buffers;
}

// Chips outside these columns place buffers with an alignment of 0: all of them at offset 0.
bool chip_places_buffers(const LaidOutSurface& surface) {
  if (surface.slices == Slices::of_one_plane) return true;  // of 0 bytes at worst
  const reference::ChipFacts& chip = surface.chip;
  return chip.base_alignment && chip.level_offset_alignment && chip.level_size_alignment;
}

bool has_alignment(const LaidOutSurface& surface) {
  return std::has_single_bit(surface.record.alignment);
}

// Bytes of all slices of all planes and of the extra buffer, or more.
Exact most_bytes(const LaidOutSurface& surface) {
  constexpr Exact kChainSteps = 4 * 4096;
  Exact slice = 0;
  for (uint32_t l = 0; l < surface.record.levels; ++l) {
    for (uint32_t p = 0; p < surface.arguments.planes; ++p) {
      const PlaneLayout& plane = surface.record.level[l].plane[p];
      slice += Exact{plane.image_size} + (plane.flag_valid == 1 ? plane.flag_size : 0);
      slice += kChainSteps;
    }
  }
  slice += KORVEL_EXTRA_SLICE_BYTES;
  return slice * static_cast<uint32_t>(surface.arguments.depth) + surface.record.alignment +
         surface.record.size;
}

bool has_room(const LaidOutSurface& surface) {
  constexpr Exact kMost = Exact{1} << 62;
  return surface.arguments.depth >= 1 && most_bytes(surface) < kMost;
}

uint64_t surface_bytes(const LaidOutSurface& surface) {
  return surface.record.total_size - surface.record.size;
}

void require_apart(std::span<const StoredBuffer> buffers) {
  for (std::size_t i = 0; i < buffers.size(); ++i) {
    for (std::size_t k = i + 1; k < buffers.size(); ++k) REQUIRE(!overlap(buffers[i], buffers[k]));
  }
}

// The validator knows sizes up to 2^31 bytes. Layouts beyond wrap at 32 bits, in an image's size or
// in the surface's.
constexpr Exact kLargestValidated = (Exact{1} << 31) - 1;

bool sizes_are_validated(const LaidOutSurface& surface) {
  if (most_bytes(surface) > kLargestValidated) return false;
  for (uint32_t l = 0; l < surface.record.levels; ++l) {
    for (uint32_t p = 0; p < surface.arguments.planes; ++p) {
      const PlaneLayout& plane = surface.record.level[l].plane[p];
      const Exact bytes = Exact{plane.image_element_size} * plane.image_width * plane.image_height;
      if (bytes > kLargestValidated) return false;
    }
  }
  return true;
}

bool has_flag_buffers(const LaidOutSurface& surface) {
  return surface.record.level[0].plane[0].flag_valid == 1;
}

// A width beyond the pitch limit of a model without one is cut to 0.
bool has_empty_rows(const LaidOutSurface& surface) {
  for (uint32_t l = 0; l < surface.record.levels; ++l) {
    for (uint32_t p = 0; p < surface.arguments.planes; ++p) {
      if (surface.record.level[l].plane[p].image_width == 0) return true;
    }
  }
  return false;
}

// Sizes near 2^31 become negative when a chain's width is rounded up or extra rows are added:
// images of one element, beside flag buffers for all 2^31.
bool chain_size_may_turn_negative(const LaidOutSurface& surface) {
  constexpr int32_t kLargest = 1 << 30;
  const SurfaceArguments& a = surface.arguments;
  return surface.slices == Slices::of_whole_chains &&
         (a.width < 0 || a.width > kLargest || a.height < 0 || a.height > kLargest);
}

// Family 5 counts tiled rows in bytes, which wrap: images narrower than the surface, beside flag
// buffers for all of it.
bool chain_rows_may_wrap(const LaidOutSurface& surface) {
  constexpr Exact kRowStep = 64;  // elements that a width may be rounded up by
  const Exact width = Exact{static_cast<uint32_t>(surface.arguments.width)} + kRowStep;
  const Exact element_bytes = surface.record.level[0].plane[0].image_element_size;
  return surface.slices == Slices::of_whole_chains && is_tiled(surface) &&
         surface.chip.family_id == 5 && width * element_bytes > Exact{UINT32_MAX};
}

// The writers describe more than the validator accepts. These are the layouts that it refuses.
bool validator_refuses(const LaidOutSurface& surface) {
  const SurfaceArguments& a = surface.arguments;
  const reference::ChipFacts& chip = surface.chip;
  if (a.tiling_mode > KORVEL_TILING_TILED) return true;
  if (!is_tiled(surface) && has_flag_buffers(surface)) return true;
  if (a.depth > KORVEL_MAX_SLICES || a.planes == 0) return true;
  if (!chip.base_alignment || !chip.linear_alignment || !chip_places_buffers(surface)) return true;
  if (chain_size_may_turn_negative(surface) || chain_rows_may_wrap(surface)) return true;
  return has_empty_rows(surface) || !sizes_are_validated(surface);
}

// Header words that the caller of the surface entries chose.
bool header_is_valid(const LaidOutSurface& surface) {
  const MemoryLayout& record = surface.record;
  const bool samples = std::has_single_bit(record.samples) && record.samples <= 8;
  return record.size == KORVEL_LAYOUT_BYTES_VERSION_3 && has_alignment(surface) && samples &&
         record.levels >= 1 && record.levels <= KORVEL_MAX_LEVELS &&
         reference::has_record(record.format);
}

}  // namespace

void require_apart_and_inside(const LaidOutSurface& surface) {
  if (!has_room(surface) || !has_alignment(surface) || !chip_places_buffers(surface)) return;
  require_apart(buffers_of(surface, slices_apart(surface)).all());
  const auto depth = static_cast<uint32_t>(surface.arguments.depth);
  const Buffers all_slices = buffers_of(surface, depth);
  for (const StoredBuffer& buffer : all_slices.all()) {
    REQUIRE(end_of(buffer) <= surface_bytes(surface));
  }
}

void require_valid(Machine& machine, const LaidOutSurface& surface) {
  if (!header_is_valid(surface) || !has_room(surface) || validator_refuses(surface)) return;
  const reference::Identity& identity = machine.process.identity;
  uint8_t device[KORVEL_UUID_BYTES];
  uint8_t driver[KORVEL_UUID_BYTES];
  REQUIRE(machine.library.get_device_uuid(device, KORVEL_UUID_BYTES, identity.family_id,
                                          identity.model_code, identity.rev_id) == 0);
  REQUIRE(machine.library.get_driver_uuid(driver, KORVEL_UUID_BYTES) == 0);
  REQUIRE(machine.library.validate_resource_memory_layout_metadata(&surface.record, device,
                                                                   driver) == KORVEL_SUCCESS);
}

}  // namespace fuzz
