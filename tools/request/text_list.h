// Lists as users write them: "1,2,4".
#pragma once

#include <string_view>

namespace tool {

// Calls visit(item) for the texts between the commas, empty ones included.
template <typename Visit>
void for_each_item(std::string_view list, Visit visit) {
  for (bool more = true; more;) {
    const std::size_t end = list.find(',');
    visit(list.substr(0, end));
    more = end != std::string_view::npos;
    if (more) list.remove_prefix(end + 1);
  }
}

}  // namespace tool
