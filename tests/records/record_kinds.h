// The two kinds of stored record: their types, and the words by which each is taken for one.
//
// What stands in this folder depends on the public header alone, so that tests, fuzzers and
// benchmarks share it.
#pragma once

#include <cstdint>

#include <korvel_utils.h>

namespace records {

struct ResourceKind {
  using Record = MemoryLayout;
  using Level = LevelLayout;
  using Plane = PlaneLayout;
  static constexpr uint32_t kSignature = KORVEL_LAYOUT_SIGNATURE;
  static constexpr uint32_t kBytes = KORVEL_LAYOUT_BYTES_VERSION_3;
};

struct SurfaceKind {
  using Record = SurfaceMetadata;
  using Level = SurfaceLevel;
  using Plane = SurfacePlane;
  static constexpr uint32_t kSignature = KORVEL_SURFACE_SIGNATURE;
  static constexpr uint32_t kBytes = KORVEL_SURFACE_BYTES;
};

}  // namespace records
