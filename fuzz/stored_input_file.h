// Files that the tool reads. They live in memory and are rewritten for every input.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/input_bytes.h"

namespace fuzz {

// Two files may be there at a time.
enum class FileSlot : uint8_t { first, second };

struct StoredInputFile {
  std::string path;
  std::vector<uint8_t> bytes;
  FileSlot slot = FileSlot::first;
};

StoredInputFile store_file(std::vector<uint8_t> bytes, FileSlot slot = FileSlot::first);

// The input's record, whole, cut or with more behind it, bare or in a blob.
std::vector<uint8_t> draw_record_file(InputBytes& input);

// What is in the file now.
std::vector<uint8_t> stored_bytes(const StoredInputFile& file);

}  // namespace fuzz
