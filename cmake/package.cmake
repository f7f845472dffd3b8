# What `cmake --install` puts where, in components: `library` (what programs load), `development` (what they are built
# with), `debug_symbols`, `debugger`; and, installed only when they are asked for by name, `python` and `simulator`, the
# stand-in for the services library. That library itself is the driver's and in no package. The tool's
# components are in tools/. scripts/package makes archives of all of these, and cmake/debian.cmake the Debian packages.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

string(TOLOWER ${CMAKE_SYSTEM_NAME} system)
string(REPLACE aarch64 arm64 machine ${CMAKE_SYSTEM_PROCESSOR})
if(WIN32)
  string(REPLACE x86_64 x64 machine ${machine})
else()
  string(REPLACE x86_64 x86-64 machine ${machine})
endif()
set(target_name ${system}-${machine})

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/korvel_utils)
set(documents_folder ${CMAKE_INSTALL_DATAROOTDIR}/doc/korvel_utils)

if(WIN32)
  set(library_file ${CMAKE_INSTALL_BINDIR}/korvel_utils.dll)
  set(import_library_file ${CMAKE_INSTALL_LIBDIR}/korvel_utils.lib)
  set(import_properties "IMPORTED_IMPLIB \"\${PACKAGE_PREFIX_DIR}/${import_library_file}\"")
  set(static_library_file "")
  set(link_only_folder "")
  set(link_flags "")
  install(
    TARGETS korvel_utils
    RUNTIME COMPONENT library
    ARCHIVE COMPONENT development)
  install(FILES ${PROJECT_BINARY_DIR}/lib/korvel_utils.def TYPE LIB COMPONENT development)
  install(FILES ${PROJECT_BINARY_DIR}/bin/korvel_utils.pdb TYPE BIN COMPONENT debug_symbols)
else()
  set(library_file ${CMAKE_INSTALL_LIBDIR}/libkorvel_utils.so.${PROJECT_VERSION})
  set(static_library_file ${CMAKE_INSTALL_LIBDIR}/libkorvel_utils.a)
  set(link_only_folder ${CMAKE_INSTALL_LIBDIR}/korvel_utils/link-only)
  # What the library calls of the services is left to the loader.
  set(import_properties
    "IMPORTED_SONAME libkorvel_utils.so.${PROJECT_VERSION_MAJOR}
    INTERFACE_LINK_OPTIONS \"LINKER:--allow-shlib-undefined\"")
  set(link_flags " -Wl,--allow-shlib-undefined")

  # The driver's installer may put the services beside the library; elsewhere the system finds them.
  set_target_properties(korvel_utils PROPERTIES
    INSTALL_RPATH $ORIGIN
    BUILD_WITH_INSTALL_RPATH ON)
  install(
    TARGETS korvel_utils
    LIBRARY COMPONENT library
    NAMELINK_COMPONENT development)
  install(TARGETS korvel_utils_static COMPONENT development)
  install(TARGETS hxluser_link_only
    DESTINATION ${link_only_folder}
    COMPONENT development)
  if(CMAKE_BUILD_TYPE STREQUAL Release)
    install(
      DIRECTORY ${PROJECT_BINARY_DIR}/debug_symbols/
      DESTINATION ${CMAKE_INSTALL_LIBDIR}/debug/.build-id
      COMPONENT debug_symbols)
  endif()
  # GDB loads what stands beside a library under its name, if it is told to trust the folder.
  install(
    FILES ${PROJECT_SOURCE_DIR}/debugger/korvel_utils-gdb.py
    DESTINATION ${CMAKE_INSTALL_LIBDIR}
    RENAME libkorvel_utils.so.${PROJECT_VERSION}-gdb.py
    COMPONENT debugger)

  # The Python module and what it loads, the simulator too: scripts ask about any GPU.
  set(python_folder ${CMAKE_INSTALL_DATAROOTDIR}/korvel_utils/python)
  install(
    FILES ${PROJECT_SOURCE_DIR}/python/korvel_utils.py
    DESTINATION ${python_folder}
    COMPONENT python
    EXCLUDE_FROM_ALL)
  install(
    TARGETS korvel_utils hxluser
    LIBRARY DESTINATION ${python_folder}/lib
    NAMELINK_SKIP
    COMPONENT python
    EXCLUDE_FROM_ALL)

  set(simulator_file ${CMAKE_INSTALL_LIBDIR}/libhxluser.so)
  configure_package_config_file(
    ${CMAKE_CURRENT_LIST_DIR}/package/korvel_utils-simulator.cmake.in
    ${PROJECT_BINARY_DIR}/korvel_utils-simulator.cmake
    INSTALL_DESTINATION ${package_folder}
    PATH_VARS
      CMAKE_INSTALL_INCLUDEDIR
      simulator_file
    NO_CHECK_REQUIRED_COMPONENTS_MACRO)
  install(
    TARGETS hxluser
    COMPONENT simulator
    EXCLUDE_FROM_ALL)
  install(
    FILES ${PROJECT_SOURCE_DIR}/simulator/hxl_sim.h TYPE INCLUDE
    COMPONENT simulator
    EXCLUDE_FROM_ALL)
  install(
    FILES ${PROJECT_BINARY_DIR}/korvel_utils-simulator.cmake
    DESTINATION ${package_folder}
    COMPONENT simulator
    EXCLUDE_FROM_ALL)
