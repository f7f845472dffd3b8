#include "tools/output/progress_line.h"

#include <fmt/core.h>
#include <unistd.h>

#include <cstdio>
#include <utility>

namespace tool {
namespace {

constexpr std::chrono::milliseconds kFirstPrint{1000};
constexpr std::chrono::milliseconds kFurtherPrints{200};

}  // namespace

ProgressLine::ProgressLine(std::string noun, std::size_t total)
    : noun_(std::move(noun)),
      total_(total),
      to_terminal_(isatty(STDERR_FILENO) == 1),
      next_print_(Clock::now() + kFirstPrint) {}

ProgressLine::~ProgressLine() {
  if (printed_width_ > 0) {
    fmt::print(stderr, "\r{}\r", std::string(printed_width_, ' '));
  }
}

void ProgressLine::update(std::size_t done) {
  if (!to_terminal_) return;
  const Clock::time_point now = Clock::now();
  if (now < next_print_) return;
  next_print_ = now + kFurtherPrints;
  const std::string line = fmt::format("{}: {} of {}", noun_, done, total_);
  printed_width_ = line.size();
  fmt::print(stderr, "\r{}", line);
}

}  // namespace tool
