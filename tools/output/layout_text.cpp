#include "tools/output/layout_text.h"

#include <fmt/core.h>

#include "tools/output/text_table.h"
#include "tools/record/uuid_text.h"
#include "tools/request/counted.h"

namespace tool {
namespace {

std::string line(std::string_view label, std::string_view value) {
  return fmt::format("{:<16} {}\n", label, value);
}

std::string decimal(uint64_t value) {
  return fmt::format("{}", value);
}
std::string hex(uint64_t value) {
  return fmt::format("0x{:X}", value);
}
std::string bytes_both_ways(uint64_t bytes) {
  return fmt::format("{} bytes (0x{:X})", bytes, bytes);
}
const char* yes_or_no(uint32_t word) {
  return word != 0 ? "yes" : "no";
}

std::string header_text(const MetadataHeader& header) {
  return fmt::format(
      "magic 0x{:08X}, version {}, blob {} bytes, record of kind {} and {} bytes at offset 0x{:X}",
      header.magic, header.header_version, header.blob_size, header.record_kind, header.record_size,
      header.record_offset);
}

std::string record_text(const MemoryLayout& record) {
  std::string text;
  text += line("Record",
               fmt::format("signature 0x{:08X}, {} bytes, format {}, {}, {}", record.signature,
                           record.size, record.format, counted(record.samples, "sample"),
                           counted(record.levels, "level")));
  text += line("Device UUID", uuid_text(record.device_uuid));
  text += line("Driver UUID", uuid_text(record.driver_uuid));
  text += line("Alignment", counted(record.alignment, "byte"));
  text += line("Linear fallback", yes_or_no(record.linear_fallback));
  return text;
}

// Calls visit(l, p, plane) for every plane of every level.
template <typename Visit>
void for_each_plane(const MemoryLayout& record, Visit visit) {
  for (uint32_t l = 0; l < record.levels; ++l) {
    for (uint32_t p = 0; p < record.level[l].planes; ++p) visit(l, p, record.level[l].plane[p]);
  }
}

std::string levels_table(const MemoryLayout& record) {
  TextTable table({{"level", "", TableColumn::right},
                   {"size", "bytes"},
                   {"slices", ""},
                   {"planes", ""},
                   {"tiling", "", TableColumn::left}});
  for (uint32_t l = 0; l < record.levels; ++l) {
    const LevelLayout& level = record.level[l];
    table.add_row({decimal(l), decimal(level.size), decimal(level.slices), decimal(level.planes),
                   level.tiled == KORVEL_TILING_TILED ? "tiled" : "linear"});
  }
  return table.text();
}

std::string images_table(const MemoryLayout& record) {
  TextTable table({{"level", ""},
                   {"plane", ""},
                   {"offset", "bytes, hex"},
                   {"size", "bytes"},
                   {"pitch", "bytes"},
                   {"slice pitch", "bytes"},
                   {"element", "bytes"},
                   {"aligned width", "elements"},
                   {"aligned height", "rows"}});
  for_each_plane(record, [&table](uint32_t l, uint32_t p, const PlaneLayout& plane) {
    table.add_row({decimal(l), decimal(p), hex(plane.image_offset), decimal(plane.image_size),
                   decimal(plane.image_pitch), decimal(plane.image_slice_pitch),
                   decimal(plane.image_element_size), decimal(plane.image_width),
                   decimal(plane.image_height)});
  });
  return table.text();
}

bool has_flag_buffers(const MemoryLayout& record) {
  bool found = false;
  for_each_plane(record, [&found](uint32_t, uint32_t, const PlaneLayout& plane) {
    found = found || plane.flag_valid != 0;
  });
  return found;
}

std::string flag_buffers_table(const MemoryLayout& record) {
  TextTable table({{"level", ""},
                   {"plane", ""},
                   {"offset", "bytes, hex"},
                   {"size", "bytes"},
                   {"pitch", "bytes"},
                   {"slice pitch", "bytes"}});
  for_each_plane(record, [&table](uint32_t l, uint32_t p, const PlaneLayout& plane) {
    if (plane.flag_valid == 0) return;
    table.add_row({decimal(l), decimal(p), hex(plane.flag_offset), decimal(plane.flag_size),
                   decimal(plane.flag_pitch), decimal(plane.flag_slice_pitch)});
  });
  return table.text();
}

std::string extra_buffer_text(const MemoryLayout& record) {
  if (record.extra_valid == 0) return "none";
  return fmt::format("{} bytes at offset 0x{:X} ({}), slice pitch {} bytes{}", record.extra_size,
                     record.extra_offset, record.extra_offset, record.extra_slice_pitch,
                     record.extended != 0 ? ", extended" : "");
}

std::string totals_text(const LayoutMetadata& blob) {
  const uint64_t allocation = korvel_get_aligned_gpu_buffer_size(&blob);
  std::string text;
  if (!has_flag_buffers(blob.layout)) text += line("Flag buffers", "none");
  text += line("Extra buffer", extra_buffer_text(blob.layout));
  text += line("GPU allocation", bytes_both_ways(allocation));
  text += line("Total size", bytes_both_ways(blob.layout.total_size) + ", the record included");
  return text;
}

}  // namespace

std::string layout_text(const Chip& chip, const SurfaceRequest& request,
                        const LayoutMetadata& blob) {
  const MemoryLayout& record = blob.layout;
  std::string text = line("Surface", request_label(request));
  text += line("Chip", chip_label(chip));
  text += line("Blob header", header_text(blob.header));
  text += record_text(record);
  return text + "\n" + layout_tables(blob);
}

std::string layout_tables(const LayoutMetadata& blob) {
  const MemoryLayout& record = blob.layout;
  std::string text = "Levels\n" + levels_table(record);
  text.append("\nImages\n").append(images_table(record));
  if (has_flag_buffers(record)) text.append("\nFlag buffers\n").append(flag_buffers_table(record));
  text.append("\n").append(totals_text(blob));
  return text;
}

}  // namespace tool
