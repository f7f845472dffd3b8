#include "tools/picture/bands.h"

#include <fmt/core.h>

#include <algorithm>

#include "tools/picture/field_words.h"
#include "tools/picture/place_names.h"
#include "tools/request/counted.h"

namespace tool {
namespace {

std::string range_words(const MapPart& part) {
  const uint64_t bytes = part.end_byte - part.first_byte;
  return fmt::format("0x{:X} to 0x{:X}, {}", part.first_byte, part.end_byte - 1,
                     counted(bytes, "byte"));
}

class BandWriter {
 public:
  BandWriter(const PictureSource& source, std::span<const PlaneImage> images,
             const std::vector<MapPart>& parts)
      : source_(source),
        images_(images),
        named_(named_places(images)),
        planes_share_(std::any_of(parts.begin(), parts.end(),
                                  [](const MapPart& part) { return part.buffers.size() > 1; })) {}

  // `next` is the part behind it, null behind the last one.
  [[nodiscard]] Band band(const MapPart& part, const MapPart* next) const {
    const std::string words = part.buffers.empty() ? gap_words(next) : buffer_words(part);
    return {part, labels(part), {title(part), words}};
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
    std::string text = buffer_name(named_, buffer);
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
    if (part.buffers.size() > 1) return {"several buffers", "shared"};
    if (part.buffers.empty()) return {"no buffer"};
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

  // Why there are bytes of no buffer.
  [[nodiscard]] std::string gap_words(const MapPart* next) const {
    if (next != nullptr && next->buffers.size() == 1) {
      return "What follows starts at a multiple that the chip asks for.\n" + start_words(*next);
    }
    const std::string size = field_words(source_.explanation, "gpu_buffer_size");
    if (!planes_share_) return "The allocation ends at a multiple that the chip asks for.\n" + size;
    return "The allocation counts the slices of all planes one after another. They lie in each "
           "other, so that these bytes are left over.\n" +
           size;
  }

  [[nodiscard]] std::string start_words(const MapPart& part) const {
    const BufferSlice& buffer = part.buffers.front();
    if (buffer.buffer == Buffer::extra) return field_words(source_.explanation, "extra_offset");
    if (buffer.first_slice > 0) return words(buffer, slice_pitch_of(buffer));
    return words(buffer, buffer.buffer == Buffer::flags ? "flag_offset" : "image_offset");
  }

  [[nodiscard]] std::string buffer_words(const MapPart& part) const {
    if (part.buffers.size() > 1) {
      return "A plane starts where one slice of the plane before it ends, so that further slices "
             "of both lie in the same bytes.";
    }
    const BufferSlice& buffer = part.buffers.front();
    if (buffer.buffer == Buffer::extra) {
      return field_words(source_.explanation, "extra_offset") + "\n" +
             field_words(source_.explanation, "extra_size");
    }
    if (part.role == Role::slices) return words(buffer, "image_slice_pitch");
    // Every slice comes about as the first one.
    if (buffer.first_slice > 0) return start_words(part);
    if (buffer.buffer == Buffer::flags) {
      return start_words(part) + "\n" + words(buffer, "flag_size");
    }
    return payload_words(buffer) + start_words(part) + "\n" + words(buffer, "image_size");
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
  bool planes_share_;  // bytes
};

}  // namespace

std::vector<Band> bands(const PictureSource& source, std::span<const PlaneImage> images,
                        const std::vector<MapPart>& parts) {
  const BandWriter writer(source, images, parts);
  std::vector<Band> all;
  all.reserve(parts.size());
  for (std::size_t i = 0; i < parts.size(); ++i) {
    all.push_back(writer.band(parts[i], i + 1 < parts.size() ? &parts[i + 1] : nullptr));
  }
  return all;
}

}  // namespace tool
