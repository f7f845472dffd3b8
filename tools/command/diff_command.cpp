#include "tools/command/diff_command.h"

#include "tools/command/diff_side.h"
#include "tools/command/difference_report.h"
#include "tools/command/request_arguments.h"
#include "tools/request/bad_input.h"

namespace tool {
namespace {

bool names_a_surface(const RequestOptions& options) {
  return !options.format.empty() || !options.size.empty();
}

ComparedSide side_of_text(const char* option, const std::optional<std::string>& text,
                          const RequestOptions& common) {
  return side_of_request(
      parse_request_text("korvel-layout diff", option, text.value_or(""), common));
}

std::pair<ComparedSide, ComparedSide> sides_of(const DiffOptions& options) {
  const std::vector<std::string>& files = options.files;
  if (files.size() > 2) {
    refuse(
        "{} is one file too many: at most two files are compared; korvel-layout diff --help has "
        "examples",
        in_quotes(files[2]));
  }
  const bool asks = options.a || options.b || names_a_surface(options.common);
  if (files.size() == 2) {
    if (asks) {
      refuse(
          "two files, {} and {}, leave no side for a request; write one file with it, for example "
          "korvel-layout diff nv12.blob --format nv12 --size 1920x1080",
          in_quotes(files[0]), in_quotes(files[1]));
    }
    return {side_of_file(files[0], options.kind), side_of_file(files[1], options.kind)};
  }
  if (files.size() == 1) {
    if (options.a && options.b)
      refuse("one file leaves one side: --a or --b, but not both; leave one of them out");
    if (!asks) {
      refuse(
          "one file needs another side: a second file, or a request, for example korvel-layout diff "
          "{} --format nv12 --size 1920x1080",
          files[0]);
    }
    ComparedSide file = side_of_file(files[0], options.kind);
    if (options.a) return {side_of_text("--a", options.a, options.common), std::move(file)};
    return {std::move(file), side_of_text("--b", options.b, options.common)};
  }
  if (!options.a && !options.b) {
    refuse(
        "two layouts are compared: two files, or requests, for example korvel-layout diff --format "
        "28 --size 1918x1080 --a '--linear' --b '--ubwc'");
  }
  return {side_of_text("--a", options.a, options.common),
          side_of_text("--b", options.b, options.common)};
}

}  // namespace

int diff(const DiffOptions& options) {
  const auto [a, b] = sides_of(options);
  return report_difference(a, b, options.json);
}

}  // namespace tool
