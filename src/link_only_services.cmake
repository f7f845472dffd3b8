# A libhxluser.so that tells linkers the names of the services and is nothing else, as an import library is on Windows:
# programs that take the static library are linked with it, and find the driver's own when they start. A process that
# loads it ends with a sentence.

file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/platform/windows/libhxluser.def services REGEX "^  [a-z_]+$")
if(services STREQUAL "")
  message(FATAL_ERROR "libhxluser.def lists no service")
endif()
set(definitions)
foreach(service IN LISTS services)
  string(STRIP "${service}" service)
  string(APPEND definitions "void ${service}(void);\nvoid ${service}(void) {}\n")
endforeach()
set(source ${PROJECT_BINARY_DIR}/link_only_services.c)
file(CONFIGURE OUTPUT ${source} @ONLY CONTENT [[
#include <unistd.h>

@definitions@
static void __attribute__((constructor)) end_the_process(void) {
  static const char sentence[] =
      "This libhxluser.so is for linkers alone. The loader must find the driver's, or the simulator's.\n";
  (void)!write(STDERR_FILENO, sentence, sizeof sentence - 1);
  _exit(127);
}
]])

add_library(hxluser_link_only SHARED ${source})
# Its constructor speaks for no program of ours: what a sanitizer adds is of no use here.
set_target_properties(hxluser_link_only PROPERTIES
  OUTPUT_NAME hxluser
  LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib/link-only)
target_link_options(hxluser_link_only PRIVATE -s)
