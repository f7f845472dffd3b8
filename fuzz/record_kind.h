// The two kinds of stored record, as the validators' targets see them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include <korvel_utils.h>
#include "fuzz/machine.h"

namespace fuzz {

// The UUIDs of the machine that validates.
struct MachineUuids {
  uint8_t device[KORVEL_UUID_BYTES];
  uint8_t driver[KORVEL_UUID_BYTES];
};

const MachineUuids& usual_uuids();

struct ResourceKind {
  using Record = MemoryLayout;
  using Level = LevelLayout;
  using Plane = PlaneLayout;
  static constexpr uint32_t kSignature = KORVEL_LAYOUT_SIGNATURE;
  static constexpr uint32_t kBytes = KORVEL_LAYOUT_BYTES_VERSION_3;

  // What the validator may read of a record: a version ends where its size says.
  static std::size_t readable_bytes(std::span<const uint8_t> record);
  static uint32_t validate(const harness::Library& library, const void* record);
  static uint32_t rules(reference::Process& process, const void* record);
  // What its bound checks take for the surface's bytes.
  static uint64_t bound(const Record& record);
  static bool bound_is_exact(uint64_t bound) { return bound < (uint64_t{1} << 31); }
};

struct SurfaceKind {
  using Record = SurfaceMetadata;
  using Level = SurfaceLevel;
  using Plane = SurfacePlane;
  static constexpr uint32_t kSignature = KORVEL_SURFACE_SIGNATURE;
  static constexpr uint32_t kBytes = KORVEL_SURFACE_BYTES;

  static std::size_t readable_bytes(std::span<const uint8_t>) { return kBytes; }
  static uint32_t validate(const harness::Library& library, const void* record);
  static uint32_t rules(reference::Process& process, const void* record);
  static uint64_t bound(const Record& record) { return record.total_size - kBytes; }
  static bool bound_is_exact(uint64_t) { return true; }
};

}  // namespace fuzz
