// How two numbers differ, in the words of a failure.
#pragma once

#include <cstdint>
#include <sstream>
#include <string>

namespace comparison {

// "0x30 (48), expected 0x40 (64): off by -16"
inline std::string difference(uint64_t actual, uint64_t expected) {
  std::ostringstream text;
  text << "0x" << std::hex << actual << std::dec << " (" << actual << "), expected 0x" << std::hex
       << expected << std::dec << " (" << expected << "): off by "
       << static_cast<int64_t>(actual - expected);
  return text.str();
}

}  // namespace comparison
