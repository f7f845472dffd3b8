// Full records with one thing wrong: for each message of the validators at least one.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/fetches/validators.h"

namespace fetches {

template <typename Kind>
struct SingleFault {
  std::string message_begins;
  std::function<void(typename Kind::Record&)> change;  // of a full_record()
};

// Every message of a validator, by the words that the public header gives for it.
template <typename Kind>
std::vector<std::string> messages_of_validator() {
  std::vector<std::string> all = {
      "Metadata has bad signature",
      "Metadata device version mismatch",
      "Metadata driver version mismatch",
      "Size of metadata is mismatched",
      "Metadata alignment is not pot",
      "Metadata surface size is not aligned",
      "Metadata samples invalid count",
      "Metadata levels is invalid value",
      "Metadata format is not recognized",
      "Metadata level size is invalid value",
      "Metadata level slices is invalid value",
      "Metadata level tiled is invalid value",
      "Metadata level planes is invalid value",
      "Metadata level lrz valid bit is invalid value",
      "Metadata level lrz fc valid bit is invalid value",
      "Metadata level lrz valid bits mismatch",
      "Metadata level tiled bit transitioned",
      "Metadata level has linear fallback but",
      "Metadata lrz buffer is present for some levels",
      "Metadata level lrz buffer exceeds surface bounds",
      "Metadata level lrz size mismatch",
      "Metadata level lrz pitch mismatch",
      "Metadata level lrz dimensions are invalid",
      "Metadata level lrz fc buffer exceeds",
      "Metadata level image buffer exceeds surface bounds",
      "Metadata level image size mismatch",
      "Metadata level image pitch mismatch",
      "Metadata level image invalid dimensions",
      "Metadata level flagbuffer valid bit invalid",
      "Metadata level flagbuffer enabled but tiling",
      "Metadata level flagbuffer buffer exceeds",
      "Metadata level flagbuffer pitch mismatch",
      "Metadata level flagbuffer slice pitch mismatch",
  };
  all.push_back(std::is_same_v<Kind, ResourceKind> ? "Metadata memory layout version mismatch"
                                                   : "Metadata guid has invalid value");
  return all;
}

inline void change_word(uint8_t (&uuid)[KORVEL_UUID_BYTES], std::size_t word) {
  uuid[4 * word] ^= 0xFF;
}

template <typename Level>
void make_linear(Level& level) {
  level.tiled = KORVEL_TILING_LINEAR;
  for (auto& plane : level.plane) plane.flag_valid = 0;
}

template <typename Kind>
std::vector<SingleFault<Kind>> header_faults() {
  using R = typename Kind::Record;
  std::vector<SingleFault<Kind>> faults = {
      {"Metadata has bad signature", [](R& r) { r.signature ^= 0x10000; }},
      {"Metadata device version mismatch", [](R& r) { change_word(r.device_uuid, 0); }},
      {"Metadata device version mismatch", [](R& r) { change_word(r.device_uuid, 1); }},
      {"Metadata device version mismatch", [](R& r) { change_word(r.device_uuid, 2); }},
      {"Metadata device version mismatch", [](R& r) { change_word(r.device_uuid, 3); }},
      {"Size of metadata is mismatched", [](R& r) { r.size += 4; }},
      {"Metadata alignment is not pot", [](R& r) { r.alignment = 0; }},
      {"Metadata alignment is not pot", [](R& r) { r.alignment = 0x1800; }},
      {"Metadata surface size is not aligned", [](R& r) { r.total_size = 0; }},
      {"Metadata surface size is not aligned", [](R& r) { ++r.total_size; }},
      {"Metadata samples invalid count", [](R& r) { r.samples = 3; }},
      {"Metadata levels is invalid value", [](R& r) { r.levels = 0; }},
      {"Metadata levels is invalid value", [](R& r) { r.levels = 16; }},
      {"Metadata levels is invalid value", [](R& r) { r.levels = 0xFFFFFFFF; }},
      {"Metadata format is not recognized", [](R& r) { r.format = 722; }},
  };
  if constexpr (std::is_same_v<Kind, ResourceKind>) {
    faults.push_back(
        {"Metadata driver version mismatch", [](R& r) { change_word(r.driver_uuid, 1); }});
    faults.push_back(
        {"Metadata memory layout version mismatch", [](R& r) { change_word(r.driver_uuid, 2); }});
  } else {
    faults.push_back(
        {"Metadata driver version mismatch", [](R& r) { change_word(r.driver_uuid, 0); }});
    faults.push_back({"Metadata guid has invalid value", [](R& r) { r.guid = 0; }});
  }
  return faults;
}

// In level `l`, which is not the first one, and its plane `p`. Further numbers are those of
// tests/records/valid_record.h.
template <typename Kind>
std::vector<SingleFault<Kind>> level_faults(uint32_t l, uint32_t p) {
  using R = typename Kind::Record;
  constexpr uint64_t kFarAway = uint64_t{1} << 40;
  std::vector<SingleFault<Kind>> faults = {
      {"Metadata level size is invalid value", [=](R& r) { r.level[l].size = 0; }},
      {"Metadata level size is invalid value", [=](R& r) { r.level[l].size = kFarAway; }},
      {"Metadata level slices is invalid value", [=](R& r) { r.level[l].slices = 0; }},
      {"Metadata level slices is invalid value", [=](R& r) { r.level[l].slices = 2049; }},
      {"Metadata level tiled is invalid value", [=](R& r) { r.level[l].tiled = 2; }},
      {"Metadata level planes is invalid value", [=](R& r) { r.level[l].planes = 0; }},
      {"Metadata level planes is invalid value", [=](R& r) { r.level[l].planes = 4; }},
      {"Metadata level planes is invalid value", [=](R& r) { r.level[l].planes = 0xFFFFFFFF; }},
      {"Metadata level lrz valid bit is invalid value", [=](R& r) { r.level[l].lrz_valid = 2; }},
      {"Metadata level lrz fc valid bit is invalid value",
       [=](R& r) { r.level[l].lrz_fc_valid = 2; }},
      {"Metadata level lrz valid bits mismatch", [=](R& r) { r.level[l].lrz_valid = 0; }},
      {"Metadata level lrz valid bits mismatch", [=](R& r) { r.level[l].lrz_fc_valid = 0; }},
      {"Metadata level tiled bit transitioned",
       [=](R& r) {
         r.linear_fallback = 1;
         make_linear(r.level[l - 1]);
       }},
      {"Metadata level has linear fallback but", [=](R& r) { make_linear(r.level[l]); }},
      {"Metadata lrz buffer is present for some levels",
       [=](R& r) { r.level[l].lrz_valid = r.level[l].lrz_fc_valid = 0; }},

      {"Metadata level lrz buffer exceeds surface bounds",
       [=](R& r) { r.level[l].lrz_offset = kFarAway; }},
      {"Metadata level lrz size mismatch", [=](R& r) { r.level[l].lrz_size = 1; }},
      {"Metadata level lrz size mismatch", [=](R& r) { r.level[l].lrz_slice_pitch = 1; }},
      // 33 rows of 64 bytes are more than the 0x800 bytes of a slice
      {"Metadata level lrz size mismatch", [=](R& r) { r.level[l].lrz_height = 33; }},
      {"Metadata level lrz pitch mismatch", [=](R& r) { r.level[l].lrz_width = 65; }},
      {"Metadata level lrz pitch mismatch", [=](R& r) { r.level[l].lrz_pitch = 1; }},
      {"Metadata level lrz dimensions are invalid", [=](R& r) { r.level[l].lrz_width = 0; }},
      {"Metadata level lrz dimensions are invalid", [=](R& r) { r.level[l].lrz_height = 0; }},
      {"Metadata level lrz fc buffer exceeds", [=](R& r) { r.level[l].lrz_fc_offset = kFarAway; }},
      {"Metadata level lrz fc buffer exceeds", [=](R& r) { r.level[l].lrz_fc_size = kFarAway; }},

      {"Metadata level image buffer exceeds surface bounds",
       [=](R& r) { r.level[l].plane[p].image_offset = kFarAway; }},
      {"Metadata level image size mismatch", [=](R& r) { r.level[l].plane[p].image_size = 1; }},
      {"Metadata level image size mismatch",
       [=](R& r) { r.level[l].plane[p].image_slice_pitch = 1; }},
      // 64 or, of a surface record, 60 elements of 5 bytes are more than the 256 of a row
      {"Metadata level image pitch mismatch",
       [=](R& r) { r.level[l].plane[p].image_element_size = 5; }},
      {"Metadata level image pitch mismatch", [=](R& r) { r.level[l].plane[p].image_pitch = 1; }},
      {"Metadata level image invalid dimensions",
       [=](R& r) { r.level[l].plane[p].image_width = 0; }},
      {"Metadata level image invalid dimensions",
       [=](R& r) { r.level[l].plane[p].image_height = 0; }},
      {"Metadata level image invalid dimensions",
       [=](R& r) { r.level[l].plane[p].image_element_size = 0; }},
      {"Metadata level flagbuffer valid bit invalid",
       [=](R& r) { r.level[l].plane[p].flag_valid = 2; }},
      {"Metadata level flagbuffer enabled but tiling",
       [=](R& r) {
         r.linear_fallback = 1;
         make_linear(r.level[l]);
         r.level[l].plane[p].flag_valid = 1;
       }},
      {"Metadata level flagbuffer buffer exceeds",
       [=](R& r) { r.level[l].plane[p].flag_offset = kFarAway; }},
      {"Metadata level flagbuffer pitch mismatch",
       [=](R& r) { r.level[l].plane[p].flag_pitch = 0; }},
      {"Metadata level flagbuffer pitch mismatch",
       [=](R& r) { r.level[l].plane[p].flag_pitch = 0x1001; }},
      {"Metadata level flagbuffer slice pitch mismatch",
       [=](R& r) { r.level[l].plane[p].flag_size = 0x1001; }},
  };
  if constexpr (std::is_same_v<Kind, SurfaceKind>) {
    // Rows and elements of the image itself
    faults.push_back({"Metadata level image size mismatch",
                      [=](R& r) { r.level[l].plane[p].actual_height = 17; }});
    faults.push_back({"Metadata level image pitch mismatch",
                      [=](R& r) { r.level[l].plane[p].actual_width = 65; }});
  }
  return faults;
}

// In the header, in the second and in the last level.
template <typename Kind>
std::vector<SingleFault<Kind>> single_faults() {
  std::vector<SingleFault<Kind>> faults = header_faults<Kind>();
  for (const auto& more : {level_faults<Kind>(1, 0), level_faults<Kind>(14, 2)}) {
    faults.insert(faults.end(), more.begin(), more.end());
  }
  return faults;
}

}  // namespace fetches
