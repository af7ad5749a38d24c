# 32-bit ARM with hardware floating point and NEON, against the tree that scripts/make-sysroot makes;
# ZIRK_SYSROOT names another. Programs of the target run here under QEMU.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)

set(ZIRK_SYSROOT "${CMAKE_CURRENT_LIST_DIR}/../../build/sysroot-armhf" CACHE PATH
  "Tree of the target's libraries")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ZIRK_SYSROOT)
file(REAL_PATH "${ZIRK_SYSROOT}" CMAKE_SYSROOT)

set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
# The notes are about calls between GCC 6 and later ones.
set(CMAKE_CXX_FLAGS_INIT "-mfpu=neon -Wno-psabi")

set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
if(NOT DEFINED ENV{PKG_CONFIG_SYSROOT_DIR})
  set(ENV{PKG_CONFIG_SYSROOT_DIR} "${CMAKE_SYSROOT}")
endif()
set(ENV{PKG_CONFIG_LIBDIR}
  "${CMAKE_SYSROOT}/usr/lib/arm-linux-gnueabihf/pkgconfig:${CMAKE_SYSROOT}/usr/share/pkgconfig")

set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/../../scripts/run-arm" "${CMAKE_SYSROOT}")
