// Which layouts come to a given number of bytes.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tools/request/request_list.h"

namespace tool {

// Every one of these chips lays out every one of these formats so.
struct GuessedGroup {
  std::vector<uint32_t> formats;
  std::vector<Chip> chips;
};

struct Guess {
  SurfaceRequest request;      // of the first format
  uint32_t pitch_bytes = 0;    // of level 0, plane 0
  uint32_t element_bytes = 0;  // all samples
  bool counts_record = false;  // with the bytes of the record behind the surface
  std::vector<GuessedGroup> groups;
};

struct Guesses {
  std::vector<Guess> found;
  std::size_t tried = 0;                       // layouts
  std::optional<uint64_t> closest_below = {};  // of all that were tried, bytes
  std::optional<uint64_t> closest_above = {};
};

// Calls progress(done, total) now and then. Layouts whose numbers wrap are left out.
Guesses guess_layouts(uint64_t bytes, const RequestLists& lists,
                      const std::function<void(std::size_t, std::size_t)>& progress);

// Sizes that surfaces often have, for who knows nothing of theirs.
std::vector<SurfaceSize> usual_sizes();

}  // namespace tool
