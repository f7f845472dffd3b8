#include "tools/record/input_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "tools/output/standard_error.h"
#include "tools/output/system_error.h"
#include "tools/request/bad_input.h"

namespace tool {
namespace {

[[noreturn]] void refuse_read(const char* what, const std::string& path, int error) {
  refuse("cannot {} {}: {}; write the path of a file, or - for standard input", what,
         in_quotes(path), error_text(error));
}

class OpenFile {
 public:
  explicit OpenFile(const std::string& path)
      : is_standard_input_(path == "-"),
        file_(is_standard_input_ ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
  ~OpenFile() {
    if (file_ >= 0 && !is_standard_input_) close(file_);
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  [[nodiscard]] bool is_open() const { return file_ >= 0; }
  [[nodiscard]] ssize_t read_into(unsigned char* bytes, std::size_t size) const {
    return read(file_, bytes, size);
  }

 private:
  bool is_standard_input_;
  int file_;
};

}  // namespace

std::vector<unsigned char> read_file(const std::string& path, std::size_t limit) {
  const OpenFile file(path);
  if (!file.is_open()) refuse_read("open", path, errno);
  std::vector<unsigned char> bytes(limit + 1);
  std::size_t size = 0;
  while (size < bytes.size()) {
    const ssize_t got = file.read_into(bytes.data() + size, bytes.size() - size);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) refuse_read("read", path, errno);
    if (got == 0) break;
    size += static_cast<std::size_t>(got);
  }
  bytes.resize(size);
  return bytes;
}

}  // namespace tool
