#include "tools/record/record_dump.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstring>
#include <string_view>

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

class RowWriter {
 public:
  explicit RowWriter(std::span<const unsigned char> file) : file_(file) {}

  // What follows stands below this heading; its fields have names that begin with `place`.
  void enter(std::string heading, std::string place) {
    rows_.push_back({.kind = DumpRow::Kind::heading, .text = std::move(heading)});
    place_ = std::move(place);
  }

  // Fields of the structure at `base`, as far as the file holds them.
  void add_fields(std::size_t base, FieldList fields) {
    for (const StoredField& field : fields) {
      const std::size_t at = base + field.offset;
      if (at + field.size <= file_.size()) {
        rows_.push_back({.kind = DumpRow::Kind::field,
                         .place = place_,
                         .field = &field,
                         .offset = at,
                         .bytes = file_.subspan(at, field.size)});
      } else {
        add_stretch(at, file_.size(), fmt::format("{}, cut by the end of the file", field.name));
      }
    }
  }

  // One row for the bytes from `first` up to `end`, as far as the file holds them.
  void add_stretch(std::size_t first, std::size_t end, std::string what) {
    end = std::min(end, file_.size());
    if (first >= end) return;
    rows_.push_back({.kind = DumpRow::Kind::stretch,
                     .text = std::move(what),
                     .offset = first,
                     .bytes = file_.subspan(first, end - first)});
  }

  std::vector<DumpRow> take() { return std::move(rows_); }

 private:
  std::span<const unsigned char> file_;
  std::string place_;
  std::vector<DumpRow> rows_;
};

class RecordRows {
 public:
  RecordRows(std::span<const unsigned char> file, std::size_t record, const RecordFields& fields,
             bool all, RowWriter& rows)
      : file_(file), record_(record), fields_(fields), all_(all), rows_(rows) {}

  void add() {
    rows_.enter("record", "");
    rows_.add_fields(record_, fields_.head);
    add_levels();
    if (record_ + fields_.tail.front().offset < file_.size()) {
      rows_.enter("record, behind its levels", "");
      rows_.add_fields(record_, fields_.tail);
    }
    rows_.add_stretch(record_ + end_of(fields_.tail), file_.size(), "behind the record");
  }

  [[nodiscard]] uint32_t own_bytes() const {
    return fields_.only_size != 0 ? fields_.only_size : word(record_ + fields_.size_word);
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
    rows_.enter("further levels", "");
    rows_.add_stretch(level_at(levels), level_at(KORVEL_MAX_LEVELS),
                      not_in_use("level", levels, KORVEL_MAX_LEVELS));
  }

  void add_level(uint32_t l) {
    const std::size_t level = level_at(l);
    const std::string place = fmt::format("level[{}].", l);
    rows_.enter(fmt::format("level {}", l), place);
    rows_.add_fields(level, fields_.level_head);

    const uint32_t planes = entries(level + fields_.planes_word, KORVEL_MAX_PLANES);
    const std::size_t first_plane = level + fields_.planes_offset;
    for (uint32_t p = 0; p < planes; ++p) {
      rows_.enter(fmt::format("level {}, plane {}", l, p), fmt::format("{}plane[{}].", place, p));
      add_plane(first_plane + std::size_t{p} * fields_.plane_bytes);
    }
    rows_.add_stretch(first_plane + std::size_t{planes} * fields_.plane_bytes,
                      first_plane + std::size_t{KORVEL_MAX_PLANES} * fields_.plane_bytes,
                      not_in_use("plane", planes, KORVEL_MAX_PLANES));
    rows_.enter(fmt::format("level {}, low-resolution depth", l), place);
    add_lrz(level);
  }

  void add_plane(std::size_t plane) {
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

  // The words of a buffer that does not exist take one row.
  void add_buffer(std::size_t base, uint32_t valid_word, FieldList buffer, const char* none) {
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
  RowWriter& rows_;
};

// Returns where the record of a blob is taken to start. One that its header misplaces is looked for
// where every writer puts it.
std::size_t add_blob_header(const StoredFile& file, RowWriter& rows) {
  constexpr std::size_t kUsualOffset = offsetof(LayoutMetadata, layout);
  rows.enter("blob header", "header.");
  rows.add_fields(0, kBlobHeaderFields);
  const std::optional<std::size_t> offset = file.record_offset();
  if (!offset) {
    rows.enter(fmt::format("record_offset is invalid: it leaves no room for a record. Shown is "
                           "what stands at 0x{:X}",
                           kUsualOffset),
               "");
  }
  const std::size_t record = offset.value_or(kUsualOffset);
  rows.add_stretch(sizeof(MetadataHeader), record, "between header and record");
  return record;
}

}  // namespace

RecordDump dump_of(const StoredFile& file, bool all) {
  RowWriter rows(file.bytes());
  const std::size_t record = file.is_blob() ? add_blob_header(file, rows) : 0;
  const RecordFields& fields = file.kind() == RecordKind::surface ? kSurfaceFields : kLayoutFields;
  RecordRows record_rows(file.bytes(), record, fields, all, rows);
  record_rows.add();
  return {rows.take(), record, record_rows.own_bytes()};
}

}  // namespace tool
