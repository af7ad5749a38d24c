# 64-bit ARM, with the tree that `scripts/make-sysroot --arch arm64` makes; ZIRK_SYSROOT names
# another one. Programs of the target run under QEMU.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(ZIRK_TARGET aarch64-linux-gnu)
set(ZIRK_TARGET_SYSROOT sysroot-arm64)
include("${CMAKE_CURRENT_LIST_DIR}/debian.cmake")
