// What the tool prints, kept in memory in place of the process's standard output and error.
#pragma once

#include <cstdio>
#include <string>

namespace fuzz {

class CapturedOutput {
 public:
  CapturedOutput();
  ~CapturedOutput();  // the standard streams are the process's own again
  CapturedOutput(const CapturedOutput&) = delete;
  CapturedOutput& operator=(const CapturedOutput&) = delete;

  [[nodiscard]] std::string output() const;
  [[nodiscard]] std::string errors() const;

 private:
  std::FILE* real_output_;
  std::FILE* real_errors_;
};

}  // namespace fuzz
