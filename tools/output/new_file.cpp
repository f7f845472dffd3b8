#include "tools/output/new_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>

#include "tools/output/standard_error.h"
#include "tools/output/standard_output.h"
#include "tools/output/system_error.h"
#include "tools/request/bad_input.h"

namespace tool {
namespace {

constexpr mode_t kOrdinaryMode = 0666;  // the user's mask takes its bits away

[[noreturn]] void refuse_write(std::string_view option, const std::string& path, int error) {
  refuse("{}: cannot write {}: {}; write to another path, or to - for standard output", option,
         in_quotes(path), error_text(error));
}

// Returns the error of the first call that failed, 0 when all bytes are written.
int write_all(int file, std::span<const std::byte> bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(file, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return written < 0 ? errno : EIO;
    bytes = bytes.subspan(static_cast<std::size_t>(written));
  }
  return 0;
}

int write_and_close(int file, std::span<const std::byte> bytes) {
  const int error = write_all(file, bytes);
  const int close_error = close(file) != 0 ? errno : 0;
  return error != 0 ? error : close_error;
}

// Opens a file that nobody else has, -1 with the error in errno.
int create(const std::string& path) {
  return open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kOrdinaryMode);
}

void write_new(std::string_view option, const std::string& path, std::span<const std::byte> bytes) {
  const int file = create(path);
  if (file < 0 && errno == EEXIST) {
    refuse("{}: {} exists already; write to another path, or replace it with --force", option,
           in_quotes(path));
  }
  if (file < 0) refuse_write(option, path, errno);
  if (const int error = write_and_close(file, bytes); error != 0) {
    unlink(path.c_str());
    refuse_write(option, path, error);
  }
}

// The new bytes take the place of the old ones in one step.
void replace_regular(std::string_view option, const std::string& path, mode_t mode,
                     std::span<const std::byte> bytes) {
  const std::string fresh = path + fmt::format(".{}.new", getpid());
  const int file = create(fresh);
  if (file < 0) refuse_write(option, path, errno);
  int error = fchmod(file, mode & 07777) != 0 ? errno : 0;
  const int write_error = write_and_close(file, bytes);
  if (error == 0) error = write_error;
  if (error == 0 && std::rename(fresh.c_str(), path.c_str()) != 0) error = errno;
  if (error == 0) return;
  unlink(fresh.c_str());
  refuse_write(option, path, error);
}

// Devices and pipes are written to, not replaced.
void write_into(std::string_view option, const std::string& path,
                std::span<const std::byte> bytes) {
  const int file = open(path.c_str(), O_WRONLY | O_CLOEXEC);
  if (file < 0) refuse_write(option, path, errno);
  if (const int error = write_and_close(file, bytes); error != 0) refuse_write(option, path, error);
}

}  // namespace

void write_file(std::string_view option, const std::string& path, std::span<const std::byte> bytes,
                bool replace) {
  if (path == kStandardOutput) {
    return print_data({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
  }
  struct stat status;
  if (!replace || stat(path.c_str(), &status) != 0) return write_new(option, path, bytes);
  if (!S_ISREG(status.st_mode)) return write_into(option, path, bytes);
  // A link stays a link to the replaced file.
  std::error_code error;
  const std::filesystem::path target = std::filesystem::canonical(path, error);
  if (error) refuse_write(option, path, error.value());
  replace_regular(option, target.string(), status.st_mode, bytes);
}

}  // namespace tool
