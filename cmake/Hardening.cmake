# Flags that make faults harder to exploit, for every target of an optimized build. The sanitizers find more and replace
# some of the same checks, so their builds do without. tests/hardening reads the ELF files that were built.
include(CheckCXXCompilerFlag)
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)

set(RASTERKIT_HARDENING_OPTIONS "")
set(RASTERKIT_HARDENING_LINK_OPTIONS "")
set(RASTERKIT_HARDENING_DEFINITIONS "")
if(RASTERKIT_HARDENING AND NOT RASTERKIT_SANITIZE AND NOT RASTERKIT_FUZZERS
   AND CMAKE_BUILD_TYPE MATCHES "^(Release|RelWithDebInfo|MinSizeRel)$")
  # Not every compiler has each of them for every processor.
  foreach(flag -fstack-protector-strong -fstack-clash-protection -fcf-protection=full -mbranch-protection=standard)
    string(MAKE_C_IDENTIFIER "RASTERKIT_HAS${flag}" known)
    check_cxx_compiler_flag("-Werror ${flag}" ${known})
    if(${known})
      list(APPEND RASTERKIT_HARDENING_OPTIONS ${flag})
    endif()
  endforeach()
  list(APPEND RASTERKIT_HARDENING_LINK_OPTIONS -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
  # Some systems' compilers define a level of their own. CMake writes definitions before options, so a definition in its
  # own list would be undone.
  list(APPEND RASTERKIT_HARDENING_OPTIONS -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3)
  list(APPEND RASTERKIT_HARDENING_DEFINITIONS _GLIBCXX_ASSERTIONS)
endif()

# rasterkit_harden(TARGET): adds the flags.
function(rasterkit_harden target)
  target_compile_options(${target} PRIVATE ${RASTERKIT_HARDENING_OPTIONS})
  target_compile_definitions(${target} PRIVATE ${RASTERKIT_HARDENING_DEFINITIONS})
  target_link_options(${target} PRIVATE ${RASTERKIT_HARDENING_LINK_OPTIONS})
endfunction()
