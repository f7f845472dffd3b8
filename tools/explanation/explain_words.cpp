#include "tools/explanation/explain_words.h"

#include <fmt/core.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <string_view>
#include <vector>

#include "tools/explanation/explained_record.h"
#include "tools/explanation/explanation_check.h"
#include "tools/explanation/step_writer.h"
#include "tools/request/counted.h"
#include "tools/request/format_names.h"

namespace tool {
namespace {

struct Asked {
  const korvel::ChipRow& chip;
  const SurfaceRequest& request;

  [[nodiscard]] bool writes_levels() const { return !request.levels || request.planes > 0; }
};

// How one word comes about: the rule, and the fact that decided it.
struct WordRule {
  std::string_view name;
  const char* subject;
  Unit unit;
  std::string rule;
  std::string fact;
};

constexpr const char kAsAsked[] = "as asked for";
constexpr const char kNotWritten[] = "not written";
constexpr const char kSameInEvery[] = "the same in every blob";

WordRule of_every_blob(std::string_view name, const char* subject, Unit unit, std::string rule) {
  return {name, subject, unit, std::move(rule), kSameInEvery};
}

// A word of a buffer that is not there.
WordRule of_no_buffer(std::string_view name, const char* subject, Unit unit, std::string why) {
  return {name, subject, unit, kNotWritten, std::move(why)};
}

std::vector<WordRule> header_rules() {
  return {
      of_every_blob("header.magic", "magic", Unit::number,
                    fmt::format("0x{:08X} marks a blob", KORVEL_HEADER_MAGIC)),
      of_every_blob("header.header_version", "header version", Unit::number,
                    "the only version of the header"),
      of_every_blob("header.blob_size", "blob size", Unit::bytes, "the blob with its header"),
      of_every_blob("header.record_kind", "record kind", Unit::number, "the kind of a layout"),
      of_every_blob("header.record_offset", "record offset", Unit::bytes,
                    "the record follows the header"),
      of_every_blob("header.record_size", "record size", Unit::bytes, "the whole record"),
  };
}

std::vector<WordRule> head_rules(const Asked& asked) {
  const auto& [chip, request] = asked;
  const std::string of_chip = "a word of the device UUID is the chip's own";
  return {
      of_every_blob("signature", "signature", Unit::number,
                    fmt::format("0x{:08X} marks a layout record", KORVEL_LAYOUT_SIGNATURE)),
      of_every_blob("size", "record size", Unit::bytes, "a record of layout version 3"),
      of_every_blob("device_uuid[0]", "device UUID, word 0", Unit::number,
                    fmt::format("0x{:X} marks a device", KORVEL_DEVICE_SIGNATURE)),
      {"device_uuid[1]", "device UUID, word 1", Unit::number, of_chip,
       fmt::format("family {}", chip.family_id)},
      {"device_uuid[2]", "device UUID, word 2", Unit::number, of_chip,
       fmt::format("model 0x{:06X}", chip.model_code)},
      {"device_uuid[3]", "device UUID, word 3", Unit::number, of_chip,
       fmt::format("revision 0x{:08X}", chip.rev_id)},
      of_every_blob("driver_uuid[0]", "driver UUID, word 0", Unit::number, "it marks this driver"),
      of_every_blob("driver_uuid[1]", "driver UUID, word 1", Unit::number, "the driver version"),
      of_every_blob("driver_uuid[2]", "driver UUID, word 2", Unit::number, "the layout version"),
      of_every_blob("driver_uuid[3]", "driver UUID, word 3", Unit::number, "not used"),
      {"format", "format", Unit::number, kAsAsked, format_label(request.format)},
      {"samples", "samples", Unit::samples, kAsAsked, "every plane and level has as many"},
      {"linear_fallback", "linear fallback", Unit::yes_no, "the library writes no",
       "all levels have the tiling that is asked for"},
      {"levels", "levels", Unit::levels, request.levels ? kAsAsked : "one level",
       request.levels ? "a mip chain" : "no mip chain is asked for"},
  };
}

std::vector<WordRule> level_rules(const Asked& asked) {
  const SurfaceRequest& request = asked.request;
  const char* const rule = asked.writes_levels() ? kAsAsked : kNotWritten;
  const auto fact = [&asked](const std::string& written) {
    return asked.writes_levels() ? written : std::string("a chain without planes writes no level");
  };
  const std::string no_lrz = "lrz_valid is no";
  const std::string no_lrz_fc = "lrz_fc_valid is no";
  const bool tiled = request.tiling_mode == KORVEL_TILING_TILED;
  return {
      {"slices", "slices", Unit::slices, rule,
       fact("array layers or depth, the same in all levels")},
      {"tiled", "tiled", Unit::yes_no, rule, fact(tiled ? "tiled" : "linear")},
      {"planes", "planes", Unit::planes, rule,
       fact(fmt::format("{} has {}", format_label(request.format),
                        counted(own_planes(request.format), "plane")))},
      {"lrz_valid", "low-resolution depth", Unit::yes_no, "the library writes no",
       "no initialiser lays such a buffer out"},
      {"lrz_fc_valid", "fast clear", Unit::yes_no, "the library writes no",
       "there is no low-resolution depth either"},
      of_no_buffer("lrz_offset", "low-resolution depth offset", Unit::bytes, no_lrz),
      of_no_buffer("lrz_size", "low-resolution depth size", Unit::bytes, no_lrz),
      of_no_buffer("lrz_pitch", "low-resolution depth pitch", Unit::bytes, no_lrz),
      of_no_buffer("lrz_slice_pitch", "low-resolution depth slice pitch", Unit::bytes, no_lrz),
      of_no_buffer("lrz_width", "low-resolution depth width", Unit::elements, no_lrz),
      of_no_buffer("lrz_height", "low-resolution depth height", Unit::rows, no_lrz),
      of_no_buffer("lrz_fc_offset", "fast-clear offset", Unit::bytes, no_lrz_fc),
      of_no_buffer("lrz_fc_size", "fast-clear size", Unit::bytes, no_lrz_fc),
  };
}

// Of flag buffers and extra buffers that are not there: of others there are steps.
std::vector<WordRule> buffer_rules(const Asked& asked) {
  const bool extra = (asked.request.flags & LAYOUT_FLAG_EXTRA) != 0;
  const bool extended = (asked.request.flags & LAYOUT_FLAG_EXTENDED) != 0;
  const std::string no_flags = "flag_valid is no, of which there is an explanation of its own";
  const std::string no_extra = "extra_valid is no";
  return {
      of_no_buffer("flag_offset", "flag offset", Unit::bytes, no_flags),
      of_no_buffer("flag_size", "flag size", Unit::bytes, no_flags),
      of_no_buffer("flag_pitch", "flag pitch", Unit::bytes, no_flags),
      of_no_buffer("flag_slice_pitch", "flag slice pitch", Unit::bytes, no_flags),
      {"extra_valid", "extra buffer", Unit::yes_no, kAsAsked,
       extra ? "an extra buffer is asked for" : "no extra buffer is asked for"},
      of_no_buffer("extra_offset", "extra buffer offset", Unit::bytes, no_extra),
      of_no_buffer("extra_size", "extra buffer size", Unit::bytes, no_extra),
      of_no_buffer("extra_slice_pitch", "extra slice pitch", Unit::bytes, no_extra),
      {"extended", "extended", Unit::yes_no, kAsAsked,
       extra && extended ? "the chip's extra padding is asked for"
                         : "no extra padding is asked for"},
  };
}

std::vector<WordRule> word_rules(const Asked& asked) {
  std::vector<WordRule> rules = header_rules();
  for (auto more : {head_rules(asked), level_rules(asked), buffer_rules(asked)}) {
    std::move(more.begin(), more.end(), std::back_inserter(rules));
  }
  return rules;
}

// What the library writes in front of every record.
constexpr MetadataHeader kHeader = {
    .magic = KORVEL_HEADER_MAGIC,
    .header_version = KORVEL_HEADER_VERSION,
    .blob_size = KORVEL_BLOB_BYTES,
    .record_kind = KORVEL_HEADER_RECORD_KIND,
    .record_offset = offsetof(LayoutMetadata, layout),
    .record_size = sizeof(MemoryLayout),
};

// Words of a level have the same rule in all levels, those of a plane in all planes.
bool is_of(const WordRule& rule, std::string_view field) {
  return rule.name == field || (field.starts_with("level[") && rule.name == word_of_field(field));
}

}  // namespace

Explanation explain_words(const korvel::ChipRow& chip, const SurfaceRequest& request,
                          const Explanation& whole) {
  std::set<std::string_view> explained;
  for (const Step& step : whole.steps) explained.insert(step.field);
  const std::vector<WordRule> rules = word_rules({chip, request});
  const LayoutMetadata blob = {kHeader, explained_record(chip, request, whole)};
  StepWriter steps;
  for (const FieldValue& word : words_of(blob)) {
    if (explained.contains(word.field)) continue;
    const auto rule = std::find_if(rules.begin(), rules.end(), [&word](const WordRule& known) {
      return is_of(known, word.field);
    });
    if (rule == rules.end()) continue;
    steps.enter(word.place);
    const Quantity number = quantity(word.value, rule->unit);
    steps.add({.subject = rule->subject,
               .after = number,
               .rule = rule->rule,
               .fact = rule->fact,
               .field = word.field},
              {{number, {}}});
  }
  return steps.take();
}

Explanation steps_to_word(const Explanation& words, const std::string& field) {
  Explanation part;
  for (const Step& step : words.steps) {
    const bool of_uuid = field.ends_with("_uuid") && step.field.starts_with(field + "[");
    if (step.field == field || of_uuid) part.steps.push_back(step);
  }
  return part;
}

}  // namespace tool
