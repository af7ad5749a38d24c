# cmake -DNM=<nm> -DLIBRARY=<libZIRK.so> -DKIT=<libZIRKKit.so> -DFOLDER=<folder of the plug-ins> -P exports.cmake
#
# The library exports nothing but the namespace ZIRK, the kit nothing but ZIRK::kit; a plug-in its
# entry points and the number of its interface and nothing else.

cmake_minimum_required(VERSION 3.25)

# check(<file> <what it may export> <what it has to export>...)
function(check file allowed)
  execute_process(COMMAND "${NM}" -D --defined-only --format=posix "${file}"
    OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL "[^\n]+" symbols "${symbols}")
  list(TRANSFORM symbols REPLACE "[@ ].*" "")
  foreach(required IN LISTS ARGN)
    if(NOT required IN_LIST symbols)
      message(SEND_ERROR "${file} does not export ${required}")
    endif()
  endforeach()
  foreach(symbol IN LISTS symbols)
    if(NOT symbol MATCHES "${allowed}")
      message(SEND_ERROR "${file} exports ${symbol}")
    endif()
  endforeach()
endfunction()

# Functions and data, the tables and type information of classes, and thunks into them.
check("${LIBRARY}" "^_Z(NK?|T[VTIS]N|Tvn[0-9]+_n[0-9]+_N|Tv0_n[0-9]+_N)4ZIRK"
  _ZN4ZIRK5whiteE)
check("${KIT}" "^_Z(NK?|T[VIS]N)4ZIRK3kit" _ZN4ZIRK3kit3MixENS_7VuColorES1_f)

file(GLOB plugins "${FOLDER}/libZIRKImpl*.so")
foreach(plugin IN LISTS plugins)
  check("${plugin}" "^((Create|Destroy)Vu(Graphics|Compositor)|ZIRKBackendInterface)$"
    CreateVuGraphics DestroyVuGraphics ZIRKBackendInterface)
endforeach()
