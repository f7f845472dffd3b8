# How korvel_utils is compiled and linked for Windows, and why each switch is there.

enable_language(ASM)
add_subdirectory(platform/windows)
add_dependencies(korvel_utils windows_link_inputs)

target_sources(korvel_utils PRIVATE
  platform/windows/load_configuration.S
  platform/windows/stack_guard.S)

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
  # Frames that hold an array of bytes, the ones that others fill by its address: the services their records, the text
  # of a UUID. -fstack-protector-strong would add every frame whose address is handed on, records of numbers too, and
  # the layouts' instructions with them.
  $<$<COMPILE_LANGUAGE:CXX>:-fstack-protector>
  # A frame of more than a page would call the C run-time library's stack probe.
  -Wframe-larger-than=4096)

# An array that is not of bytes: the sizes of a chain's levels.
set_source_files_properties(layout/korvel_init_multi_level_surface.cpp PROPERTIES
  COMPILE_OPTIONS -fstack-protector-strong)

if(CMAKE_SYSTEM_PROCESSOR STREQUAL aarch64)
  # Landing pads for indirect branches, and return addresses signed with the key that this system uses (B), which its
  # unwind data knows.
  target_compile_options(korvel_utils PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-mbranch-protection=bti+pac-ret+b-key>)
else()
  # Return addresses may be kept on a shadow stack: no code here changes one.
  target_link_options(korvel_utils PRIVATE /cetcompat)
endif()

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
  # The first version for 64-bit Arm.
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
