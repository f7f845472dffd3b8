// compute_fmt_aligned_width_and_height_in_bytes
#include "fuzz/alignment_property.h"
#include "fuzz/fuzz_target.h"
#include "tests/reference/rules.h"

namespace {

using fuzz::AlignedExtent;
using fuzz::AlignmentArguments;

struct InBytes {
  uint32_t tiling_mode = 0;
  uint32_t aligned_row_bytes = 0xCCCCCCCC;
  uint32_t minimal_row_bytes = 0xCCCCCCCC;
  uint32_t aligned_height = 0xCCCCCCCC;
  bool operator==(const InBytes&) const = default;
};

template <typename Entry>
void align_in_bytes(const AlignmentArguments& a, InBytes& out, Entry entry) {
  out.tiling_mode = a.tiling_mode;
  const AlignInBytesParams params = {
      a.width,         a.height, a.plane, a.format, a.samples, a.selector, a.min_padded_row_bytes,
      &out.tiling_mode};
  const AlignInBytesResult result = {&out.aligned_row_bytes, &out.minimal_row_bytes,
                                     &out.aligned_height};
  entry(&params, &result);
}

// A surface of at least 16 blocks a row, and every surface on a chip without rules, stays as it is.
void require_tiling_mode(const reference::Process& process, const AlignmentArguments& a,
                         uint32_t tiling_mode) {
  const bool in_blocks = reference::has_flag(a.format, reference::kFlagBlockCompressed);
  const uint32_t block = in_blocks ? reference::format_block_dims(a.format).width : 1;
  const bool narrow = int64_t{a.width} < 16 * int64_t{block};
  const bool changes = narrow && reference::is_supported_chip(process);
  REQUIRE(tiling_mode == (changes ? KORVEL_TILING_LINEAR : a.tiling_mode));
}

// The answer is the full alignment in the tiling mode that is left, in bytes.
void require_full_alignment(const fuzz::Machine& machine, const AlignmentArguments& a,
                            const InBytes& in_bytes) {
  AlignedExtent full;
  const bool faulted = fuzz::ends_in_division_fault([&] {
    machine.library.compute_fmt_aligned_width_and_height(
        a.width, a.height, a.plane, a.format, a.samples, in_bytes.tiling_mode, a.selector,
        a.min_padded_row_bytes, &full.width, &full.height);
  });
  REQUIRE(!faulted);
  uint32_t element = reference::element_bytes(reference::npot_substitute_format(a.format));
  if (in_bytes.tiling_mode == KORVEL_TILING_TILED) element *= a.samples;
  REQUIRE(in_bytes.aligned_row_bytes == element * full.width);
  REQUIRE(in_bytes.aligned_height == full.height);
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  fuzz::InputBytes input(data, size);
  fuzz::Machine& machine = fuzz::draw_machine(input);
  const AlignmentArguments arguments = fuzz::draw_alignment_arguments(input);
  const fuzz::CaseAtHand at_hand(arguments);
  InBytes expected;
  InBytes actual;
  const bool answers = fuzz::both_answer(
      machine,
      [&] {
        align_in_bytes(arguments, expected, [&](const auto* params, const auto* result) {
          reference::compute_fmt_aligned_width_and_height_in_bytes(machine.process, params, result);
        });
      },
      [&] {
        align_in_bytes(arguments, actual,
                       machine.library.compute_fmt_aligned_width_and_height_in_bytes);
      });
  if (!answers) return 0;
  REQUIRE(actual == expected);
  require_tiling_mode(machine.process, arguments, actual.tiling_mode);
  require_full_alignment(machine, arguments, actual);
  fuzz::forget_messages(machine);
  return 0;
}
