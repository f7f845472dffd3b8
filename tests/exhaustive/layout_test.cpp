// Blobs of single-level surfaces and mip chains against the reference on whole products of their
// arguments, byte by byte.

#include <gtest/gtest.h>

#include <cstring>
#include <iterator>

#include "tests/exhaustive/scale.h"
#include "tests/harness/block_edges.h"
#include "tests/harness/chips.h"
#include "tests/harness/fault_trap.h"
#include "tests/reference/comparison.h"
#include "tests/reference/layout_call.h"
#include "tests/reference/rules.h"

namespace {

using comparison::expect_equal_blobs;
using comparison::LayoutCall;
using comparison::Pair;
using exhaustive::format_stride;

constexpr uint64_t kEveryFlag = LAYOUT_FLAG_UBWC | LAYOUT_FLAG_EXTRA | LAYOUT_FLAG_EXTENDED;
constexpr uint64_t kFlags[] = {0, LAYOUT_FLAG_UBWC, LAYOUT_FLAG_EXTRA, LAYOUT_FLAG_EXTENDED,
                               kEveryFlag};
constexpr int32_t kSizes[] = {1, 63, 100, 1921};

// Both sides of one machine, and a blob for each.
class Blobs {
 public:
  explicit Blobs(const korvel::ChipData& chip) : pair_(chip) {
    EXPECT_EQ(pair_.gpu->get_gpu_pixel_alignment(),
              reference::get_gpu_pixel_alignment(pair_.process));
    pair_.expect_equal_reports();
  }

  bool compare_single_level(const LayoutCall& s) {
    preset();
    uint32_t status = 0;
    uint32_t expected_status = 0;
    const bool equal = compare(
        "korvel_init_memory_layout", s,
        [&] {
          status =
              pair_.gpu->korvel_init_memory_layout(&actual_, s.width, s.height, s.depth, s.format,
                                                   s.samples, s.tiling_mode, s.flags, s.planes);
        },
        [&] {
          expected_status = reference::korvel_init_memory_layout(
              pair_.process, &expected_, s.width, s.height, s.depth, s.format, s.samples,
              s.tiling_mode, s.flags, s.planes);
        });
    EXPECT_EQ(status, expected_status) << "korvel_init_memory_layout(" << s << ")";
    return equal && status == expected_status;
  }

  bool compare_mip_chain(const LayoutCall& s) {
    preset();
    for (LayoutMetadata* blob : {&actual_, &expected_}) {
      blob->layout.levels = s.levels;
      blob->layout.size = KORVEL_LAYOUT_BYTES_VERSION_3;
      blob->layout.alignment = 4096;
    }
    const auto width = static_cast<uint32_t>(s.width);
    const auto height = static_cast<uint32_t>(s.height);
    return compare(
        "korvel_init_multi_level_surface", s,
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
  uint32_t extra_rows() const { return reference::extra_height_padding(pair_.process); }

 private:
  void preset() {
    std::memset(&actual_, 0x5A, sizeof actual_);
    std::memset(&expected_, 0x5A, sizeof expected_);
  }

  template <typename LibraryCall, typename ReferenceCall>
  bool compare(const char* entry, const LayoutCall& s, LibraryCall library,
               ReferenceCall reference) {
    ++calls_;
    const bool expected = comparison::reference_answers(reference);
    const bool answered = trap_.answers(library);
    if (answered != expected) {
      ADD_FAILURE() << entry << "(" << s << "): "
                    << (answered ? "an answer, expected the division fault"
                                 : "the division fault, expected an answer");
      return false;
    }
    // What a faulting call stored by then is not fixed.
    return !answered || expect_equal_blobs(entry, s, actual_, expected_);
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
              const LayoutCall s = {kSizes[(turn + i) % 4],
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
              const LayoutCall s = {kSizes[turn % 4],
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

// Heights that wrap when they are counted in texels, on the family's full chip.
TEST_P(EveryLayout, OfEveryBlockHeightWhereItWraps) {
  for (const harness::BlockFormat& block : harness::kBlockFormats) {
    for (const uint64_t flags : {uint64_t{0}, kEveryFlag}) {
      const uint32_t extra_rows = flags != 0 ? blobs_.extra_rows() : 0;
      for (const int32_t height : harness::block_wrap_edges(block.block_height, extra_rows)) {
        for (const uint32_t tiling_mode : {0U, 1U}) {
          const LayoutCall s = {100, height, 1, block.format, 1, tiling_mode, flags, 1, 3};
          if (!blobs_.compare_single_level(s) || !blobs_.compare_mip_chain(s)) return;
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
        const LayoutCall s = {300, 200, 2, format, 1, tiling_mode, kEveryFlag, planes, 3};
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
