#include "tools/comparison/layout_fit.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <utility>

#include "tools/comparison/plane_demand.h"
#include "tools/explanation/explain_surface.h"
#include "tools/request/counted.h"

namespace tool {
namespace {

constexpr uint64_t kMostSide = std::numeric_limits<int32_t>::max();
constexpr uint64_t kMostBytes = std::numeric_limits<int64_t>::max() / 4096;

constexpr uint64_t started(uint64_t bytes, uint64_t bytes_of_one) {
  return bytes / bytes_of_one + (bytes % bytes_of_one == 0 ? 0 : 1);
}

constexpr uint64_t rounded_up(uint64_t bytes, uint64_t alignment_bytes) {
  return alignment_bytes == 0 ? bytes : started(bytes, alignment_bytes) * alignment_bytes;
}

// Where slices of a buffer lie.
struct Taken {
  uint64_t first;
  uint64_t end;
};

class FitWriter {
 public:
  FitWriter(const Chip& chip, const SurfaceRequest& request)
      : request_(request),
        surface_(described_request(chip.row, request)),
        base_alignment_bytes_(chip.row.properties.base_alignment) {}

  std::vector<FittedNumber> plane(uint32_t p, const ForeignPlane& given) {
    numbers_.clear();
    const korvel::SignedExtent<korvel::Elements> own =
        korvel::level_elements(surface_, korvel::first_level(surface_.size));
    const auto own_width_el = static_cast<uint32_t>(own.width);
    const auto own_rows = static_cast<uint32_t>(own.height);

    const uint32_t width_el = fitted_width(p, given, own_width_el, own_rows);
    const uint32_t rows = fitted_rows(p, given, width_el, own_rows);
    const PlaneDemand demand = plane_demand(surface_, p, width_el, rows, false);
    const uint64_t bytes =
        at_least("size", given.size_bytes, demand.image_bytes,
                 fmt::format("{} of {}{}", counted(demand.rows, "row"),
                             counted(demand.pitch_bytes, "byte"), alignment_words()));
    uint64_t flag_bytes = 0;
    if (surface_.flag_buffers) flag_bytes = flag_sizes(given, demand);
    const uint64_t slice_bytes = slice_pitch(given, bytes + flag_bytes);
    const std::size_t others = taken_.size();
    if (surface_.flag_buffers) place("flag_offset", given.flag_offset_bytes, flag_bytes);
    place("offset", given.offset_bytes, bytes);
    take_whole_plane(others, slice_bytes);
    return std::move(numbers_);
  }

  [[nodiscard]] uint64_t end_bytes() const {
    uint64_t end = 0;
    for (const Taken& taken : taken_) end = std::max(end, taken.end);
    return end;
  }

  [[nodiscard]] uint64_t allocation_bytes() const {
    const korvel::AlignmentRequest& alignment = surface_.alignment;
    return korvel::whole_surface_bytes(
        end_bytes(), korvel::surface_alignment_bytes(surface_.chip, alignment.format,
                                                     alignment.samples, alignment.tiling_mode));
  }

 private:
  void add(std::string name, std::optional<uint64_t> given, uint64_t nearest, Unit unit,
           std::string why) {
    const bool fits = !given || *given == nearest;
    numbers_.push_back(
        {std::move(name), given, {static_cast<int64_t>(nearest), unit}, fits, std::move(why)});
  }

  // Any number from `least` on fits.
  uint64_t at_least(const char* name, std::optional<uint64_t> given, uint64_t least,
                    std::string why) {
    const uint64_t nearest = std::max(given.value_or(0), least);
    add(name, given, nearest, Unit::bytes, std::move(why));
    return nearest;
  }

  [[nodiscard]] std::string alignment_words() const {
    return base_alignment_bytes_ > 1 ? fmt::format(", in whole {} bytes", base_alignment_bytes_)
                                     : std::string();
  }

  // A width that the rules leave as it is, or the longest one that they allow.
  [[nodiscard]] uint32_t settled_width_el(uint32_t p, uint32_t width_el, uint32_t rows) const {
    for (int tries = 0; tries < 16; ++tries) {
      const uint32_t aligned_el = plane_demand(surface_, p, width_el, rows, false).width_el;
      if (aligned_el <= width_el) return aligned_el;
      width_el = aligned_el;
    }
    return width_el;
  }

  uint32_t fitted_width(uint32_t p, const ForeignPlane& given, uint32_t own_width_el,
                        uint32_t rows) {
    const uint64_t element_bytes = surface_.element_bytes;
    const uint64_t given_el =
        element_bytes == 0 ? 0 : started(given.pitch_bytes.value_or(0), element_bytes);
    const auto least_el =
        static_cast<uint32_t>(std::clamp<uint64_t>(given_el, own_width_el, kMostSide));
    const uint32_t width_el = settled_width_el(p, least_el, rows);
    std::string why = last_change(plane_demand(surface_, p, least_el, rows, false).steps, "width");
    if (given.pitch_bytes && given_el < own_width_el) {
      why = fmt::format(
          "{} of {} are {}{}{}", counted(own_width_el, "element"), counted(element_bytes, "byte"),
          counted(own_width_el * element_bytes, "byte"), why.empty() ? "" : "; ", why);
    } else if (why.empty()) {
      why = fmt::format("{} of {}", counted(width_el, "element"), counted(element_bytes, "byte"));
    }
    add("pitch", given.pitch_bytes, width_el * element_bytes, Unit::bytes, std::move(why));
    return width_el;
  }

