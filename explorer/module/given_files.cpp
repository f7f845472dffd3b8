#include "explorer/module/given_files.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "tools/record/input_file.h"
#include "tools/request/bad_input.h"

namespace explorer {
namespace {

struct File {
  std::string name;
  std::vector<unsigned char> bytes;
};

File& the_file() {
  static File file;
  return file;
}

}  // namespace

void give_file(std::string name, std::vector<unsigned char> bytes) {
  the_file() = {std::move(name), std::move(bytes)};
}

}  // namespace explorer

namespace tool {

std::vector<unsigned char> read_file(const std::string& path, std::size_t limit) {
  const explorer::File& file = explorer::the_file();
  if (path != file.name) refuse("{} has not been handed over", path);
  const std::size_t size = std::min(file.bytes.size(), limit + 1);
  return {file.bytes.begin(), file.bytes.begin() + static_cast<std::ptrdiff_t>(size)};
}

}  // namespace tool
