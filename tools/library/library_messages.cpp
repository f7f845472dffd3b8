#include "tools/library/library_messages.h"

#include <cstddef>
#include <set>

#include "hxl_sim.h"

namespace tool {

void keep_library_messages() {
  hxl_sim_set_capture(1);
}

std::vector<LibraryMessage> take_library_messages() {
  std::vector<LibraryMessage> messages;
  hxl_sim_message_record record;
  for (std::size_t i = 0; hxl_sim_message(i, &record) != 0; ++i) {
    messages.push_back({record.function, record.text});
  }
  hxl_sim_clear_messages();
  return messages;
}

std::vector<std::string> distinct_texts(const std::vector<LibraryMessage>& messages) {
  std::set<std::string> said;
  std::vector<std::string> texts;
  for (const LibraryMessage& message : messages) {
    if (said.insert(message.text).second) texts.push_back(message.text);
  }
  return texts;
}

}  // namespace tool
