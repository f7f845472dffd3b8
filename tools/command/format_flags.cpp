#include "tools/command/format_flags.h"

#include <fmt/core.h>

#include "formats/format_table.h"

namespace tool {
namespace {

struct FlagName {
  uint32_t flag;
  const char* name;
};

constexpr FlagName kFlagNames[] = {
    {korvel::FORMAT_FLAG_SNORM, "SNORM"},
    {korvel::FORMAT_FLAG_UNORM, "UNORM"},
    {korvel::FORMAT_FLAG_FLOAT, "FLOAT"},
    {korvel::FORMAT_FLAG_FLOAT32, "FLOAT32"},
    {korvel::FORMAT_FLAG_FURTHER_CLASS, "FURTHER_CLASS"},
    {korvel::FORMAT_FLAG_UNSIGNED, "UNSIGNED"},
    {korvel::FORMAT_FLAG_SIGNED, "SIGNED"},
    {korvel::FORMAT_FLAG_INTEGER, "INTEGER"},
    {korvel::FORMAT_FLAG_SRGB, "SRGB"},
    {korvel::FORMAT_FLAG_VIDEO, "VIDEO"},
    {korvel::FORMAT_FLAG_TYPELESS, "TYPELESS"},
    {korvel::FORMAT_FLAG_MULTI_PLANAR, "MULTI_PLANAR"},
    {korvel::FORMAT_FLAG_PACKED_PAIR, "PACKED_PAIR"},
    {korvel::FORMAT_FLAG_BLOCK_COMPRESSED, "BLOCK_COMPRESSED"},
    {korvel::FORMAT_FLAG_DEPTH, "DEPTH"},
    {korvel::FORMAT_FLAG_STENCIL, "STENCIL"},
    {korvel::FORMAT_FLAG_DEPTH_STENCIL, "DEPTH_STENCIL"},
    {korvel::FORMAT_FLAG_DEPTH_AND_STENCIL, "DEPTH_AND_STENCIL"},
    {korvel::FORMAT_FLAG_DEPTH_ONLY, "DEPTH_ONLY"},
    {korvel::FORMAT_FLAG_STENCIL_ONLY, "STENCIL_ONLY"},
    {korvel::FORMAT_FLAG_64_BIT_DEPTH, "64_BIT_DEPTH"},
};

}  // namespace

std::vector<std::string> format_flag_names(uint32_t flags) {
  std::vector<std::string> names;
  for (const FlagName& known : kFlagNames) {
    if ((flags & known.flag) != 0) names.emplace_back(known.name);
    flags &= ~known.flag;
  }
  if (flags != 0) names.push_back(fmt::format("0x{:X}", flags));
  return names;
}

}  // namespace tool
