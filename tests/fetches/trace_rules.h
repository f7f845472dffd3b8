// What a call may do to stored bytes, checked on its trace.
#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tests/fetches/watched_memory.h"

namespace fetches {

// Says what a byte is part of.
using NameOfByte = std::function<std::string(std::size_t offset_bytes)>;

inline std::string byte_number(std::size_t offset_bytes) {
  return "byte " + std::to_string(offset_bytes);
}

inline std::string text_of(const Touch& touch) {
  return std::string(touch.loads ? (touch.stores ? "a change" : "a load") : "a store") + " of " +
         std::to_string(touch.bytes) + " bytes at " + std::to_string(touch.offset_bytes);
}

// The first thing that a call did which none may do, or "": load a byte that it has loaded or stored
// before, or touch what lies beyond the `size_bytes` of the memory.
inline std::string broken_rule(const Trace& trace, std::size_t size_bytes,
                               const NameOfByte& name_of_byte = byte_number) {
  if (!trace.stopped.empty()) return trace.stopped;
  enum class Done { kNothing, kLoaded, kStored };
  std::vector<Done> done(size_bytes, Done::kNothing);
  for (const Touch& touch : trace.touches) {
    const auto end = touch.offset_bytes + static_cast<std::ptrdiff_t>(touch.bytes);
    if (touch.offset_bytes < 0 || end > static_cast<std::ptrdiff_t>(size_bytes)) {
      return text_of(touch) + ", beyond the " + std::to_string(size_bytes) + " bytes";
    }
    for (auto i = static_cast<std::size_t>(touch.offset_bytes); std::cmp_less(i, end); ++i) {
      if (touch.loads && done[i] == Done::kLoaded) return name_of_byte(i) + " is loaded twice";
      if (touch.loads && done[i] == Done::kStored) return name_of_byte(i) + " is read back";
      if (touch.loads) done[i] = Done::kLoaded;
      if (touch.stores) done[i] = Done::kStored;
    }
  }
  return "";
}

inline std::size_t count_loads(const Trace& trace) {
  return static_cast<std::size_t>(std::count_if(trace.touches.begin(), trace.touches.end(),
                                                [](const Touch& touch) { return touch.loads; }));
}

// For each of the bytes, whether it was loaded.
inline std::vector<bool> loaded_bytes(const Trace& trace, std::size_t size_bytes) {
  std::vector<bool> loaded(size_bytes, false);
  for (const Touch& touch : trace.touches) {
    if (!touch.loads) continue;
    for (std::size_t i = 0; i < touch.bytes; ++i) {
      const auto at = touch.offset_bytes + static_cast<std::ptrdiff_t>(i);
      if (at >= 0 && std::cmp_less(at, size_bytes)) loaded[static_cast<std::size_t>(at)] = true;
    }
  }
  return loaded;
}

}  // namespace fetches
