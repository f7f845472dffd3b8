// The files of a module that has none: bytes that the page hands over under a name.
#pragma once

#include <string>
#include <vector>

namespace explorer {

// From here on the commands read these bytes as the one file that there is.
void give_file(std::string name, std::vector<unsigned char> bytes);

}  // namespace explorer
