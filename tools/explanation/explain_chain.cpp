#include "tools/explanation/explain_chain.h"

#include <fmt/core.h>

#include <vector>

#include "layout/chain_bytes.h"
#include "tools/explanation/explain_plane.h"
#include "tools/request/counted.h"

namespace tool {
namespace {

using korvel::FlagPlacement;

// What the levels of one plane take.
struct ChainNumbers {
  std::vector<Number> image_bytes;
  std::vector<Number> flag_bytes;  // empty without flag buffers
};

class ChainSteps {
 public:
  ChainSteps(StepWriter& steps, const korvel::Surface& surface, const SurfaceRequest& request)
      : steps_(steps),
        surface_(surface),
        request_(request),
        placement_(korvel::flag_placement(surface)),
        flags_asked_((request.flags & LAYOUT_FLAG_UBWC) != 0) {}

  Number explain() {
    Number end = {quantity(0, Unit::bytes), {}};
    ChainNumbers chain;
    for (uint32_t plane = 0; plane < surface_.planes; ++plane) {
      chain = sizes(plane);
      steps_.enter({{}, plane});
      end = places(plane, chain, end);
    }
    if (surface_.planes == 0) {
      no_planes();
    } else {
      level_sizes(chain);
    }
    return end;
  }

 private:
  [[nodiscard]] uint32_t levels() const { return *request_.levels; }

  // Level 0 in texels, in whole steps of the width.
  PlaneSize base_texels() {
    const Number width = steps_.add({.subject = "width",
                                     .after = {surface_.size.width, Unit::texels},
                                     .rule = fmt::format("the width takes whole steps of {} texels",
                                                         korvel::kChainWidthStep_texels),
                                     .fact = "level 0 of a chain",
                                     .wrapped = surface_.size.width < request_.size.width},
                                    {{{request_.size.width, Unit::texels}, {}}});
    const korvel::SignedExtent<korvel::Texels> first = korvel::first_level(surface_.size);
    const PlaneSize base = {width, {{surface_.size.height, Unit::texels}, {}}};
    return changed_texels(base, first, "a size below 1", "the side counts as 1 texel");
  }

  // Steps for the sides that change.
  PlaneSize changed_texels(PlaneSize size, korvel::SignedExtent<korvel::Texels> to,
                           const std::string& fact, const std::string& rule) {
    const auto change = [&](const char* subject, const Number& before, int32_t after) {
      if (before.quantity.value == after) return before;
      return steps_.add(
          {.subject = subject, .after = {after, Unit::texels}, .rule = rule, .fact = fact},
          {before});
    };
    return {change("width", size.width, to.width), change("height", size.height, to.height)};
  }

  PlaneSize level_texels(uint32_t level, const PlaneSize& before) {
    const korvel::SignedExtent<korvel::Texels> size = korvel::next_level(
        {static_cast<int32_t>(before.width.u32()), static_cast<int32_t>(before.height.u32())});
    const auto half = [&](const char* subject, const Number& side, int32_t after) {
      return steps_.add({.subject = subject,
                         .after = {after, Unit::texels},
                         .rule = "half of the level before, at least 1 texel",
                         .fact = fmt::format("level {} of a chain", level)},
                        {side});
    };
    return {half("width", before.width, size.width), half("height", before.height, size.height)};
  }

  ChainNumbers sizes(uint32_t plane) {
    ChainNumbers chain;
    PlaneSize texels;
    PlaneSize flag_tiles;
    for (uint32_t level = 0; level < levels(); ++level) {
      steps_.enter({level, plane});
      texels = level == 0 ? base_texels() : level_texels(level, texels);
      const PlaneSize elements = explain_elements(steps_, surface_, plane, texels);
      const PlaneNumbers image = explain_image(steps_, surface_, level, plane, elements);
      steps_.name(image.image_bytes, plane_field(level, plane, "image_size"));
      chain.image_bytes.push_back(image.image_bytes);
      explain_flag_valid(steps_, surface_, level, plane, flags_asked_);
      if (!surface_.flag_buffers) continue;
      if (level == 0) flag_tiles = base_flag_tiles(plane);
      chain.flag_bytes.push_back(flag_size(level, plane, flag_tiles));
    }
    return chain;
  }

  // Of level 0, from which those of all levels follow.
  PlaneSize base_flag_tiles(uint32_t plane) {
    const korvel::Extent<korvel::Elements> cover = korvel::chain_flag_cover(surface_);
    const auto covered = [&](const char* subject, int32_t texels, uint32_t after, Unit unit) {
      return steps_.add({.subject = subject,
                         .after = quantity(after, unit),
                         .rule = "they cover the next power of two, in texels of level 0",
                         .fact = "the flag buffers of a chain"},
                        {{{texels, Unit::texels}, {}}});
    };
    const PlaneSize size = {covered("flag width", surface_.size.width, cover.width, Unit::elements),
                            covered("flag height", surface_.size.height, cover.height, Unit::rows)};
    return explain_flag_tiles(steps_, surface_, plane, size);
  }

