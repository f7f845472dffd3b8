#include "tools/explanation/explain_surface.h"

#include <fmt/core.h>

#include "layout/chain_bytes.h"
#include "layout/surface.h"
#include "tools/explanation/explain_chain.h"
#include "tools/explanation/explain_plane.h"
#include "tools/explanation/step_writer.h"
#include "tools/request/counted.h"

namespace tool {
namespace {

Number explain_surface_alignment(StepWriter& steps, const korvel::Surface& surface) {
  const korvel::AlignmentRequest& alignment = surface.alignment;
  const korvel::FormatTraits& format = alignment.format;
  const uint32_t bytes = korvel::surface_alignment_bytes(surface.chip, format, alignment.samples,
                                                         alignment.tiling_mode);
  if (korvel::is_tiled(alignment)) {
    return steps.add({.subject = "alignment",
                      .after = quantity(bytes, Unit::bytes),
                      .rule = "the chip's tiled_alignment",
                      .fact = "tiled",
                      .field = "alignment"},
                     {{quantity(bytes, Unit::bytes), {}}});
  }
  const uint32_t element_bytes = format.substitute_bytes * alignment.samples;
  return steps.add_rounded(
      {.subject = "alignment",
       .after = quantity(bytes, Unit::bytes),
       .rule = fmt::format("whole multiples of {}, the chip's pixel_alignment as bytes",
                           counted(surface.chip.properties.pixel_alignment, "byte")),
       .fact = fmt::format("linear, {}", element_text(format.substitute_bytes, alignment.samples)),
       .field = "alignment"},
      {{quantity(element_bytes, Unit::bytes), {}}});
}

// Returns where the surface ends.
Number explain_extra_buffer(StepWriter& steps, const korvel::Surface& surface, const Number& end) {
  if (!surface.extra_buffer) return end;
  const Number offset = steps.add({.subject = "extra buffer offset",
                                   .after = end.quantity,
                                   .rule = "the extra buffer follows all planes",
                                   .fact = "it is asked for",
                                   .field = "extra_offset"},
                                  {end});
  const Number slice = steps.add({.subject = "extra slice pitch",
                                  .after = quantity(KORVEL_EXTRA_SLICE_BYTES, Unit::bytes),
                                  .rule = "it is the same for every surface",
                                  .fact = "one slice of the extra buffer",
                                  .field = "extra_slice_pitch"},
                                 {{quantity(KORVEL_EXTRA_SLICE_BYTES, Unit::bytes), {}}});
  const uint64_t bytes = korvel::bytes_of_all_slices(surface, KORVEL_EXTRA_SLICE_BYTES);
  const Number size =
      steps.add_long_product({.subject = "extra buffer size",
                              .after = quantity(bytes, Unit::bytes),
                              .rule = "slices x extra slice pitch",
                              .fact = counted(surface.depth, "slice"),
                              .field = "extra_size"},
                             {slice}, slice.u64(), static_cast<uint64_t>(surface.depth));
  return steps.add_rounded({.subject = "surface",
                            .after = quantity(end.u64() + bytes, Unit::bytes),
                            .rule = "the extra buffer belongs to the surface",
                            .fact = fmt::format("an extra buffer of {}", counted(bytes, "byte"))},
                           {offset, size});
}

void explain_total(StepWriter& steps, const Number& end, const Number& alignment) {
  const uint64_t whole_bytes = korvel::whole_surface_bytes(end.u64(), alignment.u32());
  const Number allocation = steps.add_rounded(
      {.subject = "GPU allocation",
       .after = quantity(whole_bytes, Unit::bytes),
       .rule = fmt::format("whole multiples of {}", counted(alignment.u32(), "byte")),
       .fact = "the surface's alignment",
       .field = "gpu_buffer_size"},
      {end, alignment});
  steps.add_rounded({.subject = "total size",
                     .after = quantity(whole_bytes + sizeof(MemoryLayout), Unit::bytes),
                     .rule = "total_size counts the record too",
                     .fact = fmt::format("a record of {} bytes", sizeof(MemoryLayout)),
                     .field = "total_size"},
                    {allocation});
}

// Of one slice of all planes into all slices.
Number explain_slices(StepWriter& steps, const korvel::Surface& surface, const Number& slice) {
  return steps.add_long_product(
      {.subject = "surface",
       .after = quantity(korvel::bytes_of_all_slices(surface, slice.u64()), Unit::bytes),
       .rule = "the surface takes all slices of all planes",
       .fact = counted(surface.depth, "slice")},
      {slice}, slice.u64(), static_cast<uint64_t>(surface.depth));
}

}  // namespace

korvel::Surface described_request(const korvel::ChipRow& chip, const SurfaceRequest& request) {
  const SurfaceSize& asked = request.size;
  const korvel::SignedExtent<korvel::Texels> size =
      request.levels ? korvel::chain_base_size(static_cast<uint32_t>(asked.width),
                                               static_cast<uint32_t>(asked.height))
                     : korvel::SignedExtent<korvel::Texels>{asked.width, asked.height};
  korvel::Surface surface =
      korvel::described_surface(chip, size, asked.depth, request.format, request.samples,
                                request.tiling_mode, request.flags, request.planes);
  if (request.levels) korvel::make_chain_request(surface.alignment, surface.element_bytes);
  return surface;
}

Explanation explain_surface(const korvel::ChipRow& chip, const SurfaceRequest& request) {
  const korvel::Surface surface = described_request(chip, request);
  StepWriter steps;
  Number end;
  if (request.levels) {
    end = explain_chain(steps, surface, request);
    steps.enter({});
  } else {
    const bool flags_asked = (request.flags & LAYOUT_FLAG_UBWC) != 0;
    end = explain_single_level(steps, surface, flags_asked);
    steps.enter({});
    end = explain_slices(steps, surface, end);
  }
  const Number alignment = explain_surface_alignment(steps, surface);
  explain_total(steps, explain_extra_buffer(steps, surface, end), alignment);
  return widths_first(steps.take());
}

}  // namespace tool
