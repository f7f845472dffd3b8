// The chip rows as JSON and as a table.
#include <gtest/gtest.h>

#include <iomanip>
#include <set>
#include <sstream>

#include "identify/hardware_data.h"
#include "tests/harness/chips.h"
#include "tests/tools/json_words.h"
#include "tests/tools/run_tool.h"

namespace tool_test {
namespace {

using nlohmann::json;

std::set<std::string> keys_of(const json& object) {
  std::set<std::string> keys;
  for (const auto& item : object.items()) keys.insert(item.key());
  return keys;
}

const std::set<std::string> kNumbers = {
    "chip_id",           "family_id",           "model_code",          "rev_id",
    "max_surface_pitch", "extra_padding_units", "extra_padding_factor"};
const std::set<std::string> kHexTexts = {"chip_id_hex", "model_code_hex", "rev_id_hex"};
const std::set<std::string> kBooleans = {"supported",  "ubwc_never", "ubwc_depth_excluded",
                                         "ubwc_yuv_a", "ubwc_yuv_b", "ubwc_yuv16",
                                         "yuv16_ext",  "p016",       "family5_sample_excluded"};
const std::set<std::string> kColumns = {
    "base_alignment",       "linear_alignment",      "aux_alignment",    "small_alignment",
    "pixel_alignment",      "tiled_alignment",       "min_level_extent", "level_offset_alignment",
    "level_size_alignment", "wide_enough_for_tiling"};

TEST(Chips, JsonHasExactlyTheseKeys) {
  const json chips = json_of("chips").at("chips");
  ASSERT_EQ(chips.size(), std::size(korvel::kChipData));
  std::set<std::string> expected = {"columns"};
  expected.insert(kNumbers.begin(), kNumbers.end());
  expected.insert(kHexTexts.begin(), kHexTexts.end());
  expected.insert(kBooleans.begin(), kBooleans.end());
  for (const json& chip : chips) {
    EXPECT_EQ(keys_of(chip), expected);
    EXPECT_EQ(keys_of(chip.at("columns")), kColumns);
    for (const std::string& key : kNumbers) EXPECT_TRUE(chip.at(key).is_number_unsigned()) << key;
    for (const std::string& key : kBooleans) EXPECT_TRUE(chip.at(key).is_boolean()) << key;
    for (const json& column : chip.at("columns")) EXPECT_TRUE(column.is_boolean());
  }
}

TEST(Chips, JsonHoldsTheRows) {
  const json chips = json_of("chips").at("chips");
  for (std::size_t i = 0; i < chips.size(); ++i) {
    const korvel::ChipData& row = korvel::kChipData[i];
    const json& chip = chips.at(i);
    expect_word(chip, "chip_id", row.chip_id);
    expect_word(chip, "rev_id", row.rev_id);
    EXPECT_EQ(std::stoul(chip.at("chip_id_hex").get<std::string>(), nullptr, 16), row.chip_id);
    EXPECT_EQ(std::stoul(chip.at("model_code_hex").get<std::string>(), nullptr, 16),
              row.model_code);
    EXPECT_EQ(std::stoul(chip.at("rev_id_hex").get<std::string>(), nullptr, 16), row.rev_id);
    EXPECT_EQ(chip.at("supported"), row.supported);
    EXPECT_EQ(chip.at("columns").at("aux_alignment"), row.columns.aux_alignment);
    EXPECT_EQ(chip.at("columns").at("wide_enough_for_tiling"), row.columns.wide_enough_for_tiling);
    EXPECT_EQ(chip.at("ubwc_yuv16"), row.ubwc.yuv16);
    expect_word(chip, "max_surface_pitch",
                static_cast<uint64_t>(harness::model_of(row).max_surface_pitch));
    expect_word(chip, "extra_padding_factor", harness::model_of(row).extra_padding_factor);
    EXPECT_EQ(chip.at("p016"), harness::model_of(row).p016);
  }
}

TEST(Chips, TableNamesEveryChipAndLetter) {
  const Outcome run = run_tool("chips");
  EXPECT_EQ(run.exit_code, 0);
  for (const korvel::ChipData& chip : korvel::kChipData) {
    std::ostringstream id;
    id << "\n0x" << std::uppercase << std::hex << std::setfill('0') << std::setw(8) << chip.chip_id;
    EXPECT_NE(run.out.find(id.str()), std::string::npos) << id.str();
  }
  for (const std::string& column : kColumns) {
    EXPECT_NE(run.out.find(column), std::string::npos) << column;
  }
}

}  // namespace
}  // namespace tool_test
