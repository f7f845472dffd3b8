#include "tests/exhaustive/scale.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>

#include "tests/harness/block_edges.h"
#include "tests/harness/edges.h"

namespace exhaustive {

bool is_full() {
  const char* text = std::getenv("KORVEL_EXHAUSTIVE");
  if (text == nullptr) return false;
  if (std::strcmp(text, "full") == 0) return true;
  std::fprintf(stderr, "KORVEL_EXHAUSTIVE is '%s'; unset it or make it 'full'\n", text);
  std::exit(2);
}

uint32_t format_stride() {
  return is_full() ? 1 : KORVEL_EXHAUSTIVE_STRIDE;
}

std::vector<uint32_t> formats_of_every_block_height() {
  std::set<uint32_t> formats;
  const std::vector<uint32_t> all = harness::format_edges();
  for (std::size_t i = 0; i < all.size(); i += format_stride()) formats.insert(all[i]);
  for (const harness::BlockFormat& block : harness::kBlockFormats) formats.insert(block.format);
  return {formats.begin(), formats.end()};
}

}  // namespace exhaustive
