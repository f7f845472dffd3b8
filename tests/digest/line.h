// One line of the digest: what a group of calls answered, as a count and a hash.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "tests/harness/gpu.h"

namespace digest {

class Line {
 public:
  explicit Line(std::string name) : name_(std::move(name)) {}

  // One word of an answer.
  void add(uint64_t word) {
    hash_ = (hash_ ^ word) * UINT64_C(0x9E3779B97F4A7C15);
    hash_ ^= hash_ >> 29;
  }
  // The last word of an answer.
  void end_case() { ++cases_; }

  void add_bytes(const void* bytes, std::size_t size) {
    const auto* at = static_cast<const unsigned char*>(bytes);
    for (; size >= sizeof(uint64_t); at += sizeof(uint64_t), size -= sizeof(uint64_t)) {
      uint64_t word;
      std::memcpy(&word, at, sizeof word);
      add(word);
    }
    for (; size > 0; ++at, --size) add(*at);
  }

  // What the library reported since the last time. Source lines are no behaviour.
  void add_messages(harness::Gpu& gpu) {
    for (const harness::Message& message : gpu.take_messages()) {
      add_bytes(message.function.data(), message.function.size());
      add_bytes(message.format.data(), message.format.size());
      add_bytes(message.text.data(), message.text.size());
    }
  }

  std::string text() const;

 private:
  std::string name_;
  uint64_t cases_ = 0;
  uint64_t hash_ = 0;
};

// A word that no answer of 32 bits can be: the call ended in the division fault.
inline constexpr uint64_t kFault = UINT64_C(0xDEAD000000000000);

using Lines = std::vector<Line>;

// The whole digest as it is now.
std::vector<std::string> computed_lines();

// Of each group of exports.
void add_alignment_lines(Lines& lines);
void add_capability_lines(Lines& lines);
void add_identity_lines(Lines& lines);
void add_layout_lines(Lines& lines);
void add_validation_lines(Lines& lines);

}  // namespace digest
