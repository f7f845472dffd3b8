#include "tools/command/request_arguments.h"

#include "tools/command/parse_refusal.h"
#include "tools/request/bad_input.h"

namespace tool {

CLI::Option* add_text(CLI::App& command, const char* name, std::optional<std::string>& text,
                      const char* description) {
  return command.add_option_function<std::string>(
      name, [&text](const std::string& given) { text = given; }, description);
}

void add_chip(CLI::App& command, std::optional<std::string>& chip, bool& unknown_chip,
              const char* description, const char* type_name) {
  CLI::Option* const option = add_text(command, "--chip", chip, description);
  option->type_name(type_name);
  command
      .add_flag("--unknown-chip", unknown_chip, "With --chip: an id that is not known, as it is")
      ->needs(option)
      ->option_text(" ");  // what it needs stands in its description
}

void add_request(CLI::App& command, RequestOptions& options, Needs needs) {
  add_chip(command, options.chip, options.unknown_chip,
           "Chip id, model or revision, or family-6; default 0x43010000");
  command.add_option("--format", options.format, "Format number or name")
      ->required(needs == Needs::format_and_size)
      ->type_name("FORMAT");
  command.add_option("--size", options.size, "Texels, and slices or depth")
      ->required(needs == Needs::format_and_size)
      ->type_name("WxH[xD]");
  add_text(command, "--samples", options.samples, "Samples of a texel; default 1")
      ->type_name("1|2|4|8");
  add_text(command, "--planes", options.planes, "Default the format's own")->type_name("0|1|2|3");
  add_text(command, "--levels", options.levels, "Lay out a mip chain of 1 to 15 levels")
      ->type_name("N");
  command.add_flag("--linear", options.linear, "Linear instead of tiled");
  command.add_flag("--ubwc", options.ubwc, "Flag buffers where format and chip allow them");
  command.add_flag("--extra", options.extra, "An extra buffer behind the planes");
  command.add_flag("--extended", options.extended, "With --extra: the chip's extra padding");
}

RequestOptions parse_request_text(std::string_view command_text, const char* option,
                                  const std::string& text, const RequestOptions& common) {
  RequestOptions options = common;
  CLI::App side;
  side.set_help_flag();  // the text is no command
  add_request(side, options, Needs::nothing);
  try {
    side.parse(text);
  } catch (const CLI::ParseError& error) {
    refuse("{}: {}", option, option_refusal(side, error, command_text));
  }
  for (const auto& [name, value] :
       {std::pair("--format", &options.format), std::pair("--size", &options.size)}) {
    if (value->empty()) {
      refuse(
          "{}: {} is missing; it may stand here or, for both sides, outside, for example {} "
          "'--format nv12 --size 1920x1080'",
          option, name, option);
    }
  }
  return options;
}

}  // namespace tool
