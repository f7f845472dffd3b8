#include <korvel_utils.h>

#include "formats/capabilities.h"

namespace korvel {
namespace {

// clang-format off
constexpr IdRange kSampleableEverywhere[] = {
    {2, 4}, {10, 14}, {16, 18}, {21, 22}, {24, 26}, {28, 32}, {34, 38}, {41, 43}, {49, 52}, {54},
    {56, 59}, {61, 65}, {67, 79}, {82}, {85, 88}, {91}, {93, 94}, {97, 100}, {103, 104}, {107},
    {115}, {133}, {137}, {141}, {145}, {149}, {153}, {157}, {161}, {165}, {169}, {173}, {177},
    {181}, {185}, {502, 503}, {506, 507}, {509}, {511, 512}, {514, 515}, {517, 520}, {522},
    {524, 525}, {527, 528}, {530}, {532}, {535}, {537, 547}, {568, 622}, {625}, {636, 648}, {650},
    {652, 664}, {678}, {681, 682},
};
// Block formats that two models of family 5 lack and every other chip has.
constexpr IdRange kSampleExclusions[]      = {{80, 81}, {83, 84}, {95, 96}, {626, 635}};
constexpr IdRange kSampleableOn5[]         = {{676, 677}};
constexpr IdRange kSampleableOn67[]        = {{116, 118}, {668, 669}, {679, 680}};
constexpr IdRange kSampleableOn7[]         = {{683, 684}};
constexpr IdRange kDepthStencilViews[]     = {{20}, {40}, {45, 47}, {55}, {548, 549}, {551, 553}};
constexpr IdRange kDepthStencilViewsOn5[]  = {{668, 669}};
constexpr IdRange kSingleSampledColour[]   = {{508}};
constexpr IdRange kSampleableYuv16[]       = {{709, 714}};
constexpr IdRange kSampleableP016[]        = {{105}, {715, 721}};

constexpr CapabilityList kLists[] = {
    {kAllFamilies, Condition::always,                kSampleableEverywhere},
    {kAllFamilies, Condition::not_excluded,          kSampleExclusions},
    {kFamily5,     Condition::always,                kSampleableOn5},
    {kFamilies67,  Condition::always,                kSampleableOn67},
    {kFamily7,     Condition::always,                kSampleableOn7},
    {kAllFamilies, Condition::depth_stencil,         kDepthStencilViews},
    {kFamily5,     Condition::depth_stencil,         kDepthStencilViewsOn5},
    {kAllFamilies, Condition::colour_single_sampled, kSingleSampledColour},
    {kFamily7,     Condition::yuv16_ext,             kSampleableYuv16},
    {kFamily7,     Condition::p016,                  kSampleableP016},
};
// clang-format on
static_assert(lists_are_disjoint(kLists));

constexpr CapabilityMasks kMasks = capability_masks(kLists);

}  // namespace
}  // namespace korvel

uint32_t isFormatSampleableByGpu(int32_t format, uint32_t sample_count,
                                 int32_t depth_stencil_view) {
  // Negative numbers become large ones, which no list names.
  const auto id = static_cast<uint32_t>(format);
  const uint32_t use = korvel::use_asked_about(depth_stencil_view != 0, sample_count > 1);
  return korvel::answer_capability(id, use, korvel::kMasks, "isFormatSampleableByGpu");
}
