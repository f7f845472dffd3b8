# The built library is the shipped one, byte for byte: its symbols and line numbers go to a file of their own beside it,
# libkorvel_utils.so.debug, which debuggers find by the name and checksum that the library keeps, or by its build id.

target_compile_options(korvel_utils PRIVATE
  -g
  # The same bytes wherever the tree and the build folder stand.
  -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.
  -ffile-prefix-map=${PROJECT_BINARY_DIR}=.)
target_link_options(korvel_utils PRIVATE -Wl,--build-id=sha1)

if(NOT CMAKE_OBJCOPY)
  message(FATAL_ERROR "objcopy was not found; it takes the debug symbols out of the library")
endif()
set(debug_symbols libkorvel_utils.so.debug)
add_custom_command(
  TARGET korvel_utils POST_BUILD
  COMMAND ${CMAKE_OBJCOPY} --only-keep-debug --compress-debug-sections libkorvel_utils.so ${debug_symbols}
  COMMAND ${CMAKE_OBJCOPY} --strip-all --add-gnu-debuglink=${debug_symbols} libkorvel_utils.so
  BYPRODUCTS ${PROJECT_BINARY_DIR}/lib/${debug_symbols}
  WORKING_DIRECTORY ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}
  VERBATIM)
