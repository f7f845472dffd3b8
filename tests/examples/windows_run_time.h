// The functions of the C run-time library that the examples for Windows import.
#pragma once

#include <cstdint>
#include <string>

namespace examples {

// Where a function of msvcrt.dll begins; 0 for those that no example needs.
uintptr_t run_time_function(const std::string& function);

// What has been printed since the last call of this function.
std::string take_output();

}  // namespace examples
