// Files that the program reads.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace tool {

// The bytes of a file, of standard input for "-", but never more than `limit` + 1 of them. Throws
// BadInput.
std::vector<unsigned char> read_file(const std::string& path, std::size_t limit);

}  // namespace tool
