#include "tools/request/surface_request.h"

#include <fmt/core.h>

#include "formats/format_table.h"
#include "tools/request/counted.h"
#include "tools/request/format_names.h"

namespace tool {

uint32_t own_planes(uint32_t format) {
  return format < korvel::kFormatCount ? korvel::format_record(format).planes : 1;
}

std::string request_label(const SurfaceRequest& request) {
  std::string label =
      fmt::format("{}, {} x {} texels, {}, {}, {}, {}", format_label(request.format),
                  request.size.width, request.size.height, counted(request.size.depth, "slice"),
                  counted(request.samples, "sample"), counted(request.planes, "plane"),
                  request.tiling_mode == KORVEL_TILING_TILED ? "tiled" : "linear");
  if (request.levels) label += fmt::format(", {}", counted(*request.levels, "level"));
  if ((request.flags & LAYOUT_FLAG_UBWC) != 0) label += ", UBWC";
  if ((request.flags & LAYOUT_FLAG_EXTRA) != 0) label += ", extra";
  if ((request.flags & LAYOUT_FLAG_EXTENDED) != 0) label += ", extended";
  return label;
}

}  // namespace tool
