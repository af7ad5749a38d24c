# 32-bit ARM with hardware floating point and NEON, with the tree that scripts/make-sysroot makes;
# ZIRK_SYSROOT names another one. Programs of the target run under QEMU.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(ZIRK_TARGET arm-linux-gnueabihf)
set(ZIRK_TARGET_SYSROOT sysroot-armhf)
include("${CMAKE_CURRENT_LIST_DIR}/debian.cmake")
# Turns off notes about calls between code of GCC 6 and of later versions.
set(CMAKE_CXX_FLAGS_INIT "-mfpu=neon -Wno-psabi")
