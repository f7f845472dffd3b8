// What formats and chips can do.

#include "tests/digest/format_groups.h"
#include "tests/digest/line.h"
#include "tests/harness/chips.h"

namespace digest {
namespace {

using harness::Gpu;

// All answers of one format in one word.
uint64_t capabilities(const Gpu& gpu, uint32_t format) {
  const auto id = static_cast<int32_t>(format);
  uint64_t word = gpu->isUBWCSupportedByGpu(format);
  for (const int32_t depth_stencil : {0, 1, -1}) {
    word = word << 1 | gpu->isFormatRenderableByGpu(id, depth_stencil);
    for (const uint32_t samples : {0U, 1U, 2U, 0xFFFFFFFFU}) {
      word = word << 1 | gpu->isFormatSampleableByGpu(id, samples, depth_stencil);
    }
  }
  return word;
}

void add_family(Lines& lines, uint32_t family_id) {
  for (const FormatGroup& group : kFormatGroups) {
    Line line("render, sample, compress, every chip of family " + std::to_string(family_id) +
              ", formats " + group.name);
    for (const korvel::ChipData& chip : korvel::kChipData) {
      if (chip.family_id != family_id) continue;
      Gpu gpu(chip.chip_id);
      for (const uint32_t format : formats_of(group)) {
        line.add(capabilities(gpu, format));
        line.end_case();
      }
      line.add_messages(gpu);
    }
    lines.push_back(line);
  }
}

void add_unknown_chip(Lines& lines) {
  Line line("render, sample, compress, unknown chip");
  Gpu gpu(harness::kUnknownChip);
  for (const uint32_t format : {0U, 28U, 722U}) {
    line.add(capabilities(gpu, format));
    line.end_case();
  }
  line.add_messages(gpu);
  lines.push_back(line);
}

void add_compressed_size(Line& line, const Gpu& gpu, int32_t width, int32_t height,
                         uint32_t format) {
  uint32_t words[3] = {7, 7, 7};
  gpu->compute_compressedfmt_aligned_width_and_height(width, height, format, 1, 2, 3, &words[0],
                                                      &words[1], &words[2]);
  for (const uint32_t word : words) line.add(word);
  line.end_case();
}

void add_compressed_sizes(Lines& lines) {
  for (const uint32_t chip_id : {harness::full_chip(6).chip_id, harness::kUnknownChip}) {
    Gpu gpu(chip_id);
    Line line(std::string("sizes in blocks, ") +
              (chip_id == harness::kUnknownChip ? "unknown chip" : "full chip"));
    for (const uint32_t format : harness::format_edges()) {
      for (const int32_t size : {0, 1, 11, 12, 13, 719, 720, 721, 0x7FFFFFFF, -1}) {
        add_compressed_size(line, gpu, size, 100, format);
        add_compressed_size(line, gpu, 100, size, format);
      }
    }
    line.add_messages(gpu);
    lines.push_back(line);
  }
}

}  // namespace

void add_capability_lines(Lines& lines) {
  for (const uint32_t family_id : {5U, 6U, 7U}) add_family(lines, family_id);
  add_unknown_chip(lines);
  add_compressed_sizes(lines);
}

}  // namespace digest
