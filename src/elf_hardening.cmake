# What keeps an error of memory from becoming more than a crash, on ELF systems. docs/security.md says what each is for
# and which test reads it from the file.

target_compile_options(korvel_utils PRIVATE
  -fstack-protector-strong
  # Checked forms of the C library's memory functions, which exist in optimised code alone.
  $<$<CONFIG:Release>:-U_FORTIFY_SOURCE>
  $<$<CONFIG:Release>:-D_FORTIFY_SOURCE=2>
  # The loader binds everything before it write-protects the table of addresses: calls go through the table, and no
  # stub in between is wanted.
  -fno-plt)

target_link_options(korvel_utils PRIVATE
  # The system's start-up objects are not made for branch targets, and one such object takes the property from the whole
  # file. Nothing of theirs is needed: nothing runs at load or unload.
  -nostartfiles
  -Wl,-z,relro
  -Wl,-z,now
  -Wl,-z,noexecstack
  -Wl,-z,separate-code)

# Landing pads for indirect branches, and return addresses that are kept apart (x86-64) or signed (Arm). Each link fails
# when an object of it lacks them.
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64)$")
  target_compile_options(korvel_utils PRIVATE -fcf-protection=full)
  target_link_options(korvel_utils PRIVATE -Wl,-z,cet-report=error)
elseif(CMAKE_SYSTEM_PROCESSOR STREQUAL aarch64)
  target_compile_options(korvel_utils PRIVATE -mbranch-protection=standard)
  target_link_options(korvel_utils PRIVATE
    -Wl,-z,force-bti
    -Wl,--fatal-warnings)
endif()
