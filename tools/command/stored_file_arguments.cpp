#include "tools/command/stored_file_arguments.h"

#include "tools/command/request_arguments.h"

namespace tool {

void add_kind(CLI::App& command, std::optional<std::string>& kind) {
  add_text(command, "--kind", kind, "What a file holds; default by its size")
      ->type_name("resource|surface");
}

void add_stored_file(CLI::App& command, StoredFileOptions& options) {
  command
      .add_option("FILE", options.file,
                  "Blob or bare record: bytes, hex or base64; - for standard input")
      ->required()
      ->type_name("");
  add_kind(command, options.kind);
}

}  // namespace tool