endif()
install(FILES ${KORVEL_HEADER} TYPE INCLUDE COMPONENT development)

# Written by hand: a generated one would name the services library, which is in no package.
configure_package_config_file(
  ${CMAKE_CURRENT_LIST_DIR}/package/korvel_utils-config.cmake.in
  ${PROJECT_BINARY_DIR}/korvel_utils-config.cmake
  INSTALL_DESTINATION ${package_folder}
  PATH_VARS
    CMAKE_INSTALL_INCLUDEDIR
    library_file
    static_library_file
    link_only_folder)
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/korvel_utils-config-version.cmake
  COMPATIBILITY SameMajorVersion)
install(
  FILES
    ${PROJECT_BINARY_DIR}/korvel_utils-config.cmake
    ${PROJECT_BINARY_DIR}/korvel_utils-config-version.cmake
  DESTINATION ${package_folder}
  COMPONENT development)

set(pkg_config_names korvel_utils)
if(NOT WIN32)
  list(APPEND pkg_config_names korvel_utils-static)
endif()
foreach(name IN LISTS pkg_config_names)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/package/${name}.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
  install(
    FILES ${PROJECT_BINARY_DIR}/${name}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT development)
endforeach()

install(
  DIRECTORY
    ${PROJECT_SOURCE_DIR}/docs/guide
    ${PROJECT_SOURCE_DIR}/examples
  DESTINATION ${documents_folder}
  COMPONENT development
  PATTERN commands.txt EXCLUDE
  PATTERN .clang-format EXCLUDE)
install(
  FILES ${PROJECT_SOURCE_DIR}/docs/stored-records.md
  DESTINATION ${documents_folder}
  COMPONENT development)

# The API reference is made only where it is asked for: by `cmake --build FOLDER --target api_reference`.
set(reference_folder ${PROJECT_BINARY_DIR}/reference)
add_custom_target(api_reference
  COMMAND ${PROJECT_SOURCE_DIR}/docs/reference/make_html ${KORVEL_HEADER} ${PROJECT_VERSION} ${reference_folder}
  VERBATIM)
install(
  DIRECTORY ${reference_folder}/
  DESTINATION ${documents_folder}/reference
  COMPONENT development
  OPTIONAL)

# What make_archive beside this takes from the build: one README for each archive, and facts.
set(readmes main)
if(NOT WIN32)
  list(APPEND readmes tools simulator)
endif()
foreach(readme IN LISTS readmes)
  configure_file(
    ${CMAKE_CURRENT_LIST_DIR}/package/readme/${readme}-${system}.md.in
    ${PROJECT_BINARY_DIR}/package/readme/${readme}.md
    @ONLY)
endforeach()
# The Debian packages of what is in a statically linked program.
if(CMAKE_CROSSCOMPILING)
  set(static_packages "libc6-dev-arm64-cross libstdc++-12-dev-arm64-cross")
else()
  set(static_packages "libc6-dev libstdc++-12-dev")
endif()
configure_file(
  ${CMAKE_CURRENT_LIST_DIR}/package/facts.in
  ${PROJECT_BINARY_DIR}/package/facts
  @ONLY)
