#include "tools/command/dump_command.h"

#include "tools/command/exit_codes.h"
#include "tools/library/library_messages.h"
#include "tools/output/dump_output.h"
#include "tools/output/json_output.h"
#include "tools/output/standard_error.h"
#include "tools/output/standard_output.h"
#include "tools/record/record_dump.h"
#include "tools/record/stored_file.h"
#include "tools/record/stored_verdict.h"
#include "tools/request/bad_input.h"

namespace tool {
namespace {

// What the validator says for the device that the record itself names. A file without a whole record
// has none.
DumpVerdict verdict_on(const StoredFile& file) {
  keep_library_messages();
  try {
    const Verdict verdict = judge(file, std::nullopt);
    return {verdict.result == KORVEL_SUCCESS, verdict.reason, verdict.limits};
  } catch (const BadInput& reason) {
    return {std::nullopt, reason.what()};
  }
}

nlohmann::ordered_json json_of(const DumpOptions& options, const StoredFile& file,
                               const RecordDump& dump, const DumpVerdict& verdict) {
  nlohmann::ordered_json json = {{"file", options.stored.file},
                                 {"kind", kind_name(file.kind())},
                                 {"blob", file.is_blob()},
                                 {"file_bytes", file.bytes().size()}};
  json.update(dump_json(dump, verdict));
  return json;
}

}  // namespace

int dump(const DumpOptions& options) {
  const StoredFile file(options.stored.file, options.stored.kind);
  const RecordDump rows = dump_of(file, options.all);
  const DumpVerdict verdict = verdict_on(file);
  if (options.json) {
    print_warnings(verdict.limits);
    print_data(json_text("dump", json_of(options, file, rows, verdict), verdict.limits));
  } else {
    print_data(dump_text(rows, verdict));
  }
  return kExitDone;
}

}  // namespace tool
