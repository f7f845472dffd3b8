#include "tools/request/surface_size.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <optional>
#include <system_error>

#include "tools/output/standard_error.h"
#include "tools/request/bad_input.h"

namespace tool {
namespace {

std::optional<int32_t> side_of(std::string_view text) {
  const char* const end = text.data() + text.size();
  int32_t side = 0;
  const auto [stop, error] = std::from_chars(text.data(), end, side);
  if (error != std::errc() || stop != end) return std::nullopt;
  return side;
}

std::optional<SurfaceSize> size_of(std::string_view text) {
  std::array<int32_t, 3> sides = {1, 1, 1};
  std::size_t count = 0;
  for (bool more = true; more; ++count) {
    if (count == sides.size()) return std::nullopt;
    const std::size_t end = text.find('x');
    const std::optional<int32_t> side = side_of(text.substr(0, end));
    if (!side) return std::nullopt;
    sides[count] = *side;
    more = end != std::string_view::npos;
    if (more) text.remove_prefix(end + 1);
  }
  if (count < 2) return std::nullopt;
  return SurfaceSize{sides[0], sides[1], sides[2]};
}

}  // namespace

uint32_t levels_of(const SurfaceSize& size) {
  const int32_t side = std::max({size.width, size.height, 1});
  return static_cast<uint32_t>(std::bit_width(static_cast<uint32_t>(side)));
}

SurfaceSize parse_surface_size(std::string_view text) {
  const std::optional<SurfaceSize> size = size_of(text);
  if (size) return *size;
  if (text.find(',') != std::string_view::npos || text.find("..") != std::string_view::npos) {
    refuse(
        "--size: {} is a list or a range, and one size is allowed here, for example 1920x1080; "
        "korvel-layout table takes lists",
        in_quotes(text));
  }
  refuse(
      "--size: {} is not WIDTHxHEIGHT or WIDTHxHEIGHTxDEPTH in decimal numbers of at most 32 bits; "
      "write for example 1920x1080 or 64x64x6",
      in_quotes(text));
}

std::string surface_size_text(const SurfaceSize& size) {
  std::string text = fmt::format("{}x{}", size.width, size.height);
  if (size.depth != 1) text += fmt::format("x{}", size.depth);
  return text;
}

}  // namespace tool
