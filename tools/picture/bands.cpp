#include "tools/picture/bands.h"

#include <fmt/core.h>

#include "tools/counted.h"
#include "tools/picture/field_words.h"
#include "tools/picture/place_names.h"

namespace tool {
namespace {

NamedPlaces places_of(std::span<const PlaneImage> images) {
  NamedPlaces named;
  for (const PlaneImage& image : images) {
    named.levels = named.levels || image.level > 0;
    named.planes = named.planes || image.plane > 0;
    named.slices = named.slices || image.slices > 1;
  }
  return named;
}

std::string range_words(const MapPart& part) {
  const uint64_t bytes = part.end_byte - part.first_byte;
  return fmt::format("0x{:X} to 0x{:X}, {}", part.first_byte, part.end_byte - 1,
                     counted(bytes, "byte"));
}

class BandWriter {
 public:
  BandWriter(const PictureSource& source, std::span<const PlaneImage> images)
      : source_(source), images_(images), named_(places_of(images)) {}

  [[nodiscard]] Band band(const MapPart& part) const {
    return {part, labels(part), {title(part), explanation(part)}};
  }

 private:
  [[nodiscard]] std::string title(const MapPart& part) const {
    return name(part) + "\n" + range_words(part);
  }

  [[nodiscard]] std::string name(const MapPart& part) const {
    if (part.buffers.empty()) return "alignment: no buffer lies here";
    if (part.buffers.size() > 1) {
      std::string text = "bytes of several buffers:";
      for (const BufferSlice& buffer : part.buffers) text += "\n  " + buffer_name(named_, buffer);
      return text;
    }
    const BufferSlice& buffer = part.buffers.front();
    const std::string text = buffer_name(named_, buffer);
    switch (part.role) {
      case Role::gap: return text + ", alignment behind its rows";
      case Role::padding_below: return text + ", padding below";
      case Role::slices:
        return fmt::format("{}: {} slices like those beside them, drawn as one", text,
                           buffer.slices);
      default: return text;
    }
  }

  // The longest first.
  [[nodiscard]] std::vector<std::string> labels(const MapPart& part) const {
    if (part.buffers.size() > 1) return {"shared", "x"};
    if (part.buffers.empty()) return {};
    const BufferSlice& buffer = part.buffers.front();
    if (part.role == Role::slices) {
      return {buffer_name(named_, buffer), fmt::format("x {} slices", buffer.slices),
              fmt::format("x {}", buffer.slices)};
    }
    if (part.role == Role::gap || part.role == Role::padding_below) return {};
    std::vector<std::string> texts = {buffer_name(named_, buffer)};
    const std::string place = short_place_name(named_, buffer);
    if (buffer.buffer == Buffer::extra) texts.emplace_back("extra");
    if (buffer.buffer == Buffer::flags) texts.push_back(place.empty() ? "flags" : place + " flags");
    if (buffer.buffer == Buffer::flags && !place.empty()) texts.emplace_back("flags");
    if (!place.empty()) texts.push_back(place);
    return texts;
  }

  [[nodiscard]] const PlaneImage* image_of(const BufferSlice& buffer) const {
    for (const PlaneImage& image : images_) {
      if (image.level == buffer.level && image.plane == buffer.plane) return &image;
    }
    return nullptr;
  }

  [[nodiscard]] std::string words(const BufferSlice& buffer, const char* field) const {
    return field_words(source_.explanation, plane_field(buffer.level, buffer.plane, field));
  }

  [[nodiscard]] std::string explanation(const MapPart& part) const {
    if (part.buffers.empty()) {
      return "It fills up to the next multiple that the chip asks for.";
    }
    if (part.buffers.size() > 1) {
      return "Planes start where one slice of the planes before them ends, so that further slices "
             "of several planes lie in the same bytes.";
    }
    const BufferSlice& buffer = part.buffers.front();
    if (buffer.buffer == Buffer::extra) {
      return field_words(source_.explanation, "extra_offset") + "\n" +
             field_words(source_.explanation, "extra_size");
    }
    if (part.role == Role::slices) return words(buffer, "image_slice_pitch");
    // Every slice comes about as the first one.
    if (buffer.first_slice > 0) return words(buffer, slice_pitch_of(buffer));
    if (buffer.buffer == Buffer::flags) {
      return words(buffer, "flag_offset") + "\n" + words(buffer, "flag_size");
    }
    return payload_words(buffer) + words(buffer, "image_offset") + "\n" +
           words(buffer, "image_size");
  }

  static const char* slice_pitch_of(const BufferSlice& buffer) {
    return buffer.buffer == Buffer::flags ? "flag_slice_pitch" : "image_slice_pitch";
  }

  [[nodiscard]] std::string payload_words(const BufferSlice& buffer) const {
    const PlaneImage* const image = image_of(buffer);
    if (image == nullptr || image->layout.image_size == 0) return {};
    return fmt::format("{} of the image's {} hold elements that were asked for.\n",
                       payload_bytes(*image), counted(image->layout.image_size, "byte"));
  }

  const PictureSource& source_;
  std::span<const PlaneImage> images_;
  NamedPlaces named_;
};

}  // namespace

std::vector<Band> bands(const PictureSource& source, std::span<const PlaneImage> images,
                        const std::vector<MapPart>& parts) {
  const BandWriter writer(source, images);
  std::vector<Band> all;
  all.reserve(parts.size());
  for (const MapPart& part : parts) all.push_back(writer.band(part));
  return all;
}

}  // namespace tool
