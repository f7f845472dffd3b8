// The stored file that a command looks at, as the user named it.
#pragma once

#include <optional>
#include <string>

namespace tool {

struct StoredFileOptions {
  std::string file;
  std::optional<std::string> kind;
};

}  // namespace tool
