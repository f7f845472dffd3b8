# How korvel_utils is compiled and linked on ELF systems.

set(version_script ${PROJECT_BINARY_DIR}/exports/korvel_utils.map)

set_target_properties(korvel_utils PROPERTIES
  # libkorvel_utils.so.1 is what programs ask for.
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR}
  LINKER_LANGUAGE C # asks for no C++ run-time library
  LINK_DEPENDS ${version_script})
target_link_options(korvel_utils PRIVATE -Wl,--version-script=${version_script})
if(NOT KORVEL_SANITIZE)
  target_link_options(korvel_utils PRIVATE
    -Wl,-z,defs
    -Wl,--gc-sections
    -Wl,-O1
    # Drops the C++ run-time libraries that CMake adds for sources in C++: not one symbol of theirs is used.
    -Wl,--as-needed)
endif()
target_link_libraries(korvel_utils PRIVATE hxluser)

# Sanitizers and the counters of branches bring objects of their own, which are not made for this.
if(NOT KORVEL_SANITIZE AND NOT KORVEL_COVERAGE)
  include(${CMAKE_CURRENT_LIST_DIR}/elf_hardening.cmake)
endif()
if(CMAKE_BUILD_TYPE STREQUAL Release)
  include(${CMAKE_CURRENT_LIST_DIR}/elf_debug_symbols.cmake)
endif()
include(${CMAKE_CURRENT_LIST_DIR}/elf_static_library.cmake)
if(KORVEL_INSTALL)
  include(${CMAKE_CURRENT_LIST_DIR}/link_only_services.cmake)
endif()
