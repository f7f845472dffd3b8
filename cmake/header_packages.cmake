# For another machine than this one, Debian's packages of the three libraries are taken as what they can be: headers, which
# are the same for every machine. A folder of their own keeps the other headers of this machine out.

set(header_packages ${PROJECT_BINARY_DIR}/header_packages)
file(MAKE_DIRECTORY ${header_packages})
foreach(folder CLI fmt nlohmann)
  if(NOT IS_DIRECTORY /usr/include/${folder})
    message(FATAL_ERROR "/usr/include/${folder} is missing: apt-get install libcli11-dev libfmt-dev nlohmann-json3-dev")
  endif()
  file(CREATE_LINK /usr/include/${folder} ${header_packages}/${folder} SYMBOLIC)
endforeach()
foreach(library CLI11::CLI11 fmt::fmt nlohmann_json::nlohmann_json)
  add_library(${library} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${library} SYSTEM INTERFACE ${header_packages})
endforeach()
