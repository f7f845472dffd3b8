// The statements of the library's sources that log, by the text of their messages.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace harness {

// Whether a message of this format that names this line was sent from there: the line is one of a
// statement that holds the format, or that names the constant which holds it.
testing::AssertionResult is_sent_from(uint32_t line, const std::string& format);

}  // namespace harness
