#include "tools/picture/place_names.h"

#include <fmt/core.h>

namespace tool {
namespace {

void append(std::string& text, std::string_view separator, const std::string& more) {
  if (!text.empty()) text += separator;
  text += more;
}

std::string slices_name(const BufferSlice& buffer) {
  if (buffer.slices == 1) return fmt::format("slice {}", buffer.first_slice);
  return fmt::format("slices {} to {}", buffer.first_slice, buffer.first_slice + buffer.slices - 1);
}

std::string_view noun_of(Buffer buffer) {
  switch (buffer) {
    case Buffer::image: return "image";
    case Buffer::flags: return "flag buffer";
    case Buffer::extra: return "extra buffer";
  }
  return "";
}

}  // namespace

NamedPlaces named_places(std::span<const PlaneImage> images) {
  NamedPlaces named;
  for (const PlaneImage& image : images) {
    named.levels = named.levels || image.level > 0;
    named.planes = named.planes || image.plane > 0;
    named.slices = named.slices || image.slices > 1;
  }
  return named;
}

std::string place_name(NamedPlaces named, uint32_t level, uint32_t plane) {
  std::string text;
  if (named.levels) append(text, ", ", fmt::format("level {}", level));
  if (named.planes) append(text, ", ", fmt::format("plane {}", plane));
  return text;
}

std::string buffer_name(NamedPlaces named, const BufferSlice& buffer) {
  if (buffer.buffer == Buffer::extra) return "extra buffer";
  if (buffer.slices > 1) {
    const std::string plane = named.planes ? fmt::format("plane {}, ", buffer.plane) : "";
    return plane + slices_name(buffer);
  }
  std::string text = place_name(named, buffer.level, buffer.plane);
  if (named.slices) append(text, ", ", slices_name(buffer));
  append(text, ": ", std::string(noun_of(buffer.buffer)));
  return text;
}

std::string short_place_name(NamedPlaces named, const BufferSlice& buffer) {
  std::string text;
  if (buffer.buffer == Buffer::extra || buffer.slices > 1) return text;
  if (named.slices) append(text, " ", fmt::format("S{}", buffer.first_slice));
  if (named.planes) append(text, " ", fmt::format("P{}", buffer.plane));
  if (named.levels) append(text, " ", fmt::format("L{}", buffer.level));
  return text;
}

}  // namespace tool
