#include "tools/record/uuid_text.h"

#include <fmt/core.h>

#include <array>
#include <cstring>

#include <korvel_utils.h>
#include "identify/hardware_data.h"
#include "identify/uuid.h"

namespace tool {
namespace {

korvel::UuidWords words_of(const uint8_t* uuid) {
  korvel::UuidWords words;
  std::memcpy(words.data(), uuid, KORVEL_UUID_BYTES);
  return words;
}

// Several chips may share an identity.
std::string chips_with(const korvel::UuidWords& words) {
  std::string chips;
  for (const korvel::ChipData& chip : korvel::kChipData) {
    if (korvel::device_uuid_words(chip.family_id, chip.model_code, chip.rev_id) != words) continue;
    chips += fmt::format("{}0x{:08X}", chips.empty() ? ", chip " : " or ", chip.chip_id);
  }
  return chips;
}

}  // namespace

std::string uuid_text(const uint8_t* uuid) {
  std::array<char, KORVEL_UUID_TEXT_BYTES> text{};
  uuid_to_str(text.data(), static_cast<int32_t>(text.size()), uuid, KORVEL_UUID_BYTES);
  return text.data();
}

std::string device_uuid_meaning(const uint8_t* uuid) {
  const korvel::UuidWords words = words_of(uuid);
  std::string meaning = fmt::format("family {}, model 0x{:06X}, revision 0x{:08X}{}", words[1],
                                    words[2], words[3], chips_with(words));
  if (words[0] == KORVEL_DEVICE_SIGNATURE) return meaning;
  return fmt::format("own word 0x{:X}, {}", words[0], meaning);
}

std::string driver_uuid_meaning(const uint8_t* uuid) {
  const korvel::UuidWords words = words_of(uuid);
  return fmt::format("driver signature {}, driver version {}, layout version {}", words[0],
                     words[1], words[2]);
}

}  // namespace tool
