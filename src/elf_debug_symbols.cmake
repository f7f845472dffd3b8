# The built library is the shipped one, byte for byte: its symbols and line numbers go to a file of their own beside it,
# libkorvel_utils.so.1.0.0.debug, which debuggers find by the name and checksum that the library keeps, or by its build
# id, as packages have it.

target_compile_options(korvel_utils PRIVATE
  -g
  # The same bytes wherever the tree and the build folder stand.
  -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.
  -ffile-prefix-map=${PROJECT_BINARY_DIR}=.)
target_link_options(korvel_utils PRIVATE -Wl,--build-id=sha1)

if(NOT CMAKE_OBJCOPY)
  message(FATAL_ERROR "objcopy was not found; it takes the debug symbols out of the library")
endif()
set(library_file libkorvel_utils.so.${PROJECT_VERSION})
add_custom_command(
  TARGET korvel_utils POST_BUILD
  COMMAND
    ${CMAKE_COMMAND} -D LIBRARY=${library_file} -D FOLDER=${PROJECT_BINARY_DIR}/debug_symbols
    -D OBJCOPY=${CMAKE_OBJCOPY} -D READELF=${CMAKE_READELF}
    -P ${CMAKE_CURRENT_LIST_DIR}/split_debug_symbols.cmake
  BYPRODUCTS ${PROJECT_BINARY_DIR}/lib/${library_file}.debug
  WORKING_DIRECTORY ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}
  VERBATIM)
