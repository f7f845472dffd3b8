#include "tools/explanation/explain_alignment.h"

#include <fmt/core.h>

#include <algorithm>
#include <limits>

#include "align/entries.h"
#include "tools/request/counted.h"

namespace tool {
namespace {

using korvel::AlignmentRequest;
using korvel::ChipRow;
using Elements = korvel::Extent<korvel::Elements>;

Quantity elements(uint32_t count) {
  return quantity(count, Unit::elements);
}
Quantity rows(uint32_t count) {
  return quantity(count, Unit::rows);
}

Elements extent_of(const PlaneSize& size) {
  return {size.width.u32(), size.height.u32()};
}

// The number is rounded up to whole steps of something.
Number add_width(StepWriter& steps, const Number& before, uint32_t after_el, std::string fact,
                 std::string rule) {
  return steps.add_rounded({.subject = "width",
                            .after = elements(after_el),
                            .rule = std::move(rule),
                            .fact = std::move(fact)},
                           {before});
}

Number add_height(StepWriter& steps, const Number& before, uint32_t after_rows, std::string fact,
                  std::string rule) {
  return steps.add_rounded({.subject = "height",
                            .after = rows(after_rows),
                            .rule = std::move(rule),
                            .fact = std::move(fact)},
                           {before});
}

PlaneSize without_rules(StepWriter& steps, korvel::SignedExtent<korvel::Elements> signed_size,
                        const PlaneSize& size) {
  const Elements stays = korvel::extent_without_rules(signed_size);
  const bool negative = korvel::is_negative(signed_size);
  const std::string fact = negative ? fmt::format("{} elements x {} rows, a side below 0",
                                                  signed_size.width, signed_size.height)
                                    : "the alignment rules do not know this chip";
  const std::string rule =
      negative ? "the size is refused, and 1 element x 1 row takes its place" : "the size stays";
  return {
      steps.add({.subject = "width", .after = elements(stays.width), .rule = rule, .fact = fact},
                {size.width}),
      steps.add({.subject = "height", .after = rows(stays.height), .rule = rule, .fact = fact},
                {size.height})};
}

std::string tile_fact(Elements tile, const std::string& element) {
  return fmt::format("tiled, {}, so tiles of {} elements x {} rows", element, tile.width,
                     tile.height);
}

constexpr const char kWholeTilesWide[] = "the width takes whole tiles";
constexpr const char kWholeTilesHigh[] = "the height takes whole tiles";

// ---- Linear widths ----

// "2 bytes an element", or "3 bytes an element, counted as 4"
std::string counted_element_text(const AlignmentRequest& request) {
  const korvel::FormatTraits& format = request.format;
  std::string text = element_text(format.bytes, request.samples);
  if (format.substitute_bytes != format.bytes) {
    text += fmt::format(", counted as {}", counted(format.substitute_bytes, "byte"));
  }
  return text;
}

std::string linear_unit_fact(const AlignmentRequest& request, const korvel::LinearRules& rules) {
  const uint32_t bytes = request.format.substitute_bytes * request.samples;
  if (korvel::has_rule(request.format, rules.in_blocks)) {
    return fmt::format("linear, in blocks, {}, so {} to a unit of {} bytes",
                       counted_element_text(request), korvel::blocks_in_unit(bytes),
                       korvel::kLinearUnit_bytes);
  }
  return fmt::format(
      "linear, {}, so {} fill whole units of {} bytes", counted_element_text(request),
      counted(korvel::elements_in_whole_units(bytes), "element"), korvel::kLinearUnit_bytes);
}

std::string linear_step_rule(const AlignmentRequest& request, uint32_t step_bytes,
                             uint32_t step_el) {
  if (step_el == 0) {
    return fmt::format("the width stays, as a step of {} bytes / {} comes to 0 elements",
                       step_bytes, request.step_divisor);
  }
  if (request.step_divisor == 1) {
    return fmt::format(
        "the width takes whole steps of {} elements (the {} bytes of a step count as elements)",
        step_el, step_bytes);
  }
  return fmt::format("the width takes whole steps of {} bytes / {} = {}", step_bytes,
                     request.step_divisor, counted(step_el, "element"));
}

Number linear_base(StepWriter& steps, const AlignmentRequest& request,
                   const korvel::LinearRules& rules, const Number& width) {
  const bool may_become_tiled = request.tiling_allowed != 0;  // of no layout
  const uint32_t step_bytes = korvel::linear_step_bytes(request, rules, may_become_tiled);
  const uint32_t step_el = korvel::linear_step_el(request, rules, may_become_tiled);
  const uint32_t base_el =
      korvel::linear_base_width_el(width.u32(), request, rules, may_become_tiled);
  return add_width(steps, width, base_el, linear_unit_fact(request, rules),
                   linear_step_rule(request, step_bytes, step_el));
}

std::string limit_fact(const ChipRow& chip) {
  if (chip.family_id != 7) return fmt::format("family {}", chip.family_id);
  return chip.max_surface_pitch == 0 ? "family 7, and the chip's model lists no pitch limit"
                                     : "family 7, by the chip's model";
}

// Only a limit that counts has a step of its own.
Number pitch_limit(StepWriter& steps, const ChipRow& chip, const Number& width,
                   uint32_t width_to_hold_el) {
  const uint32_t limited_el = korvel::limited_pitch_el(chip, width.u32());
  if (limited_el == width.u32()) return width;
  return steps.add({.subject = "width",
                    .after = elements(limited_el),
                    .rule = fmt::format("a row ends at {} elements", limited_el),
                    .fact = limit_fact(chip),
                    .cut = limited_el < width_to_hold_el},
                   {width});
}

Number padded_pitch(StepWriter& steps, const ChipRow& chip, const AlignmentRequest& request,
                    Number width, uint32_t element_bytes, uint32_t width_to_hold_el) {
  if (korvel::is_repeated_pitch(width.u32())) {
    width = add_width(
        steps, width, width.u32(),
        fmt::format("a multiple of {} elements, and more than one", korvel::kLongestPaddedPitch_el),
        "such a row is not padded");
    return pitch_limit(steps, chip, width, width_to_hold_el);
  }
  const uint32_t whole_el = korvel::round_up_pot(width.u32(), korvel::kPitchStep_el);
  if (whole_el != width.u32()) {
    width =
        add_width(steps, width, whole_el, "a row that may be padded",
                  fmt::format("the width takes whole steps of {} elements", korvel::kPitchStep_el));
  }
  const auto size_class = static_cast<uint32_t>(std::countr_zero(element_bytes));
  const uint32_t padded_el = korvel::padded_pitch_el(whole_el, size_class);
  const uint32_t row_bytes = whole_el * element_bytes;
  const bool padded = padded_el != whole_el;
  width = add_width(
      steps, width, padded_el,
      fmt::format(
          "{} a row are above the chip's threshold of {} (aux_alignment) and {} of {} bytes",
          counted(row_bytes, "byte"), request.min_padded_row_bytes,
          padded ? "whole channel spans" : "no whole channel spans", korvel::kChannelSpan_bytes),
      padded ? fmt::format("{} ({} bytes) more keep rows off the same memory channel",
                           counted(padded_el - whole_el, "element"), korvel::kSearchStep_bytes)
             : "the row is not padded");
  return pitch_limit(steps, chip, width, width_to_hold_el);
}

Number unpadded(StepWriter& steps, const Number& width, std::string fact, std::string rule) {
  return add_width(steps, width, width.u32(), std::move(fact), std::move(rule));
}

// In the order of finished_linear_width_el().
Number finished_linear(StepWriter& steps, const ChipRow& chip, const AlignmentRequest& request,
                       uint32_t plane, const Number& base, uint32_t width_to_hold_el) {
  const uint32_t element_bytes = korvel::element_bytes(request, plane);
  if (korvel::has_rule(request.format, korvel::kRuleUnpaddedPitch)) {
    const bool blocks = korvel::has_rule(request.format, korvel::kRuleBlockCompressed);
    return unpadded(steps, base, blocks ? "a block-compressed format" : "a video format",
                    "its rows are never padded or limited");
  }
  if (!korvel::is_power_of_two_or_zero(element_bytes)) {
    const uint32_t substitute_bytes = request.format.substitute_bytes;
    return add_width(
        steps, base, korvel::odd_element_width_el(base.u32(), element_bytes, substitute_bytes),
        fmt::format("{} an element are no power of two", counted(element_bytes, "byte")),
        fmt::format("the row takes whole multiples of 64 x {} x {} = {} bytes", element_bytes,
                    substitute_bytes, 64 * element_bytes * substitute_bytes));
  }
  const uint32_t row_bytes = base.u32() * element_bytes;
  if (korvel::is_short_row(request, row_bytes)) {
    if (request.min_padded_row_bytes == std::numeric_limits<int32_t>::max()) {
      return unpadded(steps, base, "a chain of levels", "its rows are not padded");
    }
    return unpadded(
        steps, base,
        fmt::format("{} a row are at most the chip's threshold of {} (aux_alignment)",
                    counted(static_cast<int32_t>(row_bytes), "byte"), request.min_padded_row_bytes),
        "the row is not padded");
  }
  if (element_bytes == 0) {
    return unpadded(steps, base, fmt::format("the format has no plane {}", plane),
                    "the row is not padded");
  }
  return padded_pitch(steps, chip, request, base, element_bytes, width_to_hold_el);
}

// ---- Families ----

PlaneSize with_extra_padding(StepWriter& steps, const ChipRow& chip, const korvel::Surface& surface,
                             const PlaneSize& size) {
  if (!surface.extended) return size;
  const Elements padding = surface.alignment.padding;
  const Elements padded = korvel::padded_extent(extent_of(size), surface.alignment);
  const std::string fact =
      fmt::format("extended, and the chip pads {}", counted(chip.extra_padding_units, "unit"));
  return {add_width(
              steps, size.width, padded.width, fact,
              fmt::format("{} added in front of all alignment", counted(padding.width, "element"))),
          add_height(
              steps, size.height, padded.height, fact,
              fmt::format("{} added in front of all alignment", counted(padding.height, "row")))};
}

PlaneSize tiled_family67(StepWriter& steps, const AlignmentRequest& request, uint32_t plane,
                         const PlaneSize& size) {
  const Elements tile = korvel::plane_tile_family67(request, plane);
  const Elements aligned = korvel::align_tiled_family67(extent_of(size), request, plane);
  const korvel::FormatTraits& format = korvel::plane_traits(request.format, plane);
  const std::string fact = tile_fact(tile, element_text(format.bytes, request.samples));
  return {add_width(steps, size.width, aligned.width, fact, kWholeTilesWide),
          add_height(steps, size.height, aligned.height, fact, kWholeTilesHigh)};
}

std::string linear_rows_rule(const AlignmentRequest& request) {
  return korvel::has_rule(request.format, korvel::kRuleWhole64Rows)
             ? "the height of this format takes whole steps of 64 rows"
             : "the height stays";
}

PlaneSize align_family67(StepWriter& steps, const korvel::Surface& surface, uint32_t plane,
                         PlaneSize size) {
  const ChipRow& chip = surface.chip;
  const AlignmentRequest& request = surface.alignment;
  size = with_extra_padding(steps, chip, surface, size);
  if (korvel::is_tiled(request)) return tiled_family67(steps, request, plane, size);
  const Number base = linear_base(steps, request, korvel::kLinearRulesFamily67, size.width);
  const Number width = finished_linear(steps, chip, request, plane, base, size.width.u32());
  const Number height =
      add_height(steps, size.height, korvel::linear_rows_family67(size.height.u32(), request),
                 "linear", linear_rows_rule(request));
  return {width, height};
}

const char* step_rule_family5() {
  return "the width takes whole steps of 64 elements, at least one";
}
static_assert(korvel::kWidthStepFamily5_el == 64);

PlaneSize tiled_family5(StepWriter& steps, const AlignmentRequest& request, uint32_t plane,
                        const PlaneSize& size) {
  const uint32_t bytes = korvel::element_bytes(request, plane);
  const korvel::TileVariant variant = korvel::tile_variant_family5(request.format);
  const Elements tile = korvel::tile_size(bytes, variant);
  const std::string element =
      element_text(korvel::plane_bytes(request.format, plane), request.samples);
  Number width = size.width;
  if (!korvel::steps_behind_tiles_family5(bytes)) {
    width = add_width(steps, width, korvel::width_before_tiles_el_family5(width.u32(), bytes),
                      fmt::format("family 5, {}, less than 4", element), step_rule_family5());
  }
  const uint32_t tiled_el = korvel::tiled_width_el_family5(width.u32(), bytes, variant);
  if (korvel::has_tile_family5(bytes)) {
    width = add_width(steps, width, tiled_el, tile_fact(tile, element), kWholeTilesWide);
  } else {
    width = add_width(steps, width, tiled_el,
                      fmt::format("family 5 has no tile for {} bytes an element", bytes),
                      "the width is not rounded to tiles");
  }
  if (korvel::steps_behind_tiles_family5(bytes)) {
    width = add_width(steps, width, korvel::width_behind_tiles_el_family5(width.u32(), bytes),
                      fmt::format("family 5, {}, 4 or more", element), step_rule_family5());
  }
  const uint32_t height_rows = korvel::align_height_family5(size.height.u32(), request, plane);
  return {width,
          add_height(steps, size.height, height_rows, tile_fact(tile, element), kWholeTilesHigh)};
}

PlaneSize align_family5(StepWriter& steps, const korvel::Surface& surface, uint32_t plane,
                        const PlaneSize& size) {
  const AlignmentRequest& request = surface.alignment;
  if (korvel::is_tiled(request)) return tiled_family5(steps, request, plane, size);
  const Number base =
      add_width(steps, size.width, korvel::stepped_width_el_family5(size.width.u32()),
                "family 5, linear", step_rule_family5());
  const Number width = finished_linear(steps, surface.chip, request, plane, base, size.width.u32());
  const uint32_t height_rows = korvel::align_height_family5(size.height.u32(), request, plane);
  return {width, add_height(steps, size.height, height_rows, "linear", linear_rows_rule(request))};
}

}  // namespace

std::string element_text(uint32_t bytes, uint32_t samples) {
  if (samples == 1) return fmt::format("{} an element", counted(bytes, "byte"));
  return fmt::format("{} x {} samples = {} bytes an element", counted(bytes, "byte"), samples,
                     bytes * samples);
}

PlaneSize explain_alignment(StepWriter& steps, const korvel::Surface& surface, uint32_t plane,
                            PlaneSize size) {
  const korvel::SignedExtent<korvel::Elements> signed_size = {
      static_cast<int32_t>(size.width.quantity.value),
      static_cast<int32_t>(size.height.quantity.value)};
  if (korvel::is_refused(surface.chip, signed_size)) {
    return without_rules(steps, signed_size, size);
  }
  return surface.chip.family_id == 5 ? align_family5(steps, surface, plane, size)
                                     : align_family67(steps, surface, plane, size);
}

}  // namespace tool
