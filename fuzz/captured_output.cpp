#include "fuzz/captured_output.h"

#include <cstdlib>

namespace fuzz {
namespace {

// A stream into memory that is used over and over.
class Memory {
 public:
  Memory() : stream_(open_memstream(&text_, &size_)) {
    if (stream_ == nullptr) std::abort();
  }
  std::FILE* restart() {
    std::rewind(stream_);
    return stream_;
  }
  std::string text() {
    std::fflush(stream_);
    return {text_, static_cast<std::size_t>(std::ftell(stream_))};
  }

 private:
  char* text_ = nullptr;
  std::size_t size_ = 0;
  std::FILE* stream_;
};

Memory& output_memory() {
  static Memory memory;
  return memory;
}

Memory& error_memory() {
  static Memory memory;
  return memory;
}

}  // namespace

CapturedOutput::CapturedOutput() : real_output_(stdout), real_errors_(stderr) {
  stdout = output_memory().restart();
  stderr = error_memory().restart();
}

CapturedOutput::~CapturedOutput() {
  stdout = real_output_;
  stderr = real_errors_;
}

std::string CapturedOutput::output() const {
  return output_memory().text();
}

std::string CapturedOutput::errors() const {
  return error_memory().text();
}

}  // namespace fuzz
