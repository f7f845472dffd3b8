#include "tools/output/difference_output.h"

#include <fmt/core.h>

#include "tools/output/explanation_json.h"
#include "tools/output/explanation_text.h"
#include "tools/output/layout_json.h"
#include "tools/output/step_text.h"
#include "tools/output/stored_value_json.h"
#include "tools/output/text_table.h"
#include "tools/record/field_value.h"
#include "tools/record/stored_file.h"
#include "tools/record/uuid_text.h"
#include "tools/request/counted.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

// What a record says of its own size.
uint32_t record_size(const ComparedSide& side) {
  return static_cast<uint32_t>(side.record.size());
}

std::string word_text(const std::optional<ComparedWord>& word, const ComparedSide& side) {
  if (!word) return "-";
  switch (word->field->meaning) {
    case Meaning::device_uuid: return device_uuid_meaning(word->bytes);
    case Meaning::driver_uuid: return driver_uuid_meaning(word->bytes);
    case Meaning::total_size: return fmt::format("{} bytes", *number_of(*word));
    default: return field_value(*word->field, word->bytes, record_size(side));
  }
}

bool is_measured(Meaning meaning) {
  switch (meaning) {
    case Meaning::bytes:
    case Meaning::offset:
    case Meaning::elements:
    case Meaning::rows:
    case Meaning::alignment:
    case Meaning::total_size: return true;
    default: return false;
  }
}

// "+1024", of numbers that measure something.
std::string change_of(const WordDifference& word) {
  if (!word.a || !word.b || !is_measured(word.a->field->meaning)) return {};
  const uint64_t a = *number_of(*word.a);
  const uint64_t b = *number_of(*word.b);
  return a < b ? fmt::format("+{}", b - a) : fmt::format("-{}", a - b);
}

std::string parting_line(char name, const AskedLayout& asked, const std::string& field,
                         std::optional<std::size_t> place) {
  if (!place) return fmt::format("  {}  has no {}\n", name, word_of_field(field));
  const Step& step = asked.explanation.steps[*place];
  return fmt::format("  {}  {}, step {}: {}\n", name, step.subject, *place + 1, change_text(step)) +
         wrapped_lines(fmt::format("{}: {}", step.fact, step.rule), 5);
}

std::string stored_line(char name, const Difference& difference, const std::string& field) {
  const ComparedSide& side = name == 'A' ? difference.a : difference.b;
  for (const WordDifference& word : difference.comparison.differences) {
    if (word.name != field) continue;
    return fmt::format("  {}  stores {}\n", name, word_text(name == 'A' ? word.a : word.b, side));
  }
  return fmt::format("  {}  stores another number\n", name);
}

std::string parting_text(const Difference& difference) {
  const Parting& parting = *difference.parting;
  const auto& [a, b, comparison, found] = difference;
  return fmt::format("\nThey part at {}\n{}{}", parting.field,
                     a.asked ? parting_line('A', *a.asked, parting.field, parting.a)
                             : stored_line('A', difference, parting.field),
                     b.asked ? parting_line('B', *b.asked, parting.field, parting.b)
                             : stored_line('B', difference, parting.field));
}

Json side_json(const ComparedSide& side) {
  Json json = {
      {"label", side.label},
      {"kind", kind_name(side.is_surface_record() ? RecordKind::surface : RecordKind::resource)}};
  json["chip"] = side.asked ? chip_json(side.asked->chip) : Json();
  json["request"] = side.asked ? request_json(side.asked->request) : Json();
  return json;
}

Json word_json(const std::optional<ComparedWord>& word) {
  if (!word) return nullptr;
  return stored_value_json(*word->field, word->bytes);
}

Json parting_step_json(const ComparedSide& side, std::optional<std::size_t> place) {
  if (!side.asked || !place) return nullptr;
  return steps_json(side.asked->explanation).at(*place);
}

}  // namespace

std::string difference_text(const Difference& difference) {
  const auto& [a, b, comparison, parting] = difference;
  std::string text = fmt::format("A  {}\nB  {}\n\n", a.label, b.label);
  if (comparison.differences.empty()) {
    return text + fmt::format("Alike in all {}\n", counted(comparison.compared, "field"));
  }
  TextTable table({{"field", "", TableColumn::left},
                   {"A", "", TableColumn::left},
                   {"B", "", TableColumn::left},
                   {"B - A", ""}});
  for (const WordDifference& word : comparison.differences) {
    table.add_row({word.name, word_text(word.a, a), word_text(word.b, b), change_of(word)});
  }
  text += table.text();
  text += fmt::format("\n{} of {} differ\n", comparison.differences.size(),
                      counted(comparison.compared, "field"));
  if (parting) return text + parting_text(difference);
  if (a.asked && b.asked) text += "\nNo number of the two layouts differs.\n";
  return text;
}

Json difference_json(const Difference& difference) {
  const auto& [a, b, comparison, parting] = difference;
  Json words = Json::array();
  for (const WordDifference& word : comparison.differences) {
    words.push_back({{"field", word.name},
                     {"unit", stored_unit_json(*(word.a ? word.a : word.b)->field)},
                     {"a", word_json(word.a)},
                     {"b", word_json(word.b)}});
  }
  Json json = {{"a", side_json(a)},
               {"b", side_json(b)},
               {"alike", comparison.differences.empty()},
               {"compared_fields", comparison.compared},
               {"differences", std::move(words)},
               {"parting", nullptr}};
  if (parting) {
    json["parting"] = {{"field", parting->field},
                       {"a", parting_step_json(a, parting->a)},
                       {"b", parting_step_json(b, parting->b)}};
  }
  return json;
}

}  // namespace tool
