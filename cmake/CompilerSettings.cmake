# The compiler settings of every target. A fused multiply-add rounds once, a product and a sum round twice. Contraction
# is off everywhere, because results must not depend on the processor.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release)
endif()

include(Hardening)

function(rasterkit_settings target)
  rasterkit_harden(${target})
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -ffp-contract=off)
  if(RASTERKIT_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  # i386: double arithmetic as on other processors, not that of the 80-bit unit; and files beyond 2 GiB.
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "i[3-6]86" OR (CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64" AND CMAKE_SIZEOF_VOID_P EQUAL 4))
    target_compile_options(${target} PRIVATE -msse2 -mfpmath=sse)
    target_compile_definitions(${target} PRIVATE _FILE_OFFSET_BITS=64)
  endif()
  if(RASTERKIT_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=${RASTERKIT_SANITIZE} -fno-omit-frame-pointer
                                             -fno-sanitize-recover=all)
    target_link_options(${target} PUBLIC -fsanitize=${RASTERKIT_SANITIZE})
  endif()
  if(RASTERKIT_FUZZERS)
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
  # Scalable vectors cannot be members of structs, which the kernels use.
  target_compile_definitions(${target} PRIVATE HWY_DISABLED_TARGETS=HWY_SVE|HWY_SVE2|HWY_SVE_256|HWY_SVE2_128|HWY_RVV)
  if(RASTERKIT_SCALAR_ONLY)
    target_compile_definitions(${target} PRIVATE HWY_COMPILE_ONLY_SCALAR)
  endif()
  target_include_directories(${target} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
endfunction()

# rasterkit_count_lines(TARGET): with RASTERKIT_COVERAGE, counts which lines of the target are run. Counters are atomic,
# since many tests have threads. Kernels without optimization would take too long to test; -Og keeps the lines.
if(RASTERKIT_COVERAGE)
  add_link_options(--coverage)
endif()
function(rasterkit_count_lines target)
  if(RASTERKIT_COVERAGE)
    target_compile_options(${target} PRIVATE --coverage -fprofile-update=atomic -Og)
  endif()
endfunction()
