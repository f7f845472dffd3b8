#include "chip_rows.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace reference {
namespace {

[[noreturn]] void refuse(const std::string& why) {
  std::fprintf(stderr, "%s: %s\n", KORVEL_CHIP_ROWS, why.c_str());
  std::abort();
}

// A number; or the column's own name for yes, and "-" for no.
uint32_t number_of(const std::string& word, const std::string& name) {
  if (word == name) return 1;
  if (word == "-") return 0;
  std::size_t read = 0;
  const bool digit = word[0] >= '0' && word[0] <= '9';
  const unsigned long number = digit ? std::stoul(word, &read, 0) : 0;
  if (read != word.size() || number > UINT32_MAX) refuse("not a number of " + name + ": " + word);
  return static_cast<uint32_t>(number);
}

ChipRows read_file() {
  std::ifstream file(KORVEL_CHIP_ROWS);
  if (!file) refuse("cannot be read");
  ChipRows rows;
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream stream(line);
    std::vector<std::string> words;
    for (std::string word; stream >> word;) words.push_back(word);
    if (rows.names.empty()) {
      rows.names = words;
      continue;
    }
    if (words.size() != rows.names.size()) refuse("not a chip: " + line);
    std::vector<uint32_t>& chip = rows.chips.emplace_back();
    for (std::size_t i = 0; i < words.size(); ++i) {
      chip.push_back(number_of(words[i], rows.names[i]));
    }
  }
  if (rows.chips.empty()) refuse("has no chips");
  return rows;
}

// One chip's line, whose numbers are asked for by name, each once.
class Line {
 public:
  Line(const std::vector<std::string>& names, const std::vector<uint32_t>& numbers)
      : names_(names), numbers_(numbers) {}

  template <typename Fact>
  void take(const char* name, Fact& fact) {
    const auto found = std::find(names_.begin(), names_.end(), name);
    if (found == names_.end()) refuse(std::string("has no column ") + name);
    fact = static_cast<Fact>(numbers_[static_cast<std::size_t>(found - names_.begin())]);
    ++taken_;
  }
  // Nothing of the line is left over.
  void finish() const {
    if (taken_ != names_.size()) refuse("has columns that nobody reads");
  }

 private:
  const std::vector<std::string>& names_;
  const std::vector<uint32_t>& numbers_;
  std::size_t taken_ = 0;
};

ChipFacts facts_in(Line line) {
  ChipFacts facts;
  facts.known = true;
  line.take("chip_id", facts.chip_id);
  line.take("family", facts.family_id);
  line.take("model", facts.model_code);
  line.take("revision", facts.rev_id);
  line.take("base", facts.base_alignment);
  line.take("linear", facts.linear_alignment);
  line.take("aux", facts.aux_alignment);
  line.take("small", facts.small_alignment);
  line.take("pixel", facts.pixel_alignment);
  line.take("tiled", facts.tiled_alignment);
  line.take("extent", facts.min_level_extent);
  line.take("offset", facts.level_offset_alignment);
  line.take("size", facts.level_size_alignment);
  line.take("wide", facts.wide_enough_for_tiling);
  line.take("supported", facts.supported);
  line.take("never", facts.ubwc_never);
  line.take("no_depth", facts.ubwc_depth_excluded);
  line.take("yuv_a", facts.ubwc_yuv_a);
  line.take("yuv_b", facts.ubwc_yuv_b);
  line.take("yuv16", facts.ubwc_yuv16);
  line.take("ext16", facts.yuv16_ext);
  line.take("p016", facts.p016);
  line.take("no_bc", facts.family5_sample_excluded);
  line.take("pitch", facts.max_surface_pitch);
  line.take("units", facts.extra_padding_units);
  line.take("factor", facts.extra_padding_factor);
  line.finish();
  return facts;
}

}  // namespace

const ChipRows& chip_rows() {
  static const ChipRows rows = read_file();
  return rows;
}

ChipFacts listed_chip(uint32_t chip_id) {
  for (const std::vector<uint32_t>& chip : chip_rows().chips) {
    const ChipFacts facts = facts_in(Line(chip_rows().names, chip));
    if (facts.chip_id == chip_id) return facts;
  }
  std::ostringstream id;
  id << "has no chip 0x" << std::hex << chip_id << "; docs/hardware-data.md says how it is made";
  refuse(id.str());
}

}  // namespace reference
