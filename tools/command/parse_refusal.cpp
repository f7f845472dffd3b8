#include "tools/command/parse_refusal.h"

#include <fmt/core.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <vector>

#include "tools/command/commands_of.h"
#include "tools/output/standard_error.h"
#include "tools/request/spelling.h"

namespace tool {
namespace {

// What an option without which a command does nothing may look like.
struct RequiredExample {
  std::string_view option;
  std::string_view text;
};

constexpr RequiredExample kRequiredExamples[] = {
    {"--format", "--format r8g8b8a8_unorm"},
    {"--size", "--size 1920x1080"},
    {"--bytes", "--bytes 8392704"},
    {"FILE", "nv12.blob, or - for standard input"},
};

// What word processors make of two hyphens, in UTF-8.
constexpr std::string_view kLongDashes[] = {"\u2013", "\u2014", "\u2212"};

// The command that the arguments name; the program itself without one.
const CLI::App& named_command(const CLI::App& program) {
  const std::vector<CLI::App*> commands = program.get_subcommands();
  return commands.empty() ? program : *commands.front();
}

std::string text_of_command(const CLI::App& program, const CLI::App& command) {
  return &command == &program ? program.get_name()
                              : fmt::format("{} {}", program.get_name(), command.get_name());
}

std::string did_you_mean(std::string_view word, const std::vector<std::string>& known) {
  const std::vector<std::string_view> names(known.begin(), known.end());
  const std::optional<std::string_view> likely = likely_name(word, names);
  return likely ? fmt::format("; did you mean {}?", *likely) : std::string(";");
}

std::vector<std::string> option_names(const CLI::App& command) {
  std::vector<std::string> names;
  for (const CLI::Option* option : command.get_options()) {
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  }
  return names;
}

std::vector<std::string> command_names(const CLI::App& program) {
  std::vector<std::string> names;
  for (const CLI::App* command : commands_of(program)) names.push_back(command->get_name());
  return names;
}

// The letters of an option behind any kind of dashes; nothing for a word that is no option.
std::optional<std::string> letters_of_option(std::string_view word) {
  const std::string_view whole = word;
  for (bool more = true; more;) {
    more = word.starts_with('-');
    if (more) word.remove_prefix(1);
    for (const std::string_view dash : kLongDashes) {
      if (!word.starts_with(dash)) continue;
      word.remove_prefix(dash.size());
      more = true;
    }
  }
  if (word.size() == whole.size()) return std::nullopt;
  return std::string(word);
}

bool is_option(const std::string& word) {
  return letters_of_option(word).has_value();
}

// Where an option stands that this command does not have: "show, explain". Of many, the first ones.
std::string owners_of(const CLI::App& command, const std::string& name) {
  const CLI::App* const program = command.get_parent() != nullptr ? command.get_parent() : &command;
  std::vector<std::string> owners;
  for (const CLI::App* other : commands_of(*program)) {
    const std::vector<std::string> names = option_names(*other);
    if (std::find(names.begin(), names.end(), name) != names.end()) {
      owners.push_back(other->get_name());
    }
  }
  constexpr std::size_t kMost = 3;
  const std::size_t named = std::min(owners.size(), kMost);
  const auto end = owners.begin() + static_cast<std::ptrdiff_t>(named);
  return fmt::format("{}{}", fmt::join(owners.begin(), end, ", "),
                     owners.size() > kMost ? " and others" : "");
}

std::string unexpected_argument(const CLI::App& command, const std::vector<std::string>& words,
                                std::string_view command_text) {
  const auto option = std::find_if(words.begin(), words.end(), is_option);
  if (option == words.end()) {
    return fmt::format("{} is one word too many; {} --help says what there is",
                       in_quotes(words.front()), command_text);
  }
  const std::string name = option->substr(0, option->find('='));
  const std::string two_dashes = "--" + letters_of_option(name).value_or("");
  const std::string owners = owners_of(command, two_dashes);
  const bool is_own = command.get_option_no_throw(two_dashes) != nullptr;
  if (!owners.empty() && !is_own) {
    return fmt::format("{} is no option of {}, but of {}; {} --help lists what there is",
                       in_quotes(name), command_text, owners, command_text);
  }
  return fmt::format("{} is no option of {}{} {} --help lists them", in_quotes(name), command_text,
                     did_you_mean(two_dashes, option_names(command)), command_text);
}

// The words that the parser had no use for, wherever it found them.
std::vector<std::string> unused_words(const CLI::App& app) {
  const std::vector<std::string> all = app.remaining(true);
  return {all.begin(), all.end()};
}

// The name in front of the parser's own words.
std::string option_of(const CLI::ParseError& error) {
  const std::string text = error.what();
  return text.substr(0, text.find_first_of(": "));
}

std::string required_argument(const CLI::ParseError& error, std::string_view command_text) {
  const std::string option = option_of(error);
  const auto* const example =
      std::find_if(std::begin(kRequiredExamples), std::end(kRequiredExamples),
                   [&option](const RequiredExample& known) { return known.option == option; });
  if (example == std::end(kRequiredExamples)) return error.what();
  return fmt::format("{} is required, for example {}; {} --help has more", option, example->text,
                     command_text);
}

std::string wrong_count(const CLI::App& command, const CLI::ParseError& error,
                        std::string_view command_text) {
  const std::string name = option_of(error);
  const CLI::Option* const option = command.get_option_no_throw(name);
  if (option == nullptr) return error.what();
  std::vector<std::string> values;
  for (const std::string& value : option->results()) values.push_back(in_quotes(value));
  const std::string given = values.empty() ? "and none stands behind it"
                                           : fmt::format("not {}", fmt::join(values, " and "));
  return fmt::format("{} takes exactly one value ({}), {}; {} --help has examples", name,
                     option->get_type_name(), given, command_text);
}

// "Could not convert: --linear = perhaps"
std::string value_of_flag(const CLI::ParseError& error, std::string_view command_text) {
  std::string text = error.what();
  const std::size_t start = text.find("--");
  const std::size_t equals = text.find(" = ");
  if (start == std::string::npos || equals == std::string::npos) return text;
  const std::string option = text.substr(start, equals - start);
  return fmt::format("{} takes no value such as {}; write {} alone; {} --help says what there is",
                     option, in_quotes(text.substr(equals + 3)), option, command_text);
}

// "--unknown-chip requires --chip"
std::string lonely_option(const CLI::ParseError& error, std::string_view command_text) {
  constexpr std::string_view kRequires = " requires ";
  std::string text = error.what();
  const std::size_t at = text.find(kRequires);
  if (at == std::string::npos) return text;
  const std::string needed = text.substr(at + kRequires.size());
  return fmt::format("{} counts only beside {}; write both; {} --help says what there is",
                     text.substr(0, at), needed, command_text);
}

}  // namespace

std::string unknown_command(const CLI::App& program, std::string_view name) {
  return fmt::format("{} is no command{} {} --help lists them", in_quotes(name),
                     did_you_mean(name, command_names(program)), program.get_name());
}

std::string swallowed_option(const CLI::App& command) {
  const std::vector<std::string> names = option_names(command);
  for (const CLI::Option* option : command.get_options()) {
    const bool is_made_of_options = option->get_type_name() == "OPTIONS";
    if (option->get_positional() || is_made_of_options) continue;
    for (const std::string& value : option->results()) {
      if (std::find(names.begin(), names.end(), value) == names.end()) continue;
      return fmt::format("{} has no value: the option {} stands in its place; write {} {} {}",
                         option->get_name(), in_quotes(value), option->get_name(),
                         option->get_type_name(), value);
    }
  }
  return {};
}

std::string option_refusal(const CLI::App& command, const CLI::ParseError& error,
                           std::string_view command_text) {
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
    return wrong_count(command, error, command_text);
  }
  if (dynamic_cast<const CLI::ConversionError*>(&error) != nullptr) {
    return value_of_flag(error, command_text);
  }
  if (dynamic_cast<const CLI::RequiresError*>(&error) != nullptr) {
    return lonely_option(error, command_text);
  }
  const std::vector<std::string> words = unused_words(command);
  if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr) {
    if (std::string swallowed = swallowed_option(command); !swallowed.empty()) return swallowed;
    // A mistyped option is why the right one is missing.
    if (std::any_of(words.begin(), words.end(), is_option)) {
      return unexpected_argument(command, words, command_text);
    }
    return required_argument(error, command_text);
  }
  const bool is_extra = dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr;
  if (is_extra && !words.empty()) return unexpected_argument(command, words, command_text);
  return error.what();
}

std::string parse_refusal(const CLI::App& program, const CLI::ParseError& error,
                          std::string_view first_argument) {
  const CLI::App& command = named_command(program);
  if (&command == &program && !first_argument.starts_with('-')) {
    return unknown_command(program, first_argument);
  }
  return option_refusal(command, error, text_of_command(program, command));
}

}  // namespace tool
