#include "tools/library_messages.h"

#include <cstddef>
#include <set>

#include "hxl_sim.h"
#include "tools/standard_error.h"

namespace tool {

std::vector<LibraryMessage> take_library_messages() {
  std::vector<LibraryMessage> messages;
  hxl_sim_message_record record;
  for (std::size_t i = 0; hxl_sim_message(i, &record) != 0; ++i) {
    messages.push_back({record.function, record.text});
  }
  hxl_sim_clear_messages();
  return messages;
}

void warn_of(const std::vector<LibraryMessage>& messages) {
  std::set<std::string> said;
  for (const LibraryMessage& message : messages) {
    if (said.insert(message.text).second) print_warning(message.text);
  }
}

}  // namespace tool
