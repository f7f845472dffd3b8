#include "tests/tools/scratch_folder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace tool_test {

ScratchFolder::ScratchFolder()
    : folder_((std::filesystem::temp_directory_path() / "korvel-layout.XXXXXX").string()) {
  if (mkdtemp(folder_.data()) == nullptr) std::abort();
}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

std::string ScratchFolder::file(std::string_view name, std::string_view content) const {
  std::ofstream(path(name), std::ios::binary)
      .write(content.data(), static_cast<std::streamsize>(content.size()));
  return path(name);
}

std::size_t ScratchFolder::count() const {
  const std::filesystem::directory_iterator files(folder_);
  return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

std::string file_content(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace tool_test
