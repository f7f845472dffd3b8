#include "tools/output/standard_output.h"

#include <cerrno>
#include <cstdio>

#include "tools/output/system_error.h"
#include "tools/request/bad_input.h"

namespace tool {

void print_data(std::string_view text) {
  const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
  if (!written || std::fflush(stdout) != 0) {
    refuse("cannot write to standard output: {}", error_text(errno));
  }
}

}  // namespace tool
