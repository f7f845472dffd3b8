#include "tools/record/refusal_words.h"

#include <fmt/core.h>

#include <array>
#include <charconv>
#include <optional>
#include <span>

#include <korvel_utils.h>
#include "formats/format_ids.h"
#include "tools/record/uuid_text.h"
#include "tools/request/counted.h"

namespace tool {
namespace {

// A validator's message: the words of the rule, then "{name number, name number}" or one number.
class Message {
 public:
  explicit Message(std::string_view text) : text_(text) {}

  [[nodiscard]] bool starts_with(std::string_view rule) const { return text_.starts_with(rule); }

  // The text behind a name inside the braces; empty when there is none.
  [[nodiscard]] std::string_view word(std::string_view name) const {
    const std::size_t brace = text_.find('{');
    if (brace == std::string_view::npos) return {};
    std::string_view rest = text_.substr(brace + 1);
    rest = rest.substr(0, rest.find('}'));
    while (!rest.empty()) {
      const std::size_t comma = rest.find(", ");
      const std::string_view part = rest.substr(0, comma);
      if (part.size() > name.size() && part.starts_with(name) && part[name.size()] == ' ' &&
          part.find(' ', name.size() + 1) == std::string_view::npos) {
        return part.substr(name.size() + 1);
      }
      rest = comma == std::string_view::npos ? std::string_view() : rest.substr(comma + 2);
    }
    return {};
  }

  [[nodiscard]] uint64_t number(std::string_view name) const { return number_in(word(name)); }

  // The last word of a message without braces.
  [[nodiscard]] uint64_t last_number() const {
    return number_in(text_.substr(text_.rfind(' ') + 1));
  }

 private:
  // 0 for what is no number.
  static uint64_t number_in(std::string_view digits) {
    uint64_t number = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return number;
  }

