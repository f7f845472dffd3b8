// One machine twice: the library on the simulator, and the reference on the same chip's facts.
#pragma once

#include <cstdint>
#include <functional>
#include <random>
#include <vector>

#include "identify/hardware_data.h"
#include "tests/harness/gpu.h"
#include "tests/reference/chip_facts.h"
#include "tests/reference/reference.h"

namespace comparison {

// Both sides of one machine.
class Pair {
 public:
  explicit Pair(const reference::ChipFacts& facts);
  explicit Pair(const korvel::ChipData& chip) : Pair(facts_of(chip)) {}

  harness::Gpu gpu;
  reference::Process process;

  // Expects that both sides said the same since the last call, and called the same services.
  void expect_equal_reports();

  // Expects that the library's side of a call ends in the division fault that ended the
  // reference's.
  void expect_fault(const std::function<void()>& call);
};

// Runs the reference. False when the rules end in a division by zero.
template <typename Call>
bool reference_answers(Call call) {
  try {
    call();
    return true;
  } catch (const reference::DivisionFault&) {
    return false;
  }
}

// Random arguments that visit what rules single out more often than chance would.
class Arguments {
 public:
  explicit Arguments(uint64_t seed) : random_(seed) {}

  uint32_t below(uint32_t bound) { return static_cast<uint32_t>(random_() % bound); }
  bool one_in(uint32_t n) { return below(n) == 0; }
  uint32_t format();
  int32_t size();         // widths and heights
  int32_t likely_size();  // the same, mostly small enough for a real surface
  // Where that many blocks of so many texels wrap 32 bits or change their sign.
  int32_t size_at_block_wrap(uint32_t block_texels);
  uint32_t samples();
  uint32_t layout_samples();
  uint32_t tiling_mode();
  uint32_t plane();
  uint32_t selector();
  int32_t threshold();
  uint32_t divisor();
  int32_t depth();
  uint64_t layout_flags();
  uint64_t any();

 private:
  std::mt19937_64 random_;
};

// How many times more cases than usual to compare: the environment variable KORVEL_COMPARE_FACTOR,
// 1 without it. Any other value than a number from 1 to 100000 ends the test program.
uint32_t factor();

}  // namespace comparison
