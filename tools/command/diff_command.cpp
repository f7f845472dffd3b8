#include "tools/command/diff_command.h"

#include <fmt/core.h>

#include "tools/command/diff_side.h"
#include "tools/command/exit_codes.h"
#include "tools/command/request_arguments.h"
#include "tools/comparison/parting.h"
#include "tools/comparison/record_comparison.h"
#include "tools/explanation/request_warnings.h"
#include "tools/output/difference_output.h"
#include "tools/output/json_output.h"
#include "tools/output/standard_error.h"
#include "tools/output/standard_output.h"
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

std::optional<Parting> parting_of(const ComparedSide& a, const ComparedSide& b) {
  if (a.asked && b.asked) return parting(a.asked->explanation, b.asked->explanation);
  if (a.is_surface_record()) return std::nullopt;
  if (a.asked) return parting_from_record(a.asked->explanation, b.record);
  if (!b.asked) return std::nullopt;
  std::optional<Parting> found = parting_from_record(b.asked->explanation, a.record);
  if (found) std::swap(found->a, found->b);
  return found;
}

RecordComparison comparison_of(const ComparedSide& a, const ComparedSide& b) {
  RecordComparison whole;
  if (!a.header.empty() && !b.header.empty()) whole = compare_headers(a.header, b.header);
  const RecordComparison records = compare_records(*a.fields, a.record, b.record);
  whole.compared += records.compared;
  whole.differences.insert(whole.differences.end(), records.differences.begin(),
                           records.differences.end());
  return whole;
}

void add_warnings(std::vector<std::string>& sentences, char name, const ComparedSide& side) {
  if (!side.asked) return;
  const AskedLayout& asked = *side.asked;
  for (const std::string& sentence :
       request_warnings(asked.chip, asked.request, asked.explanation)) {
    sentences.push_back(fmt::format("{}: {}", name, sentence));
  }
}

}  // namespace

int diff(const DiffOptions& options) {
  const auto [a, b] = sides_of(options);
  if (a.fields != b.fields) {
    refuse("{} and {} are of different kinds, which share no layout", a.label, b.label);
  }
  const RecordComparison comparison = comparison_of(a, b);
  const Difference difference = {a, b, comparison, parting_of(a, b)};
  std::vector<std::string> warnings;
  add_warnings(warnings, 'A', a);
  add_warnings(warnings, 'B', b);
  print_warnings(warnings);
  if (options.json) {
    print_data(json_text("diff", difference_json(difference), warnings));
  } else {
    print_data(difference_text(difference));
  }
  return comparison.differences.empty() ? kExitDone : kExitRefused;
}

}  // namespace tool
