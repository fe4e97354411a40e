# For the toolchain files beside it, which set `architecture` (Debian's name), `triplet` (of its library folders) and
# `toolchain` (what its compiler's name begins with): cross compilation against the packages that make_sysroot.sh
# unpacked into build/sysroot-ARCHITECTURE.
cmake_path(SET CMAKE_SYSROOT NORMALIZE ${CMAKE_CURRENT_LIST_DIR}/../../build/sysroot-${architecture})
if(NOT EXISTS ${CMAKE_SYSROOT}/.contents)
  message(FATAL_ERROR "${CMAKE_SYSROOT} is missing; `./run check ${architecture}` makes it.")
endif()

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_CXX_COMPILER ${toolchain}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${triplet})
foreach(kind IN ITEMS EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "-Wl,-rpath-link,${CMAKE_SYSROOT}/usr/lib/${triplet}")
endforeach()

# Programs are the machine's own, everything else is the other processor's.
set(CMAKE_FIND_ROOT_PATH ${CMAKE_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
foreach(kind IN ITEMS LIBRARY INCLUDE PACKAGE)
  set(CMAKE_FIND_ROOT_PATH_MODE_${kind} ONLY)
endforeach()
set(ENV{PKG_CONFIG_PATH} "")
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${CMAKE_SYSROOT})
set(ENV{PKG_CONFIG_LIBDIR} ${CMAKE_SYSROOT}/usr/lib/${triplet}/pkgconfig:${CMAKE_SYSROOT}/usr/share/pkgconfig)
