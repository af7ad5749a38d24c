# zirk_add_backend(<name> <source>...)
#
# Builds the plug-in libZIRKImpl<name>.so as the target ZIRKImpl<name>. The project's own plug-ins
# and third-party ones are built by this function. The result exports only the entry points and the
# number of the interface, which the function adds, so that the symbols of several plug-ins in one
# process do not collide.
set(ZIRK_BACKEND_INTERFACE "${CMAKE_CURRENT_LIST_DIR}/backendinterface.cpp")
set(ZIRK_BACKEND_EXPORTS "${CMAKE_CURRENT_LIST_DIR}/backend.map")

function(zirk_add_backend name)
  set(target ZIRKImpl${name})
  add_library(${target} MODULE ${ARGN} "${ZIRK_BACKEND_INTERFACE}")
  target_compile_features(${target} PRIVATE cxx_std_17)
  target_link_libraries(${target} PRIVATE ZIRK::ZIRK)
  set_target_properties(${target} PROPERTIES
    PREFIX lib
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    BUILD_RPATH_USE_ORIGIN ON
    INSTALL_RPATH "$ORIGIN"
    LINK_DEPENDS "${ZIRK_BACKEND_EXPORTS}")
  target_link_options(${target} PRIVATE
    "LINKER:--version-script=${ZIRK_BACKEND_EXPORTS}" "LINKER:-z,defs")
endfunction()
