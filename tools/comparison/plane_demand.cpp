#include "tools/comparison/plane_demand.h"

#include <fmt/core.h>

#include "layout/plane_bytes.h"
#include "tools/explanation/explain_plane.h"

namespace tool {
namespace {

void add_flag_buffer(const korvel::Surface& surface, uint32_t plane, PlaneDemand& demand) {
  const korvel::ChipProperties& properties = surface.chip.properties;
  const korvel::Extent<korvel::Tiles> tiles =
      korvel::tiles_that_cover({demand.width_el, demand.rows}, korvel::flag_tile(surface, plane));
  demand.flag_pitch_bytes = korvel::flag_pitch_bytes(properties, tiles);
  demand.flag_bytes =
      korvel::whole_flag_bytes(properties, korvel::flag_rows(tiles) * demand.flag_pitch_bytes);
}

}  // namespace

PlaneDemand plane_demand(const korvel::Surface& surface, uint32_t plane, uint32_t width_el,
                         uint32_t rows, bool chain) {
  StepWriter steps;
  steps.enter({0, plane});
  const PlaneSize asked = {{quantity(width_el, Unit::elements), {}},
                           {quantity(rows, Unit::rows), {}}};
  const PlaneNumbers image = explain_image(steps, surface, 0, plane, asked);
  PlaneDemand demand = {.width_el = image.size.width.u32(),
                        .rows = image.size.height.u32(),
                        .pitch_bytes = image.pitch_bytes.u32(),
                        .image_bytes = image.image_bytes.u64()};
  if (!chain) {
    demand.image_bytes = korvel::whole_image_bytes(surface, demand.image_bytes);
    if (surface.flag_buffers) add_flag_buffer(surface, plane, demand);
  }
  demand.steps = steps.take();
  return demand;
}

std::string last_change(const Explanation& steps, std::string_view subject) {
  std::string words;
  for (const Step& step : steps.steps) {
    if (step.subject != subject || step.before.value == step.after.value) continue;
    words = fmt::format("{}: {}", step.fact, step.rule);
  }
  return words;
}

}  // namespace tool
