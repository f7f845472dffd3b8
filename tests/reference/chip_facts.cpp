#include "tests/reference/chip_facts.h"

#include "tests/harness/chips.h"

namespace comparison {

reference::ChipFacts facts_of(const korvel::ChipData& chip) {
  const korvel::ModelData& model = harness::model_of(chip);
  reference::ChipFacts facts;
  facts.chip_id = chip.chip_id;
  facts.family_id = chip.family_id;
  facts.model_code = chip.model_code;
  facts.rev_id = chip.rev_id;
  facts.known = true;
  facts.supported = chip.supported;
  facts.base_alignment = chip.columns.base_alignment;
  facts.linear_alignment = chip.columns.linear_alignment;
  facts.aux_alignment = chip.columns.aux_alignment;
  facts.small_alignment = chip.columns.small_alignment;
  facts.pixel_alignment = chip.columns.pixel_alignment;
  facts.tiled_alignment = chip.columns.tiled_alignment;
  facts.min_level_extent = chip.columns.min_level_extent;
  facts.level_offset_alignment = chip.columns.level_offset_alignment;
  facts.level_size_alignment = chip.columns.level_size_alignment;
  facts.wide_enough_for_tiling = chip.columns.wide_enough_for_tiling;
  facts.ubwc_never = chip.ubwc.never;
  facts.ubwc_depth_excluded = chip.ubwc.depth_excluded;
  facts.ubwc_yuv_a = chip.ubwc.yuv_a;
  facts.ubwc_yuv_b = chip.ubwc.yuv_b;
  facts.ubwc_yuv16 = chip.ubwc.yuv16;
  facts.yuv16_ext = model.yuv16_ext;
  facts.p016 = model.p016;
  facts.family5_sample_excluded = model.family5_sample_excluded;
  facts.max_surface_pitch = model.max_surface_pitch;
  facts.extra_padding_factor = model.extra_padding_factor;
  for (const korvel::FamilyData& family : korvel::kFamilyData) {
    if (family.family_id == chip.family_id) facts.extra_padding_units = family.extra_padding_units;
  }
  return facts;
}

reference::ChipFacts facts_of_unknown_chip(uint32_t chip_id) {
  reference::ChipFacts facts;
  facts.chip_id = chip_id;
  return facts;
}

}  // namespace comparison
