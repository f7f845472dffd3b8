# The Debian packages, by CPack: libkorvel-utils1, its symbols, libkorvel-utils-dev and korvel-utils-tools. They hold the
# same files as the archives of scripts/package, the simulator excepted: it bears the name of the driver's own library.

set(debian_files ${PROJECT_BINARY_DIR}/package/debian)
set(debian_templates ${CMAKE_CURRENT_LIST_DIR}/package/debian)
string(REPLACE _ - debian_name ${PROJECT_NAME})
set(debian_library lib${debian_name}${PROJECT_VERSION_MAJOR})
set(debian_release 1)

set(KORVEL_MAINTAINER "korvel_utils maintainers <maintainers@korvel-utils.example>" CACHE STRING
  "Who the Debian packages say maintains them")
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_SOURCE_DIR}/build/packages)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_PACKAGE_VENDOR ${PROJECT_NAME})
set(CPACK_PACKAGE_CONTACT ${KORVEL_MAINTAINER})
set(CPACK_PRE_BUILD_SCRIPTS ${debian_templates}/compress_manual_pages.cmake)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${debian_release})
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
string(REPLACE x86_64 amd64 CPACK_DEBIAN_PACKAGE_ARCHITECTURE ${CMAKE_SYSTEM_PROCESSOR})
string(REPLACE aarch64 arm64 CPACK_DEBIAN_PACKAGE_ARCHITECTURE ${CPACK_DEBIAN_PACKAGE_ARCHITECTURE})
set(CPACK_COMPONENTS_ALL)

# korvel_debian_package(NAME SECTION COMPONENT DEPENDS SUMMARY TEXT): a package of a component, with the documents that
# Debian asks of each.
function(korvel_debian_package name section component depends summary text)
  string(TOUPPER ${name} upper)
  set(debian_package ${name})
  configure_file(${debian_templates}/changelog.in ${debian_files}/${name}/changelog.Debian @ONLY)
  configure_file(${debian_templates}/copyright.in ${debian_files}/${name}/copyright @ONLY)
  set(made ${debian_files}/${name}/changelog.Debian.gz)
  execute_process(
    COMMAND gzip -9nc ${debian_files}/${name}/changelog.Debian
    OUTPUT_FILE ${made}
    COMMAND_ERROR_IS_FATAL ANY)
  install(
    FILES ${made} ${debian_files}/${name}/copyright
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${name}
    COMPONENT debian_${component}
    EXCLUDE_FROM_ALL)
  if(EXISTS ${debian_templates}/${name}.lintian-overrides)
    install(
      FILES ${debian_templates}/${name}.lintian-overrides
      DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/lintian/overrides
      COMPONENT debian_${component}
      RENAME ${name}
      EXCLUDE_FROM_ALL)
  endif()
  foreach(part ${component} debian_${component})
    string(TOUPPER ${part} upper_part)
    set(CPACK_COMPONENT_${upper_part}_GROUP ${name} PARENT_SCOPE)
    list(APPEND CPACK_COMPONENTS_ALL ${part})
  endforeach()
  set(CPACK_COMPONENTS_ALL ${CPACK_COMPONENTS_ALL} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS ${depends} PARENT_SCOPE)
  set(CPACK_COMPONENT_${upper}_DESCRIPTION "${summary}\n${text}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_DESCRIPTION "${summary}\n${text}" PARENT_SCOPE)
endfunction()

set(same_version "= ${PROJECT_VERSION}-${debian_release}")
korvel_debian_package(${debian_library} libs library "libc6 (>= 2.17)"
  "GPU surface memory layouts, the library"
  "Computes where every byte of a surface lies in GPU memory, and judges
 stored layouts. It calls libhxluser.so, which comes with the driver.")
korvel_debian_package(${debian_library}-dbg debug debug_symbols "${debian_library} (${same_version})"
  "GPU surface memory layouts, debug symbols"
  "The source lines of ${debian_library}, which debuggers find by its build id.")
korvel_debian_package(lib${debian_name}-dev libdevel development "${debian_library} (${same_version}), libc6-dev"
  "GPU surface memory layouts, for programs that use the library"
  "The header, which is the manual too, the static library, what CMake and
 pkg-config need, examples and the API reference.")
korvel_debian_package(${debian_name}-tools utils static_tool ""
  "GPU surface memory layouts on the command line"
  "korvel-layout lays surfaces out, explains every number, compares layouts
 and checks stored records. It needs no driver.")

# Where GDB looks by itself: below its own folder, at the library's full name.
install(
  FILES ${PROJECT_SOURCE_DIR}/debugger/korvel_utils-gdb.py
  DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/gdb/auto-load/usr/${CMAKE_INSTALL_LIBDIR}
  RENAME libkorvel_utils.so.${PROJECT_VERSION}-gdb.py
  COMPONENT debian_debug_symbols
  EXCLUDE_FROM_ALL)

# What the packages of programs that were linked with the library depend on, and the loader's list of libraries.
string(TOUPPER ${debian_library} upper)
file(CONFIGURE
  OUTPUT ${debian_files}/shlibs
  CONTENT "libkorvel_utils ${PROJECT_VERSION_MAJOR} ${debian_library}\n")
file(CONFIGURE
  OUTPUT ${debian_files}/triggers
  CONTENT "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_${upper}_PACKAGE_CONTROL_EXTRA ${debian_files}/shlibs ${debian_files}/triggers)
include(CPack)
