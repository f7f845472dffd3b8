#include "tests/reference/comparison.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <system_error>

#include "tests/harness/chips.h"
#include "tests/harness/faults.h"

namespace comparison {

Pair::Pair(const reference::ChipFacts& facts) : gpu(facts.chip_id) {
  process.chip = facts;
}

void Pair::expect_fault(const std::function<void()>& call) {
  EXPECT_TRUE(harness::ends_in_division_fault(call));
  process.messages.clear();
}

void Pair::expect_equal_reports() {
  std::vector<harness::Message> expected;
  for (const reference::Message& m : process.messages) {
    expected.push_back(harness::message(m.function, m.text));
  }
  EXPECT_EQ(gpu.take_messages(), expected);
  process.messages.clear();

  std::vector<std::string> calls;
  for (const std::string& call : process.service_calls) {
    if (call.starts_with("os_")) continue;
    // Handles are the simulator's own numbers.
    const bool takes_handle =
        call.starts_with("hxl_device_close") || call.starts_with("hxl_device_getinfo");
    calls.push_back(takes_handle ? call.substr(0, call.find('(')) + "(device)" : call);
  }
  std::vector<std::string> actual_calls = gpu.take_calls();
  for (std::string& call : actual_calls) {
    if (call.starts_with("hxl_device_getinfo_ext")) call = "hxl_device_getinfo_ext(device)";
  }
  EXPECT_EQ(actual_calls, calls);
  process.service_calls.clear();
}

uint32_t Arguments::format() {
  switch (below(16)) {
    case 0: return 722 + below(80);
    case 1: return one_in(2) ? 0x37425857 : static_cast<uint32_t>(random_());
    case 2: {
      constexpr uint32_t kSingledOut[] = {20,  28,  68,  69,  71,  103, 104, 105, 107, 551, 614,
                                          615, 619, 654, 655, 656, 657, 658, 659, 660, 661, 662,
                                          666, 670, 678, 709, 712, 717, 508, 523, 6,   40};
      return kSingledOut[below(std::size(kSingledOut))];
    }
    default: return below(722);
  }
}

int32_t Arguments::size() {
  switch (below(16)) {
    case 0: return static_cast<int32_t>(random_());
    case 1: return -static_cast<int32_t>(below(3));
    case 2: return static_cast<int32_t>(0x7FFFFFFF - below(200));
    case 3: return static_cast<int32_t>(below(1U << 28));
    default: return likely_size();
  }
}

int32_t Arguments::likely_size() {
  switch (below(4)) {
    case 0: return static_cast<int32_t>(1 + below(70));
    case 1: {
      // Around powers of two and multiples of them.
      const uint32_t step = 16U << below(9);
      return static_cast<int32_t>(std::max(1U, step * (1 + below(4)) + 2 - below(5)));
    }
    default: return static_cast<int32_t>(1 + below(17000));
  }
}

int32_t Arguments::size_at_block_wrap(uint32_t block_texels) {
  // Mostly in the last tile before it, else in one that extra rows bring there.
  const int64_t wrap = int64_t{1 + below(block_texels)} << 31;
  const int64_t size = wrap / block_texels + 4 - below(one_in(3) ? 300 : 40);
  return static_cast<int32_t>(std::clamp(size, int64_t{0}, int64_t{0x7FFFFFFF}));
}

uint32_t Arguments::samples() {
  if (one_in(40)) return static_cast<uint32_t>(random_());
  return one_in(3) ? below(17) : 1U << below(4);
}

uint32_t Arguments::layout_samples() {
  return one_in(20) ? below(18) : 1U << below(4);
}

uint32_t Arguments::tiling_mode() {
  return one_in(10) ? below(4) : below(2);
}

uint32_t Arguments::plane() {
  return one_in(20) ? static_cast<uint32_t>(random_()) : below(4);
}

uint32_t Arguments::selector() {
  return below(4);
}

int32_t Arguments::threshold() {
  switch (below(6)) {
    case 0: return static_cast<int32_t>(random_());
    case 1: return 0;
    case 2: return -1;
    case 3: return 0x7FFFFFFF;
    case 4: return static_cast<int32_t>(below(70000));
    default: return 512;
  }
}

uint32_t Arguments::divisor() {
  switch (below(6)) {
    case 0: return below(70);
    case 1: return static_cast<uint32_t>(random_());
    default: return 1U << below(8);
  }
}

int32_t Arguments::depth() {
  switch (below(12)) {
    case 0: return -static_cast<int32_t>(below(5));
    case 1: return static_cast<int32_t>(random_());
    case 2: return static_cast<int32_t>(1 + below(4096));
    default: return static_cast<int32_t>(1 + below(8));
  }
}

uint64_t Arguments::layout_flags() {
  uint64_t flags = one_in(4) ? random_() & ~(LAYOUT_FLAG_UBWC | LAYOUT_FLAG_EXTRA) : 0;
  if (one_in(2)) flags |= LAYOUT_FLAG_UBWC;
  if (one_in(3)) flags |= LAYOUT_FLAG_EXTRA;
  if (one_in(3)) flags |= LAYOUT_FLAG_EXTENDED;
  return flags;
}

uint64_t Arguments::any() {
  return random_();
}

uint32_t factor() {
  // Times the cases of any comparison, it stays within 32 bits.
  constexpr uint32_t kMost = 100'000;
  const char* text = std::getenv("KORVEL_COMPARE_FACTOR");
  if (text == nullptr) return 1;
  uint32_t factor = 0;
  const char* end = text + std::strlen(text);
  const std::from_chars_result parsed = std::from_chars(text, end, factor);
  if (parsed.ec == std::errc() && parsed.ptr == end && factor >= 1 && factor <= kMost) {
    return factor;
  }
  std::fprintf(stderr, "KORVEL_COMPARE_FACTOR is '%s'; unset it or give a number from 1 to %u\n",
               text, kMost);
  std::exit(2);
}

}  // namespace comparison
