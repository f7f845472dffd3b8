// compute_compressedfmt_aligned_width_and_height
#include <array>
#include <cstdio>
#include <utility>

#include "fuzz/broken_property.h"
#include "fuzz/drawn_arguments.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/machine.h"
#include "tests/reference/rules.h"

namespace {

struct Arguments {
  int32_t width;
  int32_t height;
  uint32_t format;
  uint64_t ignored;
  uint32_t null_outputs;  // a bit for each output
};

void print_case(const Arguments& a) {
  std::fprintf(stderr, "width %d, height %d, format %u, null outputs %u\n", a.width, a.height,
               a.format, a.null_outputs);
}

struct Outputs {
  std::array<uint32_t, 3> words = {0xCCCCCCCC, 0xCCCCCCCC, 0xCCCCCCCC};
  uint32_t* at(uint32_t i, const Arguments& a) {
    return (a.null_outputs & (1U << i)) != 0 ? nullptr : &words[i];
  }
  bool operator==(const Outputs&) const = default;
};

Arguments draw_arguments(fuzz::InputBytes& input) {
  Arguments a{};
  a.format = fuzz::draw_format(input);
  a.width = fuzz::draw_size(input);
  a.height = fuzz::draw_size(input);
  // Outputs are stored to without a look at the pointers when a size is negative.
  const uint8_t nulls = input.u8();
  if (a.width >= 0 && a.height >= 0 && nulls >= 0xC0) a.null_outputs = nulls % 8;
  a.ignored = input.u64();
  return a;
}

// Both sides write to one place, whose address a message may tell.
bool align(fuzz::Machine& machine, const Arguments& a, Outputs& outputs) {
  const fuzz::CaseAtHand at_hand(a);
  const Outputs preset = outputs;
  Outputs expected;
  const bool answers = fuzz::both_answer(
      machine,
      [&] {
        reference::compute_compressedfmt_aligned_width_and_height(
            machine.process, a.width, a.height, a.format, a.ignored, a.ignored, a.ignored,
            outputs.at(0, a), outputs.at(1, a), outputs.at(2, a));
        expected = std::exchange(outputs, preset);
      },
      [&] {
        machine.library.compute_compressedfmt_aligned_width_and_height(
            a.width, a.height, a.format, a.ignored, a.ignored, a.ignored, outputs.at(0, a),
            outputs.at(1, a), outputs.at(2, a));
      });
  if (answers) REQUIRE(outputs == expected);
  return answers;
}

bool has_blocks(const Arguments& a) {
  return a.width >= 0 && a.height >= 0 && a.null_outputs == 0 &&
         reference::has_flag(a.format, reference::kFlagBlockCompressed);
}

// The signed rounding wraps for sizes within a block, and a width alignment, of the largest.
bool wraps(const Arguments& a) {
  constexpr int32_t kLargest = INT32_MAX - 1024;
  return a.width > kLargest || a.height > kLargest;
}

// The blocks hold all texels.
void require_enough_blocks(const Arguments& a, const Outputs& blocks) {
  const reference::Dimensions block = reference::format_block_dims(a.format);
  REQUIRE(uint64_t{blocks.words[0]} * block.width >= static_cast<uint64_t>(a.width));
  REQUIRE(uint64_t{blocks.words[1]} * block.height >= static_cast<uint64_t>(a.height));
  REQUIRE(blocks.words[2] == 8 || blocks.words[2] == 16);
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  fuzz::InputBytes input(data, size);
  fuzz::Machine& machine = fuzz::draw_machine(input);
  const Arguments a = draw_arguments(input);
  Outputs blocks;
  if (!align(machine, a, blocks) || !has_blocks(a) || wraps(a)) return 0;
  const fuzz::CaseAtHand at_hand(a);
  require_enough_blocks(a, blocks);

  Arguments larger = a;
  larger.width += input.u8();
  larger.height += input.u8();
  Outputs larger_blocks;
  if (wraps(larger) || !align(machine, larger, larger_blocks)) return 0;
  REQUIRE(blocks.words[0] <= larger_blocks.words[0]);
  REQUIRE(blocks.words[1] <= larger_blocks.words[1]);
  return 0;
}