  std::string_view text_;
};

std::string bytes_text(uint64_t bytes) {
  return counted(bytes, "byte");
}

// "level 0, plane 1: ", with the plane where the rule is one of planes.
std::string place_of(const Message& message) {
  std::string place = fmt::format("level {}", message.number("level"));
  if (!message.word("plane").empty()) place += fmt::format(", plane {}", message.number("plane"));
  return place + ": ";
}

// A buffer that does not end inside the surface. `name` is the buffer's in the message.
std::string outside_surface(const Message& message, std::string_view name,
                            std::string_view buffer) {
  const auto number = [&](std::string_view word) {
    return message.number(fmt::format("{} {}", name, word));
  };
  const bool in_slices = !message.word("slices").empty();
  const uint64_t offset = number("offset");
  const uint64_t size = number("size");
  const uint64_t slices = in_slices ? message.number("slices") : 1;
  const uint64_t slice_pitch = in_slices ? number("slice pitch") : 0;
  const uint64_t surface = message.number("surface size");
  const std::string sum =
      slices > 1 ? fmt::format("offset {} + {} further {} x {} + size {}", offset, slices - 1,
                               slices == 2 ? "slice" : "slices", slice_pitch, size)
                 : fmt::format("offset {} + size {}", offset, size);
  uint64_t end = 0;
  uint64_t others = 0;
  if (__builtin_mul_overflow(slices - 1, slice_pitch, &others) ||
      __builtin_add_overflow(offset, size, &end) || __builtin_add_overflow(end, others, &end)) {
    return fmt::format("{}the {} does not end in 64 bits: {}, in a surface of {}",
                       place_of(message), buffer, sum, bytes_text(surface));
  }
  return fmt::format("{}the {} ends at {} = {}, {} behind the surface's {}", place_of(message),
                     buffer, sum, end, bytes_text(end - surface), surface);
}

// Rows times pitch <= size <= slice pitch, of images and of LRZ buffers.
std::string size_mismatch(const Message& message, std::string_view name, std::string_view buffer,
                          std::string_view height_name) {
  const auto number = [&](std::string_view word) {
    return message.number(fmt::format("{} {}", name, word));
  };
  const uint64_t rows = message.number(height_name);
  const uint64_t pitch = number("pitch");
  const uint64_t size = number("size");
  const uint64_t slice_pitch = number("slice pitch");
  const auto product = static_cast<uint32_t>(rows * pitch);
  if (size < product) {
    return fmt::format("{}{} rows x {} bytes = {}, {} more than the {} of the {}",
                       place_of(message), rows, pitch,
                       product == rows * pitch ? bytes_text(product)
                                               : fmt::format("{} in 32 bits", bytes_text(product)),
                       product - size, bytes_text(size), buffer);
  }
  return fmt::format("{}the {} of one slice takes {}, {} more than the slice pitch of {}",
                     place_of(message), buffer, bytes_text(size), size - slice_pitch,
                     bytes_text(slice_pitch));
}

std::string image_size(const Message& message) {
  const bool actual = !message.word("actual height").empty();
  return size_mismatch(message, "image", "image", actual ? "actual height" : "image height");
}

std::string image_pitch(const Message& message) {
  const bool actual = !message.word("actual width").empty();
  const uint64_t width = message.number(actual ? "actual width" : "image width");
  const uint64_t element = message.number("image element size");
  const auto row = static_cast<uint32_t>(width * element);
  const uint64_t pitch = message.number("image pitch");
  return fmt::format("{}{} elements x {} bytes = {}{}, {} more than the pitch of {}",
                     place_of(message), width, element, bytes_text(row),
                     row == width * element ? "" : " in 32 bits", row - pitch, bytes_text(pitch));
}

std::string image_dimensions(const Message& message) {
  std::string zeros;
  for (const char* name :
       {"image width", "image height", "actual width", "actual height", "image element size"}) {
    if (message.word(name) == "0") zeros += fmt::format("{}{}", zeros.empty() ? "" : ", ", name);
  }
  return fmt::format("{}{} must not be 0", place_of(message), zeros);
}

std::string flag_pitch(const Message& message) {
  const uint64_t pitch = message.number("flag pitch");
  if (pitch == 0) return place_of(message) + "the flag buffer's pitch must not be 0 bytes";
  return fmt::format("{}the flag buffer's pitch of {} is more than its slice pitch of {}",
                     place_of(message), bytes_text(pitch),
                     bytes_text(message.number("flag slice pitch")));
}

std::string flag_slice_pitch(const Message& message) {
  return fmt::format("{}a flag buffer of {} does not fit its slice pitch of {}", place_of(message),
                     bytes_text(message.number("flag size")),
                     bytes_text(message.number("flag slice pitch")));
}

std::string level_size(const Message& message) {
  const uint64_t size = message.number("size");
  if (size == 0) return place_of(message) + "the level's size must not be 0 bytes";
  const uint64_t total = message.number("surface size");
  return fmt::format("{}the level's size of {} is {} more than total_size, {}", place_of(message),
                     bytes_text(size), size - total, bytes_text(total));
}

std::string lrz_pitch(const Message& message) {
  return fmt::format("{}the LRZ buffer's pitch of {} is less than its width of {}",
                     place_of(message), bytes_text(message.number("lrz pitch")),
                     counted(message.number("lrz width"), "element"));
}

std::string surface_alignment(const Message& message, uint32_t record_bytes) {
  const uint64_t total = message.number("size");
  const uint64_t alignment = message.number("alignment");
  if (total == 0) return "total_size must not be 0 bytes";
  // Both kinds of record agree on the bits below an alignment.
  const uint64_t surface = total - record_bytes;
  return fmt::format(
      "total_size {} - {} of the record = {} of surface, {} more than a multiple of "
      "the alignment of {}",
      total, record_bytes, bytes_text(surface), surface & (alignment - 1), bytes_text(alignment));
}

// The 16 bytes of a UUID as the library prints it; nothing for any other text.
std::optional<std::array<uint8_t, KORVEL_UUID_BYTES>> uuid_bytes(std::string_view text) {
  std::array<uint8_t, KORVEL_UUID_BYTES> uuid{};
  std::size_t digits = 0;
  for (const char c : text) {
    if (c == '-') continue;
    uint8_t value = 0;
    if (std::from_chars(&c, &c + 1, value, 16).ec != std::errc()) return std::nullopt;
    if (digits == 2 * uuid.size()) return std::nullopt;
    uint8_t& byte = uuid[digits / 2];
    byte = static_cast<uint8_t>(byte << 4 | value);
    ++digits;
  }
  if (digits != 2 * uuid.size()) return std::nullopt;
  return uuid;
}

using UuidMeaning = std::string (*)(const uint8_t* uuid);

std::string uuid_words(std::string_view text, UuidMeaning meaning) {
  const auto uuid = uuid_bytes(text);
  return uuid ? meaning(uuid->data()) : std::string(text);
}

std::string other_uuid(const Message& message, std::string_view what, UuidMeaning meaning) {
  return fmt::format("the record's {} says {}; expected is {}", what,
                     uuid_words(message.word("store uuid"), meaning),
                     uuid_words(message.word("struct uuid"), meaning));
}

std::string level_word(const Message& message, std::string_view name, std::string_view allowed) {
  return fmt::format("{}{} is {}: {} is allowed", place_of(message), name, message.number(name),
                     allowed);
}

struct Rule {
  std::string_view start;  // of the message
  std::string (*words)(const Message& message, uint32_t record_bytes);
};

using M = const Message&;

// The longer one first where one starts like another.
constexpr Rule kRules[] = {
    {"Metadata has bad signature",
     [](M m, uint32_t) {
       return fmt::format("the signature is 0x{:08X}, which is no record's of this kind",
                          m.last_number());
     }},
    {"Metadata device version mismatch",
     [](M m, uint32_t) { return other_uuid(m, "device UUID", device_uuid_meaning); }},
    {"Metadata driver version mismatch",
     [](M m, uint32_t) { return other_uuid(m, "driver UUID", driver_uuid_meaning); }},
    {"Metadata memory layout version mismatch",
     [](M m, uint32_t) { return other_uuid(m, "driver UUID", driver_uuid_meaning); }},
    {"Size of metadata is mismatched",
     [](M m, uint32_t) {
       const std::string_view size = m.word("struct size:");
       return fmt::format("the record says that it has {} bytes; expected are {}",
                          m.number("stored size"), size.empty() ? m.word("struct size") : size);
     }},
    {"Metadata guid has invalid value",
     [](M, uint32_t) { return std::string("the guid must not be 0"); }},
    {"Metadata alignment is not pot",
     [](M m, uint32_t) {
       return fmt::format("an alignment of {} is no power of two", bytes_text(m.last_number()));
     }},
    {"Metadata surface size is not aligned", surface_alignment},
    {"Metadata samples invalid count",
     [](M m, uint32_t) {
       return fmt::format("{} samples: 1, 2, 4 or 8 are allowed", m.last_number());
     }},
    {"Metadata levels is invalid value",
     [](M m, uint32_t) {
       return fmt::format("{}: 1 to {} are allowed", counted(m.last_number(), "level"),
                          KORVEL_MAX_LEVELS);
     }},
    {"Metadata format is not recognized",
     [](M m, uint32_t) {
       return fmt::format("there is no format {}: the last one is {}", m.last_number(),
                          korvel::kFormatCount - 1);
     }},
    {"Metadata level size is invalid value", [](M m, uint32_t) { return level_size(m); }},
    {"Metadata level slices is invalid value",
     [](M m, uint32_t) {
       return level_word(m, "slices", fmt::format("1 to {}", KORVEL_MAX_SLICES));
     }},
    {"Metadata level tiled is invalid value",
     [](M m, uint32_t) { return level_word(m, "tiled", "0 or 1"); }},
    {"Metadata level planes is invalid value",
     [](M m, uint32_t) {
       return level_word(m, "planes", fmt::format("1 to {}", KORVEL_MAX_PLANES));
     }},
    {"Metadata level lrz valid bit is invalid value",
     [](M m, uint32_t) { return level_word(m, "lrz valid", "0 or 1"); }},
    {"Metadata level lrz fc valid bit is invalid value",
     [](M m, uint32_t) { return level_word(m, "lrz fc valid", "0 or 1"); }},
    {"Metadata level lrz valid bits mismatch",
     [](M m, uint32_t) {
       return fmt::format("{}lrz valid is {} and lrz fc valid is {}: the two must be equal",
                          place_of(m), m.number("lrz valid"), m.number("lrz fc valid"));
     }},
    {"Metadata level tiled bit transitioned",
     [](M m, uint32_t) {
       return fmt::format("level {} is tiled behind a linear one", m.last_number());
     }},
    {"Metadata level has linear fallback",
     [](M m, uint32_t) {
       return fmt::format("level {} is linear behind a tiled one, and linear_fallback is 0",
                          m.last_number());
     }},
    {"Metadata lrz buffer is present for some",
     [](M m, uint32_t) {
       return fmt::format("lrz valid of level {} is not that of level 0", m.last_number());
     }},
    {"Metadata level lrz buffer exceeds",
     [](M m, uint32_t) { return outside_surface(m, "lrz", "LRZ buffer"); }},
    {"Metadata level lrz fc buffer exceeds",
     [](M m, uint32_t) { return outside_surface(m, "lrz fc", "fast-clear buffer"); }},
    {"Metadata level lrz size mismatch",
     [](M m, uint32_t) { return size_mismatch(m, "lrz", "LRZ buffer", "lrz height"); }},
    {"Metadata level lrz pitch mismatch", [](M m, uint32_t) { return lrz_pitch(m); }},
    {"Metadata level lrz dimensions are invalid",
     [](M m, uint32_t) {
       return fmt::format("{}an LRZ buffer of {} elements x {} rows: neither must be 0",
                          place_of(m), m.number("lrz width"), m.number("lrz height"));
     }},
    {"Metadata level image buffer exceeds",
     [](M m, uint32_t) { return outside_surface(m, "image", "image"); }},
    {"Metadata level image size mismatch", [](M m, uint32_t) { return image_size(m); }},
    {"Metadata level image pitch mismatch", [](M m, uint32_t) { return image_pitch(m); }},
    {"Metadata level image invalid dimensions", [](M m, uint32_t) { return image_dimensions(m); }},
    {"Metadata level flagbuffer valid bit invalid",
     [](M m, uint32_t) {
       return fmt::format("{}flag_valid is {}: 0 or 1 is allowed", place_of(m), m.number("valid"));
     }},
    {"Metadata level flagbuffer enabled but tiling",
     [](M m, uint32_t) {
       return place_of(m) + "a linear level has a flag buffer, which only tiled ones may have";
     }},
    {"Metadata level flagbuffer buffer exceeds",
     [](M m, uint32_t) { return outside_surface(m, "flag", "flag buffer"); }},
    {"Metadata level flagbuffer pitch mismatch", [](M m, uint32_t) { return flag_pitch(m); }},
    {"Metadata level flagbuffer slice pitch mismatch",
     [](M m, uint32_t) { return flag_slice_pitch(m); }},
};

}  // namespace

std::string refusal_words(std::string_view message, uint32_t record_bytes) {
  const Message read(message);
  for (const Rule& rule : kRules) {
    if (read.starts_with(rule.start)) {
      return fmt::format("{} [{}]", rule.words(read, record_bytes), message);
    }
  }
  return std::string(message);
}

}  // namespace tool
