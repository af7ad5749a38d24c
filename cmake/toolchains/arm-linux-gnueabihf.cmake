# 32-bit ARM with hardware floating point and NEON, against the tree that scripts/make-sysroot makes;
# ZIRK_SYSROOT names another. Programs of the target run here under QEMU.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(ZIRK_TARGET arm-linux-gnueabihf)
set(ZIRK_TARGET_SYSROOT sysroot-armhf)
include("${CMAKE_CURRENT_LIST_DIR}/debian.cmake")
# The notes are about calls between GCC 6 and later ones.
set(CMAKE_CXX_FLAGS_INIT "-mfpu=neon -Wno-psabi")
