// Where the bytes of a surface go: its texels, its flag buffers, and the rest, which is padding.
#pragma once

#include <cstdint>
#include <optional>

#include <korvel_utils.h>
#include "tools/request/surface_request.h"

namespace tool {

// How much smaller than the surface the planes behind the first are. Of video formats with a name.
struct ChromaSteps {
  uint32_t width_texels = 1;  // of the surface, to one element
  uint32_t height_texels = 1;
};
ChromaSteps chroma_steps(uint32_t format);

// The bytes that the texels take without any padding: all levels, slices, samples and planes, each
// started block whole.
uint64_t payload_bytes(const SurfaceRequest& request);

struct SurfaceCost {
  uint64_t bytes = 0;          // of the GPU allocation
  uint64_t payload_bytes = 0;  // of its texels
  uint64_t flag_bytes = 0;     // of all flag buffers
  uint64_t extra_bytes = 0;    // of the extra buffer

  // Beside the payload; below 0 where the numbers of the allocation wrapped.
  [[nodiscard]] int64_t over_payload_bytes() const {
    return static_cast<int64_t>(bytes - payload_bytes);
  }
  // Beside payload, flag buffers and extra buffer.
  [[nodiscard]] int64_t padding_bytes() const {
    return over_payload_bytes() - static_cast<int64_t>(flag_bytes + extra_bytes);
  }
  // Of the allocation; none for one of 0 bytes, whose numbers wrapped.
  [[nodiscard]] std::optional<double> padding_per_cent() const;
};

SurfaceCost surface_cost(const SurfaceRequest& request, const MemoryLayout& record);

}  // namespace tool
