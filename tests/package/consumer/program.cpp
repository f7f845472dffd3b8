// A user's program in C++: prints the bytes of a tiled 1920 x 1080 texture of four-byte texels.
#include <korvel_utils.h>

#include <cstdio>
#include <vector>

int main() {
  std::vector<uint64_t> blob(korvel_get_metadata_blob_size() / sizeof(uint64_t));
  if (korvel_init_memory_layout(blob.data(), 1920, 1080, 1, 28, 1, KORVEL_TILING_TILED, 0, 1) !=
      KORVEL_SUCCESS) {
    return 1;
  }
  std::printf("%llu\n",
              static_cast<unsigned long long>(korvel_get_aligned_gpu_buffer_size(blob.data())));
}
