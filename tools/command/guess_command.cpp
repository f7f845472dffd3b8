#include "tools/command/guess_command.h"

#include "tools/command/exit_codes.h"
#include "tools/comparison/layout_guess.h"
#include "tools/output/guess_output.h"
#include "tools/output/json_output.h"
#include "tools/output/progress_line.h"
#include "tools/output/standard_error.h"
#include "tools/output/standard_output.h"
#include "tools/request/bad_input.h"
#include "tools/request/number_text.h"

namespace tool {
namespace {

constexpr const char kAllSamples[] = "1,2,4,8";

uint64_t asked_bytes(const std::string& text) {
  const std::optional<uint64_t> bytes = long_number_of(text);
  if (!bytes || *bytes == 0) {
    refuse("--bytes: {} is no number of bytes; write for example --bytes 8392704 or 0x801000",
           in_quotes(text));
  }
  return *bytes;
}

RequestLists lists_of(const GuessOptions& options) {
  RequestLists lists;
  lists.chips = parse_chips(options.chip.value_or("all"), options.unknown_chip);
  lists.formats = parse_formats(options.format.value_or("all"));
  lists.sizes = options.size ? parse_sizes(*options.size) : usual_sizes();
  lists.samples = parse_numbers(
      "--samples", options.samples.value_or(options.size ? kAllSamples : "1"), {1, 8}, kAllSamples);
  lists.levels = parse_levels(options.levels.value_or(options.size ? "none,full" : "none"));
  lists.linear = Choice::both;
  lists.ubwc = Choice::both;
  return lists;
}

}  // namespace

int guess(const GuessOptions& options) {
  const uint64_t bytes = asked_bytes(options.bytes);
  const RequestLists lists = lists_of(options);
  Guesses guesses;
  {
    std::optional<ProgressLine> progress;
    guesses = guess_layouts(bytes, lists, [&progress](std::size_t done, std::size_t total) {
      if (!progress) progress.emplace("groups of chips", total);
      progress->update(done);
    });
  }
  if (options.json) {
    print_data(json_text("guess", guess_json(bytes, guesses), {}));
  } else {
    print_data(guess_text(bytes, guesses, lists));
  }
  return guesses.found.empty() ? kExitRefused : kExitDone;
}

}  // namespace tool