  Number flag_size(uint32_t level, uint32_t plane, const PlaneSize& tiles) {
    const uint32_t least = korvel::least_flag_side(surface_);
    const std::string fact =
        fmt::format("the chip's min_level_extent is {}", surface_.chip.properties.min_level_extent);
    const std::string halved = level == 0 ? "" : fmt::format(", halved {}", counted(level, "time"));
    const auto side = [&](const char* subject, const Number& count, Unit unit, const char* of) {
      return steps_.add(
          {.subject = subject,
           .after = quantity(korvel::chain_flag_side(count.u32(), level, least), unit),
           .rule = fmt::format("{} of level 0{}, but at least {}", of, halved, least),
           .fact = fact},
          {count});
    };
    const Number pitch = side("flag pitch", tiles.width, Unit::bytes, "a byte for each tile");
    steps_.name(pitch, plane_field(level, plane, "flag_pitch"));
    const Number rows = side("flag rows", tiles.height, Unit::flag_rows, "the tile rows");
    return steps_.add_product(
        {.subject = "flag size",
         .after = quantity(uint32_t{rows.u32() * pitch.u32()}, Unit::bytes),
         .rule = "the rows take rows x flag pitch",
         .fact = fmt::format("{} a row of flags", counted(pitch.u32(), "byte")),
         .field = plane_field(level, plane, "flag_size")},
        {rows, pitch}, rows.u32(), pitch.u32());
  }

  // Puts one thing behind another.
  Number behind(std::string subject, const Number& end, const Number& bytes, std::string rule,
                std::string fact) {
    return steps_.add({.subject = std::move(subject),
                       .after = quantity(end.u64() + bytes.u64(), Unit::bytes),
                       .rule = std::move(rule),
                       .fact = std::move(fact)},
                      {end, bytes});
  }

  // Where the levels of a plane lie. Returns where all slices of the plane end.
  Number places(uint32_t plane, const ChainNumbers& chain, const Number& plane_start) {
    const bool gathered = placement_ == FlagPlacement::gathered;
    Number flag_slice = {quantity(0, Unit::bytes), {}};
    Number images_from = plane_start;
    if (gathered && surface_.flag_buffers) {
      flag_slice = gathered_flags(plane, chain);
      images_from = add_slices("end of the flag buffers", plane_start, flag_slice,
                               "those of all slices stand in front of the images");
    } else if (surface_.flag_buffers && placement_ == FlagPlacement::none) {
      flags_without_a_place(plane);
    }
    const uint32_t alignment = surface_.chip.properties.level_offset_alignment;
    const Number start = add_aligned(
        steps_,
        {.subject = "start of the images",
         .after = quantity(korvel::chain_start_bytes(surface_.chip.properties, images_from.u64()),
                           Unit::bytes)},
        {images_from}, "level_offset_alignment", alignment);
    const Number end = images(plane, chain, start);
    const Number bytes =
        steps_.add({.subject = "bytes of the chain",
                    .after = quantity(end.u64() - start.u64(), Unit::bytes),
                    .rule = "the chain goes from there to the end of the last image",
                    .fact = fmt::format("the images start at {}", counted(start.u64(), "byte"))},
                   {end, start});
    const uint32_t base_alignment = surface_.chip.properties.base_alignment;
    const Number slice = add_aligned(
        steps_,
        {.subject = "slice pitch",
         .after = quantity(korvel::whole_chain_bytes(surface_.chip.properties, bytes.u64()),
                           Unit::bytes)},
        {bytes}, "base_alignment", base_alignment);
    slice_pitches(plane, slice, flag_slice);
    return add_slices("end of the plane", start, slice,
                      "the chains of all slices follow each other");
  }

  Number add_slices(std::string subject, const Number& from, const Number& slice,
                    std::string rule) {
    const uint64_t all = korvel::bytes_of_all_slices(surface_, slice.u64());
    return steps_.add({.subject = std::move(subject),
                       .after = quantity(from.u64() + all, Unit::bytes),
                       .rule = std::move(rule),
                       .fact = fmt::format("{} of {}", counted(surface_.depth, "slice"),
                                           counted(slice.u64(), "byte"))},
                      {from, slice});
  }

  // Returns the bytes of a slice.
  Number gathered_flags(uint32_t plane, const ChainNumbers& chain) {
    Number end = {quantity(0, Unit::bytes), {}};
    for (uint32_t level = 0; level < levels(); ++level) {
      const Number& bytes = chain.flag_bytes[level];
      const Number offset = steps_.add(
          {.subject = fmt::format("level {} flag offset", level),
           .after = end.quantity,
           .rule = "flag buffers stand together, in front of all images",
           .fact = level == 0 ? std::string("the first level")
                              : fmt::format("the flag buffer of level {} ends here", level - 1),
           .field = plane_field(level, plane, "flag_offset")},
          {end});
      end = behind(fmt::format("level {} flag end", level), offset, bytes,
                   "the end is offset + flag size",
                   fmt::format("{} of flags", counted(bytes.u64(), "byte")));
    }
    const uint64_t whole_bytes =
        korvel::whole_flag_slice_bytes(surface_.chip.properties, end.u64());
    return add_aligned(
        steps_, {.subject = "flag slice pitch", .after = quantity(whole_bytes, Unit::bytes)}, {end},
        "level_size_alignment", surface_.chip.properties.level_size_alignment);
  }

