// Every number of an explanation against the answer of the library's exports, and the record made
// of them against the library's, byte by byte.
//
// The explanation is made in this process, of the chip's row and the request alone; the answer is
// the built library's, loaded for a GPU of that chip.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <set>

#include "tests/harness/chips.h"
#include "tests/harness/edges.h"
#include "tests/harness/gpu.h"
#include "tests/tools/exported_layout.h"
#include "tools/explanation/explain_surface.h"
#include "tools/explanation/explain_words.h"
#include "tools/explanation/explained_record.h"
#include "tools/explanation/explanation_check.h"
#include "tools/explanation/fault_forecast.h"

namespace {

using tool::Explanation;
using tool::Quantity;
using tool::Step;
using tool::SurfaceRequest;
using tool_test::lay_out;
using tool_test::row_of;

constexpr uint64_t kEveryFlag = LAYOUT_FLAG_UBWC | LAYOUT_FLAG_EXTRA | LAYOUT_FLAG_EXTENDED;

// Widths and heights at the edges of what the rules step by: tiles, units of 64, blocks, the
// threshold of padding, its spans and repetitions, the limit of pitches, and products that wrap.
constexpr tool::SurfaceSize kSizes[] = {
    {1, 1, 1},          {15, 17, 1},         {63, 33, 2},
    {64, 16, 1},        {65, 15, 3},         {100, 100, 1},
    {128, 64, 6},       {129, 31, 1},        {512, 300, 1},
    {1023, 32, 2},      {1921, 1080, 1},     {2047, 65, 1},
    {2048, 129, 1},     {2049, 1, 1},        {4096, 4096, 1},
    {4160, 63, 1},      {16384, 16384, 1},   {16385, 12, 1},
    {65536, 65536, 2},  {33554432, 3, 2048}, {0x10000000, 2, 1},
    {0x7FFFFFFF, 1, 1}, {1, 0x7FFFFFFF, 1},  {0x7FFFFFFF, 0x7FFFFFFF, 0x7FFFFFFF}};

// One in so many formats, and so many sizes of each: all of them where nothing slows calls down.
constexpr uint32_t kFormatStride = KORVEL_EXPLANATION_STRIDE;

std::string text_of(const SurfaceRequest& request) {
  return tool::request_label(request);
}

// Subjects that start from a number of the request, the format or the chip.
const std::set<std::string> kFirstSubjects = {"width",       "height",           "element size",
                                              "flag buffer", "flag width",       "flag height",
                                              "alignment",   "extra slice pitch"};

// Steps go on from numbers of the request or of steps in front of them, without a gap.
void expect_unbroken(const Explanation& explanation, const SurfaceRequest& request) {
  for (std::size_t i = 0; i < explanation.steps.size(); ++i) {
    const Step& step = explanation.steps[i];
    ASSERT_FALSE(step.subject.empty() || step.rule.empty() || step.fact.empty())
        << "step " << i + 1 << " of " << text_of(request);
    for (const std::size_t input : step.inputs) ASSERT_LT(input, i) << text_of(request);
    if (!step.continues) {
      ASSERT_TRUE(kFirstSubjects.contains(step.subject) || step.before.value == 0)
          << step.subject << ", step " << i + 1 << " of " << text_of(request);
      continue;
    }
    ASSERT_LT(*step.continues, i) << text_of(request);
    const Quantity& after = explanation.steps[*step.continues].after;
    ASSERT_TRUE(after.value == step.before.value && after.unit == step.before.unit)
        << step.subject << ", step " << i + 1 << " of " << text_of(request) << ": starts from "
        << step.before.value << ", but step " << *step.continues + 1 << " comes to " << after.value;
  }
}

// A word comes about in one step, which says why.
void expect_unbroken_words(const Explanation& words, const SurfaceRequest& request) {
  for (const Step& step : words.steps) {
    ASSERT_FALSE(step.subject.empty() || step.rule.empty() || step.fact.empty() ||
                 step.field.empty())
        << step.field << " of " << text_of(request);
    ASSERT_TRUE(step.inputs.empty() && step.before.value == step.after.value) << step.field;
  }
}

struct Compared {
  std::size_t layouts = 0;
  std::size_t fields = 0;
  std::size_t words = 0;
  std::size_t wrapped = 0;  // layouts with a number that wraps
};

void compare(harness::Gpu& gpu, const korvel::ChipRow& chip, const SurfaceRequest& request,
             Compared& compared) {
  if (!tool::forecast_fault(chip, request).empty()) return;
  LayoutMetadata blob;
  if (!lay_out(gpu, request, blob)) return;
  const Explanation explanation = tool::explain_surface(chip, request);
  const tool::Comparison comparison = tool::compare(explanation, blob);
  ASSERT_EQ(comparison.disagreement, "") << text_of(request) << " on family " << chip.family_id;
  expect_unbroken(explanation, request);
  // Words go by few facts: one layout in so many is enough of them.
  if (compared.layouts % 7 == 0) {
    const Explanation words = tool::explain_words(chip, request, explanation);
    const tool::Comparison further = tool::compare(words, tool::further_words(blob));
    ASSERT_EQ(further.disagreement, "") << text_of(request) << " on family " << chip.family_id;
    expect_unbroken_words(words, request);
    compared.words += further.compared;
  }
  const MemoryLayout record = tool::explained_record(chip, request, explanation);
  ASSERT_EQ(std::memcmp(&record, &blob.layout, sizeof record), 0) << text_of(request);
  ++compared.layouts;
  compared.fields += comparison.compared;
  for (const Step& step : explanation.steps) {
    if (!step.wrapped) continue;
    ++compared.wrapped;
    break;
  }
}

// Every format has a layout on each of the three families, in each of the modes that it allows.
void report(const Compared& compared, std::size_t least_layouts) {
  std::printf("%zu layouts, %zu fields and %zu further words compared; numbers wrap in %zu\n",
              compared.layouts, compared.fields, compared.words, compared.wrapped);
  EXPECT_GE(compared.layouts, least_layouts);
  EXPECT_GE(compared.fields,
            11 * compared.layouts);  // of one plane, without flags and extra buffer
  // 6 of the header, 17 in front of the levels, 2 or more behind, of one layout in 7.
  EXPECT_GE(compared.words, 25 * (compared.layouts / 7));
  EXPECT_GT(compared.wrapped, 0U);
  EXPECT_LT(compared.wrapped, compared.layouts);
}

class Explanations : public testing::TestWithParam<uint32_t> {
 protected:
  const harness::ChipData& data_ = harness::full_chip(GetParam());
  const korvel::ChipRow& chip_ = row_of(data_.chip_id);
  harness::Gpu gpu_{data_.chip_id};
  Compared compared_;
};

// Formats x modes x samples x sizes; planes and flags take turns, so that each format has them all.
TEST_P(Explanations, OfSingleLevels) {
  for (uint32_t format = 1; format < 722; format += kFormatStride) {
    for (const uint32_t samples : {1U, 2U, 4U, 8U}) {
      for (const uint32_t tiling_mode : {KORVEL_TILING_LINEAR, KORVEL_TILING_TILED}) {
        for (std::size_t i = 0; i < std::size(kSizes); ++i) {
          SurfaceRequest request;
          request.format = format;
          request.size = kSizes[i];
          request.samples = samples;
          request.tiling_mode = tiling_mode;
          request.flags = i % 2 == 0 ? kEveryFlag : i % 3 == 0 ? 0 : LAYOUT_FLAG_UBWC;
          request.planes = i % 5 == 4 ? static_cast<uint32_t>(i % 4) : tool::own_planes(format);
          compare(gpu_, chip_, request, compared_);
          if (HasFatalFailure()) return;
        }
      }
    }
    gpu_.take_messages();
  }
  // 721 formats, of which 12 are of depth and have no linear layout, 8 pairs, and the sizes, but
  // for the few requests that would fault.
  report(compared_, 700 / kFormatStride * 8 * std::size(kSizes) * 9 / 10);
}

TEST_P(Explanations, OfChains) {
  for (uint32_t format = 1; format < 722; format += kFormatStride) {
    for (const uint32_t samples : {1U, 4U}) {
      for (const uint32_t tiling_mode : {KORVEL_TILING_LINEAR, KORVEL_TILING_TILED}) {
        for (std::size_t i = 0; i < 4; ++i) {
          constexpr uint32_t kLevels[] = {1, 3, 7, 15};
          SurfaceRequest request;
          request.format = format;
          request.size = kSizes[(format * 5 + samples + i * 7) % std::size(kSizes)];
          request.samples = samples;
          request.tiling_mode = tiling_mode;
          request.flags = i % 2 == 0 ? kEveryFlag : 0;
          request.planes = i == 3 ? format % 4 : tool::own_planes(format);
          request.levels = kLevels[(format + i) % 4];
          compare(gpu_, chip_, request, compared_);
          if (HasFatalFailure()) return;
        }
      }
    }
    gpu_.take_messages();
  }
  report(compared_, 700 / kFormatStride * 16 * 9 / 10);
}

INSTANTIATE_TEST_SUITE_P(Families, Explanations, testing::Values(5U, 6U, 7U),
                         [](const auto& family) {
                           return "Family" + std::to_string(family.param);
                         });

// Columns that a chip is not in, chips whose surfaces the rules do not know, and no chip at all.
TEST(ExplanationsOfEveryChip, OfSomeFormats) {
  Compared compared;
  std::set<uint32_t> chips = {harness::kUnknownChip, 0};
  for (const korvel::ChipData& chip : korvel::kChipData) chips.insert(chip.chip_id);
  for (const uint32_t chip_id : chips) {
    harness::Gpu gpu(chip_id);
    // 28: plain; 71: blocks; 103: two planes; 40: depth; 508: 3 bytes; 670: whole 64 rows.
    for (const uint32_t format : {28U, 71U, 103U, 40U, 508U, 670U}) {
      for (const uint32_t tiling_mode : {KORVEL_TILING_LINEAR, KORVEL_TILING_TILED}) {
        for (const std::optional<uint32_t> levels :
             {std::optional<uint32_t>(), std::optional<uint32_t>(4)}) {
          for (const tool::SurfaceSize size :
               {tool::SurfaceSize{100, 60, 2}, tool::SurfaceSize{65536, 65536, 1}}) {
            SurfaceRequest request;
            request.format = format;
            request.size = size;
            request.tiling_mode = tiling_mode;
            request.flags = kEveryFlag;
            request.planes = tool::own_planes(format);
            request.levels = levels;
            compare(gpu, row_of(chip_id), request, compared);
            if (testing::Test::HasFatalFailure()) FAIL() << "chip 0x" << std::hex << chip_id;
          }
        }
      }
    }
    gpu.take_messages();
  }
  // 6 formats, 5 of them linear too: 11 x 2 x 2.
  report(compared, chips.size() * 44 * 9 / 10);
}

// The comparison itself: it sees a number that is off by one, a field without a step, and a step
// without a field.
TEST(ExplanationCheck, SeesWhatDisagrees) {
  const korvel::ChipRow& chip = row_of(harness::full_chip(6).chip_id);
  harness::Gpu gpu(chip.chip_id);
  SurfaceRequest request;
  request.format = 28;
  request.size = {100, 100, 1};
  LayoutMetadata blob;
  ASSERT_TRUE(lay_out(gpu, request, blob));
  const Explanation right = tool::explain_surface(chip, request);
  ASSERT_EQ(tool::compare(right, blob).disagreement, "");
  std::size_t tried = 0;
  for (std::size_t i = 0; i < right.steps.size(); ++i) {
    if (right.steps[i].field.empty()) continue;
    ++tried;
    Explanation off = right;
    ++off.steps[i].after.value;
    EXPECT_NE(tool::compare(off, blob).disagreement.find(right.steps[i].field), std::string::npos);
    Explanation without = right;
    without.steps[i].field.clear();
    EXPECT_EQ(tool::compare(without, blob).disagreement,
              "no step leads to " + right.steps[i].field);
    Explanation twice = right;
    twice.steps.push_back(right.steps[i]);
    EXPECT_NE(tool::compare(twice, blob).disagreement, "");
    Explanation further = right;
    further.steps.push_back(right.steps[i]);
    further.steps.back().field = "level[7].size";
    EXPECT_NE(tool::compare(further, blob).disagreement, "");
  }
  EXPECT_EQ(tried, 12U);
}

// The steps to one field are those that it needs, and end with it.
TEST(StepsTo, OneField) {
  const korvel::ChipRow& chip = row_of(harness::full_chip(6).chip_id);
  SurfaceRequest request;
  request.format = 28;
  request.size = {100, 100, 1};
  request.levels = 3;
  const Explanation whole = tool::explain_surface(chip, request);
  const Explanation part = tool::steps_to(whole, "level[2].plane[0].image_pitch");
  ASSERT_FALSE(part.steps.empty());
  EXPECT_LT(part.steps.size(), whole.steps.size());
  EXPECT_EQ(part.steps.back().field, "level[2].plane[0].image_pitch");
  // 100 texels go up to 128, of which level 2 has 32: a tile of 64 elements, 4 bytes each.
  EXPECT_EQ(part.steps.back().after.value, 64 * 4);
  for (const Step& step : part.steps) {
    EXPECT_EQ(step.place.level, 2U);
    EXPECT_NE(step.subject, "height");
    for (const std::size_t input : step.inputs) EXPECT_LT(input, part.steps.size());
  }
  EXPECT_TRUE(tool::steps_to(whole, "level[3].plane[0].image_pitch").steps.empty());
  EXPECT_TRUE(tool::steps_to(whole, "").steps.empty());
}

}  // namespace
