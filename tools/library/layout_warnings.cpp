#include "tools/library/layout_warnings.h"

#include <fmt/core.h>

#include <algorithm>
#include <bit>

#include "tools/explanation/explain_surface.h"
#include "tools/explanation/explanation_check.h"
#include "tools/library/library_messages.h"
#include "tools/output/explanation_text.h"
#include "tools/record/refusal_words.h"
#include "tools/request/counted.h"
#include "tools/request/format_names.h"

namespace tool {
namespace {

using Sentences = std::vector<std::string>;

// Of a chain whose numbers all wrap, the first few say enough.
constexpr std::size_t kMostSteps = 4;

void add_chip_warnings(Sentences& sentences, const SimulatedChip& chip) {
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

// Levels until both sides have 1 texel.
uint32_t levels_of(const SurfaceSize& size) {
  const int32_t side = std::max({size.width, size.height, 1});
  return static_cast<uint32_t>(std::bit_width(static_cast<uint32_t>(side)));
}

void add_level_warning(Sentences& sentences, const SurfaceRequest& request) {
  if (!request.levels) return;
  const uint32_t own = levels_of(request.size);
  if (*request.levels <= own) return;
  sentences.push_back(
      fmt::format("{} x {} texels have {}, but {} are laid out: the last ones hold nothing more",
                  request.size.width, request.size.height, counted(own, "level"), *request.levels));
}

std::string place_words(const Place& place) {
  if (place.level && place.plane) {
    return fmt::format("level {}, plane {}, ", *place.level, *place.plane);
  }
  if (place.level) return fmt::format("level {}, ", *place.level);
  if (place.plane) return fmt::format("plane {}, ", *place.plane);
  return "";
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

// Validated for the chip that it was laid out for.
void add_verdict(Sentences& sentences, const LayoutMetadata& blob) {
  const MemoryLayout& record = blob.layout;
  take_library_messages();
  const uint32_t result =
      validate_resource_memory_layout_metadata(&record, record.device_uuid, record.driver_uuid);
  const std::vector<LibraryMessage> messages = take_library_messages();
  if (result == KORVEL_SUCCESS) return;
  const std::string reason = messages.empty() ? "no reason given" : messages.front().text;
  sentences.push_back(fmt::format("the library's own validator refuses this layout: {}",
                                  refusal_words(reason, record.size)));
}

}  // namespace

Sentences layout_warnings(const SimulatedChip& chip, const SurfaceRequest& request,
                          const LaidOutSurface& laid_out) {
  Sentences sentences = laid_out.messages;
  add_chip_warnings(sentences, chip);
  add_plane_warning(sentences, request);
  add_level_warning(sentences, request);
  const Explanation explanation = explain_surface(chip.row, request);
  const std::string disagreement = compare(explanation, laid_out.blob).disagreement;
  if (disagreement.empty()) {
    add_step_warnings(sentences, explanation);
  } else {
    sentences.push_back("internal error, so that numbers that wrap are not told: " + disagreement);
  }
  add_verdict(sentences, laid_out.blob);
  return sentences;
}

}  // namespace tool
