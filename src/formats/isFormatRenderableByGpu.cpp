#include <korvel_utils.h>

#include "formats/capabilities.h"

namespace korvel {
namespace {

// clang-format off
constexpr IdRange kRenderableEverywhere[] = {
    {2, 4}, {10, 14}, {16, 18}, {24, 32}, {34, 38}, {41, 43}, {49, 52}, {54}, {56, 59}, {61, 65},
    {85, 88}, {90, 93}, {101, 104}, {106, 107}, {115}, {502, 503}, {506, 507}, {509}, {511, 512},
    {514, 515}, {517, 520}, {522}, {524, 525}, {527, 528}, {530}, {532}, {535}, {537, 547},
    {610, 622}, {625}, {647, 648}, {650}, {652, 653}, {660}, {678},
};
constexpr IdRange kRenderableOn5[]         = {{663, 664}, {668, 669}};
constexpr IdRange kRenderableOn67[]        = {{67}, {116, 118}, {646}};
constexpr IdRange kRenderableOn7[]         = {{683, 684}};
constexpr IdRange kDepthStencilTargets[]   = {{20}, {40}, {45}, {55}, {548}, {551, 553}};
constexpr IdRange kColourTargets[]         = {{508}};
constexpr IdRange kRenderableYuv16[]       = {{709}, {712}};
constexpr IdRange kRenderableP016[]        = {{105}, {717}};

constexpr CapabilityList kLists[] = {
    {kAllFamilies, Condition::always,        kRenderableEverywhere},
    {kFamily5,     Condition::always,        kRenderableOn5},
    {kFamilies67,  Condition::always,        kRenderableOn67},
    {kFamily7,     Condition::always,        kRenderableOn7},
    {kAllFamilies, Condition::depth_stencil, kDepthStencilTargets},
    {kAllFamilies, Condition::colour,        kColourTargets},
    {kFamily7,     Condition::yuv16_ext,     kRenderableYuv16},
    {kFamily7,     Condition::p016,          kRenderableP016},
};
// clang-format on
static_assert(lists_are_disjoint(kLists));

constexpr CapabilityMasks kMasks = capability_masks(kLists);

}  // namespace
}  // namespace korvel

uint32_t isFormatRenderableByGpu(int32_t format, int32_t depth_stencil_use) {
  // Negative numbers become large ones, which no list names.
  const auto id = static_cast<uint32_t>(format);
  const uint32_t use = korvel::use_asked_about(depth_stencil_use != 0, false);
  return korvel::answer_capability(id, use, korvel::kMasks, "isFormatRenderableByGpu");
}
