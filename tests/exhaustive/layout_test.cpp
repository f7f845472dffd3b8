// Blobs of single-level surfaces and mip chains against the reference on whole products of their
// arguments, byte by byte.

#include <gtest/gtest.h>

#include <cstring>
#include <iterator>

#include "tests/exhaustive/scale.h"
#include "tests/harness/chips.h"
#include "tests/harness/edges.h"
#include "tests/harness/fault_trap.h"
#include "tests/reference/comparison.h"

namespace {

using comparison::Pair;
using exhaustive::format_stride;

constexpr uint64_t kEveryFlag = LAYOUT_FLAG_UBWC | LAYOUT_FLAG_EXTRA | LAYOUT_FLAG_EXTENDED;
constexpr uint64_t kFlags[] = {0, LAYOUT_FLAG_UBWC, LAYOUT_FLAG_EXTRA, LAYOUT_FLAG_EXTENDED,
                               kEveryFlag};
constexpr int32_t kSizes[] = {1, 63, 100, 1921};

struct Surface {
  int32_t width, height, depth;
  uint32_t format, samples, tiling_mode;
  uint64_t flags;
  uint32_t planes, levels;
};

std::ostream& operator<<(std::ostream& out, const Surface& s) {
  return out << "size " << s.width << " x " << s.height << " x " << s.depth << " format "
             << s.format << " samples " << s.samples << " tiling " << s.tiling_mode << " flags "
             << std::hex << s.flags << std::dec << " planes " << s.planes << " levels " << s.levels;
}

// Both sides of one machine, and a blob for each.
class Blobs {
 public:
  explicit Blobs(const korvel::ChipData& chip) : pair_(chip) {
    EXPECT_EQ(pair_.gpu->get_gpu_pixel_alignment(),
              reference::get_gpu_pixel_alignment(pair_.process));
    pair_.expect_equal_reports();
  }

  bool compare_single_level(const Surface& s) {
    preset();
    uint32_t status = 0;
    uint32_t expected_status = 0;
    return compare(
               s,
               [&] {
                 status = pair_.gpu->korvel_init_memory_layout(&actual_, s.width, s.height, s.depth,
                                                               s.format, s.samples, s.tiling_mode,
                                                               s.flags, s.planes);
               },
               [&] {
                 expected_status = reference::korvel_init_memory_layout(
                     pair_.process, &expected_, s.width, s.height, s.depth, s.format, s.samples,
                     s.tiling_mode, s.flags, s.planes);
               }) &&
           status == expected_status;
  }

  bool compare_mip_chain(const Surface& s) {
    preset();
    for (LayoutMetadata* blob : {&actual_, &expected_}) {
      blob->layout.levels = s.levels;
      blob->layout.size = KORVEL_LAYOUT_BYTES_VERSION_3;
      blob->layout.alignment = 4096;
    }
    const auto width = static_cast<uint32_t>(s.width);
    const auto height = static_cast<uint32_t>(s.height);
    return compare(
        s,
        [&] {
          pair_.gpu->korvel_init_multi_level_surface(&actual_.layout, width, height, s.depth,
                                                     s.format, s.samples, s.tiling_mode, s.flags,
                                                     s.planes);
        },
        [&] {
          reference::korvel_init_multi_level_surface(pair_.process, &expected_.layout, width,
                                                     height, s.depth, s.format, s.samples,
                                                     s.tiling_mode, s.flags, s.planes);
        });
  }

  void expect_equal_reports() { pair_.expect_equal_reports(); }
  uint64_t calls() const { return calls_; }

 private:
  void preset() {
    std::memset(&actual_, 0x5A, sizeof actual_);
    std::memset(&expected_, 0x5A, sizeof expected_);
  }

  template <typename LibraryCall, typename ReferenceCall>
  bool compare(const Surface& s, LibraryCall library, ReferenceCall reference) {
    ++calls_;
    const bool expected = comparison::reference_answers(reference);
    const bool answered = trap_.answers(library);
    if (answered == expected &&
        (!answered || std::memcmp(&actual_, &expected_, sizeof actual_) == 0)) {
      return true;
    }
    ADD_FAILURE() << s;
    return false;
  }

