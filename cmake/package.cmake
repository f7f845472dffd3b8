# What `cmake --install` and `cpack` hand to users of the library: the header, the library, and what CMake and
# pkg-config need to find them. The services library is the driver's and in no package; the stand-in for it is a
# component of its own that is installed only when it is asked for by name.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

if(WIN32)
  set(library_file ${CMAKE_INSTALL_BINDIR}/korvel_utils.dll)
  set(import_library_file ${CMAKE_INSTALL_LIBDIR}/korvel_utils.lib)
  set(static_library_file "")
else()
  # The same objects, for programs that would rather not carry one more file.
  add_library(korvel_utils_static STATIC $<TARGET_OBJECTS:korvel_utils>)
  set_target_properties(korvel_utils_static PROPERTIES
    OUTPUT_NAME korvel_utils
    LINKER_LANGUAGE C)
  install(TARGETS korvel_utils_static)
  if(CMAKE_BUILD_TYPE STREQUAL Release)
    # Its symbols are what programs are linked by; line numbers are not.
    add_custom_command(
      TARGET korvel_utils_static POST_BUILD
      COMMAND ${CMAKE_OBJCOPY} --strip-debug $<TARGET_FILE:korvel_utils_static>
      VERBATIM)
    install(FILES $<TARGET_FILE:korvel_utils>.debug DESTINATION ${CMAKE_INSTALL_LIBDIR})
  endif()

  set(library_file ${CMAKE_INSTALL_LIBDIR}/libkorvel_utils.so)
  set(import_library_file "")
  set(static_library_file ${CMAKE_INSTALL_LIBDIR}/libkorvel_utils.a)

  # The driver's installer may put the services beside the library; elsewhere the system finds them.
  set_target_properties(korvel_utils PROPERTIES
    INSTALL_RPATH $ORIGIN
    BUILD_WITH_INSTALL_RPATH ON)
  install(TARGETS hxluser COMPONENT simulator EXCLUDE_FROM_ALL)
endif()
install(TARGETS korvel_utils)
install(FILES ${KORVEL_HEADER} TYPE INCLUDE)

# Written by hand: a generated one would name the services library, which is in no package.
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/korvel_utils)
configure_package_config_file(
  ${CMAKE_CURRENT_LIST_DIR}/package/korvel_utils-config.cmake.in
  ${PROJECT_BINARY_DIR}/korvel_utils-config.cmake
  INSTALL_DESTINATION ${package_folder}
  PATH_VARS
    CMAKE_INSTALL_INCLUDEDIR
    library_file
    import_library_file
    static_library_file)
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/korvel_utils-config-version.cmake
  COMPATIBILITY SameMajorVersion)
install(
  FILES
    ${PROJECT_BINARY_DIR}/korvel_utils-config.cmake
    ${PROJECT_BINARY_DIR}/korvel_utils-config-version.cmake
  DESTINATION ${package_folder})

configure_file(
  ${CMAKE_CURRENT_LIST_DIR}/package/korvel_utils.pc.in
  ${PROJECT_BINARY_DIR}/korvel_utils.pc
  @ONLY)
install(
  FILES ${PROJECT_BINARY_DIR}/korvel_utils.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

if(WIN32)
  install(FILES ${PROJECT_BINARY_DIR}/lib/korvel_utils.def TYPE LIB)
  install(FILES ${PROJECT_BINARY_DIR}/bin/korvel_utils.pdb TYPE BIN)
  string(REPLACE aarch64 arm64 machine ${CMAKE_SYSTEM_PROCESSOR})
  string(REPLACE x86_64 x64 machine ${machine})
  set(CPACK_GENERATOR ZIP)
else()
  string(REPLACE aarch64 arm64 machine ${CMAKE_SYSTEM_PROCESSOR})
  string(REPLACE x86_64 x86-64 machine ${machine})
  set(CPACK_GENERATOR TGZ)
endif()
string(TOLOWER ${CMAKE_SYSTEM_NAME} system)
set(CPACK_PACKAGE_FILE_NAME ${PROJECT_NAME}-${PROJECT_VERSION}-${system}-${machine})
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_SOURCE_DIR}/build/packages)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_PACKAGE_VENDOR ${PROJECT_NAME})
set(CPACK_VERBATIM_VARIABLES ON)
include(CPack)
