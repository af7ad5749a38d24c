# How every target of this project is compiled: zirk_target_defaults(target).
# None of it affects users of the installed package. The project's own sources are C++20;
# the public headers stay C++17, for their users.
function(zirk_target_defaults target)
  target_compile_features(${target} PRIVATE cxx_std_20)
  set_target_properties(${target} PROPERTIES
    CXX_EXTENSIONS OFF
    POSITION_INDEPENDENT_CODE ON
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
  # On 32-bit machines, folders on network file systems are not readable otherwise.
  target_compile_definitions(${target} PRIVATE _FILE_OFFSET_BITS=64)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion
    # Forbids fused operations, which round differently on some machines.
    -ffp-contract=off
    # Assertions and messages contain paths relative to the project, whatever the build folder.
    "-fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=")
  if(ZIRK_SANITIZE)
    target_compile_options(${target} PRIVATE
      -fsanitize=${ZIRK_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    # With Clang, the program contains the sanitizers' functions for the library and plug-ins too.
    target_link_options(${target} PRIVATE -fsanitize=${ZIRK_SANITIZE}
      $<$<CXX_COMPILER_ID:Clang>:LINKER:-z,undefs>)
  endif()
endfunction()
