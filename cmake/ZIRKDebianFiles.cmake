# Run by cpack before it makes the packages, with the files of each in a folder of its own: adds what
# Debian wants in a package and `cmake --install` has no use for.
find_program(ZIRK_GZIP gzip REQUIRED)

# Best compression, and no time of day inside.
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
  # All plug-ins have the same; the library, whatever its number, and the kit have the same.
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
