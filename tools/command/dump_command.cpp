#include "tools/command/dump_command.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "tools/command/exit_codes.h"
#include "tools/library/library_messages.h"
#include "tools/output/standard_output.h"
#include "tools/record/field_rows.h"
#include "tools/record/stored_field.h"
#include "tools/record/stored_file.h"
#include "tools/record/stored_verdict.h"
#include "tools/request/bad_input.h"

namespace tool {
namespace {

uint32_t end_of(FieldList fields) {
  return fields.empty() ? 0 : fields.back().offset + fields.back().size;
}

// "levels 1 to 14 not in use"
std::string not_in_use(std::string_view noun, uint32_t first, uint32_t count) {
  if (count - first == 1) return fmt::format("{} {} not in use", noun, first);
  return fmt::format("{}s {} to {} not in use", noun, first, count - 1);
}

class RecordDump {
 public:
  RecordDump(std::span<const unsigned char> file, std::size_t record, const RecordFields& fields,
             bool all, FieldRows& rows)
      : file_(file), record_(record), fields_(fields), all_(all), rows_(rows) {}

  void add() {
    const bool one_size = fields_.only_size != 0;
    rows_.set_record_size(one_size ? fields_.only_size : word(record_ + fields_.size_word));
    rows_.add_heading("record");
    rows_.add_fields(record_, fields_.head);
    add_levels();
    if (record_ + fields_.tail.front().offset < file_.size()) {
      rows_.add_heading("record, behind its levels");
      rows_.add_fields(record_, fields_.tail);
    }
    rows_.add_stretch(record_ + end_of(fields_.tail), file_.size(), "behind the record");
  }

 private:
  // 0 where the file ends before.
  [[nodiscard]] uint32_t word(std::size_t at) const {
    uint32_t value = 0;
    if (at + sizeof value <= file_.size()) std::memcpy(&value, file_.data() + at, sizeof value);
    return value;
  }

  // Entries of an array of `most` to dump, whatever the record claims to have.
  [[nodiscard]] uint32_t entries(std::size_t count_at, uint32_t most) const {
    return all_ ? most : std::min(word(count_at), most);
  }

  [[nodiscard]] std::size_t level_at(uint32_t l) const {
    return record_ + fields_.levels_offset + std::size_t{l} * fields_.level_bytes;
  }

  void add_levels() {
    const uint32_t levels = entries(record_ + fields_.levels_word, KORVEL_MAX_LEVELS);
    for (uint32_t l = 0; l < levels; ++l) add_level(l);
    if (levels == KORVEL_MAX_LEVELS) return;
    rows_.add_heading("further levels");
    rows_.add_stretch(level_at(levels), level_at(KORVEL_MAX_LEVELS),
                      not_in_use("level", levels, KORVEL_MAX_LEVELS));
  }

  void add_level(uint32_t l) {
    const std::size_t level = level_at(l);
    rows_.add_heading(fmt::format("level {}", l));
    rows_.add_fields(level, fields_.level_head);

    const uint32_t planes = entries(level + fields_.planes_word, KORVEL_MAX_PLANES);
    const std::size_t first_plane = level + fields_.planes_offset;
    for (uint32_t p = 0; p < planes; ++p) {
      add_plane(l, p, first_plane + std::size_t{p} * fields_.plane_bytes);
    }
    rows_.add_stretch(first_plane + std::size_t{planes} * fields_.plane_bytes,
                      first_plane + std::size_t{KORVEL_MAX_PLANES} * fields_.plane_bytes,
                      not_in_use("plane", planes, KORVEL_MAX_PLANES));
    rows_.add_heading(fmt::format("level {}, low-resolution depth", l));
    add_lrz(level);
  }

  void add_plane(uint32_t l, uint32_t p, std::size_t plane) {
    rows_.add_heading(fmt::format("level {}, plane {}", l, p));
    rows_.add_fields(plane, fields_.image);
    rows_.add_fields(plane, fields_.flag_valid);
    add_buffer(plane, fields_.flag_valid_word, fields_.flag_buffer, "no flag buffer");
  }

  void add_lrz(std::size_t level) {
    rows_.add_fields(level, fields_.lrz_valid);
    add_buffer(level, fields_.lrz_valid_word, fields_.lrz_buffer, "no low-resolution depth buffer");
    rows_.add_fields(level, fields_.lrz_fc_valid);
    add_buffer(level, fields_.lrz_fc_valid_word, fields_.lrz_fc_buffer, "no fast-clear buffer");
    rows_.add_fields(level, fields_.level_tail);
  }

  // The words of a buffer that does not exist take one line.
  void add_buffer(std::size_t base, uint32_t valid_word, FieldList buffer, std::string_view none) {
    if (all_ || word(base + valid_word) != 0) {
      rows_.add_fields(base, buffer);
    } else {
      rows_.add_stretch(base + buffer.front().offset, base + end_of(buffer), none);
    }
  }

  std::span<const unsigned char> file_;
  std::size_t record_;
  const RecordFields& fields_;
  bool all_;
  FieldRows& rows_;
};

// Where the record of a blob is taken to start. One that its header misplaces is looked for where
// every writer puts it.
std::size_t add_blob_header(const StoredFile& file, FieldRows& rows) {
  constexpr std::size_t kUsualOffset = offsetof(LayoutMetadata, layout);
  rows.add_heading("blob header");
  rows.add_fields(0, kBlobHeaderFields);
  const std::optional<std::size_t> offset = file.record_offset();
  if (!offset) {
    rows.add_heading(fmt::format(
        "record_offset is invalid: it leaves no room for a record. Shown is what stands at 0x{:X}",
        kUsualOffset));
  }
  const std::size_t record = offset.value_or(kUsualOffset);
  rows.add_stretch(sizeof(MetadataHeader), record, "between header and record");
  return record;
}

// What the validator says for the device that the record itself names. A file without a whole record
// has none.
void add_verdict(const StoredFile& file, FieldRows& rows) {
  keep_library_messages();
  std::string text;
  try {
    const Verdict verdict = judge(file, std::nullopt);
    text = verdict.result == KORVEL_SUCCESS ? "accepted" : "refused: " + verdict.reason;
    for (const std::string& limit : verdict.limits) text += "\nbut " + limit;
  } catch (const BadInput& reason) {
    text = std::string("none: ") + reason.what();
  }
  rows.add_heading("the library's verdict, for the device that the record names");
  rows.add_text(text);
}

}  // namespace

int dump(const DumpOptions& options) {
  const StoredFile file(options.file, options.kind);
  FieldRows rows(file.bytes());
  const std::size_t record = file.is_blob() ? add_blob_header(file, rows) : 0;
  const RecordFields& fields = file.kind() == RecordKind::surface ? kSurfaceFields : kLayoutFields;
  RecordDump(file.bytes(), record, fields, options.all, rows).add();
  add_verdict(file, rows);
  print_data(rows.text());
  return kExitDone;
}

}  // namespace tool
