// How the numbers of a laid-out surface come about, as plain records: step by step from texels to
// bytes, each with the rule and the fact that decided it.
//
// The steps call the library's own functions one after another (explain_surface.h). Nothing here
// prints, reads a command line or calls the library's exports.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

enum class Unit : uint8_t {
  texels,     // of a row or of a column
  elements,   // of a row
  rows,       // of elements
  tiles,      // of a row: what one byte of a flag buffer stands for
  tile_rows,  // of such tiles
  flag_rows,  // of a flag buffer
  bytes,
  slices,
  samples,
  levels,
  planes,
  number,  // of nothing: ids and what marks a record
  yes_no,  // 1 or 0
};

struct Quantity {
  int64_t value = 0;  // all 64 bits: read without its sign where `unit` is bytes
  Unit unit = Unit::bytes;
};

// Of what a step is: the surface when both are empty, a plane through all levels when only the level
// is.
struct Place {
  std::optional<uint32_t> level;
  std::optional<uint32_t> plane;
  friend bool operator==(const Place&, const Place&) = default;
};

// Every member has a default, so that a step may be written with those that it has.
struct Step {
  Place place = {};
  std::string subject = {};  // "width", "flag buffer pitch"
  Quantity before = {};
  Quantity after = {};
  std::string rule = {};  // in words, with its numbers
  std::string fact = {};  // what decided that this rule holds here
  // The record's field whose value `after` is, such as "level[0].plane[0].image_pitch". Empty for
  // numbers on the way.
  std::string field = {};
  // The number did not fit its bits. `exact` is what it would be, where 64 bits hold that.
  bool wrapped = false;
  std::optional<uint64_t> exact = {};
  // The row is made shorter than what it is to hold.
  bool cut = false;
  // The step, by its place in the list, whose result is `before`; none for a number of the request.
  std::optional<std::size_t> continues = {};
  // All steps whose results this one uses.
  std::vector<std::size_t> inputs = {};
};

struct Explanation {
  std::vector<Step> steps;
};

// "level[0].plane[1].image_pitch"
std::string plane_field(uint32_t level, uint32_t plane, const char* name);
// "level[0].size"
std::string level_field(uint32_t level, const char* name);

// The same steps with those of a width in front of those of the height beside it. Neither uses the
// other.
Explanation widths_first(const Explanation& explanation);

// The last part of a field's name: "image_pitch".
std::string_view word_of_field(std::string_view field);

// The places in the list of the steps that lead to a field, within the field's own place; none when
// no step gives it.
std::vector<std::size_t> places_of_steps_to(const Explanation& explanation,
                                            const std::string& field);

// The steps that lead to a field, within the field's own place; empty when no step gives it.
Explanation steps_to(const Explanation& explanation, const std::string& field);

}  // namespace tool
