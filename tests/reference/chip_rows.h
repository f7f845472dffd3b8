// The chips of chip_rows.txt, which is written apart from the library's hardware data: what the
// reference knows about chips, and what the hardware data is held against.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "reference.h"

namespace reference {

// What stands in the file: the names above its columns, and for each chip a number in each column.
struct ChipRows {
  std::vector<std::string> names;
  std::vector<std::vector<uint32_t>> chips;
};

// Reads the file once. Ends the program at a line that is none of a chip's.
const ChipRows& chip_rows();

// Ends the program when the file does not have the chip.
ChipFacts listed_chip(uint32_t chip_id);

}  // namespace reference
