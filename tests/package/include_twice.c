/* Compiled as C and as C++: the header stands alone, may be included twice, and uses no extension.
 */
#include <korvel_utils.h>

typedef char blob_size_is_the_constant[sizeof(LayoutMetadata) == KORVEL_BLOB_BYTES ? 1 : -1];
typedef char surface_size_is_the_constant[sizeof(SurfaceMetadata) == KORVEL_SURFACE_BYTES ? 1 : -1];

uint32_t failure(void);
uint32_t failure(void) {
  return KORVEL_FAILURE;
}
