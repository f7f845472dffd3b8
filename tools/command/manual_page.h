// The manual page, made of what the command line says of itself.
#pragma once

#include <CLI/CLI.hpp>
#include <chrono>
#include <string>

namespace tool {

// For man. `day` is the one that the page says it is of.
std::string manual_page(const CLI::App& program, std::chrono::year_month_day day);

// Today, or the day that SOURCE_DATE_EPOCH says, by which builds come to the same bytes.
std::chrono::year_month_day day_of_manual();

}  // namespace tool
