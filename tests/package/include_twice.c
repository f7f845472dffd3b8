/* Compiled as C and as C++: the header stands alone, may be included twice, and uses no extension. */
/* The formatter would take the second of the two away. */
/* clang-format off */
#include <korvel_utils.h>
#include <korvel_utils.h>
/* clang-format on */

typedef char blob_size_is_the_constant[sizeof(LayoutMetadata) == KORVEL_BLOB_BYTES ? 1 : -1];
typedef char surface_size_is_the_constant[sizeof(SurfaceMetadata) == KORVEL_SURFACE_BYTES ? 1 : -1];

uint32_t failure(void);
uint32_t failure(void) {
  return KORVEL_FAILURE;
}

#if KORVEL_UTILS_VERSION < 10000 || KORVEL_UTILS_VERSION_MAJOR < 1
#error "the version is a number that the preprocessor can compare"
#endif
