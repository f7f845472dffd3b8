# The same objects as an archive, for programs that would rather not carry one more file.

add_library(korvel_utils_static STATIC $<TARGET_OBJECTS:korvel_utils>)
add_library(korvel_utils::korvel_utils_static ALIAS korvel_utils_static)
set_target_properties(korvel_utils_static PROPERTIES
  OUTPUT_NAME korvel_utils
  LINKER_LANGUAGE C)
target_include_directories(korvel_utils_static INTERFACE $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>)
target_link_libraries(korvel_utils_static INTERFACE hxluser)

if(CMAKE_BUILD_TYPE STREQUAL Release)
  # Its symbols are what programs are linked by; line numbers are not.
  add_custom_command(
    TARGET korvel_utils_static POST_BUILD
    COMMAND ${CMAKE_OBJCOPY} --strip-debug $<TARGET_FILE:korvel_utils_static>
    VERBATIM)
endif()
