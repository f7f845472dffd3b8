#include "tools/picture/sheets.h"

#include <fmt/core.h>

#include <algorithm>

#include "layout/surface.h"
#include "tools/picture/field_words.h"
#include "tools/picture/place_names.h"
#include "tools/request/counted.h"

namespace tool {
namespace {

class SheetWriter {
 public:
  SheetWriter(const PictureSource& source, std::span<const PlaneImage> images)
      : source_(source), named_(named_places(images)) {}

  [[nodiscard]] Sheet image_sheet(const PlaneImage& image) const {
    const PlaneLayout& layout = image.layout;
    Sheet sheet;
    sheet.kind = Sheet::Kind::image;
    sheet.level = image.level;
    sheet.plane = image.plane;
    sheet.width = layout.image_width;
    sheet.height = layout.image_height;
    sheet.tile_width = image.tile.width;
    sheet.tile_height = image.tile.height;
    sheet.slices = image.slices;
    sheet.name = named(image, "image");
    sheet.parts = image_parts(image);
    sheet.captions = image_captions(image);
    return sheet;
  }

  [[nodiscard]] Sheet flag_sheet(const PlaneImage& image) const {
    const PlaneLayout& layout = image.layout;
    Sheet sheet;
    sheet.kind = Sheet::Kind::flags;
    sheet.level = image.level;
    sheet.plane = image.plane;
    sheet.width = layout.flag_pitch;
    sheet.height = layout.flag_pitch == 0 ? 0
                                          : static_cast<uint32_t>(std::min<uint64_t>(
                                                layout.flag_size / layout.flag_pitch, UINT32_MAX));
    sheet.slices = image.slices;
    sheet.name = named(image, "flag buffer");
    sheet.parts = flag_parts(image, sheet);
    sheet.captions = flag_captions(image);
    return sheet;
  }

 private:
  [[nodiscard]] std::string named(const PlaneImage& image, const char* noun) const {
    const std::string place = place_name(named_, image.level, image.plane);
    return place.empty() ? noun : fmt::format("{}: {}", place, noun);
  }

  [[nodiscard]] std::string words(const PlaneImage& image, const char* field) const {
    return field_words(source_.explanation, plane_field(image.level, image.plane, field));
  }

  [[nodiscard]] std::vector<SheetPart> image_parts(const PlaneImage& image) const {
    const PlaneLayout& layout = image.layout;
    const auto [width, height] = image.payload;
    const uint32_t right = layout.image_width - width;
    const uint32_t below = layout.image_height - height;
    const std::string name = named(image, "image");
    std::vector<SheetPart> parts = {
        {Role::payload,
         0,
         0,
         width,
         height,
         {fmt::format("{}, the size asked for: {} x {}", name, counted(width, "element"),
                      counted(height, "row")),
          fmt::format("{} of {} each", counted(uint64_t{width} * height, "element"),
                      counted(layout.image_element_size, "byte"))}}};
    if (right > 0) {
      const uint64_t row_bytes = uint64_t{right} * layout.image_element_size;
      parts.push_back({Role::padding_right,
                       width,
                       0,
                       right,
                       height,
                       {fmt::format("{}, padding to the right: {} = {} in each row", name,
                                    counted(right, "element"), counted(row_bytes, "byte")),
                        words(image, "image_width")}});
    }
    if (below > 0) {
      parts.push_back({Role::padding_below,
                       0,
                       height,
                       layout.image_width,
                       below,
                       {fmt::format("{}, padding below: {} of {}", name, counted(below, "row"),
                                    counted(layout.image_pitch, "byte")),
                        words(image, "image_height")}});
    }
    std::erase_if(parts, [](const SheetPart& p) { return p.width == 0 || p.height == 0; });
    return parts;
  }

  [[nodiscard]] std::vector<Said> image_captions(const PlaneImage& image) const {
    const PlaneLayout& layout = image.layout;
    std::vector<Said> captions = {
        {fmt::format("{} x {}", counted(layout.image_width, "element"),
                     counted(layout.image_height, "row")),
         words(image, "image_width") + "\n" + words(image, "image_height")},
        {fmt::format("pitch {}", counted(layout.image_pitch, "byte")), words(image, "image_pitch")},
        {fmt::format("offset 0x{:X}, {}", layout.image_offset, counted(layout.image_size, "byte")),
         words(image, "image_offset") + "\n" + words(image, "image_size")}};
    if (image.slices > 1) {
      captions.push_back({fmt::format("{}, {} apart", counted(image.slices, "slice"),
                                      counted(layout.image_slice_pitch, "byte")),
                          words(image, "image_slice_pitch")});
    }
    return captions;
  }

