// A folder of the test's own, gone with it.
#pragma once

#include <string>
#include <string_view>

namespace tool_test {

class ScratchFolder {
 public:
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  std::string path(std::string_view name) const { return folder_ + "/" + std::string(name); }

  // Writes a file. Returns its path.
  std::string file(std::string_view name, std::string_view content) const;

  // Files inside.
  std::size_t count() const;

 private:
  std::string folder_;
};

std::string file_content(const std::string& path);

template <typename Record>
std::string_view bytes_of(const Record& record) {
  return {reinterpret_cast<const char*>(&record), sizeof record};
}

}  // namespace tool_test
