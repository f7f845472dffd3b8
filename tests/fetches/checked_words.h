// The words of stored records that the validators' rules name, for either kind of record.
#pragma once

#include <cstddef>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/records/record_kinds.h"

namespace fetches {

struct Word {
  std::string field;  // "image_pitch"
  std::string place;  // " of level 2 plane 0", or nothing
  std::size_t offset_bytes;
  std::size_t bytes;

  std::string name() const { return field + place; }
};

#define FETCHES_ADD(type, member) \
  words.push_back({#member, place, start + offsetof(type, member), sizeof(type::member)})

template <typename Plane>
void add_plane_words(std::vector<Word>& words, std::size_t start, const std::string& place) {
  FETCHES_ADD(Plane, image_offset);
  FETCHES_ADD(Plane, image_size);
  FETCHES_ADD(Plane, image_pitch);
  FETCHES_ADD(Plane, image_slice_pitch);
  FETCHES_ADD(Plane, image_element_size);
  FETCHES_ADD(Plane, image_width);
  FETCHES_ADD(Plane, image_height);
  if constexpr (std::is_same_v<Plane, SurfacePlane>) {
    FETCHES_ADD(Plane, actual_width);
    FETCHES_ADD(Plane, actual_height);
  }
  FETCHES_ADD(Plane, flag_valid);
  FETCHES_ADD(Plane, flag_offset);
  FETCHES_ADD(Plane, flag_size);
  FETCHES_ADD(Plane, flag_pitch);
  FETCHES_ADD(Plane, flag_slice_pitch);
}

template <typename Level>
void add_level_words(std::vector<Word>& words, std::size_t start, const std::string& place) {
  FETCHES_ADD(Level, slices);
  FETCHES_ADD(Level, tiled);
  FETCHES_ADD(Level, size);
  FETCHES_ADD(Level, planes);
  FETCHES_ADD(Level, lrz_valid);
  FETCHES_ADD(Level, lrz_offset);
  FETCHES_ADD(Level, lrz_size);
  FETCHES_ADD(Level, lrz_pitch);
  FETCHES_ADD(Level, lrz_slice_pitch);
  FETCHES_ADD(Level, lrz_width);
  FETCHES_ADD(Level, lrz_height);
  FETCHES_ADD(Level, lrz_fc_valid);
  FETCHES_ADD(Level, lrz_fc_offset);
  FETCHES_ADD(Level, lrz_fc_size);
}

template <typename Record>
void add_header_words(std::vector<Word>& words) {
  constexpr std::size_t start = 0;
  const std::string place;
  FETCHES_ADD(Record, signature);
  FETCHES_ADD(Record, size);
  FETCHES_ADD(Record, total_size);
  FETCHES_ADD(Record, alignment);
  FETCHES_ADD(Record, format);
  FETCHES_ADD(Record, samples);
  FETCHES_ADD(Record, linear_fallback);
  FETCHES_ADD(Record, levels);
  const auto add_uuid_word = [&](const char* uuid, std::size_t at, std::size_t word) {
    words.push_back({"word " + std::to_string(word), std::string(" of ") + uuid, at + 4 * word, 4});
  };
  for (std::size_t word = 0; word < 4; ++word) {
    add_uuid_word("device_uuid", offsetof(Record, device_uuid), word);
  }
  if constexpr (std::is_same_v<Record, SurfaceMetadata>) {
    FETCHES_ADD(Record, guid);
    add_uuid_word("driver_uuid", offsetof(Record, driver_uuid), 0);
  } else {
    add_uuid_word("driver_uuid", offsetof(Record, driver_uuid), 1);
    add_uuid_word("driver_uuid", offsetof(Record, driver_uuid), 2);
  }
}

#undef FETCHES_ADD

template <typename Kind>
const std::vector<Word>& checked_words() {
  using Record = typename Kind::Record;
  using Level = typename Kind::Level;
  using Plane = typename Kind::Plane;
  static const std::vector<Word> all = [] {
    std::vector<Word> words;
    add_header_words<Record>(words);
    for (std::size_t l = 0; l < KORVEL_MAX_LEVELS; ++l) {
      const std::string place = " of level " + std::to_string(l);
      const std::size_t level = offsetof(Record, level) + l * sizeof(Level);
      add_level_words<Level>(words, level, place);
      for (std::size_t p = 0; p < KORVEL_MAX_PLANES; ++p) {
        add_plane_words<Plane>(words, level + offsetof(Level, plane) + p * sizeof(Plane),
                               place + " plane " + std::to_string(p));
      }
    }
    return words;
  }();
  return all;
}

template <typename Kind>
std::string name_of_byte(std::size_t offset_bytes) {
  for (const Word& word : checked_words<Kind>()) {
    if (offset_bytes >= word.offset_bytes && offset_bytes - word.offset_bytes < word.bytes) {
      return word.name();
    }
  }
  return "byte " + std::to_string(offset_bytes) + ", which no rule names,";
}

}  // namespace fetches
