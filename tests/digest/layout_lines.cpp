// Blobs of single-level surfaces and of mip chains, byte by byte.

#include "tests/digest/format_groups.h"
#include "tests/digest/line.h"
#include "tests/harness/block_edges.h"
#include "tests/harness/chips.h"
#include "tests/harness/fault_trap.h"

namespace digest {
namespace {

using harness::Gpu;

constexpr uint64_t kFlags[] = {0, LAYOUT_FLAG_UBWC, LAYOUT_FLAG_EXTRA, LAYOUT_FLAG_EXTENDED,
                               LAYOUT_FLAG_UBWC | LAYOUT_FLAG_EXTRA | LAYOUT_FLAG_EXTENDED};
constexpr int32_t kSizes[] = {1, 17, 100, 1921, 0, -1, 0x7FFFFFFF};

struct Case {
  int32_t width, height, depth;
  uint32_t format, samples, tiling_mode;
  uint64_t flags;
  uint32_t planes, levels;
};

// The end of the record that the level count leaves unwritten is not hashed.
std::size_t written_bytes(uint32_t levels) {
  return offsetof(LayoutMetadata, layout) + offsetof(MemoryLayout, level) +
         levels * sizeof(LevelLayout);
}

void add_blob(Line& line, const LayoutMetadata& blob, uint32_t levels) {
  line.add_bytes(&blob, written_bytes(levels));
  const std::size_t tail = offsetof(MemoryLayout, extra_valid);
  line.add_bytes(reinterpret_cast<const char*>(&blob.layout) + tail, sizeof blob.layout - tail);
}

void add_single_level(Line& line, harness::FaultTrap& trap, const Gpu& gpu, const Case& c) {
  LayoutMetadata blob;
  std::memset(&blob, 0xA5, written_bytes(2));
  const std::size_t tail = offsetof(LayoutMetadata, layout) + offsetof(MemoryLayout, extra_valid);
  std::memset(reinterpret_cast<char*>(&blob) + tail, 0xA5, sizeof blob - tail);
  uint32_t status = 0;
  const bool answered = trap.answers([&] {
    status = gpu->korvel_init_memory_layout(&blob, c.width, c.height, c.depth, c.format, c.samples,
                                            c.tiling_mode, c.flags, c.planes);
  });
  line.add(answered ? status : kFault);
  if (answered) {
    add_blob(line, blob, 2);
    if (status == KORVEL_SUCCESS) line.add(gpu->korvel_get_aligned_gpu_buffer_size(&blob));
  }
  line.end_case();
}

void add_mip_chain(Line& line, harness::FaultTrap& trap, const Gpu& gpu, const Case& c) {
  LayoutMetadata blob;
  std::memset(&blob, 0, sizeof blob);
  blob.layout.levels = c.levels;
  blob.layout.size = KORVEL_LAYOUT_BYTES_VERSION_3;
  blob.layout.alignment = 4096;
  const bool answered = trap.answers([&] {
    gpu->korvel_init_multi_level_surface(&blob.layout, static_cast<uint32_t>(c.width),
                                         static_cast<uint32_t>(c.height), c.depth, c.format,
                                         c.samples, c.tiling_mode, c.flags, c.planes);
  });
  if (!answered) line.add(kFault);
  if (answered) add_blob(line, blob, c.levels);
  line.end_case();
}

void add_family(Lines& lines, uint32_t family_id) {
  Gpu gpu(harness::full_chip(family_id).chip_id);
  harness::FaultTrap trap;
  const std::string name = ", family " + std::to_string(family_id) + ", formats ";
  for (const FormatGroup& group : kFormatGroups) {
    Line single("single level" + name + group.name);
    Line chain("mip chain" + name + group.name);
    for (const uint32_t format : formats_of(group)) {
      uint32_t turn = format % 7;
      for (const uint32_t samples : {1U, 2U, 4U, 8U, 3U}) {
        for (const uint32_t tiling_mode : {0U, 1U, 2U}) {
          for (const uint32_t planes : {1U, 2U, 3U}) {
            ++turn;
            const Case c = {kSizes[turn % 7], kSizes[turn % 4], static_cast<int32_t>(turn % 5),
                            format,           samples,          tiling_mode,
                            kFlags[turn % 5], planes,           1 + turn % 15};
            add_single_level(single, trap, gpu, c);
            if (format < 725) add_mip_chain(chain, trap, gpu, c);
          }
        }
      }
      single.add_messages(gpu);
    }
    lines.push_back(single);
    lines.push_back(chain);
  }
}

// Heights where the texels of blocks wrap 32 bits or change their sign.
void add_block_wraps(Lines& lines, uint32_t family_id) {
  Gpu gpu(harness::full_chip(family_id).chip_id);
  harness::FaultTrap trap;
  Line line("single level and mip chain, heights that wrap, family " + std::to_string(family_id));
  for (const harness::BlockFormat& block : harness::kBlockFormats) {
    for (const int32_t height : harness::block_wrap_edges(block.block_height, 0)) {
      for (const uint32_t tiling_mode : {0U, 1U}) {
        const Case c = {100, height, 1, block.format, 1, tiling_mode, 0, 1, 3};
        add_single_level(line, trap, gpu, c);
        add_mip_chain(line, trap, gpu, c);
      }
    }
  }
  line.add_messages(gpu);
  lines.push_back(line);
}

void add_every_chip(Lines& lines) {
  Line line("single level and mip chain, every chip and an unknown one");
  harness::FaultTrap trap;
  const auto add = [&](uint32_t chip_id) {
    Gpu gpu(chip_id);
    line.add(gpu->korvel_get_metadata_blob_size());
    for (const uint32_t format : {28U, 71U, 103U, 104U, 508U, 615U, 683U, 709U}) {
      for (const uint32_t tiling_mode : {0U, 1U}) {
        const uint32_t planes = format == 615 ? 3 : format == 28 || format == 71 ? 1 : 2;
        const Case c = {300, 200, 2, format, 1, tiling_mode, kFlags[4], planes, 6};
        add_single_level(line, trap, gpu, c);
        add_mip_chain(line, trap, gpu, c);
      }
    }
    line.add_messages(gpu);
  };
  for (const korvel::ChipData& chip : korvel::kChipData) add(chip.chip_id);
  add(harness::kUnknownChip);
  lines.push_back(line);
}

}  // namespace

void add_layout_lines(Lines& lines) {
  for (const uint32_t family_id : {5U, 6U, 7U}) {
    add_family(lines, family_id);
    add_block_wraps(lines, family_id);
  }
  add_every_chip(lines);
}

}  // namespace digest
