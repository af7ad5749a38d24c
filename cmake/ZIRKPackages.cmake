# Debian packages, which `cpack` makes in the build folder, one for each component of the
# installation. The plug-ins are in /usr/lib itself, where HasBackend() searches, and the library is
# beside them.
if(NOT CMAKE_INSTALL_LIBDIR STREQUAL "lib")
  message(STATUS "Packages: left out, they need CMAKE_INSTALL_LIBDIR to be lib")
  return()
endif()

set(ZIRK_LIBRARY_PACKAGE libzirk${ZIRK_SOVERSION})
set(ZIRK_PACKAGE_CONTACT "ZIRK maintainers <maintainers@zirk.example>" CACHE STRING
  "Name and address of the maintainer of the Debian packages")
set(ZIRK_PACKAGES_DIR "${PROJECT_BINARY_DIR}/control")

set(CPACK_GENERATOR DEB)
set(CPACK_COMPONENTS_ALL "")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/packages")
set(CPACK_PACKAGE_CONTACT "${ZIRK_PACKAGE_CONTACT}")
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

# cpack reads the dependencies of a package from its files. At that time it knows only the name of
# ZIRK's library.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")

# Files that only packages have are added after the installation; see that script.
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/cmake/ZIRKDebianFiles.cmake")
set(CPACK_ZIRK_OVERRIDES "${PROJECT_SOURCE_DIR}/packaging/debian")
set(CPACK_ZIRK_CHANGELOG "${ZIRK_PACKAGES_DIR}/changelog")
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(CONFIGURE OUTPUT "${CPACK_ZIRK_CHANGELOG}" @ONLY CONTENT
"zirk (@PROJECT_VERSION@) unstable; urgency=medium

  * The package zirk-doc has all changes in CHANGELOG.md.

 -- @ZIRK_PACKAGE_CONTACT@  @date@
")

# zirk_package(<name> <section> <description> <package of this project that it needs>...)
macro(zirk_package name section description)
  string(TOUPPER ${name} component)
  list(APPEND CPACK_COMPONENTS_ALL ${name})
  set(needed ${ARGN})
  list(TRANSFORM needed APPEND " (= ${PROJECT_VERSION})")
  list(JOIN needed ", " CPACK_DEBIAN_${component}_PACKAGE_DEPENDS)
  set(CPACK_DEBIAN_${component}_PACKAGE_NAME ${name})
  set(CPACK_DEBIAN_${component}_PACKAGE_SECTION ${section})
  set(CPACK_COMPONENT_${component}_DESCRIPTION "${description}")
  install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" RENAME copyright
    DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/doc/${name}" COMPONENT ${name})
endmacro()

# zirk_library_package(<name> <library> <description> <our package that it needs>...)
macro(zirk_library_package name library description)
  zirk_package(${name} libs "${description}" ${ARGN})
  # The dependency of other packages that are linked with the library.
  file(WRITE "${ZIRK_PACKAGES_DIR}/${name}/shlibs"
    "${library} ${ZIRK_SOVERSION} ${name} (= ${PROJECT_VERSION})\n")
  file(WRITE "${ZIRK_PACKAGES_DIR}/triggers" "activate-noawait ldconfig\n")
  set(CPACK_DEBIAN_${component}_PACKAGE_CONTROL_EXTRA
    "${ZIRK_PACKAGES_DIR}/${name}/shlibs;${ZIRK_PACKAGES_DIR}/triggers")
endmacro()

zirk_library_package(${ZIRK_LIBRARY_PACKAGE} libZIRK
  "The library that programs draw through, by a backend that is chosen at\nrun time.")
set(CPACK_DEBIAN_LIBZIRK${ZIRK_SOVERSION}_PACKAGE_RECOMMENDS zirk-backend-hybrid)

set(drawn_by_fb "The processor draws; the framebuffer device shows.")
set(drawn_by_opengles2 "The GPU draws, in windows or on displays of their own; layers.")
set(drawn_by_hybrid
  "The default: the GPU draws onto screens where there is one, the processor\ninto bitmaps.")
set(drawn_by_directfb "DirectFB draws, or the processor where DirectFB would draw otherwise.")
set(drawn_by_stub "Draws nothing.")
foreach(package IN LISTS ZIRK_BACKEND_PACKAGES)
  string(REPLACE zirk-backend- drawn_by_ text ${package})
  zirk_package(${package} libs "${${text}}" ${ZIRK_LIBRARY_PACKAGE})
endforeach()
# These are opened at run time. Without SDL, OpenGLES2 does not open, and Hybrid draws as FB does. A
# device may have an OpenGL that is in no package.
string(APPEND CPACK_DEBIAN_ZIRK-BACKEND-OPENGLES2_PACKAGE_DEPENDS ", libsdl2-2.0-0")
set(CPACK_DEBIAN_ZIRK-BACKEND-OPENGLES2_PACKAGE_RECOMMENDS "libegl1, libgles2")
set(CPACK_DEBIAN_ZIRK-BACKEND-HYBRID_PACKAGE_RECOMMENDS "libsdl2-2.0-0, libegl1, libgles2")
zirk_package(zirk-backends libs "Metapackage that depends on all backends."
  ${ZIRK_BACKEND_PACKAGES})

zirk_package(libzirk-dev libdevel
  "Headers, and what CMake and pkg-config know the library by."
  ${ZIRK_LIBRARY_PACKAGE})
if(TARGET zirk_kit)
  zirk_library_package(libzirkkit${ZIRK_SOVERSION} libZIRKKit
    "Drawing that many programs need beside the library." ${ZIRK_LIBRARY_PACKAGE})
  # Opened at run time.
  set(CPACK_DEBIAN_LIBZIRKKIT${ZIRK_SOVERSION}_PACKAGE_SUGGESTS libfontconfig1)
  zirk_package(libzirkkit-dev libdevel "Headers of the kit, and what CMake and pkg-config know it by."
    libzirkkit${ZIRK_SOVERSION} libzirk-dev)
endif()
if(ZIRK_BUILD_TOOLS)
  zirk_package(zirk-tools utils
    "zirkinfo shows which backends work on a machine, and how they draw;\nzirktrace records what a program draws, and draws it again."
    ${ZIRK_LIBRARY_PACKAGE} libzirkkit${ZIRK_SOVERSION})
  set(CPACK_DEBIAN_ZIRK-TOOLS_PACKAGE_SUGGESTS zirk-backends)
endif()
zirk_package(zirk-doc doc "Documents, and the sources of the examples.")
set(CPACK_DEBIAN_ZIRK-DOC_PACKAGE_ARCHITECTURE all)

include(CPack)