  void unwritten(uint32_t level, uint32_t plane, const char* subject, const char* name) {
    steps_.add({.subject = fmt::format("level {} {}", level, subject),
                .after = quantity(0, Unit::bytes),
                .rule = "not written: there is no room for the flag buffer",
                .fact = "a linear chain of one plane",
                .field = plane_field(level, plane, name)},
               {{quantity(0, Unit::bytes), {}}});
  }

  void flags_without_a_place(uint32_t plane) {
    for (uint32_t level = 0; level < levels(); ++level) {
      unwritten(level, plane, "flag offset", "flag_offset");
      unwritten(level, plane, "flag slice pitch", "flag_slice_pitch");
    }
  }

  // Returns where the images end.
  Number images(uint32_t plane, const ChainNumbers& chain, const Number& start) {
    Number end = start;
    for (uint32_t level = 0; level < levels(); ++level) {
      const std::string subject = fmt::format("level {} ", level);
      const std::string from = level == 0 ? std::string("the first level")
                                          : fmt::format("level {} ends here", level - 1);
      const bool own = placement_ == FlagPlacement::own;
      if (own) {
        const Number& flag_bytes = chain.flag_bytes[level];
        const Number flags = steps_.add({.subject = subject + "flag offset",
                                         .after = end.quantity,
                                         .rule = "each flag buffer stands in front of its image",
                                         .fact = from,
                                         .field = plane_field(level, plane, "flag_offset")},
                                        {end});
        end =
            behind(subject + "image offset", flags, flag_bytes, "the image follows its flag buffer",
                   fmt::format("{} of flags", counted(flag_bytes.u64(), "byte")));
      } else {
        end = steps_.add({.subject = subject + "image offset",
                          .after = end.quantity,
                          .rule = "the levels of a plane follow each other",
                          .fact = from},
                         {end});
      }
      steps_.name(end, plane_field(level, plane, "image_offset"));
      const Number& bytes = chain.image_bytes[level];
      end = behind(subject + "image end", end, bytes, "the end is offset + image size",
                   fmt::format("an image of {}", counted(bytes.u64(), "byte")));
    }
    return end;
  }

  // Those of the last plane alone.
  void level_sizes(const ChainNumbers& last) {
    const bool own = placement_ == FlagPlacement::own;
    const std::string rule = surface_.planes > 1 ? "all slices of the last plane alone"
                                                 : "all slices of the image, flag buffers left out";
    for (uint32_t level = 0; level < levels(); ++level) {
      steps_.enter({level, {}});
      const Number& image_bytes = last.image_bytes[level];
      const Number flag_bytes = own ? last.flag_bytes[level] : Number{quantity(0, Unit::bytes), {}};
      const uint64_t slice_bytes = flag_bytes.u64() + image_bytes.u64();
      steps_.add_long_product(
          {.subject = "level size",
           .after = quantity(korvel::bytes_of_all_slices(surface_, slice_bytes), Unit::bytes),
           .rule = rule,
           .fact = fmt::format("{} of {}", counted(surface_.depth, "slice"),
                               counted(slice_bytes, "byte")),
           .field = level_field(level, "size")},
          {image_bytes, flag_bytes}, slice_bytes, static_cast<uint64_t>(surface_.depth));
    }
  }

  void slice_pitches(uint32_t plane, const Number& slice, const Number& flag_slice) {
    for (uint32_t level = 0; level < levels(); ++level) {
      const std::string subject = fmt::format("level {} ", level);
      steps_.add({.subject = subject + "slice pitch",
                  .after = slice.quantity,
                  .rule = "the same for every level",
                  .fact = "a slice is a whole chain",
                  .field = plane_field(level, plane, "image_slice_pitch")},
                 {slice});
      if (!surface_.flag_buffers || placement_ == FlagPlacement::none) continue;
      const bool own = placement_ == FlagPlacement::own;
      steps_.add({.subject = subject + "flag slice pitch",
                  .after = (own ? slice : flag_slice).quantity,
                  .rule = "the same for every level",
                  .fact = own ? "each flag buffer stands inside the chain"
                              : "the flag buffers of a slice stand together",
                  .field = plane_field(level, plane, "flag_slice_pitch")},
                 {own ? slice : flag_slice});
    }
  }

  void no_planes() {
    for (uint32_t level = 0; level < levels(); ++level) {
      steps_.enter({level, {}});
      steps_.add({.subject = "level size",
                  .after = quantity(0, Unit::bytes),
                  .rule = "not written",
                  .fact = "no plane is asked for",
                  .field = level_field(level, "size")},
                 {{quantity(0, Unit::bytes), {}}});
    }
  }

  StepWriter& steps_;
  const korvel::Surface& surface_;
  const SurfaceRequest& request_;
  FlagPlacement placement_;
  bool flags_asked_;
};

}  // namespace

Number explain_chain(StepWriter& steps, const korvel::Surface& surface,
                     const SurfaceRequest& request) {
  return ChainSteps(steps, surface, request).explain();
}

}  // namespace tool
