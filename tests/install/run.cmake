# cmake -DBUILD=<build of the library> -DWORK=<folder to work in> -DLIBDIR=<library folder>
#       -DCOMPILER=<C++ compiler> -DSOURCE=<this folder> [-DCPACK=<cpack>] -P run.cmake
#
# Installs, builds the project in this folder against what was installed, and runs it. With CPACK
# what is installed are the Debian packages, in a folder that stands for a whole system.
include("${CMAKE_CURRENT_LIST_DIR}/packages.cmake")

function(run)
  execute_process(COMMAND ${ARGV} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(REMOVE_RECURSE "${WORK}")
if(CPACK)
  set(root "${WORK}/root")
  set(prefix "${root}/usr")
  make_packages()
  install_packages("${root}")
else()
  set(prefix "${WORK}/prefix")
  run("${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${prefix}")
endif()

set(ENV{PKG_CONFIG_PATH} "${prefix}/${LIBDIR}/pkgconfig")
run("${CMAKE_COMMAND}" -S "${SOURCE}" -B "${WORK}/build" "-DCMAKE_PREFIX_PATH=${prefix}"
  "-DCMAKE_CXX_COMPILER=${COMPILER}")
run("${CMAKE_COMMAND}" --build "${WORK}/build")

run("${WORK}/build/app" "${WORK}/build/libZIRKImplMine.so")
run("${WORK}/build/app_pkgconfig" "${WORK}/build/libmine_pkgconfig.so")
if(CPACK)
  check_packages("${root}")
  remove_packages("${root}")
endif()
