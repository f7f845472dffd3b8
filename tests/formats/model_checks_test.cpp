// What goes by the chip's model: a code that no row has supports and excludes nothing.

#include "formats/capabilities.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

namespace formats_test {
namespace {

bool has_row(uint32_t model_code) {
  return std::any_of(
      std::begin(korvel::kModelData), std::end(korvel::kModelData),
      [=](const korvel::ModelData& model) { return model.model_code == model_code; });
}

TEST(ModelChecks, FollowTheRows) {
  for (const korvel::ModelData& model : korvel::kModelData) {
    EXPECT_EQ(korvel::model_supports_yuv16_ext(model.model_code), model.yuv16_ext);
    EXPECT_EQ(korvel::model_supports_p016(model.model_code), model.p016);
    EXPECT_EQ(korvel::model_excludes_sampling(model.model_code), model.family5_sample_excluded);
  }
}

TEST(ModelChecks, AreFalseForCodesWithoutARow) {
  const auto expect_false = [](uint32_t model_code) {
    if (has_row(model_code)) return;
    EXPECT_FALSE(korvel::model_supports_yuv16_ext(model_code)) << model_code;
    EXPECT_FALSE(korvel::model_supports_p016(model_code)) << model_code;
    EXPECT_FALSE(korvel::model_excludes_sampling(model_code)) << model_code;
  };
  for (const uint32_t code : {0U, 1U, 0xFFFFU, 0xFFFFFFU, 0xFFFFFFFFU}) expect_false(code);
  for (const korvel::ModelData& model : korvel::kModelData) {
    // A neighbour, the number without its generation byte, a byte above the code.
    expect_false(model.model_code - 1);
    expect_false(model.model_code + 1);
    expect_false(model.model_code & 0xFFFF);
    expect_false(model.model_code | 0x01000000);
    expect_false(model.model_code | 0x80000000);
  }
}

}  // namespace
}  // namespace formats_test
