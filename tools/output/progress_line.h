// How far a long run is, on one line of standard error that is gone at the end.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace tool {

class ProgressLine {
 public:
  // `noun` is of what is counted: "requests". Prints only to a terminal.
  ProgressLine(std::string noun, std::size_t total);
  ~ProgressLine();
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  // So many are done. Nothing is printed in the first second.
  void update(std::size_t done);

 private:
  using Clock = std::chrono::steady_clock;

  std::string noun_;
  std::size_t total_;
  bool to_terminal_;
  Clock::time_point next_print_;
  std::size_t printed_width_ = 0;
};

}  // namespace tool
