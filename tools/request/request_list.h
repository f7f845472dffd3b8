// Many requests at once: every combination of lists and ranges.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/request/chip.h"
#include "tools/request/number_text.h"
#include "tools/request/surface_request.h"

namespace tool {

// "1,2,4", "1..15" or "64..1024:64". Throws BadInput, naming the option with the example of its
// value, for a number outside the range and for a list of more than kMostRequests.
std::vector<uint32_t> parse_numbers(std::string_view option, std::string_view text,
                                    NumberRange allowed, std::string_view example);

// "nv12,28,70..84", or "all" for every format in use. Throws BadInput.
std::vector<uint32_t> parse_formats(std::string_view text);

// "1280x720,1920x1080", each side a number or a range: "1900..1940:4x1080". Throws BadInput.
std::vector<SurfaceSize> parse_sizes(std::string_view text);

// "both" for both, and what the option says by itself for the rest.
enum class Choice : uint8_t { no, yes, both };

// The levels of a request: none for a surface without a chain, 0 for all that the size has.
using Levels = std::optional<uint32_t>;
inline constexpr uint32_t kFullChain = 0;

// "none", "full" and numbers from 1 to 15. Throws BadInput.
std::vector<Levels> parse_levels(std::string_view text);

struct RequestLists {
  std::vector<Chip> chips;
  std::vector<uint32_t> formats;
  std::vector<SurfaceSize> sizes;
  std::vector<uint32_t> samples = {1};
  std::vector<Levels> levels = {std::nullopt};
  Choice linear = Choice::no;
  Choice ubwc = Choice::no;
  uint64_t further_flags = 0;  // LAYOUT_FLAG_EXTRA, LAYOUT_FLAG_EXTENDED
};

struct ChipRequest {
  Chip chip;
  SurfaceRequest request;
};

inline constexpr std::size_t kMostRequests = 1000000;

// All of them, the chip changing slowest. Throws BadInput when there are more than kMostRequests.
std::vector<ChipRequest> all_requests(const RequestLists& lists);

}  // namespace tool
