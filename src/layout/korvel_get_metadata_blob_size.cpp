#include <korvel_utils.h>

uint32_t korvel_get_metadata_blob_size() {
  return sizeof(LayoutMetadata);
}
