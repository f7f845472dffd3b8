#include "tools/command/parse_refusal.h"

#include <fmt/core.h>

#include <algorithm>
#include <iterator>
#include <vector>

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

// The command that the arguments name; the program itself without one.
const CLI::App& named_command(const CLI::App& program) {
  const std::vector<CLI::App*> commands = program.get_subcommands();
  return commands.empty() ? program : *commands.front();
}

std::string command_text(const CLI::App& program, const CLI::App& command) {
  return &command == &program ? program.get_name()
                              : fmt::format("{} {}", program.get_name(), command.get_name());
}

// A distance from which on a word is no mistyped other one.
bool is_close(std::string_view a, std::string_view b) {
  return edit_distance(a, b) <= std::max<std::size_t>(2, b.size() / 3);
}

std::string did_you_mean(std::string_view word, const std::vector<std::string>& known) {
  const std::vector<std::string_view> names(known.begin(), known.end());
  if (names.empty() || word.size() > 64) return {};
  const std::string_view closest = closest_name(word, names);
  return is_close(word, closest) ? fmt::format("; did you mean {}?", closest) : std::string(";");
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
  for (const CLI::App* command : program.get_subcommands([](const CLI::App*) { return true; })) {
    names.push_back(command->get_name());
  }
  return names;
}

std::string unexpected_argument(const CLI::App& program, const std::vector<std::string>& words) {
  const CLI::App& command = named_command(program);
  const auto option = std::find_if(words.begin(), words.end(),
                                   [](const std::string& word) { return word.starts_with('-'); });
  const std::string help = command_text(program, command) + " --help";
  if (option == words.end()) {
    return fmt::format("{} is one word too many; {} says what there is", in_quotes(words.front()),
                       help);
  }
  const std::string name = option->substr(0, option->find('='));
  std::string hint = did_you_mean(name, option_names(command));
  if (hint.empty()) hint = ";";
  return fmt::format("{} is no option of {}{} {} lists them", in_quotes(name),
                     command_text(program, command), hint, help);
}

// The words that the parser had no use for, wherever it found them.
std::vector<std::string> unused_words(const CLI::App& program) {
  const std::vector<std::string> all = program.remaining(true);
  return {all.begin(), all.end()};
}

// The name in front of the parser's own words.
std::string option_of(const CLI::ParseError& error) {
  const std::string text = error.what();
  return text.substr(0, text.find_first_of(": "));
}

std::string required_argument(const CLI::App& program, const CLI::ParseError& error) {
  const std::string option = option_of(error);
  const auto* const example =
      std::find_if(std::begin(kRequiredExamples), std::end(kRequiredExamples),
                   [&option](const RequiredExample& known) { return known.option == option; });
  if (example == std::end(kRequiredExamples)) return error.what();
  return fmt::format("{} is required, for example {}; {} --help has more", option, example->text,
                     command_text(program, named_command(program)));
}

std::string wrong_count(const CLI::App& program, const CLI::ParseError& error) {
  const std::string option = option_of(error);
  const std::string help = command_text(program, named_command(program)) + " --help";
  return fmt::format("{} takes exactly one value; {} has examples", option, help);
}

}  // namespace

std::string unknown_command(const CLI::App& program, std::string_view name) {
  std::string hint = did_you_mean(name, command_names(program));
  if (hint.empty()) hint = ";";
  return fmt::format("{} is no command{} {} --help lists them", in_quotes(name), hint,
                     program.get_name());
}

std::string parse_refusal(const CLI::App& program, const CLI::ParseError& error,
                          std::string_view first_argument) {
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
    return wrong_count(program, error);
  }
  const bool names_a_command = !program.get_subcommands().empty();
  if (!names_a_command && !first_argument.empty() && !first_argument.starts_with('-')) {
    return unknown_command(program, first_argument);
  }
  if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr) {
    return required_argument(program, error);
  }
  if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr) {
    const std::vector<std::string> words = unused_words(program);
    if (!words.empty()) return unexpected_argument(program, words);
  }
  return error.what();
}

}  // namespace tool
