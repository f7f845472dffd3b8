#include "tools/library/surface_layout.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "tools/explanation/fault_forecast.h"
#include "tools/library/library_messages.h"
#include "tools/request/bad_input.h"
#include "tools/request/refused_request.h"

namespace tool {
namespace {

uint32_t call_single_level(const SurfaceRequest& request, LayoutMetadata* blob) {
  return korvel_init_memory_layout(blob, request.size.width, request.size.height,
                                   request.size.depth, request.format, request.samples,
                                   request.tiling_mode, request.flags, request.planes);
}

// Lays out a chain behind the header words that the one-level entry has written.
void call_multi_level(const SurfaceRequest& request, MemoryLayout& record) {
  // The chain must not inherit words of the one level.
  std::fill(std::begin(record.level), std::end(record.level), LevelLayout{});
  record.levels = *request.levels;
  korvel_init_multi_level_surface(&record, static_cast<uint32_t>(request.size.width),
                                  static_cast<uint32_t>(request.size.height), request.size.depth,
                                  request.format, request.samples, request.tiling_mode,
                                  request.flags, request.planes);
}

bool reports_a_refusal(const LibraryMessage& message) {
  return message.function == "validate_memory_layout_input_params" ||
         message.function == "korvel_init_memory_layout";
}

// Without a blob the library checks the arguments and does nothing else.
void check_arguments(const SurfaceRequest& request, std::vector<LibraryMessage>& messages) {
  call_single_level(request, nullptr);
  messages = take_library_messages();
  const auto refusal = std::find_if(messages.begin(), messages.end(), reports_a_refusal);
  if (refusal != messages.end()) throw BadInput(refusal->text);
}

}  // namespace

LaidOutSurface lay_out(const Chip& chip, const SurfaceRequest& request) {
  const std::string refusal = refused_request(request);
  if (!refusal.empty()) throw BadInput(refusal);
  std::vector<LibraryMessage> messages;
  check_arguments(request, messages);
  const std::string fault = forecast_fault(chip.row, request);
  if (!fault.empty()) throw BadInput(fault);

  LayoutMetadata blob{};
  if (call_single_level(request, &blob) != KORVEL_SUCCESS) {
    refuse("the library refused the request without a reason");
  }
  if (request.levels) {
    take_library_messages();  // of the one level, which is not the layout asked for
    call_multi_level(request, blob.layout);
  }
  const std::vector<LibraryMessage> further = take_library_messages();
  messages.insert(messages.end(), further.begin(), further.end());
  return {blob, distinct_texts(messages)};
}

}  // namespace tool
