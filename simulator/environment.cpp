#include "environment.h"

#include <array>
#include <charconv>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "standard_error.h"

namespace simulator {
namespace {

struct FailureName {
  std::string_view name;
  std::uint32_t failure;
};

constexpr std::array<FailureName, 5> failure_names{{
    {"library_open", HXL_SIM_FAIL_LIBRARY_OPEN},
    {"device_open", HXL_SIM_FAIL_DEVICE_OPEN},
    {"getinfo", HXL_SIM_FAIL_GETINFO},
    {"getinfo_ext", HXL_SIM_FAIL_GETINFO_EXT},
    {"snprintf", HXL_SIM_FAIL_SNPRINTF},
}};

std::optional<std::uint32_t> parse_number(std::string_view text) {
  int base = 10;
  if (text.starts_with("0x") || text.starts_with("0X")) {
    base = 16;
    text.remove_prefix(2);
  }
  std::uint32_t number = 0;
  const char* const end = text.data() + text.size();
  const std::from_chars_result parsed = std::from_chars(text.data(), end, number, base);
  if (parsed.ec != std::errc() || parsed.ptr != end) {
    return std::nullopt;
  }
  return number;
}

std::optional<std::uint32_t> parse_failure(std::string_view name) {
  for (const FailureName& candidate : failure_names) {
    if (candidate.name == name) {
      return candidate.failure;
    }
  }
  return std::nullopt;
}

std::optional<std::uint32_t> parse_failures(std::string_view names) {
  std::uint32_t failures = 0;
  for (;;) {
    const std::size_t comma = names.find(',');
    const std::optional<std::uint32_t> failure = parse_failure(names.substr(0, comma));
    if (!failure) {
      return std::nullopt;
    }
    failures |= *failure;
    if (comma == std::string_view::npos) {
      return failures;
    }
    names.remove_prefix(comma + 1);
  }
}

std::optional<bool> parse_log(std::string_view target) {
  if (target == "stderr") {
    return true;
  }
  if (target == "none") {
    return false;
  }
  return std::nullopt;
}

template <typename Value>
void take_variable(const char* variable, std::optional<Value> (*parse)(std::string_view),
                   std::string_view expected, Value& setting) {
  const char* const text = std::getenv(variable);
  if (text == nullptr || *text == '\0') {
    return;
  }
  if (const std::optional<Value> value = parse(text)) {
    setting = *value;
    return;
  }
  std::string line = "hxl_sim: ";
  line.append(variable).append("=\"").append(text).append("\" is ignored: expected ");
  line.append(expected).append("\n");
  write_to_standard_error(line);
}

}  // namespace

Settings settings_of_environment() {
  constexpr std::string_view number = "a decimal or 0x hexadecimal number of at most 32 bits";
  Settings chosen;
  take_variable("HXL_SIM_CHIP", parse_number, number, chosen.chip_id);
  take_variable("HXL_SIM_SECURE_CONTEXT", parse_number, number, chosen.secure_context);
  take_variable(
      "HXL_SIM_FAIL", parse_failures,
      "a comma separated list of library_open, device_open, getinfo, getinfo_ext, snprintf",
      chosen.failures);
  take_variable("HXL_SIM_LOG", parse_log, "stderr or none", chosen.print_messages);
  return chosen;
}

}  // namespace simulator
