# cmake -DNM=<nm> -DLIBRARY=<libZIRK.so> -DFOLDER=<folder of the plug-ins> -P exports.cmake
#
# The library exports nothing but the namespace ZIRK; a plug-in nothing but its entry points.

function(check file allowed)
  execute_process(COMMAND "${NM}" -D --defined-only --format=posix "${file}"
    OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL "[^\n]+" symbols "${symbols}")
  if(NOT symbols)
    message(SEND_ERROR "${file} exports nothing")
  endif()
  foreach(symbol IN LISTS symbols)
    string(REGEX REPLACE "[@ ].*" "" symbol "${symbol}")
    if(NOT symbol MATCHES "${allowed}")
      message(SEND_ERROR "${file} exports ${symbol}")
    endif()
  endforeach()
endfunction()

# Functions and data, the tables and type information of classes, and thunks into them.
check("${LIBRARY}" "^_Z(NK?|T[VTIS]N|Tvn[0-9]+_n[0-9]+_N|Tv0_n[0-9]+_N)4ZIRK")

file(GLOB plugins "${FOLDER}/libZIRKImpl*.so")
foreach(plugin IN LISTS plugins)
  check("${plugin}" "^(Create|Destroy)Vu(Graphics|Compositor)$")
endforeach()
