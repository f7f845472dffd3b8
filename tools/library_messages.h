// The library's diagnostics, as the services stand-in kept them.
#pragma once

#include <string>
#include <vector>

namespace tool {

struct LibraryMessage {
  std::string function;  // that reports it
  std::string text;
};

// Those since the last call of this function.
std::vector<LibraryMessage> take_library_messages();

// One warning for each text, however often the library said it.
void warn_of(const std::vector<LibraryMessage>& messages);

}  // namespace tool
