// Requests as the page writes them: objects with the names of the command line's options.
//
//   {"format": "nv12", "size": "1920x1080", "chip": "0x43010000", "ubwc": true, "levels": 4}
#pragma once

#include <initializer_list>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "tools/command/request_options.h"

namespace explorer {

// The members of one object. All of it throws tool::BadInput.
class Members {
 public:
  // Refuses an object with other members than these.
  Members(const nlohmann::json& object, std::initializer_list<const char*> known);

  // A text, or a number, which is the text of its digits.
  [[nodiscard]] std::optional<std::string> text(const char* name) const;
  [[nodiscard]] std::string needed_text(const char* name) const;
  [[nodiscard]] bool yes(const char* name) const;
  // Refuses what is missing.
  [[nodiscard]] const nlohmann::json& needed(const char* name) const;

 private:
  const nlohmann::json& object_;
};

tool::RequestOptions request_options(const nlohmann::json& request);

}  // namespace explorer
