#include "tools/record/field_value.h"

#include <fmt/core.h>

#include <bit>

#include "formats/format_ids.h"
#include "layout/record_limits.h"
#include "tools/record/uuid_text.h"
#include "tools/request/counted.h"
#include "tools/request/format_names.h"

namespace tool {
namespace {

std::string with_meaning(uint64_t value, std::string_view meaning) {
  return fmt::format("{}  {}", value, meaning);
}

std::string fixed_value(uint64_t value, uint32_t expected) {
  if (value == expected) return fmt::format("{}", value);
  return fmt::format("{}  invalid: {} expected", value, expected);
}

std::string signature_value(uint64_t value, uint32_t expected) {
  if (value == expected) return fmt::format("0x{:08X}", value);
  return fmt::format("0x{:08X}  invalid: 0x{:08X} expected", value, expected);
}

std::string place_value(uint64_t value, uint32_t expected) {
  return fmt::format("0x{:X} = {} bytes{}", value, value,
                     value == expected ? "" : fmt::format("  unusual: {} expected", expected));
}

std::string size_value(uint64_t bytes) {
  return bytes < 4096 ? counted(bytes, "byte") : fmt::format("{} bytes = 0x{:X}", bytes, bytes);
}

std::string yes_no_value(uint64_t value) {
  if (value > 1) return with_meaning(value, "invalid: 0 or 1");
  return with_meaning(value, value == 1 ? "yes" : "no");
}

std::string tiling_value(uint64_t value) {
  if (value > 1) return with_meaning(value, "invalid: 1 tiled, 0 linear");
  return with_meaning(value, value == 1 ? "tiled" : "linear");
}

std::string format_value(uint64_t value) {
  if (value >= korvel::kFormatCount) return with_meaning(value, "invalid: no such format");
  const std::string_view name = format_name(static_cast<uint32_t>(value));
  return with_meaning(value, name.empty() ? "without a name" : name);
}

std::string samples_value(uint64_t value) {
  const bool valid =
      value <= korvel::kMostSamples && korvel::is_layout_sample_count(static_cast<uint32_t>(value));
  return valid ? fmt::format("{}", value) : with_meaning(value, "invalid: 1, 2, 4 or 8");
}

std::string counted_value(uint64_t value, uint32_t most) {
  if (value >= 1 && value <= most) return fmt::format("{}", value);
  return with_meaning(value, fmt::format("invalid: 1 to {}", most));
}

std::string alignment_value(uint64_t value) {
  return fmt::format("{} bytes{}", value,
                     std::has_single_bit(value) ? "" : "  invalid: no power of two");
}

std::string layout_size_value(uint64_t value) {
  switch (value) {
    case KORVEL_LAYOUT_BYTES_VERSION_1: return fmt::format("{} bytes  layout version 1", value);
    case KORVEL_LAYOUT_BYTES_VERSION_2: return fmt::format("{} bytes  layout version 2", value);
    case KORVEL_LAYOUT_BYTES_VERSION_3: return fmt::format("{} bytes  layout version 3", value);
    default: return fmt::format("{} bytes  invalid: 5472, 5504 or 5512", value);
  }
}

std::string total_size_value(uint64_t value, uint32_t record_size) {
  if (value < record_size) {
    return fmt::format("{} bytes  invalid: less than the record's own {}", value, record_size);
  }
  return fmt::format("{} bytes = {} of record + {} of surface", value, record_size,
                     value - record_size);
}

std::string unused_value(uint64_t value) {
  return value == 0 ? "not used" : fmt::format("not used  0x{:X}", value);
}

std::string identifier_value(uint64_t value) {
  return value == 0 ? "0x0  invalid: not 0" : fmt::format("0x{:016X}", value);
}

}  // namespace

std::string field_value(const StoredField& field, const unsigned char* bytes,
                        uint32_t record_size) {
  switch (field.meaning) {
    case Meaning::device_uuid: return uuid_text(bytes) + '\n' + device_uuid_meaning(bytes);
    case Meaning::driver_uuid: return uuid_text(bytes) + '\n' + driver_uuid_meaning(bytes);
    default: break;
  }
  if (field.size > sizeof(uint64_t)) return "not used";
  const uint64_t value = field_number(field, bytes);
  switch (field.meaning) {
    case Meaning::signature: return signature_value(value, field.expected);
    case Meaning::fixed:
    case Meaning::fixed_size: return fixed_value(value, field.expected);
    case Meaning::identifier: return identifier_value(value);
    case Meaning::bytes: return size_value(value);
    case Meaning::offset: return fmt::format("0x{:X} = {} bytes", value, value);
    case Meaning::place: return place_value(value, field.expected);
    case Meaning::elements: return counted(value, "element");
    case Meaning::rows: return counted(value, "row");
    case Meaning::yes_no: return yes_no_value(value);
    case Meaning::tiling: return tiling_value(value);
    case Meaning::format: return format_value(value);
    case Meaning::samples: return samples_value(value);
    case Meaning::alignment: return alignment_value(value);
    case Meaning::levels: return counted_value(value, KORVEL_MAX_LEVELS);
    case Meaning::planes: return counted_value(value, KORVEL_MAX_PLANES);
    case Meaning::slices: return counted_value(value, KORVEL_MAX_SLICES);
    case Meaning::layout_size: return layout_size_value(value);
    case Meaning::total_size: return total_size_value(value, record_size);
    case Meaning::unused: return unused_value(value);
    default: return fmt::format("{}", value);
  }
}

}  // namespace tool