  uint32_t fitted_rows(uint32_t p, const ForeignPlane& given, uint32_t width_el,
                       uint32_t own_rows) {
    const auto least_rows = static_cast<uint32_t>(
        std::clamp<uint64_t>(given.height_rows.value_or(0), own_rows, kMostSide));
    const PlaneDemand demand = plane_demand(surface_, p, width_el, least_rows, false);
    std::string why = last_change(demand.steps, "height");
    if (why.empty()) {
      why = fmt::format("{} {}",
                        p == 0 ? "the surface has" : "every plane takes the size of the surface,",
                        counted(own_rows, "row"));
    }
    add("height", given.height_rows, demand.rows, Unit::rows, std::move(why));
    return demand.rows;
  }

  // Returns the bytes of one slice's flag buffer.
  uint64_t flag_sizes(const ForeignPlane& given, const PlaneDemand& demand) {
    at_least("flag_pitch", given.flag_pitch_bytes, demand.flag_pitch_bytes,
             "one byte for each tile of a row, in whole rows of the chip's linear_alignment");
    return at_least("flag_size", given.flag_size_bytes, demand.flag_bytes,
                    fmt::format("whole 16 rows of flags{}", alignment_words()));
  }

  // Told where there are several slices, or somebody asks.
  uint64_t slice_pitch(const ForeignPlane& given, uint64_t bytes) {
    if (request_.size.depth == 1 && !given.slice_pitch_bytes) return bytes;
    const uint64_t nearest =
        rounded_up(std::min(std::max(given.slice_pitch_bytes.value_or(0), bytes), kMostBytes),
                   base_alignment_bytes_);
    add("slice_pitch", given.slice_pitch_bytes, nearest, Unit::bytes,
        fmt::format("a slice of {}{}", counted(bytes, "byte"), alignment_words()));
    return nearest;
  }

  // The first slice of a buffer.
  void place(const char* name, std::optional<uint64_t> given, uint64_t bytes) {
    uint64_t first =
        rounded_up(std::min(given.value_or(end_bytes()), kMostBytes), base_alignment_bytes_);
    std::string why = base_alignment_bytes_ > 1
                          ? fmt::format("a multiple of {} (base_alignment)", base_alignment_bytes_)
                          : std::string("any byte");
    const bool is_taken =
        std::any_of(taken_.begin(), taken_.end(), [first, bytes](const Taken& taken) {
          return first < taken.end && first + bytes > taken.first;
        });
    if (is_taken) {
      first = rounded_up(end_bytes(), base_alignment_bytes_);
      why = fmt::format("behind what stands up to byte {}", end_bytes());
    }
    add(name, given, first, Unit::bytes, std::move(why));
    taken_.push_back({first, first + bytes});
  }

  // The further slices of a plane belong to it alone: its image and flag buffer may take turns.
  void take_whole_plane(std::size_t others, uint64_t slice_bytes) {
    const auto own = taken_.begin() + static_cast<std::ptrdiff_t>(others);
    Taken plane = *own;
    for (auto part = own; part != taken_.end(); ++part) {
      plane = {std::min(plane.first, part->first), std::max(plane.end, part->end)};
    }
    plane.end += (static_cast<uint64_t>(request_.size.depth) - 1) * slice_bytes;
    taken_.resize(others);
    taken_.push_back(plane);
  }

  const SurfaceRequest& request_;
  korvel::Surface surface_;
  uint64_t base_alignment_bytes_;
  std::vector<FittedNumber> numbers_;
  std::vector<Taken> taken_;
};

}  // namespace

const std::vector<NumberName>& foreign_plane_names() {
  static const std::vector<NumberName> names = {
      {"pitch", "image_pitch", &ForeignPlane::pitch_bytes},
      {"height", "image_height", &ForeignPlane::height_rows},
      {"offset", "image_offset", &ForeignPlane::offset_bytes},
      {"size", "image_size", &ForeignPlane::size_bytes},
      {"slice_pitch", "image_slice_pitch", &ForeignPlane::slice_pitch_bytes},
      {"flag_pitch", "flag_pitch", &ForeignPlane::flag_pitch_bytes},
      {"flag_offset", "flag_offset", &ForeignPlane::flag_offset_bytes},
      {"flag_size", "flag_size", &ForeignPlane::flag_size_bytes},
  };
  return names;
}

bool LayoutFit::fits() const {
  return std::all_of(planes.begin(), planes.end(), [](const std::vector<FittedNumber>& numbers) {
    return std::all_of(numbers.begin(), numbers.end(),
                       [](const FittedNumber& number) { return number.fits; });
  });
}

LayoutFit fit_layout(const Chip& chip, const SurfaceRequest& request,
                     const std::vector<ForeignPlane>& planes) {
  FitWriter writer(chip, request);
  LayoutFit fit;
  for (uint32_t p = 0; p < planes.size(); ++p) fit.planes.push_back(writer.plane(p, planes[p]));
  fit.allocation_bytes = writer.allocation_bytes();
  return fit;
}

}  // namespace tool
