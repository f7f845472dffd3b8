// What each family can render to and sample from, and what a chip can keep compressed.
#include "rules.h"

namespace reference {

namespace {

bool every_family_renders(uint32_t f) {
  return among(f,
               {{2, 4},   {10, 14},   {16, 18},   {24, 32},   {34, 38},   {41, 43}, {49, 52}, 54,
                {56, 59}, {61, 65},   {85, 88},   {90, 93},   {101, 104}, 106,      107,      115,
                502,      503,        506,        507,        509,        511,      512,      514,
                515,      {517, 520}, 522,        524,        525,        527,      528,      530,
                532,      535,        {537, 547}, {610, 622}, 625,        647,      648,      650,
                652,      653,        660,        678});
}

bool depth_stencil_target(uint32_t f) {
  return among(f, {20, 40, 45, 55, 548, 551, 552, 553});
}

bool rendered_by_family5(uint32_t f, bool depth_stencil_use) {
  if (every_family_renders(f)) return true;
  if (among(f, {663, 664, 668, 669})) return true;
  if (depth_stencil_target(f)) return depth_stencil_use;
  if (f == 508) return !depth_stencil_use;
  return false;
}

bool rendered_by_family6(uint32_t f, bool depth_stencil_use) {
  if (every_family_renders(f)) return true;
  if (among(f, {67, 116, 117, 118, 646})) return true;
  if (depth_stencil_target(f)) return depth_stencil_use;
  if (f == 508) return !depth_stencil_use;
  return false;
}

bool rendered_by_family7(const ChipFacts& chip, uint32_t f, bool depth_stencil_use) {
  if (every_family_renders(f)) return true;
  if (among(f, {67, 116, 117, 118, 646, 683, 684})) return true;
  if (depth_stencil_target(f)) return depth_stencil_use;
  if (f == 508) return !depth_stencil_use;
  if (f == 709 || f == 712) return chip.yuv16_ext;
  if (f == 105 || f == 717) return chip.p016;
  return false;
}

bool every_family_samples(uint32_t f) {
  return among(
      f, {{2, 4},     {10, 14}, {16, 18}, 21,         22,         {24, 26},   {28, 32},   {34, 38},
          {41, 43},   {49, 52}, 54,       {56, 59},   {61, 65},   {67, 88},   91,         {93, 100},
          103,        104,      107,      115,        133,        137,        141,        145,
          149,        153,      157,      161,        165,        169,        173,        177,
          181,        185,      502,      503,        506,        507,        509,        511,
          512,        514,      515,      {517, 520}, 522,        524,        525,        527,
          528,        530,      532,      535,        {537, 547}, {568, 622}, {625, 648}, 650,
          {652, 664}, 678,      681,      682});
}

bool depth_stencil_resource(uint32_t f) {
  return among(f, {20, 40, 45, 46, 47, 55, 548, 549, 551, 552, 553});
}

bool sampled_by_family5(const ChipFacts& chip, uint32_t f, uint32_t samples, bool view) {
  bool answer = false;
  if (every_family_samples(f) || f == 676 || f == 677) {
    answer = true;
  } else if (depth_stencil_resource(f) || f == 668 || f == 669) {
    answer = view;
  } else if (f == 508) {
    answer = samples < 2 && !view;
  }
  // Two models cannot read these block formats.
  if (answer && chip.family5_sample_excluded && among(f, {80, 81, 83, 84, 95, 96, {626, 635}})) {
    answer = false;
  }
  return answer;
}

bool sampled_by_family6(uint32_t f, uint32_t samples, bool view) {
  if (every_family_samples(f)) return true;
  if (among(f, {116, 117, 118, 668, 669, 679, 680})) return true;
  if (depth_stencil_resource(f)) return view;
  if (f == 508) return samples < 2 && !view;
  return false;
}

bool sampled_by_family7(const ChipFacts& chip, uint32_t f, uint32_t samples, bool view) {
  if (every_family_samples(f)) return true;
  if (among(f, {116, 117, 118, 668, 669, 679, 680, 683, 684})) return true;
  if (depth_stencil_resource(f)) return view;
  if (f == 508) return samples < 2 && !view;
  if (among(f, {{709, 714}})) return chip.yuv16_ext;
  if (among(f, {105, {715, 721}})) return chip.p016;
  return false;
}

}  // namespace

uint32_t isFormatRenderableByGpu(Process& process, int32_t format, int32_t depth_stencil_use) {
  identify_gpu_if_needed(process);
  const uint32_t family = process.identity.family_id;
  if (family != 5 && family != 6 && family != 7) {
    log_message(process, "isFormatRenderableByGpu", "Unknown Family ID %u", family);
    return 0;
  }
  if (format < 0) return 0;
  const uint32_t f = static_cast<uint32_t>(format);
  const bool use = depth_stencil_use != 0;
  if (family == 5) return rendered_by_family5(f, use) ? 1 : 0;
  if (family == 6) return rendered_by_family6(f, use) ? 1 : 0;
  return rendered_by_family7(facts(process), f, use) ? 1 : 0;
}

uint32_t isFormatSampleableByGpu(Process& process, int32_t format, uint32_t sample_count,
                                 int32_t depth_stencil_view) {
  identify_gpu_if_needed(process);
  const uint32_t family = process.identity.family_id;
  if (family != 5 && family != 6 && family != 7) {
    log_message(process, "isFormatSampleableByGpu", "Unknown Family ID %u", family);
    return 0;
  }
  if (format < 0) return 0;
  const uint32_t f = static_cast<uint32_t>(format);
  const bool view = depth_stencil_view != 0;
  if (family == 5) return sampled_by_family5(facts(process), f, sample_count, view) ? 1 : 0;
  if (family == 6) return sampled_by_family6(f, sample_count, view) ? 1 : 0;
  return sampled_by_family7(facts(process), f, sample_count, view) ? 1 : 0;
}

bool ubwc_supported(const Process& process, uint32_t format) {
  const ChipFacts& chip = facts(process);
  const uint32_t family = process.identity.family_id;
  if (family != 5 && family != 6 && family != 7) return false;
  if (chip.ubwc_never) return false;
  switch (format) {
    case 10:
    case 24:
    case 28:
    case 29:
    case 87:
    case 88:
    case 103:
    case 107:
    case 506:
    case 507:
    case 520:
    case 614:
    case 619:
    case 620: return true;
    case 40:
    case 45:
    case 55:
    case 548:
    case 610: return !chip.ubwc_depth_excluded;
    case 104:
    case 654:
    case 655:
    case 656:
    case 657:
    case 658:
    case 659:
    case 660:
    case 661:
    case 662:
    case 663:
    case 664: return chip.ubwc_yuv_a || chip.ubwc_yuv_b;
    case 683:
    case 684: return chip.ubwc_yuv_b;
    case 709:
    case 710:
    case 711: return chip.ubwc_yuv16;
    default: return false;
  }
}

uint32_t isUBWCSupportedByGpu(Process& process, uint32_t format) {
  identify_gpu_if_needed(process);
  return ubwc_supported(process, format) ? 1 : 0;
}

}  // namespace reference
