# 32-bit x86 on amd64: Debian's cross compiler. The kernel runs such programs itself; they name the loader and the
# libraries of the sysroot, including those that libraries need (an old-style run path holds for these too).
set(CMAKE_SYSTEM_PROCESSOR i686)
set(architecture i386)
set(triplet i386-linux-gnu)
set(toolchain i686-linux-gnu)
include(${CMAKE_CURRENT_LIST_DIR}/sysroot.cmake)
string(APPEND CMAKE_EXE_LINKER_FLAGS_INIT " -Wl,--dynamic-linker=${CMAKE_SYSROOT}/lib/ld-linux.so.2"
                                          " -Wl,--disable-new-dtags,-rpath,${CMAKE_SYSROOT}/usr/lib/${triplet}")
