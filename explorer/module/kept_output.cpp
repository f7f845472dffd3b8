#include "explorer/module/kept_output.h"

#include <utility>

#include "tools/output/standard_output.h"

namespace explorer {
namespace {

std::string& output() {
  static std::string text;
  return text;
}

}  // namespace

std::string take_output() {
  return std::exchange(output(), {});
}

}  // namespace explorer

namespace tool {

void print_data(std::string_view text) {
  explorer::output() += text;
}

}  // namespace tool
