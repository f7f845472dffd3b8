#include "tools/explanation/request_warnings.h"

#include <fmt/core.h>

#include "tools/output/step_text.h"
#include "tools/request/counted.h"
#include "tools/request/format_names.h"

namespace tool {
namespace {

using Sentences = std::vector<std::string>;

// Of a chain whose numbers all wrap, the first few say enough.
constexpr std::size_t kMostSteps = 4;

void add_chip_warnings(Sentences& sentences, const Chip& chip) {
  if (!chip.has_row) {
    sentences.push_back(
        fmt::format("chip 0x{:08X} is not known: sizes are not aligned, and alignments that every "
                    "known chip has count as 0 or 1 byte",
                    chip.chip_id));
  } else if (!chip.row.supported) {
    sentences.push_back(
        fmt::format("chip 0x{:08X} is not one whose surfaces the alignment rules know: widths and "
                    "heights are not aligned",
                    chip.chip_id));
  }
}

void add_plane_warning(Sentences& sentences, const SurfaceRequest& request) {
  const uint32_t own = own_planes(request.format);
  if (request.planes == own) return;
  sentences.push_back(fmt::format("{} has {}, but {} {} laid out", format_label(request.format),
                                  counted(own, "plane"), request.planes,
                                  request.planes == 1 ? "is" : "are"));
}

void add_level_warning(Sentences& sentences, const SurfaceRequest& request) {
  if (!request.levels) return;
  const uint32_t own = levels_of(request.size);
  if (*request.levels <= own) return;
  sentences.push_back(
      fmt::format("{} x {} texels have {}, but {} are laid out: the last ones hold nothing more",
                  request.size.width, request.size.height, counted(own, "level"), *request.levels));
}

std::string wrap_sentence(const Step& step) {
  const std::string what = place_words(step.place) + step.subject;
  if (step.exact) {
    return fmt::format(
        "{}: {} with {} are {} bytes, which do not fit 32 bits: the library goes on "
        "with {}",
        what, quantity_text(step.before), step.fact, *step.exact, quantity_text(step.after));
  }
  return fmt::format("{}: {} become {}: the number wraps", what, quantity_text(step.before),
                     quantity_text(step.after));
}

void add_step_warnings(Sentences& sentences, const Explanation& explanation) {
  std::size_t wrapped = 0;
  for (const Step& step : explanation.steps) {
    if (step.cut) {
      sentences.push_back(
          fmt::format("{}width: rows of {} end at {} ({}): what lies beyond has no "
                      "place",
                      place_words(step.place), quantity_text(step.before),
                      quantity_text(step.after), step.fact));
    }
    if (!step.wrapped) continue;
    if (wrapped++ < kMostSteps) sentences.push_back(wrap_sentence(step));
  }
  if (wrapped > kMostSteps) {
    sentences.push_back(
        fmt::format("{} more wrap; explain shows them", counted(wrapped - kMostSteps, "number")));
  }
}

}  // namespace

std::string place_words(const Place& place) {
  if (place.level && place.plane) {
    return fmt::format("level {}, plane {}, ", *place.level, *place.plane);
  }
  if (place.level) return fmt::format("level {}, ", *place.level);
  if (place.plane) return fmt::format("plane {}, ", *place.plane);
  return "";
}

std::vector<std::string> request_warnings(const Chip& chip, const SurfaceRequest& request,
                                          const Explanation& explanation) {
  Sentences sentences;
  add_chip_warnings(sentences, chip);
  add_plane_warning(sentences, request);
  add_level_warning(sentences, request);
  add_step_warnings(sentences, explanation);
  return sentences;
}

}  // namespace tool
