// What a chip's model adds to or takes from its family's formats.
#pragma once

#include <cstdint>

#include "identify/hardware_data.h"

namespace korvel {

constexpr bool model_has(uint32_t model_code, bool ModelData::*capability) {
  for (const ModelData& model : kModelData) {
    if (model.model_code == model_code) return model.*capability;
  }
  return false;
}

// 16-bit two-plane YUV in unsigned-normalised and unsigned-integer forms: formats 709-714.
constexpr bool model_supports_yuv16_ext(uint32_t model_code) {
  return model_has(model_code, &ModelData::yuv16_ext);
}

// P016 and its relatives: formats 105 and 715-721.
constexpr bool model_supports_p016(uint32_t model_code) {
  return model_has(model_code, &ModelData::p016);
}

// Two models of family 5 do not sample the formats of kSampleExclusions.
constexpr bool model_excludes_sampling(uint32_t model_code) {
  return model_has(model_code, &ModelData::family5_sample_excluded);
}

}  // namespace korvel
