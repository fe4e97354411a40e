# 64-bit ARM on another machine: Debian's cross compiler, programs run in qemu.
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(architecture arm64)
set(triplet aarch64-linux-gnu)
set(toolchain aarch64-linux-gnu)
include(${CMAKE_CURRENT_LIST_DIR}/sysroot.cmake)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64-static -L ${CMAKE_SYSROOT})
