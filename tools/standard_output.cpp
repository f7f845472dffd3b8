#include "tools/standard_output.h"

#include <cerrno>
#include <cstdio>

#include "tools/bad_input.h"
#include "tools/system_error.h"

namespace tool {

void print_data(std::string_view text) {
  const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
  if (!written || std::fflush(stdout) != 0) {
    refuse("cannot write to standard output: {}", error_text(errno));
  }
}

}  // namespace tool
