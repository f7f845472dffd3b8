#include "tools/comparison/chip_findings.h"

#include <fmt/core.h>

#include <limits>

#include "tools/comparison/plane_demand.h"
#include "tools/explanation/explain_surface.h"
#include "tools/explanation/fault_forecast.h"
#include "tools/record/covered_size.h"
#include "tools/request/counted.h"
#include "tools/request/refused_request.h"

namespace tool {
namespace {

using Sentences = std::vector<std::string>;

// As far as a record tells it.
template <typename Record>
SurfaceRequest told_request(const Record& record, uint32_t l) {
  SurfaceRequest request;
  request.format = record.format;
  request.samples = record.samples;
  request.tiling_mode = record.level[l].tiled;
  request.planes = record.level[l].planes;
  request.size.depth = static_cast<int32_t>(record.level[l].slices);
  for (uint32_t p = 0; p < request.planes; ++p) {
    if (record.level[l].plane[p].flag_valid != 0) request.flags = LAYOUT_FLAG_UBWC;
  }
  return request;
}

class LevelFindings {
 public:
  LevelFindings(Sentences& sentences, const Chip& chip, const SurfaceRequest& request, uint32_t l,
                bool chain)
      : sentences_(sentences), chip_(chip), request_(request), level_(l), chain_(chain) {}

  template <typename Plane>
  void add(uint32_t p, const Plane& plane) {
    constexpr uint32_t kMost = std::numeric_limits<int32_t>::max();
    // A layout's sizes are aligned: rounding them once more must not change them.
    if (covered_width_el(plane) > kMost || covered_rows(plane) > kMost) return;
    const korvel::Surface surface = described_request(chip_.row, request_);
    place_ = fmt::format("level {}, plane {}", level_, p);
    const PlaneDemand demand =
        plane_demand(surface, p, covered_width_el(plane), covered_rows(plane), chain_);
    if (plane.image_pitch < demand.pitch_bytes) {
      below("a pitch", plane.image_pitch, demand.pitch_bytes, "byte",
            because(demand, "width", counted(covered_width_el(plane), "element")));
    }
    if (plane.image_height < demand.rows) {
      below("a height", plane.image_height, demand.rows, "row",
            because(demand, "height", counted(covered_rows(plane), "row")));
    }
    if (plane.image_size < demand.image_bytes) {
      below("an image", plane.image_size, demand.image_bytes, "byte",
            fmt::format("{} of {}, aligned", counted(demand.rows, "row"),
                        counted(demand.pitch_bytes, "byte")));
    }
    if (plane.flag_valid != 0) add_flags(plane, surface, demand);
  }

 private:
  void below(std::string_view what, uint64_t stored, uint64_t asked, std::string_view unit,
             const std::string& why) {
    sentences_.push_back(
        fmt::format("{}: {} of {} is less than the {} that the chip's rules ask "
                    "for ({})",
                    place_, what, counted(stored, unit), asked, why));
  }

  static std::string because(const PlaneDemand& demand, std::string_view subject,
                             const std::string& held) {
    const std::string change = last_change(demand.steps, subject);
    return change.empty() ? held : fmt::format("{}; {}", held, change);
  }

  template <typename Plane>
  void add_flags(const Plane& plane, const korvel::Surface& surface, const PlaneDemand& demand) {
    if (!surface.flag_buffers) {
      sentences_.push_back(fmt::format(
          "{}: it has a flag buffer, but the chip does not compress the format", place_));
      return;
    }
    const std::string why =
        fmt::format("{} x {}", counted(demand.width_el, "element"), counted(demand.rows, "row"));
    if (plane.flag_pitch < demand.flag_pitch_bytes) {
      below("a flag pitch", plane.flag_pitch, demand.flag_pitch_bytes, "byte", why);
    }
    if (plane.flag_size < demand.flag_bytes) {
      below("a flag buffer", plane.flag_size, demand.flag_bytes, "byte", why);
    }
  }

  Sentences& sentences_;
  const Chip& chip_;
  const SurfaceRequest& request_;
  uint32_t level_;
  bool chain_;
  std::string place_;
};

template <typename Record>
Sentences level_findings(const Record& record, const Chip& chip, bool chain) {
  Sentences sentences;
  for (uint32_t l = 0; l < record.levels; ++l) {
    const SurfaceRequest request = told_request(record, l);
    std::string no_layout = refused_request(request);
    if (no_layout.empty()) no_layout = forecast_fault(chip.row, request);
    if (!no_layout.empty()) {
      sentences.push_back(fmt::format("level {}: the chip has no such layout: {}", l, no_layout));
      continue;
    }
    SurfaceRequest asked = request;
    if (chain) asked.levels = record.levels;
    LevelFindings findings(sentences, chip, asked, l, chain);
    for (uint32_t p = 0; p < request.planes; ++p) findings.add(p, record.level[l].plane[p]);
  }
  return sentences;
}

template <typename Record>
void add_alignment(Sentences& sentences, const Record& record, const Chip& chip) {
  const uint32_t asked_bytes = korvel::surface_alignment_bytes(
      chip.row, korvel::format_traits(record.format), record.samples, record.level[0].tiled);
  if (record.alignment >= asked_bytes) return;
  sentences.push_back(
      fmt::format("an alignment of {} is less than the {} that the chip's rules ask for",
                  counted(record.alignment, "byte"), asked_bytes));
}

template <typename Record>
bool has_flag_buffers(const Record& record) {
  for (uint32_t p = 0; p < record.level[0].planes; ++p) {
    if (record.level[0].plane[p].flag_valid != 0) return true;
  }
  return false;
}

// A chain keeps its flag buffers apart from the images, so that their slices differ.
template <typename Record>
bool is_chain(const Record& record) {
  const auto& plane = record.level[0].plane[0];
  return record.levels > 1 ||
         (plane.flag_valid != 0 && plane.flag_slice_pitch != plane.image_slice_pitch);
}

// A record of one level without flag buffers does not tell whether it is a chain of one, whose rows
// are not padded and whose image is not rounded up: it is enough that one kind has no finding.
template <typename Record>
Sentences all_findings(const Record& record, const Chip& chip) {
  Sentences sentences;
  add_alignment(sentences, record, chip);
  Sentences levels = level_findings(record, chip, is_chain(record));
  const bool may_be_a_chain = record.levels == 1 && !has_flag_buffers(record);
  if (may_be_a_chain && !levels.empty() && level_findings(record, chip, true).empty()) {
    levels.clear();
  }
  sentences.insert(sentences.end(), levels.begin(), levels.end());
  return sentences;
}

}  // namespace

Sentences chip_findings(const MemoryLayout& record, const Chip& chip) {
  return all_findings(record, chip);
}

Sentences chip_findings(const SurfaceMetadata& record, const Chip& chip) {
  return all_findings(record, chip);
}

}  // namespace tool
