// korvel_init_memory_layout
#include <cstring>

#include "fuzz/fuzz_target.h"
#include "fuzz/laid_out_surface.h"

namespace {

using fuzz::Machine;
using fuzz::SurfaceArguments;

void require_header(const MetadataHeader& header) {
  REQUIRE(header.magic == KORVEL_HEADER_MAGIC);
  REQUIRE(header.header_version == KORVEL_HEADER_VERSION);
  REQUIRE(header.blob_size == KORVEL_BLOB_BYTES);
  REQUIRE(header.record_kind == KORVEL_HEADER_RECORD_KIND);
  REQUIRE(header.record_offset == sizeof header);
  REQUIRE(header.record_size == KORVEL_LAYOUT_BYTES_VERSION_3);
}

bool has_same_bytes(const LayoutMetadata& a, const LayoutMetadata& b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  fuzz::InputBytes input(data, size);
  Machine& machine = fuzz::draw_machine(input);
  const SurfaceArguments a = fuzz::draw_surface_arguments(input);
  const fuzz::CaseAtHand at_hand(a);

  LayoutMetadata before;
  std::memset(&before, input.u8(), sizeof before);
  LayoutMetadata expected = before;
  LayoutMetadata actual = before;
  uint32_t expected_result = 0;
  uint32_t result = 0;
  if (!fuzz::both_answer(
          machine,
          [&] {
            expected_result = reference::korvel_init_memory_layout(
                machine.process, &expected, a.width, a.height, a.depth, a.format, a.samples,
                a.tiling_mode, a.flags, a.planes);
          },
          [&] {
            result = machine.library.korvel_init_memory_layout(&actual, a.width, a.height, a.depth,
                                                               a.format, a.samples, a.tiling_mode,
                                                               a.flags, a.planes);
          })) {
    return 0;
  }
  REQUIRE(result == expected_result);
  REQUIRE(has_same_bytes(actual, expected));
  if (result != KORVEL_SUCCESS) {
    REQUIRE(has_same_bytes(actual, before));
    return 0;
  }
  require_header(actual.header);
  REQUIRE(machine.library.korvel_get_aligned_gpu_buffer_size(&actual) ==
          actual.layout.total_size - actual.layout.size);
  const fuzz::LaidOutSurface surface = {actual.layout, a, machine.process.chip,
                                        fuzz::Slices::of_one_plane};
  fuzz::require_apart_and_inside(surface);
  fuzz::require_valid(machine, surface);
  fuzz::forget_messages(machine);
  return 0;
}
