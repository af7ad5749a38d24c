# The rules of `cmake --install`: the library with its plug-ins beside it, the headers, the package
# for find_package(ZIRK) and pkg-config, and the documents. Each file's component is the Debian
# package that contains it; ZIRKPackages.cmake makes the packages.
include(CMakePackageConfigHelpers)

set(ZIRK_PACKAGE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/ZIRK")

install(TARGETS ZIRK EXPORT ZIRKTargets LIBRARY
  DESTINATION "${CMAKE_INSTALL_LIBDIR}"
  COMPONENT libzirk${ZIRK_SOVERSION} NAMELINK_COMPONENT libzirk-dev)
install(EXPORT ZIRKTargets NAMESPACE ZIRK::
  DESTINATION "${ZIRK_PACKAGE_DIR}" COMPONENT libzirk-dev)

# zirk_install_plugins(<folder>) installs all plug-ins that are built in the folder or below it, and
# adds their components, named after their folders, to ZIRK_BACKEND_PACKAGES.
set(ZIRK_BACKEND_PACKAGES "")
function(zirk_install_plugins folder)
  get_property(targets DIRECTORY "${folder}" PROPERTY BUILDSYSTEM_TARGETS)
  cmake_path(GET folder FILENAME name)
  foreach(target IN LISTS targets)
    get_target_property(type ${target} TYPE)
    if(type STREQUAL "MODULE_LIBRARY")
      install(TARGETS ${target} LIBRARY
        DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT zirk-backend-${name})
      add_dependencies(zirk_plugins ${target})
      list(APPEND ZIRK_BACKEND_PACKAGES zirk-backend-${name})
    endif()
  endforeach()
  get_property(folders DIRECTORY "${folder}" PROPERTY SUBDIRECTORIES)
  foreach(sub IN LISTS folders)
    zirk_install_plugins("${sub}")
  endforeach()
  set(ZIRK_BACKEND_PACKAGES "${ZIRK_BACKEND_PACKAGES}" PARENT_SCOPE)
endfunction()
# Plug-ins are opened at run time. Targets that need them depend on this one.
add_custom_target(zirk_plugins)
zirk_install_plugins("${PROJECT_SOURCE_DIR}/backends")

# include/zirk/impl is a link to src/impl, but is installed as a folder.
install(DIRECTORY "${PROJECT_SOURCE_DIR}/include/zirk"
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT libzirk-dev
  FILES_MATCHING PATTERN "*.h" PATTERN impl EXCLUDE PATTERN kit EXCLUDE)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/src/impl/"
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/zirk/impl" COMPONENT libzirk-dev
  FILES_MATCHING PATTERN "*.h")

configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/ZIRKConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/ZIRKConfig.cmake" INSTALL_DESTINATION "${ZIRK_PACKAGE_DIR}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/ZIRKConfigVersion.cmake"
  COMPATIBILITY SameMinorVersion)
install(FILES
  "${PROJECT_BINARY_DIR}/ZIRKConfig.cmake"
  "${PROJECT_BINARY_DIR}/ZIRKConfigVersion.cmake"
  "${PROJECT_SOURCE_DIR}/cmake/ZIRKAddBackend.cmake"
  "${PROJECT_SOURCE_DIR}/cmake/backend.map"
  "${PROJECT_SOURCE_DIR}/cmake/backendinterface.cpp"
  DESTINATION "${ZIRK_PACKAGE_DIR}" COMPONENT libzirk-dev)

# Relative to the file itself, so that the installed tree can be moved.
set(ZIRK_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
if(NOT IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  file(RELATIVE_PATH up "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
  set(ZIRK_PC_PREFIX "\${pcfiledir}/${up}")
endif()
# zirk_install_pc(<file> <component>)
function(zirk_install_pc file component)
  configure_file("${PROJECT_SOURCE_DIR}/cmake/${file}.in" "${PROJECT_BINARY_DIR}/${file}" @ONLY)
  install(FILES "${PROJECT_BINARY_DIR}/${file}"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT ${component})
endfunction()
cmake_path(APPEND ZIRK_PC_LIBDIR "\${prefix}" "${CMAKE_INSTALL_LIBDIR}")
cmake_path(APPEND ZIRK_PC_INCLUDEDIR "\${prefix}" "${CMAKE_INSTALL_INCLUDEDIR}")
zirk_install_pc(zirk.pc libzirk-dev)

# The kit, which is separate from the library.
if(TARGET zirk_kit)
  install(TARGETS zirk_kit EXPORT ZIRKKitTargets LIBRARY
    DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    COMPONENT libzirkkit${ZIRK_SOVERSION} NAMELINK_COMPONENT libzirkkit-dev)
  install(EXPORT ZIRKKitTargets NAMESPACE ZIRK::
    DESTINATION "${ZIRK_PACKAGE_DIR}" COMPONENT libzirkkit-dev)
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/include/zirk/kit"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/zirk" COMPONENT libzirkkit-dev)
  zirk_install_pc(zirk-kit.pc libzirkkit-dev)
endif()

# The documents, and the sources of the examples with their fonts.
set(ZIRK_DOC_DIR "${CMAKE_INSTALL_DATAROOTDIR}/doc/zirk")
install(FILES
  "${PROJECT_SOURCE_DIR}/CHANGELOG.md"
  "${PROJECT_SOURCE_DIR}/CONTRIBUTING.md"
  "${PROJECT_SOURCE_DIR}/LICENSE"
  "${PROJECT_SOURCE_DIR}/README.md"
  "${PROJECT_SOURCE_DIR}/SECURITY.md"
  DESTINATION "${ZIRK_DOC_DIR}" COMPONENT zirk-doc)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs"
  DESTINATION "${ZIRK_DOC_DIR}" COMPONENT zirk-doc
  FILES_MATCHING PATTERN "*.md" PATTERN "*.png" PATTERN "*.svg")
install(DIRECTORY
  "${PROJECT_SOURCE_DIR}/examples"
  "${PROJECT_SOURCE_DIR}/packaging"
  DESTINATION "${ZIRK_DOC_DIR}" COMPONENT zirk-doc)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/tests/fonts"
  DESTINATION "${ZIRK_DOC_DIR}/tests" COMPONENT zirk-doc
  FILES_MATCHING PATTERN "*.ttf" PATTERN "README.md" PATTERN "LICENSE.*")
file(GLOB documents RELATIVE "${PROJECT_SOURCE_DIR}"
  "${PROJECT_SOURCE_DIR}/backends/README.md" "${PROJECT_SOURCE_DIR}/backends/*/README.md")
foreach(document IN LISTS documents)
  cmake_path(GET document PARENT_PATH folder)
  install(FILES "${PROJECT_SOURCE_DIR}/${document}"
    DESTINATION "${ZIRK_DOC_DIR}/${folder}" COMPONENT zirk-doc)
endforeach()
