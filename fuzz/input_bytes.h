// The fuzzer's bytes, read from front to back. An input that ends early goes on as zeros, so that
// every input means something and short ones mean something simple.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <utility>

namespace fuzz {

class InputBytes {
 public:
  InputBytes(const uint8_t* data, std::size_t size) : rest_(data, size) {}

  [[nodiscard]] bool ended() const { return rest_.empty(); }

  uint8_t u8() { return take<uint8_t>(); }
  uint16_t u16() { return take<uint16_t>(); }
  uint32_t u32() { return take<uint32_t>(); }
  uint64_t u64() { return take<uint64_t>(); }
  int8_t i8() { return static_cast<int8_t>(u8()); }

  // What has not been read yet.
  std::span<const uint8_t> rest() { return std::exchange(rest_, {}); }

 private:
  template <typename Number>
  Number take() {
    Number number = 0;
    const std::size_t held = std::min(sizeof number, rest_.size());
    if (held != 0) std::memcpy(&number, rest_.data(), held);
    rest_ = rest_.subspan(held);
    return number;
  }

  std::span<const uint8_t> rest_;
};

}  // namespace fuzz
