// What a stored file holds, row by row: fields, and stretches of bytes that are told in one line.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "tools/record/stored_field.h"
#include "tools/record/stored_file.h"

namespace tool {

struct DumpRow {
  enum class Kind : uint8_t { heading, field, stretch };
  Kind kind = Kind::heading;
  std::string text = {};                      // the heading, or what the stretch is
  std::string place = {};                     // in front of the field's name: "level[0].plane[1]."
  const StoredField* field = nullptr;         // of a field
  std::size_t offset = 0;                     // bytes from the file's start
  std::span<const unsigned char> bytes = {};  // of the file
};

struct RecordDump {
  std::vector<DumpRow> rows;
  std::size_t record_offset = 0;  // bytes from the file's start to what is shown as the record
  uint32_t record_bytes = 0;      // what the record says of its own size
};

// Every byte of the file is in a row. `all` asks for the fields that are not in use too. The file
// must outlive the rows.
RecordDump dump_of(const StoredFile& file, bool all);

}  // namespace tool
