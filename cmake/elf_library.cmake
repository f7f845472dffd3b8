# How korvel_utils is linked on ELF systems.

set(export_list ${PROJECT_SOURCE_DIR}/src/exports.map)

set_target_properties(
  korvel_utils
  PROPERTIES LINKER_LANGUAGE C # asks for no C++ run-time library
             LINK_DEPENDS ${export_list})
target_link_options(korvel_utils PRIVATE -Wl,--version-script=${export_list})
if(NOT KORVEL_SANITIZE)
  # --as-needed drops the C++ run-time libraries that CMake adds for sources in C++: not one symbol of
  # theirs is used.
  target_link_options(korvel_utils PRIVATE -Wl,-z,defs -Wl,--gc-sections -Wl,-O1 -Wl,--as-needed)
endif()
target_link_libraries(korvel_utils PRIVATE hxluser)
