#include "tools/command/completions.h"

#include <fmt/core.h>

#include <algorithm>
#include <cctype>
#include <iterator>
#include <optional>
#include <vector>

#include "formats/format_table.h"
#include "tools/command/commands_of.h"
#include "tools/comparison/cost_table.h"
#include "tools/comparison/layout_fit.h"
#include "tools/request/chip.h"
#include "tools/request/format_names.h"

namespace tool {
namespace {

struct Completion {
  std::string word;
  std::string meaning = {};
};

using Completions = std::vector<Completion>;
using Words = std::span<const std::string>;

constexpr const char kFilesLine[] = "FILES\n";

// In the letters that the user types.
std::string in_letters_of(std::string_view typed, std::string_view name) {
  const bool capitals =
      std::any_of(typed.begin(), typed.end(), [](unsigned char c) { return std::isupper(c) != 0; });
  std::string written(name);
  for (char& c : written) {
    const auto letter = static_cast<unsigned char>(c);
    c = static_cast<char>(capitals ? std::toupper(letter) : std::tolower(letter));
  }
  return written;
}

Completions formats(std::string_view typed) {
  Completions found;
  for (uint32_t format = 1; format < korvel::kFormatCount; ++format) {
    const std::string_view name = format_name(format);
    if (name.empty()) continue;
    found.push_back({in_letters_of(typed, name), fmt::format("format {}", format)});
  }
  return found;
}

Completions format_list(std::string_view typed) {
  Completions found = formats(typed);
  found.push_back({"all", "every format in use"});
  return found;
}

Completions chips(std::string_view /*typed*/) {
  Completions found;
  for (const Chip& chip : parse_chips("all", false)) {
    found.push_back(
        {fmt::format("0x{:08X}", chip.chip_id),
         fmt::format("family {}, model 0x{:06X}", chip.row.family_id, chip.row.model_code)});
  }
  for (const int family : {5, 6, 7}) {
    found.push_back({fmt::format("family-{}", family), "a usual chip of this family"});
  }
  return found;
}

Completions chip_list(std::string_view /*typed*/) {
  Completions found = chips({});
  found.push_back({"all", "every chip"});
  found.push_back({"all-families", "a usual chip of each family"});
  return found;
}

Completions columns(std::string_view /*typed*/) {
  Completions found;
  for (const std::string_view column : cost_columns()) found.push_back({std::string(column)});
  return found;
}

Completions plane_numbers(std::string_view /*typed*/) {
  Completions found;
  for (const NumberName& number : foreign_plane_names()) {
    found.push_back({fmt::format("{}=", number.name)});
  }
  return found;
}

// Values by the type name that help prints of their option.
struct ValueType {
  std::string_view type_name;
  bool is_list;  // with commas between them
  Completions (*values)(std::string_view typed);
};

constexpr ValueType kValueTypes[] = {
    {"FORMAT", false, formats}, {"FORMATS", true, format_list}, {"CHIP", false, chips},
    {"CHIPS", true, chip_list}, {"COLUMN", false, columns},     {"NAME=N,...", true, plane_numbers},
};

// "resource|surface" and "[both]" are the values themselves.
Completions alternatives(std::string_view type_name) {
  const bool optional = type_name.starts_with('[') && type_name.ends_with(']');
  if (optional) type_name = type_name.substr(1, type_name.size() - 2);
  if (!optional && type_name.find('|') == std::string_view::npos) return {};
  Completions found;
  for (const std::string& word : CLI::detail::split(std::string(type_name), '|')) {
    found.push_back({word});
  }
  return found;
}

std::string lines_of(const Completions& completions, std::string_view typed) {
  std::string lines;
  for (const Completion& completion : completions) {
    if (!completion.word.starts_with(typed)) continue;
    lines += fmt::format("{}\t{}\n", completion.word, completion.meaning);
  }
  return lines;
}

std::string value_lines(const CLI::Option& option, std::string_view typed) {
  const std::string type_name = option.get_type_name();
  const bool names_a_file = type_name == "FILE" || (option.get_positional() && type_name.empty());
  if (names_a_file) return kFilesLine;
  const auto* const type =
      std::find_if(std::begin(kValueTypes), std::end(kValueTypes),
                   [&type_name](const ValueType& known) { return known.type_name == type_name; });
  if (type == std::end(kValueTypes)) return lines_of(alternatives(type_name), typed);
  Completions values = type->values(typed);
  if (type->is_list) {
    // What stands in front of the last comma is part of the word.
    const std::string_view front = typed.substr(0, typed.rfind(',') + 1);
    for (Completion& value : values) value.word.insert(0, front);
  }
  return lines_of(values, typed);
}

bool takes_value(const CLI::Option& option) {
  return option.get_items_expected_max() > 0;
}

// The option that a word names; nothing for values and positional arguments.
const CLI::Option* option_named(const CLI::App& command, const std::string& word) {
  return word.starts_with('-') ? command.get_option_no_throw(word) : nullptr;
}

bool is_given(const CLI::Option& option, Words words) {
  return std::any_of(words.begin(), words.end(), [&option](const std::string& word) {
    return word.starts_with('-') && option.check_name(word.substr(0, word.find('=')));
  });
}

// Options that the command line may still take.
Completions further_options(const CLI::App& command, Words given) {
  Completions found;
  for (const CLI::Option* option : command.get_options()) {
    const bool repeats = option->get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll;
    if (!repeats && is_given(*option, given)) continue;
    for (const std::string& name : option->get_lnames()) {
      found.push_back({"--" + name, option->get_description()});
    }
  }
  return found;
}

const CLI::Option* positional_of(const CLI::App& command) {
  for (const CLI::Option* option : command.get_options()) {
    if (option->get_positional()) return option;
  }
  return nullptr;
}

// Of "--format=nv": the option's name is part of the word.
std::string joined_value_lines(const CLI::Option& option, std::string_view name,
                               std::string_view typed) {
  std::string lines = value_lines(option, typed);
  if (lines == kFilesLine) return lines;
  std::string whole;
  for (const std::string& line : CLI::detail::split(lines, '\n')) {
    if (!line.empty()) whole += fmt::format("{}={}\n", name, line);
  }
  return whole;
}

// Behind a command, or behind the program's name alone. The last word is being typed.
std::string lines_behind(const CLI::App& command, Words words) {
  const std::string& typed = words.back();
  const Words given = words.first(words.size() - 1);
  if (const std::size_t equals = typed.find('='); equals != std::string::npos) {
    const std::string name = typed.substr(0, equals);
    const CLI::Option* const option = option_named(command, name);
    if (option != nullptr) return joined_value_lines(*option, name, typed.substr(equals + 1));
  }
  std::string lines;
  const CLI::Option* const last = given.empty() ? nullptr : option_named(command, given.back());
  if (last != nullptr && takes_value(*last)) {
    lines = value_lines(*last, typed);
    if (last->get_items_expected_min() > 0) return lines;
  }
  const CLI::Option* const positional = positional_of(command);
  if (positional != nullptr && !typed.starts_with('-')) return value_lines(*positional, typed);
  return lines + lines_of(further_options(command, given), typed);
}

Completions commands(const CLI::App& program) {
  Completions found;
  for (const CLI::App* command : commands_of(program)) {
    found.push_back({command->get_name(), command->get_description()});
  }
  return found;
}

}  // namespace

std::string completion_lines(const CLI::App& program, Words words) {
  if (words.empty()) return {};
  if (words.size() == 1) {
    if (words.front().starts_with('-')) return lines_behind(program, words);
    Completions all = commands(program);
    all.push_back({"help", "Say more of a command"});
    return lines_of(all, words.front());
  }
  if (words.front() == "help") {
    return words.size() == 2 ? lines_of(commands(program), words.back()) : std::string();
  }
  for (const CLI::App* command : commands_of(program)) {
    if (command->get_name() == words.front()) return lines_behind(*command, words.subspan(1));
  }
  return {};
}

}  // namespace tool
