#include "tools/command/difference_report.h"

#include <fmt/core.h>

#include "tools/command/exit_codes.h"
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

int report_difference(const ComparedSide& a, const ComparedSide& b, bool json) {
  if (a.fields != b.fields) {
    refuse("{} and {} are of different kinds, which share no layout", a.label, b.label);
  }
  const RecordComparison comparison = comparison_of(a, b);
  const Difference difference = {a, b, comparison, parting_of(a, b)};
  std::vector<std::string> warnings;
  add_warnings(warnings, 'A', a);
  add_warnings(warnings, 'B', b);
  print_warnings(warnings);
  if (json) {
    print_data(json_text("diff", difference_json(difference), warnings));
  } else {
    print_data(difference_text(difference));
  }
  return comparison.differences.empty() ? kExitDone : kExitRefused;
}

}  // namespace tool
