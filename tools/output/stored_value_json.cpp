#include "tools/output/stored_value_json.h"

#include <fmt/core.h>

#include "tools/record/field_value.h"
#include "tools/record/uuid_text.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

}  // namespace

Json stored_value_json(const StoredField& field, const unsigned char* bytes) {
  switch (field.meaning) {
    case Meaning::device_uuid:
    case Meaning::driver_uuid: return uuid_text(bytes);
    default: break;
  }
  if (field.size > sizeof(uint64_t)) return nullptr;
  const uint64_t value = field_number(field, bytes);
  switch (field.meaning) {
    case Meaning::yes_no:
    case Meaning::tiling: return value <= 1 ? Json(value == 1) : Json(value);
    default: return value;
  }
}

Json stored_unit_json(const StoredField& field) {
  switch (field.meaning) {
    case Meaning::bytes:
    case Meaning::fixed_size:
    case Meaning::offset:
    case Meaning::place:
    case Meaning::alignment:
    case Meaning::layout_size:
    case Meaning::total_size: return "bytes";
    case Meaning::elements: return "elements";
    case Meaning::rows: return "rows";
    case Meaning::samples: return "samples";
    case Meaning::levels: return "levels";
    case Meaning::planes: return "planes";
    case Meaning::slices: return "slices";
    default: return nullptr;
  }
}

Json stored_hex_json(const StoredField& field, const unsigned char* bytes) {
  switch (field.meaning) {
    case Meaning::signature: return fmt::format("0x{:08X}", field_number(field, bytes));
    case Meaning::identifier: return fmt::format("0x{:016X}", field_number(field, bytes));
    default: return nullptr;
  }
}

}  // namespace tool
