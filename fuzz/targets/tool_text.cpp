// korvel-layout dump FILE, of a text
#include <span>
#include <string>
#include <string_view>

#include "fuzz/fuzz_target.h"
#include "fuzz/met_cases.h"
#include "fuzz/tool_run.h"
#include "tools/command/dump_command.h"
#include "tools/record/record_text.h"

namespace {

using Bytes = std::vector<uint8_t>;

constexpr std::string_view kHexDigits[] = {"0123456789abcdef", "0123456789ABCDEF"};
constexpr std::string_view kBetween[] = {"", " ", "\n", ", ", "\r\n\t", ",0x", " 0X", ""};

// Pairs of digits, with what may stand between them.
std::string hex_of(std::span<const uint8_t> bytes, fuzz::InputBytes& input) {
  const std::string_view digits = kHexDigits[input.u8() % 2];
  uint32_t choices = input.u32();
  std::string text;
  for (const uint8_t byte : bytes) {
    text += kBetween[choices % std::size(kBetween)];
    text += {digits[byte >> 4], digits[byte & 15]};
    choices = choices >> 3 | choices << 29;
  }
  return text;
}

std::string base64_of(std::span<const uint8_t> bytes, fuzz::InputBytes& input) {
  std::string digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
  digits += input.u8() % 2 == 0 ? "+/" : "-_";
  const std::size_t line_letters = input.u8() % 100;
  const bool filled = input.u8() % 2 == 0;
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::span<const uint8_t> group =
        bytes.subspan(i, std::min<std::size_t>(3, bytes.size() - i));
    uint32_t bits = uint32_t{group[0]} << 16;
    if (group.size() > 1) bits |= uint32_t{group[1]} << 8;
    if (group.size() > 2) bits |= group[2];
    for (std::size_t d = 0; d <= group.size(); ++d) text += digits[bits >> (18 - 6 * d) & 63];
    if (filled) text.append(3 - group.size(), '=');
    if (line_letters != 0 && i % line_letters == 0) text += '\n';
  }
  return text;
}

fuzz::ToolRun dump_of(const Bytes& content) {
  const fuzz::StoredInputFile file = fuzz::store_file(content);
  tool::DumpOptions options;
  options.stored.file = file.path;
  return fuzz::run_tool(file, [&options] { return tool::dump(options); });
}

// The text stands for the bytes, and says the same.
void require_same_record(const Bytes& record, std::string_view text,
                         const std::optional<std::vector<unsigned char>>& decoded,
                         fuzz::Case form) {
  REQUIRE(decoded.has_value());
  REQUIRE(*decoded == record);
  if (!fuzz::fits(record.size(), std::nullopt)) return;
  const fuzz::ToolRun of_text = dump_of({text.begin(), text.end()});
  const fuzz::ToolRun of_bytes = dump_of(record);
  REQUIRE(of_text.exit_code == of_bytes.exit_code);
  REQUIRE(of_text.output == of_bytes.output);
  fuzz::meet(form);
}

std::span<const unsigned char> as_bytes(std::string_view text) {
  return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  enum : uint8_t { kHex, kBase64, kRaw };
  fuzz::InputBytes input(data, size);
  switch (input.u8() % 3) {
    case kHex: {
      fuzz::InputBytes form = input;
      const Bytes record = fuzz::draw_record_file(input);
      const std::string text = hex_of(record, form);
      require_same_record(record, text, tool::bytes_of_hex(as_bytes(text)),
                          fuzz::Case::record_in_hex);
      break;
    }
    case kBase64: {
      fuzz::InputBytes form = input;
      const Bytes record = fuzz::draw_record_file(input);
      const std::string text = base64_of(record, form);
      require_same_record(record, text, tool::bytes_of_base64(as_bytes(text)),
                          fuzz::Case::record_in_base64);
      break;
    }
    default: {
      const std::span<const uint8_t> text = input.rest();
      const fuzz::ToolRun run = dump_of({text.begin(), text.end()});
      REQUIRE(run.exit_code == tool::kExitDone || run.exit_code == tool::kExitBadInput);
      break;
    }
  }
  return 0;
}
