# cpack runs this before it makes the packages, with the files of each package in a separate folder.
# It adds files that Debian requires and that `cmake --install` does not need.
find_program(ZIRK_GZIP gzip REQUIRED)

# Compresses as much as possible, without a time stamp.
function(zirk_compress file)
  execute_process(COMMAND "${ZIRK_GZIP}" -9nf "${file}" COMMAND_ERROR_IS_FATAL ANY)
endfunction()

foreach(package IN LISTS CPACK_COMPONENTS_ALL)
  set(share "${CPACK_TEMPORARY_DIRECTORY}/${package}${CPACK_PACKAGING_INSTALL_PREFIX}/share")
  file(COPY_FILE "${CPACK_ZIRK_CHANGELOG}" "${share}/doc/${package}/changelog")
  zirk_compress("${share}/doc/${package}/changelog")
  file(GLOB pages "${share}/man/man*/*.[1-9]")
  foreach(page IN LISTS pages)
    zirk_compress("${page}")
  endforeach()
  # All plug-ins share one file, as do the library, whatever its version, and the kit.
  string(REGEX REPLACE "^zirk-backend-.*" zirk-backend overrides ${package})
  string(REGEX REPLACE "[0-9]+$" "" overrides ${overrides})
  string(REPLACE libzirkkit libzirk overrides ${overrides})
  if(EXISTS "${CPACK_ZIRK_OVERRIDES}/${overrides}.overrides")
    file(MAKE_DIRECTORY "${share}/lintian/overrides")
    configure_file("${CPACK_ZIRK_OVERRIDES}/${overrides}.overrides"
      "${share}/lintian/overrides/${package}" @ONLY
      FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
  endif()
endforeach()