  // Tiles of the image are the used flags; where these are not known all are.
  [[nodiscard]] std::vector<SheetPart> flag_parts(const PlaneImage& image,
                                                  const Sheet& sheet) const {
    uint32_t width = sheet.width;
    uint32_t height = sheet.height;
    if (image.flag_tile.width != 0 && image.flag_tile.height != 0) {
      const korvel::Extent<korvel::Tiles> tiles = korvel::tiles_that_cover(
          {image.layout.image_width, image.layout.image_height}, image.flag_tile);
      width = std::min(width, tiles.width);
      height = std::min(height, tiles.height);
    }
    const std::string name = named(image, "flag buffer");
    std::vector<SheetPart> parts = {
        {Role::flags,
         0,
         0,
         width,
         height,
         {fmt::format("{}: {} x {}, one for each tile of {} x {}", name, counted(width, "byte"),
                      counted(height, "row"), counted(image.flag_tile.width, "element"),
                      counted(image.flag_tile.height, "row")),
          "How each of these tiles of the image is compressed."}},
        {Role::padding_right,
         width,
         0,
         sheet.width - width,
         height,
         {fmt::format("{}, padding to the right: {} in each row", name,
                      counted(sheet.width - width, "byte")),
          words(image, "flag_pitch")}},
        {Role::padding_below,
         0,
         height,
         sheet.width,
         sheet.height - height,
         {fmt::format("{}, padding below: {}", name, counted(sheet.height - height, "row")),
          words(image, "flag_size")}}};
    std::erase_if(parts, [](const SheetPart& p) { return p.width == 0 || p.height == 0; });
    return parts;
  }

  [[nodiscard]] std::vector<Said> flag_captions(const PlaneImage& image) const {
    const PlaneLayout& layout = image.layout;
    std::vector<Said> captions = {
        {fmt::format("pitch {}", counted(layout.flag_pitch, "byte")), words(image, "flag_pitch")},
        {fmt::format("offset 0x{:X}, {}", layout.flag_offset, counted(layout.flag_size, "byte")),
         words(image, "flag_offset") + "\n" + words(image, "flag_size")}};
    if (image.flag_tile.width != 0) {
      captions.push_back({fmt::format("1 byte for {} x {} elements", image.flag_tile.width,
                                      image.flag_tile.height),
                          "Elements and rows of the image that one byte of flags stands for."});
    }
    return captions;
  }

  const PictureSource& source_;
  NamedPlaces named_;
};

// Rows that come out alike are drawn once.
bool look_alike(const Sheet& a, const Sheet& b) {
  return std::equal(a.parts.begin(), a.parts.end(), b.parts.begin(), b.parts.end(),
                    [](const SheetPart& left, const SheetPart& right) {
                      return left.role == right.role && left.x == right.x && left.y == right.y &&
                             left.width == right.width && left.height == right.height;
                    });
}

void say_how_many(Sheet& sheet, uint32_t more) {
  if (more == 0) return;
  sheet.captions.push_back({fmt::format("and {} more alike", counted(more, "level")),
                            "The flag buffers of the levels that follow have the same size and "
                            "stand behind this one."});
}

}  // namespace

std::vector<Sheet> sheets(const PictureSource& source, std::span<const PlaneImage> images) {
  const SheetWriter writer(source, images);
  std::vector<Sheet> all;
  for (const PlaneImage& image : images) all.push_back(writer.image_sheet(image));
  for (uint32_t plane = 0; plane < KORVEL_MAX_PLANES; ++plane) {
    std::vector<Sheet> flags;
    uint32_t more = 0;
    for (const PlaneImage& image : images) {
      if (image.plane != plane || !image.has_flags) continue;
      Sheet sheet = writer.flag_sheet(image);
      if (!flags.empty() && look_alike(flags.back(), sheet)) {
        ++more;
        continue;
      }
      if (!flags.empty()) say_how_many(flags.back(), more);
      more = 0;
      flags.push_back(std::move(sheet));
    }
    if (!flags.empty()) say_how_many(flags.back(), more);
    all.insert(all.end(), flags.begin(), flags.end());
  }
  std::erase_if(all, [](const Sheet& sheet) { return sheet.width == 0 || sheet.height == 0; });
  return all;
}

}  // namespace tool
