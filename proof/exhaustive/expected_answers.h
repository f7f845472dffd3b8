// What the rules answer on each machine, read from the file that predicates_for_every_id.py writes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace proof {

// Ids from here on are answered alike.
inline constexpr uint32_t kFirstUnnamedId = 722;

// Kinds of arguments. The rules cannot tell two values of a kind apart.
enum Kind : std::size_t {
  kRenderableZero,
  kRenderableNonzero,
  kSampleableSingleZero,
  kSampleableSingleNonzero,
  kSampleableMultiZero,
  kSampleableMultiNonzero,
  kUbwc,
  kKindCount
};

struct Message {
  std::string function;
  std::string text;  // formatted

  friend bool operator==(const Message&, const Message&) = default;
};

struct KindAnswers {
  std::array<uint8_t, kFirstUnnamedId> of_id{};
  uint8_t behind = 0;              // of every id from kFirstUnnamedId on
  std::optional<Message> message;  // that every call sends

  uint32_t operator[](uint32_t format) const {
    return format < kFirstUnnamedId ? of_id[format] : behind;
  }
};

struct Machine {
  uint32_t reported_chip_id = 0;
  uint32_t failure = 0;     // of the services: HXL_SIM_FAIL_...; 0 = none
  uint32_t family_id = 0;   // 0 = the chip has no row
  bool asks_again = false;  // whether every call identifies anew
  std::vector<Message> identification;
  std::array<KindAnswers, kKindCount> answers;

  const KindAnswers& operator[](Kind kind) const { return answers[kind]; }
};

// Ends the program when the file is missing, empty or otherwise than expected, or when it lacks a
// chip of the hardware data or a kind of machine without one.
std::vector<Machine> read_expected_answers(const char* path);

}  // namespace proof