  Pair pair_;
  harness::FaultTrap trap_;
  LayoutMetadata actual_;
  LayoutMetadata expected_;
  uint64_t calls_ = 0;
};

void report(uint64_t calls) {
  std::printf("%llu blobs compared\n", static_cast<unsigned long long>(calls));
  EXPECT_GT(calls, 1000U);
}

class EveryLayout : public testing::TestWithParam<uint32_t> {
 protected:
  Blobs blobs_{harness::full_chip(GetParam())};
};

// Messages that both sides have reported are compared format by format.
TEST_P(EveryLayout, OfASingleLevel) {
  for (uint32_t format = 0; format < 724; format += format_stride()) {
    for (const uint32_t samples : {1U, 2U, 4U, 8U}) {
      for (const uint32_t tiling_mode : {0U, 1U, 2U}) {
        for (const uint32_t planes : {1U, 2U, 3U}) {
          for (const uint64_t flags : kFlags) {
            const uint32_t turn = format + samples + planes;
            for (uint32_t i = 0; i < (exhaustive::is_full() ? std::size(kSizes) : 1); ++i) {
              const Surface s = {kSizes[(turn + i) % 4],
                                 kSizes[turn / 2 % 4],
                                 1 + static_cast<int32_t>(turn % 3),
                                 format,
                                 samples,
                                 tiling_mode,
                                 flags,
                                 planes,
                                 1};
              if (!blobs_.compare_single_level(s)) return;
            }
          }
        }
      }
    }
    blobs_.expect_equal_reports();
    if (HasFailure()) return;
  }
  report(blobs_.calls());
}

TEST_P(EveryLayout, OfAMipChain) {
  for (uint32_t format = 0; format < 724; format += format_stride()) {
    for (const uint32_t samples : {1U, 4U}) {
      for (const uint32_t tiling_mode : {0U, 1U}) {
        for (const uint32_t planes : {1U, 2U, 3U}) {
          for (const uint64_t flags : {uint64_t{0}, kEveryFlag}) {
            for (const uint32_t levels : {1U, 7U, 15U}) {
              const uint32_t turn = format + samples + levels;
              const Surface s = {kSizes[turn % 4],
                                 kSizes[turn / 2 % 4],
                                 1 + static_cast<int32_t>(turn % 3),
                                 format,
                                 samples,
                                 tiling_mode,
                                 flags,
                                 planes,
                                 levels};
              if (!blobs_.compare_mip_chain(s)) return;
            }
          }
        }
      }
    }
    blobs_.expect_equal_reports();
    if (HasFailure()) return;
  }
  report(blobs_.calls());
}

INSTANTIATE_TEST_SUITE_P(Families, EveryLayout, testing::Values(5U, 6U, 7U),
                         [](const auto& family) {
                           return "Family" + std::to_string(family.param);
                         });

// Compression sets, property columns and padding go by chip.
TEST(EveryChipsLayout, OfEveryFormat) {
  uint64_t calls = 0;
  for (const korvel::ChipData& chip : korvel::kChipData) {
    Blobs blobs(chip);
    for (uint32_t format = 1; format < 722; format += format_stride()) {
      const uint32_t planes = 1 + format % 3;
      for (const uint32_t tiling_mode : {0U, 1U}) {
        const Surface s = {300, 200, 2, format, 1, tiling_mode, kEveryFlag, planes, 3};
        if (!blobs.compare_single_level(s) || (format % 8 == 0 && !blobs.compare_mip_chain(s))) {
          FAIL() << "chip 0x" << std::hex << chip.chip_id;
        }
      }
    }
    blobs.expect_equal_reports();
    calls += blobs.calls();
    if (HasFailure()) FAIL() << "chip 0x" << std::hex << chip.chip_id;
  }
  report(calls);
}

}  // namespace
