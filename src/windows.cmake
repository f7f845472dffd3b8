# How korvel_utils is compiled and linked for Windows, and why each switch is there.

enable_language(ASM)
add_subdirectory(platform/windows)
add_dependencies(korvel_utils windows_link_inputs)

target_sources(korvel_utils PRIVATE platform/windows/load_configuration.S)

target_compile_options(korvel_utils PRIVATE
  -g
  -gcodeview
  # The same bytes wherever the tree and the build folder stand.
  -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.
  -fdebug-compilation-dir=.
  $<$<COMPILE_LANGUAGE:CXX>:-gno-codeview-command-line>
  # Unwind data for every function: a fault inside the library must be traceable.
  -fasynchronous-unwind-tables
  $<$<COMPILE_LANGUAGE:CXX>:-mguard=cf>
  # A frame of more than a page would call the C run-time library's stack probe.
  -Wframe-larger-than=4096)

set(link_inputs
  ${PROJECT_BINARY_DIR}/lib/korvel_utils.def
  ${PROJECT_BINARY_DIR}/lib/libhxluser.lib
  ${PROJECT_BINARY_DIR}/version.res)
set_target_properties(korvel_utils PROPERTIES
  PREFIX ""
  IMPORT_PREFIX ""
  IMPORT_SUFFIX .lib
  LINKER_LANGUAGE CXX
  LINK_DEPENDS "${link_inputs}")

set(CMAKE_CXX_CREATE_SHARED_LIBRARY
  "${KORVEL_LLD_LINK} <LINK_FLAGS> /out:<TARGET> /implib:<TARGET_IMPLIB> <OBJECTS>")

target_link_options(korvel_utils PRIVATE
  /nologo
  /WX
  # The compiler's target ties the unwind data of an inline function to it by name alone; without this switch the
  # linker does not know, and drops the data.
  /lldmingw
  /dll
  /def:lib/korvel_utils.def
  # Nothing runs at load and nothing of a C run-time library is linked.
  /noentry
  /nodefaultlib
  lib/libhxluser.lib
  version.res
  # Images for 6.03 and later that take part in the guard are expected to bring a security cookie, which is
  # writable and which nothing here would use.
  /subsystem:windows,6.02
  /dynamicbase
  /highentropyva
  /nxcompat
  /guard:cf
  /opt:ref
  /opt:icf
  # The PDB is found by its name, beside the DLL; its own paths start at a made-up root.
  /debug
  /pdb:bin/korvel_utils.pdb
  /pdbaltpath:korvel_utils.pdb
  /pdbsourcepath:C:/korvel_utils
  # Hashes in the place of times.
  /Brepro)
