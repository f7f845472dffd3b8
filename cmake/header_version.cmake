# korvel_read_version(HEADER RESULT): the version that the header's macros name, as MAJOR.MINOR.PATCH.
# The header is the one place where the version stands.

function(korvel_read_version header result)
  set(parts)
  foreach(part MAJOR MINOR PATCH)
    set(macro KORVEL_UTILS_VERSION_${part})
    file(STRINGS ${header} lines REGEX "^#define ${macro} ")
    if(NOT lines MATCHES "^#define ${macro} (0|[1-9][0-9]?)( +/\\*[^;]*)?$")
      message(FATAL_ERROR
        "${header} does not tell the library's version: it must have one line\n"
        "  #define ${macro} N\n"
        "with a number N from 0 to 99, and has: ${lines}")
    endif()
    list(APPEND parts ${CMAKE_MATCH_1})
  endforeach()
  list(JOIN parts . version)
  set(${result} ${version} PARENT_SCOPE)
endfunction()
