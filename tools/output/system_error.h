// What went wrong in a call of the operating system.
#pragma once

#include <string>
#include <system_error>

namespace tool {

// `error` is an errno value.
inline std::string error_text(int error) {
  return std::generic_category().message(error);
}

}  // namespace tool
