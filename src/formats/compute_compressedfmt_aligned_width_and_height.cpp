#include <korvel_utils.h>

#include "formats/compressed_extent.h"
#include "formats/format_traits.h"
#include "identify/gpu_identity.h"
#include "platform/log.h"

namespace {

constexpr const char* kName = "compute_compressedfmt_aligned_width_and_height";

// The message prints the low half of a pointer.
uint32_t low_half(const uint32_t* pointer) {
  return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(pointer));
}

}  // namespace

void compute_compressedfmt_aligned_width_and_height(int32_t texel_width, int32_t texel_height,
                                                    uint32_t format, uint64_t /*ignored_1*/,
                                                    uint64_t /*ignored_2*/, uint64_t /*ignored_3*/,
                                                    uint32_t* aligned_width,
                                                    uint32_t* aligned_height, uint32_t* bpp) {
  const korvel::SignedExtent<korvel::Texels> size = {texel_width, texel_height};
  if (is_negative(size)) {
    KORVEL_LOG(kName, "Invalid texel width or texel height: W = %d, H = %d", texel_width,
               texel_height);
    *aligned_width = 1;
    *aligned_height = 1;
    *bpp = 1;
    return;
  }
  const korvel::FormatTraits& traits = korvel::format_traits(format);
  if (!has_rule(traits, korvel::kRuleBlockCompressed)) {
    KORVEL_LOG(kName, "Not a compressed format 0x%x", format);
    return;
  }
  if (aligned_width == nullptr || aligned_height == nullptr || bpp == nullptr) {
    KORVEL_LOG(kName,
               "Invalid input pointers, aligned_width=0x%x, aligned_height=0x%08x, bpp=0x%08x ",
               low_half(aligned_width), low_half(aligned_height), low_half(bpp));
    return;
  }
  const uint32_t pixel_alignment_el = korvel::identified_chip().properties.pixel_alignment;
  const korvel::Extent<korvel::Elements> blocks =
      korvel::compressed_extent(traits, pixel_alignment_el, size);
  *aligned_width = blocks.width;
  *aligned_height = blocks.height;
  *bpp = traits.bytes;
}
