// The library's hardware data against chip_rows.txt, chip by chip and column by column.

#include "tests/reference/chip_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "identify/hardware_data.h"
#include "tests/harness/chips.h"
#include "tests/harness/numbers.h"

namespace {

std::string name_of(uint32_t chip_id) {
  char text[32];
  std::snprintf(text, sizeof text, "chip 0x%08X", chip_id);
  return text;
}

const korvel::FamilyData* family_of(const korvel::ChipData& chip) {
  return std::find_if(
      std::begin(korvel::kFamilyData), std::end(korvel::kFamilyData),
      [&chip](const korvel::FamilyData& family) { return family.family_id == chip.family_id; });
}

// Everything that the three tables say about a chip. Every member is named, so that a new one does
// not compile until it has its column.
std::vector<harness::NamedNumber> numbers_of(const korvel::ChipData& chip) {
  const auto& [chip_id, family_id, model_code, rev_id, columns, supported, ubwc] = chip;
  const auto& [base, linear, aux, small, pixel, tiled, extent, offset, size, wide] = columns;
  const auto& [never, depth_excluded, yuv_a, yuv_b, yuv16] = ubwc;
  const auto& [code_of_model, pitch, factor, yuv16_ext, p016, sample_excluded] =
      harness::model_of(chip);
  const korvel::FamilyData* const family = family_of(chip);
  if (family == std::end(korvel::kFamilyData)) return {};
  const auto& [id_of_family, units] = *family;
  EXPECT_EQ(code_of_model, model_code);
  EXPECT_EQ(id_of_family, family_id);
  return {{"chip_id", chip_id},
          {"family", family_id},
          {"model", model_code},
          {"revision", rev_id},
          {"base", base},
          {"linear", linear},
          {"aux", aux},
          {"small", small},
          {"pixel", pixel},
          {"tiled", tiled},
          {"extent", extent},
          {"offset", offset},
          {"size", size},
          {"wide", wide},
          {"supported", supported},
          {"never", never},
          {"no_depth", depth_excluded},
          {"yuv_a", yuv_a},
          {"yuv_b", yuv_b},
          {"yuv16", yuv16},
          {"ext16", yuv16_ext},
          {"p016", p016},
          {"no_bc", sample_excluded},
          {"pitch", static_cast<uint32_t>(pitch)},
          {"units", units},
          {"factor", factor}};
}

TEST(ChipRows, AreThoseOfTheHardwareData) {
  const reference::ChipRows& rows = reference::chip_rows();
  ASSERT_EQ(rows.names[0], "chip_id");
  std::set<uint32_t> compared;
  for (const korvel::ChipData& chip : korvel::kChipData) {
    const std::string name = name_of(chip.chip_id);
    const auto listed =
        std::find_if(rows.chips.begin(), rows.chips.end(),
                     [&chip](const std::vector<uint32_t>& row) { return row[0] == chip.chip_id; });
    if (listed == rows.chips.end()) {
      ADD_FAILURE() << "chip_rows.txt has no " << name;
      continue;
    }
    const std::vector<harness::NamedNumber> numbers = numbers_of(chip);
    ASSERT_EQ(numbers.size(), rows.names.size()) << name;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      ASSERT_EQ(numbers[i].name, rows.names[i]);
      EXPECT_NUMBER_NAMED(name + ", " + numbers[i].name, numbers[i].value, (*listed)[i]);
    }
    compared.insert(chip.chip_id);
  }
  for (const std::vector<uint32_t>& row : rows.chips) {
    EXPECT_EQ(compared.count(row[0]), 1U) << "the hardware data has no " << name_of(row[0]);
  }
  EXPECT_EQ(rows.chips.size(), std::size(korvel::kChipData));
  EXPECT_EQ(compared.size(), std::size(korvel::kChipData));
}

// Models and families are seen through their chips.
TEST(ChipRows, ReachEveryModelAndFamily) {
  for (const korvel::ModelData& model : korvel::kModelData) {
    EXPECT_TRUE(std::any_of(
        std::begin(korvel::kChipData), std::end(korvel::kChipData),
        [&model](const korvel::ChipData& chip) { return &harness::model_of(chip) == &model; }))
        << "model " << model.model_code;
  }
  for (const korvel::FamilyData& family : korvel::kFamilyData) {
    EXPECT_TRUE(
        std::any_of(std::begin(korvel::kChipData), std::end(korvel::kChipData),
                    [&family](const korvel::ChipData& chip) { return family_of(chip) == &family; }))
        << "family " << family.family_id;
  }
}

TEST(ChipRows, AreTheFactsOfTheReference) {
  // A chip in no row has none of them. (Where there are no processes, only the chips are tried.)
  EXPECT_DEATH_IF_SUPPORTED(reference::listed_chip(harness::kUnknownChip),
                            "has no chip 0x12345678");
  for (const korvel::ChipData& chip : korvel::kChipData) {
    const reference::ChipFacts facts = reference::listed_chip(chip.chip_id);
    EXPECT_TRUE(facts.known);
    EXPECT_NUMBER(facts.rev_id, chip.rev_id);
  }
}

}  // namespace
