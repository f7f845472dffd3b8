#include "tools/command/command_line.h"

#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "tools/command/check_command.h"
#include "tools/command/chips_command.h"
#include "tools/command/commands_of.h"
#include "tools/command/completions.h"
#include "tools/command/diff_command.h"
#include "tools/command/dump_command.h"
#include "tools/command/exit_codes.h"
#include "tools/command/explain_command.h"
#include "tools/command/fit_command.h"
#include "tools/command/formats_command.h"
#include "tools/command/guess_command.h"
#include "tools/command/manual_page.h"
#include "tools/command/parse_refusal.h"
#include "tools/command/request_arguments.h"
#include "tools/command/show_command.h"
#include "tools/command/stored_file_arguments.h"
#include "tools/command/table_command.h"
#include "tools/output/json_schema.h"
#include "tools/output/standard_error.h"
#include "tools/output/standard_output.h"
#include "tools/request/bad_input.h"

namespace tool {
namespace {

constexpr const char kExamples[] =
    "Examples:\n"
    "  korvel-layout show --format r8g8b8a8_unorm --size 1920x1080 --ubwc\n"
    "  korvel-layout show --chip 0x44010000 --format nv12 --size 3840x2160 --blob nv12.blob\n"
    "  korvel-layout show --format 28 --size 2048x2048 --levels 12 --json\n"
    "  korvel-layout explain --format r8g8b8a8_unorm --size 1918x1080 --linear\n"
    "  korvel-layout table --format 28,nv12 --size 1920x1080 --chip all-families --linear both\n"
    "  korvel-layout diff --format 28 --size 2000x1080 --a '--linear' --b '--ubwc'\n"
    "  korvel-layout fit --format 28 --size 1918x1080 --linear --plane pitch=7672\n"
    "  korvel-layout guess --bytes 8392704 --size 1920x1080\n"
    "  korvel-layout check nv12.blob --chip 0x44010000\n"
    "  korvel-layout dump nv12.blob\n"
    "  korvel-layout formats --chip 0x43010000\n"
    "  korvel-layout chips\n"
    "  korvel-layout schema\n"
    "\n"
    "korvel-layout help COMMAND says more of one. A file named - is standard input or output.\n"
    "Exit codes: 0 done, 1 no (refused, different, not fitting, not found, or warnings with\n"
    "--strict), 2 bad input, 3 an explanation that does not come to the library's numbers (a bug).";

constexpr const char kShowExamples[] =
    "Examples:\n"
    "  korvel-layout show --format r8g8b8a8_unorm --size 1920x1080 --ubwc\n"
    "  korvel-layout show --chip 0x06010000 --format 10 --size 64x64x6 --samples 4\n"
    "  korvel-layout show --format bc1_unorm --size 2048x2048 --levels 12\n"
    "  korvel-layout show --format nv12 --size 1280x720 --linear --blob nv12.blob\n"
    "  korvel-layout show --format 28 --size 1918x1080 --ubwc --html picture.html";

constexpr const char kExplainExamples[] =
    "Examples:\n"
    "  korvel-layout explain --format r8g8b8a8_unorm --size 1918x1080 --linear\n"
    "  korvel-layout explain --format nv12 --size 1920x1080 --field level[0].plane[1].image_offset\n"
    "  korvel-layout explain --format 28 --size 2048x2048 --levels 12 --ubwc --json\n"
    "\n"
    "Fields have the names that show prints with --json: level[0].plane[0].image_pitch,\n"
    "level[0].size, total_size, gpu_buffer_size.";

constexpr const char kTableExamples[] =
    "Examples:\n"
    "  korvel-layout table --size 1280x720,1920x1080,3840x2160 --format r8g8b8a8_unorm,nv12 \\\n"
    "    --chip all-families --linear both\n"
    "  korvel-layout table --format 28 --size 1900..1940:4x1080 --linear --sort padding\n"
    "  korvel-layout table --format 70..84,97 --size 2048x2048 --levels none,full --csv";

constexpr const char kDiffExamples[] =
    "Examples:\n"
    "  korvel-layout diff --format 28 --size 2000x1080 --a '--linear' --b '--ubwc'\n"
    "  korvel-layout diff --format nv12 --size 1920x1080 --a '--chip family-6' --b '--chip "
    "family-7'\n"
    "  korvel-layout diff one.blob other.blob\n"
    "  korvel-layout diff nv12.blob --format nv12 --size 1920x1080\n"
    "\n"
    "Exit codes: 0 alike, 1 different, 2 bad input.";

constexpr const char kFitExamples[] =
    "Examples:\n"
    "  korvel-layout fit --format 28 --size 1918x1080 --linear --plane pitch=7672,height=1080\n"
    "  korvel-layout fit --format nv12 --size 1920x1080 --linear \\\n"
    "    --plane pitch=1920,height=1080,offset=0 --plane pitch=1920,height=540,offset=2073600\n"
    "  korvel-layout fit --chip family-7 --format 28 --size 64x64 --layout foreign.json\n"
    "\n"
    "Numbers of a plane: pitch, offset, size, slice_pitch, flag_pitch, flag_offset and flag_size in\n"
    "bytes, height in rows; what is not given is filled in. Exit codes: 0 fits, 1 does not, 2 bad\n"
    "input.";

constexpr const char kGuessExamples[] =
    "Examples:\n"
    "  korvel-layout guess --bytes 8392704 --size 1920x1080\n"
    "  korvel-layout guess --bytes 4177920 --format nv12\n"
    "  korvel-layout guess --bytes 4153344 --format nv12 --size 1920x1000..1100 --chip family-6\n"
    "\n"
    "Without --size, sizes that surfaces often have. Exit codes: 0 found, 1 nothing, 2 bad input.";

void add_strict(CLI::App& command, bool& strict) {
  command.add_flag("--strict", strict, "Exit code 1 when there are warnings");
}

CLI::App* add_show(CLI::App& program, ShowOptions& options) {
  CLI::App* const command =
      program.add_subcommand("show", "Lay out one surface and print where everything lies");
  add_request(*command, options.request);
  command->add_flag("--json", options.json, "JSON instead of tables");
  add_text(*command, "--blob", options.blob, "Write the 5536 bytes of the blob")->type_name("FILE");
  add_text(*command, "--svg", options.svg, "Draw the layout as an SVG picture; - prints it")
      ->type_name("FILE");
  add_text(*command, "--html", options.html, "The same as a page whose bar of bytes can be zoomed")
      ->type_name("FILE");
  command->add_flag("--force", options.force, "Replace existing files");
  add_strict(*command, options.strict);
  command->footer(kShowExamples);
  return command;
}

CLI::App* add_explain(CLI::App& program, ExplainOptions& options) {
  CLI::App* const command =
      program.add_subcommand("explain", "Lay out one surface and say how each number comes about");
  add_request(*command, options.request);
  add_text(*command, "--field", options.field, "Explain this field alone")->type_name("NAME");
  command->add_flag("--json", options.json, "JSON instead of text");
  add_strict(*command, options.strict);
  command->footer(kExplainExamples);
  return command;
}

// An option that may stand alone or have a value behind it.
void add_choice(CLI::App& command, const char* name, std::optional<std::string>& text,
                const char* description) {
  add_text(command, name, text, description)->expected(0, 1)->type_name("[both]");
}

CLI::App* add_table(CLI::App& program, TableOptions& options) {
  CLI::App* const command =
      program.add_subcommand("table", "Say what many surfaces cost, one in each row");
  add_chip(*command, options.chip, options.unknown_chip,
           "Chips; all-families for one of each, all for every chip; default 0x43010000", "CHIPS");
  command->add_option("--format", options.format, "Format numbers, names and ranges, or all")
      ->required()
      ->type_name("FORMATS");
  command->add_option("--size", options.size, "Texels, and slices or depth; sides may be ranges")
      ->required()
      ->type_name("WxH[xD],...");
  add_text(*command, "--samples", options.samples, "1, 2, 4 and 8; default 1")->type_name("LIST");
  add_text(*command, "--levels", options.levels,
           "1 to 15, full for all that a size has, none for no chain; default none")
      ->type_name("LIST");
  add_choice(*command, "--linear", options.linear, "Linear instead of tiled; both: a row each");
  add_choice(*command, "--ubwc", options.ubwc, "With flag buffers; both: a row each");
  command->add_flag("--extra", options.extra, "An extra buffer behind the planes");
  command->add_flag("--extended", options.extended, "With --extra: the chip's extra padding");
  add_text(*command, "--sort", options.sort, "Sort by this column, smallest first")
      ->type_name("COLUMN");
  command->add_flag("--reverse", options.reverse, "With --sort: largest first");
  command->add_flag("--csv", options.csv, "CSV instead of a table");
  command->add_flag("--json", options.json, "JSON instead of a table");
  add_strict(*command, options.strict);
  command->footer(kTableExamples);
  return command;
}

CLI::App* add_diff(CLI::App& program, DiffOptions& options) {
  CLI::App* const command =
      program.add_subcommand("diff", "Compare two layouts, and say where they part");
  command->add_option("FILE", options.files, "Blobs or bare records, at most two")->type_name("");
  add_text(*command, "--a", options.a, "Options of the first layout alone, in quotes")
      ->type_name("OPTIONS");
  add_text(*command, "--b", options.b, "Options of the second layout alone, in quotes")
      ->type_name("OPTIONS");
  add_request(*command, options.common, Needs::nothing);
  add_kind(*command, options.kind);
  command->add_flag("--json", options.json, "JSON instead of text");
  command->footer(kDiffExamples);
  return command;
}

CLI::App* add_fit(CLI::App& program, FitOptions& options) {
  CLI::App* const command =
      program.add_subcommand("fit", "Say whether a layout from elsewhere is one for a chip");
  add_request(*command, options.request);
  command->add_option("--plane", options.planes, "Numbers of a plane; once for each plane")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
      ->type_name("NAME=N,...");
  add_text(*command, "--layout", options.layout, "JSON with planes as show prints them")
      ->type_name("FILE");
  command->add_flag("--json", options.json, "JSON instead of text");
  command->footer(kFitExamples);
  return command;
}

CLI::App* add_guess(CLI::App& program, GuessOptions& options) {
  CLI::App* const command =
      program.add_subcommand("guess", "Say which layouts come to a number of bytes");
  command->add_option("--bytes", options.bytes, "Bytes of a dump or an allocation")
      ->required()
      ->type_name("N");
  add_text(*command, "--format", options.format, "Format numbers, names and ranges; default all")
      ->type_name("FORMATS");
  add_text(*command, "--size", options.size, "Texels, and slices or depth; sides may be ranges")
      ->type_name("WxH[xD],...");
  add_chip(*command, options.chip, options.unknown_chip, "Chips; default all", "CHIPS");
  add_text(*command, "--samples", options.samples, "Default 1, with --size 1,2,4,8")
      ->type_name("LIST");
  add_text(*command, "--levels", options.levels, "Default none, with --size full too")
      ->type_name("LIST");
  command->add_flag("--json", options.json, "JSON instead of text");
  command->footer(kGuessExamples);
  return command;
}

CLI::App* add_chips(CLI::App& program, bool& json) {
  CLI::App* const command = program.add_subcommand("chips", "List the chip rows");
  command->add_flag("--json", json, "JSON instead of a table");
  return command;
}

CLI::App* add_schema(CLI::App& program) {
  return program.add_subcommand("schema",
                                "Print the JSON Schema of what all commands print with --json");
}

CLI::App* add_formats(CLI::App& program, FormatsOptions& options) {
  CLI::App* const command = program.add_subcommand("formats", "List the formats");
  add_chip(*command, options.chip, options.unknown_chip, "Add what this chip can do with each");
  command->add_flag("--all", options.all, "List unused ids too");
  command->add_flag("--json", options.json, "JSON instead of a table");
  return command;
}

CLI::App* add_check(CLI::App& program, CheckOptions& options) {
  CLI::App* const command =
      program.add_subcommand("check", "Have the library validate a stored blob or record");
  add_stored_file(*command, options.stored);
  add_chip(*command, options.chip, options.unknown_chip,
           "Chip that the record must be made for; default the one that it names");
  command->add_flag("--json", options.json, "JSON instead of a line");
  command->add_flag("--strict", options.strict,
                    "Look for what the rules cannot refuse too; exit code 1 when there is any");
  command->footer(
      "Warnings beside a valid record tell what of it does not lie inside its surface or buffer;\n"
      "with --strict also which buffers share bytes, which levels grow, and which numbers are less\n"
      "than the chip's rules ask for.");
  return command;
}

CLI::App* add_dump(CLI::App& program, DumpOptions& options) {
  CLI::App* const command =
      program.add_subcommand("dump", "Print a stored blob or record field by field");
  add_stored_file(*command, options.stored);
  command->add_flag("--all", options.all, "Also every field that is not in use");
  command->add_flag("--json", options.json, "JSON instead of text");
  return command;
}

CLI::App* add_manual(CLI::App& program) {
  CLI::App* const command = program.add_subcommand("manual", "Print the manual page for man");
  command->footer("Example:\n  korvel-layout manual | man -l -");
  return command;
}

// What the user asked for: help or the version.
std::string help_text(const CLI::App& program, const CLI::Success& success) {
  std::ostringstream stream;
  program.exit(success, stream, stream);
  std::string text = stream.str();
  if (!text.ends_with('\n')) text += '\n';
  return text;
}

// `help` and `help COMMAND`.
std::string asked_help(const CLI::App& program, int argc, char** argv) {
  if (argc <= 2) return program.help();
  const std::string_view asked = argv[2];
  if (argc > 3) {
    refuse("{} is one word too many; help says more of one command, for example {} help show",
           in_quotes(argv[3]), program.get_name());
  }
  for (const CLI::App* command : commands_of(program)) {
    if (command->get_name() == asked) return command->help(program.get_name());
  }
  throw BadInput(unknown_command(program, asked));
}

bool asks_for_help(int argc, char** argv) {
  return argc <= 1 || std::string_view(argv[1]) == "help";
}

// `complete WORD...`, by which the completions of shells ask. No help names it.
bool asks_for_completions(int argc, char** argv) {
  return argc > 1 && std::string_view(argv[1]) == "complete";
}

}  // namespace

int run_command_line(int argc, char** argv) {
  CLI::App program("Where every byte of a surface lies in GPU memory.", "korvel-layout");
  program.set_version_flag("--version", "korvel-layout " KORVEL_LAYOUT_VERSION);
  program.require_subcommand(0, 1);

  ShowOptions show_options;
  ExplainOptions explain_options;
  TableOptions table_options;
  DiffOptions diff_options;
  FitOptions fit_options;
  GuessOptions guess_options;
  FormatsOptions formats_options;
  CheckOptions check_options;
  DumpOptions dump_options;
  bool chips_json = false;
  const CLI::App* const show_command = add_show(program, show_options);
  const CLI::App* const explain_command = add_explain(program, explain_options);
  const CLI::App* const table_command = add_table(program, table_options);
  const CLI::App* const diff_command = add_diff(program, diff_options);
  const CLI::App* const fit_command = add_fit(program, fit_options);
  const CLI::App* const guess_command = add_guess(program, guess_options);
  const CLI::App* const chips_command = add_chips(program, chips_json);
  const CLI::App* const formats_command = add_formats(program, formats_options);
  const CLI::App* const check_command = add_check(program, check_options);
  const CLI::App* const dump_command = add_dump(program, dump_options);
  const CLI::App* const manual_command = add_manual(program);
  const CLI::App* const schema_command = add_schema(program);
  program.footer(kExamples);  // commands take over the footer that is set before them
  if (asks_for_help(argc, argv)) {
    print_data(asked_help(program, argc, argv));
    return kExitDone;
  }
  if (asks_for_completions(argc, argv)) {
    print_data(completion_lines(program, std::vector<std::string>(argv + 2, argv + argc)));
    return kExitDone;
  }
  try {
    program.parse(argc, argv);
  } catch (const CLI::Success& success) {
    print_data(help_text(program, success));
    return kExitDone;
  } catch (const CLI::ParseError& error) {
    throw BadInput(parse_refusal(program, error, argv[1]));
  }
  for (const CLI::App* command : program.get_subcommands()) {
    if (const std::string swallowed = swallowed_option(*command); !swallowed.empty()) {
      throw BadInput(swallowed);
    }
  }
  if (show_command->parsed()) return show(show_options);
  if (explain_command->parsed()) return explain(explain_options);
  if (table_command->parsed()) return table(table_options);
  if (diff_command->parsed()) return diff(diff_options);
  if (fit_command->parsed()) return fit(fit_options);
  if (guess_command->parsed()) return guess(guess_options);
  if (chips_command->parsed()) return list_chips(chips_json);
  if (formats_command->parsed()) return list_formats(formats_options);
  if (check_command->parsed()) return check(check_options);
  if (dump_command->parsed()) return dump(dump_options);
  if (manual_command->parsed()) {
    print_data(manual_page(program, day_of_manual()));
    return kExitDone;
  }
  if (schema_command->parsed()) {
    print_data(kJsonSchema);
    return kExitDone;
  }
  refuse("no command given; korvel-layout --help lists them");
}

}  // namespace tool
