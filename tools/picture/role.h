// What a part of a picture shows.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tool {

enum class Role : uint8_t {
  payload,        // an image's bytes; in a sheet those of the size that was asked for
  padding_right,  // behind the payload in each row
  padding_below,  // rows below the payload
  flags,          // a flag buffer
  extra,          // the extra buffer
  gap,            // bytes of no buffer, and those behind the rows of one
  shared,         // bytes of more than one buffer
  slices,         // many equal slices, drawn as one
};

struct RoleWords {
  std::string_view name;     // of its class in a style sheet
  std::string_view meaning;  // in the legend
};

// In the order of Role.
inline constexpr std::array kRoleWords = {
    RoleWords{"payload", "image: the size asked for"},
    RoleWords{"padding-right", "padding to the right"},
    RoleWords{"padding-below", "padding below"},
    RoleWords{"flags", "flag buffer (UBWC)"},
    RoleWords{"extra", "extra buffer"},
    RoleWords{"gap", "alignment: holds nothing"},
    RoleWords{"shared", "bytes of several buffers"},
    RoleWords{"slices", "many equal slices in one"},
};

constexpr const RoleWords& words_of(Role role) {
  return kRoleWords[static_cast<std::size_t>(role)];
}

}  // namespace tool
