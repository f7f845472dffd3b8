// What a command prints, kept as the answer to a call.
#pragma once

#include <string>

namespace explorer {

// Since the last call of this function.
std::string take_output();

}  // namespace explorer
