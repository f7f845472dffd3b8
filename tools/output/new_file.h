// Files that the program writes.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace tool {

// What stands for it in place of a path.
inline constexpr std::string_view kStandardOutput = "-";

// Writes a whole file or none: what was there before survives a failure. An existing file is
// replaced only when `replace` says so. `option` is the one that names the file. Throws BadInput.
void write_file(std::string_view option, const std::string& path, std::span<const std::byte> bytes,
                bool replace);

}  // namespace tool
