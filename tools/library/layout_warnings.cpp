#include "tools/library/layout_warnings.h"

#include <fmt/core.h>

#include "tools/explanation/explain_surface.h"
#include "tools/explanation/explanation_check.h"
#include "tools/explanation/request_warnings.h"
#include "tools/library/library_messages.h"
#include "tools/record/refusal_words.h"

namespace tool {
namespace {

using Sentences = std::vector<std::string>;

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

Sentences layout_warnings(const Chip& chip, const SurfaceRequest& request,
                          const LaidOutSurface& laid_out) {
  Sentences sentences = laid_out.messages;
  const Explanation explanation = explain_surface(chip.row, request);
  const Sentences further = request_warnings(chip, request, explanation);
  sentences.insert(sentences.end(), further.begin(), further.end());
  const std::string disagreement = compare(explanation, laid_out.blob).disagreement;
  if (!disagreement.empty()) {
    sentences.push_back("internal error, numbers that wrap may be others: " + disagreement);
  }
  add_verdict(sentences, laid_out.blob);
  return sentences;
}

}  // namespace tool
