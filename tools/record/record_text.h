// Records as text: hexadecimal digits or base64.
#pragma once

#include <optional>
#include <span>
#include <vector>

namespace tool {

// The bytes of pairs of hexadecimal digits; between the pairs may stand blanks, line ends, commas
// and 0x. Nothing for any other text.
std::optional<std::vector<unsigned char>> bytes_of_hex(std::span<const unsigned char> text);

// The bytes of base64 in either alphabet, with blanks and line ends anywhere and with or without the
// signs that fill the end. Nothing for any other text.
std::optional<std::vector<unsigned char>> bytes_of_base64(std::span<const unsigned char> text);

}  // namespace tool
