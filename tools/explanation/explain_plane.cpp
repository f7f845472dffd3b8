#include "tools/explanation/explain_plane.h"

#include <fmt/core.h>

#include "layout/plane_bytes.h"
#include "tools/request/counted.h"

namespace tool {
namespace {

// Of one slice: a row of flags is as many bytes as tiles.
Number explain_flag_buffer(StepWriter& steps, const korvel::Surface& surface, uint32_t level,
                           uint32_t plane, const PlaneSize& image) {
  const korvel::ChipProperties& properties = surface.chip.properties;
  const PlaneSize tiles = explain_flag_tiles(steps, surface, plane, image);
  const korvel::Extent<korvel::Tiles> count = {tiles.width.u32(), tiles.height.u32()};
  const Number pitch =
      add_aligned(steps,
                  {.subject = "flag pitch",
                   .after = quantity(korvel::flag_pitch_bytes(properties, count), Unit::bytes),
                   .field = plane_field(level, plane, "flag_pitch")},
                  {tiles.width}, "linear_alignment", properties.linear_alignment);
  const Number rows = steps.add_rounded(
      {.subject = "flag rows",
       .after = quantity(korvel::flag_rows(count), Unit::flag_rows),
       .rule = fmt::format("the rows take whole steps of {}", korvel::kFlagRowAlignment),
       .fact = "a flag buffer of one level"},
      {tiles.height});
  const uint32_t rows_bytes = rows.u32() * pitch.u32();
  const Number product =
      steps.add_product({.subject = "flag size",
                         .after = quantity(rows_bytes, Unit::bytes),
                         .rule = "the rows take rows x flag pitch",
                         .fact = fmt::format("{} a row of flags", counted(pitch.u32(), "byte"))},
                        {rows, pitch}, rows.u32(), pitch.u32());
  return add_aligned(
      steps,
      {.subject = "flag size",
       .after = quantity(korvel::whole_flag_bytes(properties, rows_bytes), Unit::bytes),
       .field = plane_field(level, plane, "flag_size")},
      {product}, "base_alignment", properties.base_alignment);
}

// Where the image of a plane starts and what its slices take. Returns where the plane ends.
Number explain_place(StepWriter& steps, const korvel::Surface& surface, uint32_t level,
                     uint32_t plane, const Number& start, const PlaneSize& aligned,
                     const Number& image_bytes) {
  const auto field = [=](const char* name) { return plane_field(level, plane, name); };
  const std::string from =
      plane == 0 ? "the first plane"
                 : fmt::format("plane {} ends here, counted with one slice", plane - 1);
  Number slice;
  if (surface.flag_buffers) {
    const Number flag_bytes = explain_flag_buffer(steps, surface, level, plane, aligned);
    steps.add({.subject = "flag offset",
               .after = start.quantity,
               .rule = "the flag buffer starts its plane, in front of the image",
               .fact = from,
               .field = field("flag_offset")},
              {start});
    const std::string flags = fmt::format("{} of flags", counted(flag_bytes.u64(), "byte"));
    steps.add({.subject = "image offset",
               .after = quantity(start.u64() + flag_bytes.u64(), Unit::bytes),
               .rule = "the image follows its flag buffer",
               .fact = flags,
               .field = field("image_offset")},
              {start, flag_bytes});
    const Quantity both = quantity(flag_bytes.u64() + image_bytes.u64(), Unit::bytes);
    const std::string rule = "a slice is flag buffer and image together";
    slice = steps.add({.subject = "slice pitch",
                       .after = both,
                       .rule = rule,
                       .fact = flags,
                       .field = field("image_slice_pitch")},
                      {image_bytes, flag_bytes});
    steps.add({.subject = "flag slice pitch",
               .after = both,
               .rule = rule,
               .fact = flags,
               .field = field("flag_slice_pitch")},
              {image_bytes, flag_bytes});
  } else {
    steps.add({.subject = "image offset",
               .after = start.quantity,
               .rule = "the image starts its plane",
               .fact = from,
               .field = field("image_offset")},
              {start});
    slice = steps.add({.subject = "slice pitch",
                       .after = image_bytes.quantity,
                       .rule = "a slice is the image alone",
                       .fact = "no flag buffer",
                       .field = field("image_slice_pitch")},
                      {image_bytes});
  }
  return steps.add({.subject = "end of the plane",
                    .after = quantity(start.u64() + slice.u64(), Unit::bytes),
                    .rule = "the plane ends one slice behind its start",
                    .fact = fmt::format("a slice of {}", counted(slice.u64(), "byte"))},
                   {start, slice});
}

// Returns where the plane ends.
Number explain_whole_plane(StepWriter& steps, const korvel::Surface& surface, uint32_t level,
                           uint32_t plane, const Number& start, bool flags_asked) {
  const korvel::SignedExtent<korvel::Texels> first = korvel::first_level(surface.size);
  const PlaneSize texels = {{{first.width, Unit::texels}, {}}, {{first.height, Unit::texels}, {}}};
  const PlaneNumbers image =
      explain_image(steps, surface, level, plane, explain_elements(steps, surface, plane, texels));
  const uint64_t whole_bytes = korvel::whole_image_bytes(surface, image.image_bytes.u32());
  const Number image_bytes =
      add_aligned(steps,
                  {.subject = "image size",
                   .after = quantity(whole_bytes, Unit::bytes),
                   .field = plane_field(level, plane, "image_size")},
                  {image.image_bytes}, "base_alignment", surface.chip.properties.base_alignment);
  explain_flag_valid(steps, surface, level, plane, flags_asked);
  return explain_place(steps, surface, level, plane, start, image.size, image_bytes);
}

}  // namespace

Number add_aligned(StepWriter& steps, Step step, std::initializer_list<Number> inputs,
                   std::string_view column, uint32_t alignment_bytes) {
  if (alignment_bytes == 0) {
    step.rule = "rounding up to 0 bytes leaves 0";
    step.fact = fmt::format("the chip lacks {}", column);
    return steps.add(std::move(step), inputs);
  }
  step.rule = fmt::format("whole multiples of {}", counted(alignment_bytes, "byte"));
  step.fact = fmt::format("the chip's {}", column);
  return steps.add_rounded(std::move(step), inputs);
}

PlaneSize explain_elements(StepWriter& steps, const korvel::Surface& surface, uint32_t plane,
                           PlaneSize texels) {
  const korvel::FormatTraits& format = surface.alignment.format;
  const korvel::SignedExtent<korvel::Texels> size = {
      static_cast<int32_t>(texels.width.quantity.value),
      static_cast<int32_t>(texels.height.quantity.value)};
  const korvel::SignedExtent<korvel::Elements> elements = korvel::level_elements(surface, size);
  const std::string whole =
      plane == 0 ? "" : fmt::format("plane {} takes the whole size of the surface, and ", plane);
  if (!korvel::has_rule(format, korvel::kRuleBlockCompressed)) {
    const std::string rule = whole + "one texel is one element";
    const std::string fact = "the format has no blocks";
    return {steps.add({.subject = "width",
                       .after = {elements.width, Unit::elements},
                       .rule = rule,
                       .fact = fact},
                      {texels.width}),
            steps.add({.subject = "height",
                       .after = {elements.height, Unit::rows},
                       .rule = rule,
                       .fact = fact},
                      {texels.height})};
  }
  const uint32_t alignment_el = surface.chip.properties.pixel_alignment;
  const std::string fact =
      fmt::format("blocks of {} x {} texels", format.block.width, format.block.height);
  const int32_t columns = korvel::blocks_that_hold(size.width, format.block.width);
  const Number blocks = steps.add({.subject = "width",
                                   .after = {columns, Unit::elements},
                                   .rule = whole + "one block is one element, a started one too",
                                   .fact = fact,
                                   .wrapped = columns < 0},
                                  {texels.width});
  const Number width =
      steps.add({.subject = "width",
                 .after = {elements.width, Unit::elements},
                 .rule = fmt::format("whole multiples of {}", counted(alignment_el, "element")),
                 .fact = "the chip's pixel_alignment",
                 .wrapped = elements.width < columns},
                {blocks});
  return {width, steps.add({.subject = "height",
                            .after = {elements.height, Unit::rows},
                            .rule = whole + "one row of blocks is one row of elements",
                            .fact = fact,
                            .wrapped = elements.height < 0},
                           {texels.height})};
}

PlaneNumbers explain_image(StepWriter& steps, const korvel::Surface& surface, uint32_t level,
                           uint32_t plane, PlaneSize elements) {
  const auto field = [=](const char* name) { return plane_field(level, plane, name); };
  const korvel::FormatTraits& format = surface.alignment.format;
  const uint32_t samples = surface.alignment.samples;
  const uint32_t own_bytes = korvel::plane_bytes(format, plane);
  const PlaneSize size = explain_alignment(steps, surface, plane, elements);
  steps.name(size.width, field("image_width"));
  steps.name(size.height, field("image_height"));
  const Number element =
      steps.add({.subject = "element size",
                 .after = quantity(surface.element_bytes, Unit::bytes),
                 .rule = own_bytes == format.bytes
                             ? "the bytes of an element, all samples together"
                             : "the element of the format counts, not that of the plane",
                 .fact = element_text(format.bytes, samples),
                 .field = field("image_element_size")},
                {{quantity(format.bytes, Unit::bytes), {}}});
  const korvel::Extent<korvel::Elements> image = {size.width.u32(), size.height.u32()};
  const uint32_t pitch_bytes = korvel::image_pitch_bytes(surface, image);
  const Number pitch = steps.add_product(
      {.subject = "pitch",
       .after = quantity(pitch_bytes, Unit::bytes),
       .rule = "the pitch is width x element size",
       .fact = fmt::format("{} an element", counted(surface.element_bytes, "byte")),
       .field = field("image_pitch")},
      {size.width, element}, image.width, surface.element_bytes);
  const Number rows_bytes =
      steps.add_product({.subject = "image size",
                         .after = quantity(uint32_t{pitch_bytes * image.height}, Unit::bytes),
                         .rule = "the rows take rows x pitch",
                         .fact = fmt::format("{} a row", counted(pitch_bytes, "byte"))},
                        {size.height, pitch}, pitch_bytes, image.height);
  const bool tiled = korvel::is_tiled(surface.alignment);
  const Number image_bytes = add_aligned(
      steps,
      {.subject = "image size",
       .after = quantity(korvel::mode_aligned_bytes(surface, rows_bytes.u32()), Unit::bytes)},
      {rows_bytes}, tiled ? "tiled_alignment" : "linear_alignment", surface.image_alignment_bytes);
  return {size, pitch, image_bytes};
}

Number explain_flag_valid(StepWriter& steps, const korvel::Surface& surface, uint32_t level,
                          uint32_t plane, bool asked) {
  const char* const fact = !asked ? "UBWC is not asked for"
                           : surface.flag_buffers
                               ? "UBWC is asked for, and the chip compresses the format"
                               : "UBWC is asked for, but the chip does not compress the format";
  return steps.add({.subject = "flag buffer",
                    .after = quantity(surface.flag_buffers ? 1 : 0, Unit::yes_no),
                    .rule = surface.flag_buffers ? "the plane has one" : "the plane has none",
                    .fact = fact,
                    .field = plane_field(level, plane, "flag_valid")},
                   {{quantity(asked ? 1 : 0, Unit::yes_no), {}}});
}

PlaneSize explain_flag_tiles(StepWriter& steps, const korvel::Surface& surface, uint32_t plane,
                             PlaneSize covered) {
  const korvel::Extent<korvel::Elements> tile = korvel::flag_tile(surface, plane);
  const korvel::Extent<korvel::Tiles> tiles =
      korvel::tiles_that_cover({covered.width.u32(), covered.height.u32()}, tile);
  const std::string fact =
      fmt::format("sample tiles of {} elements x {} rows", tile.width, tile.height);
  return {steps.add({.subject = "flag width",
                     .after = quantity(tiles.width, Unit::tiles),
                     .rule = "one byte of flags for each tile, a started one too",
                     .fact = fact},
                    {covered.width}),
          steps.add({.subject = "flag height",
                     .after = quantity(tiles.height, Unit::tile_rows),
                     .rule = "one row of flags for each row of tiles",
                     .fact = fact},
                    {covered.height})};
}

Number explain_single_level(StepWriter& steps, const korvel::Surface& surface, bool flags_asked) {
  constexpr uint32_t kLevel = 0;
  Number end = {quantity(0, Unit::bytes), {}};
  for (uint32_t plane = 0; plane < surface.planes; ++plane) {
    steps.enter({kLevel, plane});
    end = explain_whole_plane(steps, surface, kLevel, plane, end, flags_asked);
  }
  steps.enter({kLevel, {}});
  steps.add_long_product(
      {.subject = "level size",
       .after = quantity(korvel::bytes_of_all_slices(surface, end.u64()), Unit::bytes),
       .rule = "the level takes all slices of all planes",
       .fact = fmt::format("{} of {}", counted(surface.depth, "slice"),
                           counted(surface.planes, "plane")),
       .field = level_field(kLevel, "size")},
      {end}, end.u64(), static_cast<uint64_t>(surface.depth));
  return end;
}

}  // namespace tool
