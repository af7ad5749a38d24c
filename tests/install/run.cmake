# cmake -DBUILD=<build of the library> -DWORK=<folder to work in> -DLIBDIR=<library folder>
#       -DCOMPILER=<C++ compiler> -DSOURCE=<this folder> -P run.cmake
#
# Installs, builds the project in this folder against what was installed, and runs it.

function(run)
  execute_process(COMMAND ${ARGV} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

set(prefix "${WORK}/prefix")
file(REMOVE_RECURSE "${WORK}")
run("${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${prefix}")

set(ENV{PKG_CONFIG_PATH} "${prefix}/${LIBDIR}/pkgconfig")
run("${CMAKE_COMMAND}" -S "${SOURCE}" -B "${WORK}/build" "-DCMAKE_PREFIX_PATH=${prefix}"
  "-DCMAKE_CXX_COMPILER=${COMPILER}")
run("${CMAKE_COMMAND}" --build "${WORK}/build")

run("${WORK}/build/app" "${WORK}/build/libZIRKImplMine.so")
run("${WORK}/build/app_pkgconfig" "${WORK}/build/libmine_pkgconfig.so")
