# Makes of exports.txt all that wants the names of the exports, in the build folder:
#
#   exports/korvel_utils.map    the version script of ELF linkers, which gives each its symbol version
#   lib/korvel_utils.def        the module definition of Windows linkers, which is installed too
#   exports/korvel_exports.h    KORVEL_EXPORTS(X) for the tests: X(name) for every export

set(list ${CMAKE_CURRENT_SOURCE_DIR}/exports.txt)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${list})

file(STRINGS ${list} names REGEX "^[^#]")
set(sorted ${names})
list(SORT sorted)
list(REMOVE_DUPLICATES sorted)
if(names STREQUAL "" OR NOT names STREQUAL sorted OR NOT names MATCHES "^[A-Za-z_0-9;]+$")
  message(FATAL_ERROR "${list} must have one name a line, sorted, each once")
endif()

set(map_lines)
set(def_lines)
set(macro_lines)
foreach(name IN LISTS names)
  string(APPEND map_lines "    ${name};\n")
  string(APPEND def_lines "  ${name}\n")
  string(APPEND macro_lines " \\\n  X(${name})")
endforeach()

# A symbol version says which release brought an export, and never changes: exports of a later one get a block of their
# own behind that of 1.0. The files are written only when they change, so that nothing is linked anew for the same list.
set(made ${PROJECT_BINARY_DIR}/exports)
file(CONFIGURE
  OUTPUT ${made}/korvel_utils.map
  CONTENT "KORVEL_UTILS_1.0 {\n  global:\n@map_lines@  local:\n    *;\n};\n"
  @ONLY)
file(CONFIGURE
  OUTPUT ${PROJECT_BINARY_DIR}/lib/korvel_utils.def
  CONTENT "; What the DLL exports, by name.\nLIBRARY korvel_utils.dll\nEXPORTS\n@def_lines@"
  @ONLY)
file(CONFIGURE
  OUTPUT ${made}/korvel_exports.h
  CONTENT "// Made from src/exports.txt.\n#pragma once\n\n#define KORVEL_EXPORTS(X)@macro_lines@\n"
  @ONLY)
