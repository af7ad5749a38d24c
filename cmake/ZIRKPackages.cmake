# Debian packages, made by `cpack` in the build folder, one for each component of the installation.
# The plug-ins go into /usr/lib itself, where HasBackend() looks for them, and the library beside
# them.
if(NOT CMAKE_INSTALL_LIBDIR STREQUAL "lib")
  message(STATUS "Packages: left out, they need CMAKE_INSTALL_LIBDIR to be lib")
  return()
endif()

set(ZIRK_LIBRARY_PACKAGE libzirk${ZIRK_SOVERSION})
set(CPACK_GENERATOR DEB)
set(CPACK_COMPONENTS_ALL ${ZIRK_LIBRARY_PACKAGE} zirk-backends libzirk-dev zirk-doc)
if(ZIRK_BUILD_TOOLS)
  list(APPEND CPACK_COMPONENTS_ALL zirk-tools)
endif()
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/packages")
set(CPACK_PACKAGE_CONTACT "The ZIRK developers <zirk@localhost>")
set(CPACK_PACKAGE_VENDOR ZIRK)
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_RESOURCE_FILE_LICENSE "${PROJECT_SOURCE_DIR}/LICENSE")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# What a package depends on is read from its files; of our own library only the name is known then.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")

# zirk_package(<name> <section> <description> <package of ours that it needs>...)
macro(zirk_package name section description)
  string(TOUPPER ${name} component)
  set(needed ${ARGN})
  list(TRANSFORM needed APPEND " (= ${PROJECT_VERSION})")
  list(JOIN needed ", " CPACK_DEBIAN_${component}_PACKAGE_DEPENDS)
  set(CPACK_DEBIAN_${component}_PACKAGE_NAME ${name})
  set(CPACK_DEBIAN_${component}_PACKAGE_SECTION ${section})
  set(CPACK_COMPONENT_${component}_DESCRIPTION "${description}")
  install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" RENAME copyright
    DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/doc/${name}" COMPONENT ${name})
endmacro()

zirk_package(${ZIRK_LIBRARY_PACKAGE} libs
  "The library that programs draw through, by a backend that is chosen at run time.")
# What packages of others are to depend on that are linked with it.
file(WRITE "${PROJECT_BINARY_DIR}/control/shlibs"
  "libZIRK ${ZIRK_SOVERSION} ${ZIRK_LIBRARY_PACKAGE} (= ${PROJECT_VERSION})\n")
set(CPACK_DEBIAN_LIBZIRK${ZIRK_SOVERSION}_PACKAGE_CONTROL_EXTRA
  "${PROJECT_BINARY_DIR}/control/shlibs")
zirk_package(zirk-backends libs
  "Plug-ins that draw, each by other means, and one that draws nothing."
  ${ZIRK_LIBRARY_PACKAGE})
# Opened at run time, where OpenGL is wanted.
set(CPACK_DEBIAN_ZIRK-BACKENDS_PACKAGE_RECOMMENDS "libsdl2-2.0-0, libegl1, libgles2")
zirk_package(zirk-tools utils
  "zirkinfo shows which backends work on a machine, and how they draw."
  ${ZIRK_LIBRARY_PACKAGE})
set(CPACK_DEBIAN_ZIRK-TOOLS_PACKAGE_RECOMMENDS zirk-backends)
zirk_package(libzirk-dev libdevel
  "Headers, and what CMake and pkg-config know the library by."
  ${ZIRK_LIBRARY_PACKAGE})
zirk_package(zirk-doc doc
  "Documents, and the sources of the examples.")
set(CPACK_DEBIAN_ZIRK-DOC_PACKAGE_ARCHITECTURE all)

include(CPack)
