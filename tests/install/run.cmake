# cmake -DBUILD=<build of the library> -DWORK=<folder to work in> -DLIBDIR=<library folder>
#       -DGENERATOR=<CMake's generator> -DCOMPILER=<C++ compiler> -DSOURCE=<this folder>
#       [-DTOOLCHAIN=<toolchain file> -DSYSROOT=<its tree> -DEMULATOR=<what runs its programs>]
#       -P run.cmake
#
# Installs, builds the project in this folder against what was installed, and runs it.

function(run)
  execute_process(COMMAND ${ARGV} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(REMOVE_RECURSE "${WORK}")
set(prefix "${WORK}/prefix")
run("${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${prefix}")

set(ENV{PKG_CONFIG_PATH} "${prefix}/${LIBDIR}/pkgconfig")
if(TOOLCHAIN)
  # What is installed here is not in the target's tree.
  set(ENV{PKG_CONFIG_SYSROOT_DIR} "/")
  set(compiler "-DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN}" "-DCMAKE_FIND_ROOT_PATH=${prefix}"
    "-DZIRK_SYSROOT=${SYSROOT}")
else()
  set(compiler "-DCMAKE_CXX_COMPILER=${COMPILER}")
endif()
run("${CMAKE_COMMAND}" -G "${GENERATOR}" -S "${SOURCE}" -B "${WORK}/build"
  "-DCMAKE_PREFIX_PATH=${prefix}" ${compiler})
run("${CMAKE_COMMAND}" --build "${WORK}/build")

run(${EMULATOR} "${WORK}/build/app" "${WORK}/build/libZIRKImplMine.so")
run(${EMULATOR} "${WORK}/build/app_pkgconfig" "${WORK}/build/libmine_pkgconfig.so")
run(${EMULATOR} "${WORK}/build/kit_app")
run(${EMULATOR} "${WORK}/build/kit_app_pkgconfig")
