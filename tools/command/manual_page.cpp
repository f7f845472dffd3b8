#include "tools/command/manual_page.h"

#include <fmt/core.h>

#include <cctype>
#include <charconv>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "tools/command/commands_of.h"

namespace tool {
namespace {

// A text that man prints as it is, wherever it stands in a line.
std::string as_it_is(std::string_view text) {
  std::string escaped = text.starts_with('.') || text.starts_with('\'') ? "\\&" : "";
  for (const char c : text) {
    switch (c) {
      case '\\': escaped += "\\e"; break;
      case '-': escaped += "\\-"; break;
      case '\'': escaped += "\\(aq"; break;
      case '"': escaped += "\\(dq"; break;
      case '^': escaped += "\\(ha"; break;
      case '~': escaped += "\\(ti"; break;
      case '`': escaped += "\\(ga"; break;
      default: escaped += c;
    }
  }
  return escaped;
}

// Names of fields stay whole at the ends of lines.
std::string sentence(std::string_view text) {
  std::string escaped;
  for (const std::string& word : CLI::detail::split(std::string(text), ' ')) {
    if (!escaped.empty()) escaped += ' ';
    if (word.find('_') != std::string::npos) escaped += "\\%";
    escaped += as_it_is(word);
  }
  return escaped;
}

std::string bold(std::string_view text) {
  return "\\fB" + as_it_is(text) + "\\fR";
}

std::string italic(std::string_view text) {
  return "\\fI" + as_it_is(text) + "\\fR";
}

// The program's sentence as it follows its name.
std::string purpose_of(const CLI::App& program) {
  std::string purpose = program.get_description();
  if (!purpose.empty())
    purpose.front() = static_cast<char>(std::tolower(static_cast<unsigned char>(purpose.front())));
  if (purpose.ends_with('.')) purpose.pop_back();
  return purpose;
}

std::vector<const CLI::Option*> positionals_of(const CLI::App& command) {
  return command.get_options([](const CLI::Option* option) { return option->get_positional(); });
}

std::string usage_of(const CLI::App& program, const CLI::App& command) {
  std::string usage = bold(program.get_name() + " " + command.get_name());
  usage += fmt::format(" [{}]", italic("OPTIONS"));
  for (const CLI::Option* option : positionals_of(command)) {
    const bool many = option->get_expected_max() > 1;
    const std::string name = italic(option->get_name(true)) + (many ? "..." : "");
    usage += option->get_required() ? " " + name : fmt::format(" [{}]", name);
  }
  return usage;
}

std::string names_of(const CLI::Option& option) {
  if (option.get_positional()) return italic(option.get_name(true));
  std::string names;
  for (const std::string& name : option.get_snames()) names += bold("-" + name) + ", ";
  for (const std::string& name : option.get_lnames()) names += bold("--" + name) + ", ";
  names.resize(names.size() - 2);
  return names;
}

std::string option_text(const CLI::Option& option) {
  std::string text = ".TP\n" + names_of(option);
  const std::string type = option.get_type_name();
  if (!type.empty() && option.get_items_expected_max() > 0) text += " " + italic(type);
  text += "\n" + as_it_is(option.get_description());
  return text + (option.get_required() ? " (required)\n" : "\n");
}

std::string options_text(const CLI::App& command) {
  std::string text;
  for (const CLI::Option* option : command.get_options()) text += option_text(*option);
  return text;
}

// What help prints last: indented lines are commands, all others sentences. Behind a heading, the
// first line is in a paragraph already.
std::string footer_text(const std::string& footer, bool in_paragraph) {
  std::string text;
  bool in_commands = false;
  for (const std::string& line : CLI::detail::split(footer, '\n')) {
    const bool is_command = line.starts_with("  ");
    if (in_commands && !is_command) text += ".EE\n";
    if (line.empty()) {
      in_paragraph = false;
    } else if (is_command) {
      if (!in_commands) text += in_paragraph ? ".EX\n" : ".PP\n.EX\n";
      text += "\\&" + as_it_is(line) + "\n";
    } else {
      if (!in_paragraph) text += ".PP\n";
      in_paragraph = true;
      text += sentence(line) + "\n";
    }
    in_commands = is_command;
  }
  return text + (in_commands ? ".EE\n" : "");
}

std::string command_section(const CLI::App& program, const CLI::App& command) {
  return fmt::format(".SS {}\n{}\n.PP\n{}.\n{}{}", as_it_is(command.get_name()),
                     usage_of(program, command), as_it_is(command.get_description()),
                     options_text(command), footer_text(command.get_footer(), false));
}

}  // namespace

std::string manual_page(const CLI::App& program, std::chrono::year_month_day day) {
  const std::string name = as_it_is(program.get_name());
  std::string page = fmt::format(
      ".TH KORVEL\\-LAYOUT 1 {:04}-{:02}-{:02} \"{} {}\" \"User Commands\"\n"
      ".ad l\n"
      ".SH NAME\n{} \\- {}\n"
      ".SH SYNOPSIS\n{} {} [{}]\n"
      ".SH DESCRIPTION\n{}\n"
      ".SH OPTIONS\n{}"
      ".SH COMMANDS\n",
      static_cast<int>(day.year()), static_cast<unsigned>(day.month()),
      static_cast<unsigned>(day.day()), name, KORVEL_LAYOUT_VERSION, name,
      as_it_is(purpose_of(program)), bold(program.get_name()), italic("COMMAND"), italic("OPTIONS"),
      as_it_is(program.get_description()), options_text(program));
  for (const CLI::App* command : commands_of(program)) {
    page += command_section(program, *command);
  }
  return page + ".SH EXAMPLES AND EXIT CODES\n" + footer_text(program.get_footer(), true);
}

std::chrono::year_month_day day_of_manual() {
  using Clock = std::chrono::system_clock;
  Clock::time_point time = Clock::now();
  // NOLINTNEXTLINE(concurrency-mt-unsafe): the program has one thread
  const char* const text = std::getenv("SOURCE_DATE_EPOCH");
  const std::string_view epoch = text != nullptr ? text : "";
  int64_t seconds = 0;
  const auto [stop, error] = std::from_chars(epoch.data(), epoch.data() + epoch.size(), seconds);
  if (error == std::errc() && stop == epoch.data() + epoch.size()) {
    time = Clock::time_point(std::chrono::seconds(seconds));
  }
  return std::chrono::floor<std::chrono::days>(time);
}

}  // namespace tool
