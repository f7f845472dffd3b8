#include "standard_error.h"

#include <unistd.h>

#include <cerrno>
#include <cstddef>

namespace simulator {

void write_to_standard_error(std::string_view line) {
  const int saved_errno = errno;
  while (!line.empty()) {
    const ssize_t written = ::write(STDERR_FILENO, line.data(), line.size());
    if (written > 0) {
      line.remove_prefix(static_cast<std::size_t>(written));
    } else if (written == 0 || errno != EINTR) {
      // There is nowhere left to report this to.
      break;
    }
  }
  errno = saved_errno;
}

}  // namespace simulator
