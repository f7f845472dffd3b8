// A file that the tool reads: the input's record, whole, cut or with more behind it, bare or in a
// blob. It lives in memory and is rewritten for every input.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/input_bytes.h"

namespace fuzz {

struct StoredInputFile {
  std::string path;
  std::vector<uint8_t> bytes;
};

StoredInputFile store_drawn_file(InputBytes& input);

// What is in the file now.
std::vector<uint8_t> stored_bytes(const StoredInputFile& file);

}  // namespace fuzz
