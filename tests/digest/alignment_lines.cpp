// Every alignment entry, on a full chip of each family, on chips that pad otherwise, and on an
// unknown one.

#include "tests/digest/format_groups.h"
#include "tests/digest/line.h"
#include "tests/harness/block_edges.h"
#include "tests/harness/chips.h"
#include "tests/harness/fault_trap.h"

namespace digest {
namespace {

using harness::Gpu;

struct Case {
  int32_t width, height;
  uint32_t plane, format, samples, tiling_mode, tiling_allowed, selector;
  int32_t threshold;
  uint32_t divisor, padding;
};

constexpr int32_t kThresholds[] = {512, 0, -1, 0x7FFFFFFF, 4096};
constexpr uint32_t kDivisors[] = {1, 2, 4, 16, 3};

// Answers of the four entries that align by format. False when one of them ended in the fault.
bool add_answers(Line& line, harness::FaultTrap& trap, const Gpu& gpu, const Case& c) {
  uint32_t words[2] = {};
  bool all_answered = true;
  const auto add = [&](bool answered) {
    all_answered = all_answered && answered;
    line.add(answered ? words[0] | uint64_t{words[1]} << 32 : kFault);
  };
  add(trap.answers([&] {
    gpu->compute_fmt_aligned_width_and_height(c.width, c.height, c.plane, c.format, c.samples,
                                              c.tiling_mode, c.selector, c.threshold, &words[0],
                                              &words[1]);
  }));
  add(trap.answers([&] {
    gpu->compute_fmt_minimal_aligned_width_and_height(
        c.width, c.height, c.plane, c.format, c.samples, c.tiling_mode, c.tiling_allowed,
        c.selector, c.threshold, c.divisor, c.padding, &words[0], &words[1]);
  }));
  add(trap.answers([&] {
    gpu->compute_fmt_aligned_width_and_height_fdm(c.width, c.height, c.plane, c.format, c.samples,
                                                  c.tiling_mode, c.selector, c.threshold, c.divisor,
                                                  c.padding, &words[0], &words[1]);
  }));
  uint32_t tiling_mode = c.tiling_mode;
  uint32_t row_bytes = 0;
  const AlignInBytesParams params = {c.width,   c.height,   c.plane,     c.format,
                                     c.samples, c.selector, c.threshold, &tiling_mode};
  const AlignInBytesResult result = {&words[0], &row_bytes, &words[1]};
  add(trap.answers([&] { gpu->compute_fmt_aligned_width_and_height_in_bytes(&params, &result); }));
  // What a faulting call stored by then is not fixed.
  if (all_answered) line.add(row_bytes | uint64_t{tiling_mode} << 32);
  line.end_case();
  return all_answered;
}

void add_format(Line& line, harness::FaultTrap& trap, const Gpu& gpu, uint32_t format) {
  uint32_t turn = 0;  // gives the arguments that interact with few others each of their values
  for (const uint32_t samples : harness::kSampleEdges) {
    for (const uint32_t tiling_mode : {0U, 1U, 2U}) {
      for (const uint32_t plane : {0U, 1U, 2U, 3U}) {
        for (const int32_t size : harness::kFewSizes) {
          ++turn;
          const uint32_t divisor = turn % 61 == 0 ? 0 : kDivisors[turn / 3 % 5];
          const bool answered =
              add_answers(line, trap, gpu,
                          {size, size, plane, format, samples, tiling_mode, turn % 3, turn % 4,
                           kThresholds[turn % 5], divisor, turn / 2 % 2});
          // Planes without elements fault at every size.
          if (!answered && divisor != 0) break;
        }
      }
    }
  }
}

void add_chip(Lines& lines, const std::string& chip, uint32_t chip_id) {
  Gpu gpu(chip_id);
  harness::FaultTrap trap;
  for (const FormatGroup& group : kFormatGroups) {
    Line line("align by format, " + chip + ", formats " + group.name);
    for (const uint32_t format : formats_of(group)) add_format(line, trap, gpu, format);
    line.add_messages(gpu);
    lines.push_back(line);
  }
}

// Widths and heights where the texels of blocks wrap 32 bits or change their sign, by block height,
// with every number of rows that extra padding can add.
void add_block_wraps(Lines& lines, const std::string& chip, uint32_t chip_id) {
  Gpu gpu(chip_id);
  harness::FaultTrap trap;
  for (const uint32_t block_height : harness::kBlockHeights) {
    Line line("sizes that wrap, " + chip + ", blocks of height " + std::to_string(block_height));
    for (const harness::BlockFormat& block : harness::kBlockFormats) {
      if (block.block_height != block_height) continue;
      for (const uint32_t extra_rows : harness::kExtraRows) {
        for (const int32_t size : harness::block_wrap_edges(block_height, extra_rows)) {
          for (const uint32_t tiling_mode : {0U, 1U}) {
            add_answers(line, trap, gpu,
                        {size, size, 0, block.format, 1, tiling_mode, tiling_mode, 1, 512, 1,
                         extra_rows == 0 ? 0U : 1U});
          }
        }
      }
    }
    line.add_messages(gpu);
    lines.push_back(line);
  }
}

// Every width up to the first repetitions of the padding, at every element size.
void add_pitches(Lines& lines, const std::string& chip, uint32_t chip_id) {
  Gpu gpu(chip_id);
  Line line("pitches, " + chip);
  for (const uint32_t format : {61U, 49U, 28U, 11U, 2U, 508U, 523U, 6U}) {
    for (const uint32_t selector : {1U, 2U}) {
      for (int32_t width = 0; width < 6300; width += 7) {
        uint32_t words[2] = {};
        gpu->compute_fmt_aligned_width_and_height(width, 1, 0, format, 1, 0, selector, 0, &words[0],
                                                  &words[1]);
        line.add(words[0]);
        line.end_case();
      }
    }
  }
  lines.push_back(line);
}

// The extra padding and the pitch limit go by model: every chip, a few formats of each unit.
void add_every_chip(Lines& lines) {
  Line line("align by format, every chip");
  harness::FaultTrap trap;
  for (const korvel::ChipData& chip : korvel::kChipData) {
    Gpu gpu(chip.chip_id);
    for (const uint32_t format : {28U, 71U, 103U, 508U, 615U, 659U, 660U, 710U}) {
      for (const uint32_t tiling_mode : {0U, 1U}) {
        for (const int32_t size : {1, 100, 3000}) {
          add_answers(line, trap, gpu, {size, size, 0, format, 1, tiling_mode, 0, 1, 512, 1, 1});
        }
      }
    }
    line.add_messages(gpu);
  }
  lines.push_back(line);
}

void add_basic(Lines& lines) {
  Line line("align without a format, every chip and an unknown one");
  const auto add = [&line](uint32_t chip_id) {
    Gpu gpu(chip_id);
    for (const int32_t size : {0, 1, 100, -1}) {
      uint32_t words[2] = {7, 7};
      gpu->compute_aligned_width_and_height(size, 100, 1, 2, 3, 4, &words[0], &words[1]);
      line.add(words[0] | uint64_t{words[1]} << 32);
      gpu->compute_aligned_width_and_height(100, size, 1, 2, 3, 4, &words[0], &words[1]);
      line.add(words[0] | uint64_t{words[1]} << 32);
      for (const int32_t mode : {0, 1}) {
        line.add(gpu->compute_surface_padding(size, 5, mode, 6, 7));
      }
      line.end_case();
    }
    line.add_messages(gpu);
  };
  for (const korvel::ChipData& chip : korvel::kChipData) add(chip.chip_id);
  add(harness::kUnknownChip);
  lines.push_back(line);
}

// Sizes that are refused, chips that are not known: all that an alignment entry reports.
void add_reports(Lines& lines) {
  Line line("align by format, what is refused");
  harness::FaultTrap trap;
  for (const uint32_t chip_id : {harness::kUnknownChip, harness::full_chip(7).chip_id}) {
    Gpu gpu(chip_id);
    for (const int32_t width : {-1, 0, 1, 1000}) {
      for (const int32_t height : {-1, 0, 1000}) {
        for (const uint32_t tiling_mode : {0U, 1U}) {
          for (const uint32_t format : {28U, 71U}) {
            add_answers(line, trap, gpu,
                        {width, height, 0, format, 1, tiling_mode, 1, 1, 512, 1, 1});
          }
        }
      }
    }
    line.add_messages(gpu);
  }
  lines.push_back(line);
}

}  // namespace

void add_alignment_lines(Lines& lines) {
  for (const uint32_t family_id : {5U, 6U, 7U}) {
    const uint32_t chip_id = harness::full_chip(family_id).chip_id;
    const std::string name = "family " + std::to_string(family_id);
    add_chip(lines, name, chip_id);
    add_block_wraps(lines, name, chip_id);
    add_pitches(lines, name, chip_id);
  }
  add_every_chip(lines);
  add_basic(lines);
  add_reports(lines);
}

}  // namespace digest
