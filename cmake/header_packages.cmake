# The header-only libraries of Debian for a target that Debian has no packages for. The compiler sees these headers
# alone: /usr/include is full of another machine's.

set(header_packages ${PROJECT_BINARY_DIR}/header_packages)
file(MAKE_DIRECTORY ${header_packages})
foreach(package IN ITEMS fmt nlohmann)
  if(NOT EXISTS /usr/include/${package})
    message(FATAL_ERROR "/usr/include/${package} is missing: Debian has it in libfmt-dev or nlohmann-json3-dev")
  endif()
  file(CREATE_LINK /usr/include/${package} ${header_packages}/${package} SYMBOLIC)
endforeach()

add_library(fmt::fmt INTERFACE IMPORTED GLOBAL)
target_include_directories(fmt::fmt INTERFACE ${header_packages})
target_compile_definitions(fmt::fmt INTERFACE FMT_HEADER_ONLY)

add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED GLOBAL)
target_include_directories(nlohmann_json::nlohmann_json INTERFACE ${header_packages})
