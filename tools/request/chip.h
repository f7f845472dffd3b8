// A chip that surfaces are laid out for.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "identify/chip_row.h"

namespace tool {

struct Chip {
  uint32_t chip_id;
  bool has_row;
  korvel::ChipRow row;  // the defaults that the library uses when the chip has no row
};

// With the defaults when no row has this id.
Chip chip_with_id(uint32_t chip_id);

// The chip that is meant when nobody names one.
Chip default_chip();

// "0x43010000, family 6, model 0x060316, revision 0x0316000A"
std::string chip_label(const Chip& chip);

// The value of --chip: an id, or a model or revision that one chip alone has, or family-5, family-6
// or family-7 for a usual chip of the family. Throws BadInput for an id without a row unless
// `unknown_too` says that its defaults are wanted.
Chip parse_chip(std::string_view text, bool unknown_too);

// A list of these, where a model or revision stands for all of its chips, all-families for a usual
// chip of each, and all for every chip. Throws BadInput.
std::vector<Chip> parse_chips(std::string_view text, bool unknown_too);

}  // namespace tool
