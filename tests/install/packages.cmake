# cmake -DBUILD=<build of the library> -DWORK=<folder to work in> -DCPACK=<cpack>
#       -DGENERATOR=<CMake's generator> -DCOMPILER=<C++ compiler> -P packages.cmake
#
# Makes the Debian packages, installs them into a folder that stands for a whole system, and removes
# them again. The test of the installation builds programs against the same files.
set(root "${WORK}/root")

function(run)
  execute_process(COMMAND ${ARGV} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# run_dpkg(<argument>...): as the system's administrator, which needs no right on this one.
function(run_dpkg)
  run(unshare --map-root-user dpkg --root=${root} --force-depends --force-unsafe-io ${ARGN})
endfunction()

function(make_packages)
  # Packing them tight only takes time here.
  run("${CPACK}" --config "${BUILD}/CPackConfig.cmake" -B "${WORK}/packages"
    -D CPACK_DEBIAN_COMPRESSION_TYPE=gzip)
  file(GLOB packages "${WORK}/packages/*.deb")
  find_program(LINTIAN lintian)
  if(LINTIAN)
    run("${LINTIAN}" --allow-root --fail-on error,warning ${packages})
  endif()
  # What a device has to carry for Hybrid, which opens SDL and OpenGL at run time.
  file(GLOB hybrid "${WORK}/packages/zirk-backend-hybrid_*.deb")
  execute_process(COMMAND dpkg-deb --field ${hybrid} Depends OUTPUT_VARIABLE needed)
  if(NOT needed MATCHES "libpixman" OR needed MATCHES "sdl|gl")
    message(SEND_ERROR "zirk-backend-hybrid depends on ${needed}")
  endif()
endfunction()

# Copies the machine's programs or libraries, and the libraries that these need, into the system.
function(copy_into_root)
  foreach(file IN LISTS ARGN)
    execute_process(COMMAND ldd "${file}" OUTPUT_VARIABLE needed ERROR_QUIET)
    string(REGEX MATCHALL "/[^ \n]+" paths "${needed}")
    list(FILTER paths EXCLUDE REGEX "^${root}")
    if(NOT file MATCHES "^${root}")
      list(APPEND paths "${file}")
    endif()
    foreach(path IN LISTS paths)
      cmake_path(GET path PARENT_PATH folder)
      file(COPY "${path}" DESTINATION "${root}${folder}" FOLLOW_SYMLINK_CHAIN)
    endforeach()
  endforeach()
endfunction()

# The packages' own scripts run inside the system; what else they depend on is not asked for.
function(install_packages)
  foreach(folder IN ITEMS bin lib lib64 sbin)
    file(MAKE_DIRECTORY "${root}/usr/${folder}")
    file(CREATE_LINK usr/${folder} "${root}/${folder}" SYMBOLIC)
  endforeach()
  file(MAKE_DIRECTORY "${root}/etc" "${root}/var/lib/dpkg/info" "${root}/var/lib/dpkg/updates")
  file(TOUCH "${root}/var/lib/dpkg/status")
  copy_into_root(/bin/sh /sbin/ldconfig)
  file(GLOB packages "${WORK}/packages/*.deb")
  run_dpkg(--install ${packages})
endfunction()

# Every file that is installed is in a package; manual pages are compressed there.
function(check_files)
  run("${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${WORK}/prefix")
  file(GLOB_RECURSE files RELATIVE "${WORK}/prefix" "${WORK}/prefix/*")
  foreach(file IN LISTS files)
    if(NOT EXISTS "${root}/usr/${file}" AND NOT EXISTS "${root}/usr/${file}.gz")
      message(SEND_ERROR "${file} is in no package")
    endif()
  endforeach()
endfunction()

# Each plug-in lies where both queries look, and FB opens.
function(check_plugins)
  file(GLOB files "${root}/usr/lib/*.so*" "${root}/usr/bin/zirkinfo")
  copy_into_root(${files})
  execute_process(COMMAND unshare --map-root-user --root=${root} /usr/bin/zirkinfo
    OUTPUT_VARIABLE said COMMAND_ERROR_IS_FATAL ANY)
  file(GLOB plugins RELATIVE "${root}/usr/lib" "${root}/usr/lib/libZIRKImpl*.so")
  foreach(plugin IN LISTS plugins)
    if(NOT said MATCHES "file: ${plugin}\ninstalled: yes\n[^\n]*\nhas-backend: yes\nsupported-backend: yes\n")
      message(SEND_ERROR "${plugin} is not seen:\n${said}")
    endif()
  endforeach()
  if(NOT said MATCHES "opens: yes\ntype: 5\n")
    message(SEND_ERROR "FB does not open:\n${said}")
  endif()
endfunction()

# The examples are built where they lie, and one of each kind runs.
function(check_examples)
  run("${CMAKE_COMMAND}" -G "${GENERATOR}" -S "${root}/usr/share/doc/zirk/examples"
    -B "${WORK}/examples" "-DCMAKE_PREFIX_PATH=${root}/usr" "-DCMAKE_CXX_COMPILER=${COMPILER}")
  run("${CMAKE_COMMAND}" --build "${WORK}/examples")
  foreach(example IN ITEMS 05-text backend)
    run("${CMAKE_COMMAND}" -E env ZIRK_FB_DEVICE=/nonexistent "LD_LIBRARY_PATH=${WORK}/examples"
      "${WORK}/examples/${example}" "${WORK}/${example}.png")
  endforeach()
  # Replaying fails where nothing was recorded.
  set(trace "${WORK}/05-text.zirktrace")
  run("${CMAKE_COMMAND}" -E env ZIRK_FB_DEVICE=/nonexistent
    "${root}/usr/bin/zirktrace" record -o "${trace}" "${WORK}/examples/05-text")
  run("${CMAKE_COMMAND}" -E env ZIRK_FB_DEVICE=/nonexistent
    "${root}/usr/bin/zirktrace" replay "${trace}")
endfunction()

# Nothing stays behind.
function(remove_packages)
  file(GLOB packages RELATIVE "${WORK}/packages" "${WORK}/packages/*.deb")
  list(TRANSFORM packages REPLACE "_.*" "")
  run_dpkg(--purge ${packages})
  file(GLOB_RECURSE left "${root}/usr/*irk*" "${root}/usr/*ZIRK*")
  if(left)
    message(SEND_ERROR "left behind: ${left}")
  endif()
endfunction()

file(REMOVE_RECURSE "${WORK}")
make_packages()
install_packages()
check_files()
check_plugins()
check_examples()
remove_packages()
