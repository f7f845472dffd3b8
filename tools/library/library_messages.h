// The library's diagnostics, as the services stand-in kept them.
#pragma once

#include <string>
#include <vector>

namespace tool {

struct LibraryMessage {
  std::string function;  // that reports it
  std::string text;
};

// From here on they are kept instead of printed.
void keep_library_messages();

// Those since the last call of this function.
std::vector<LibraryMessage> take_library_messages();

// Each text once, however often the library said it.
std::vector<std::string> distinct_texts(const std::vector<LibraryMessage>& messages);

}  // namespace tool
