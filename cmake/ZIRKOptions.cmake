# Optional parts of the build: ON, OFF, or AUTO, which builds a part if its dependencies are found.

# zirk_choice(<variable> <default> <text>) defines such an option.
function(zirk_choice variable default text)
  set(${variable} ${default} CACHE STRING "${text}: ON, OFF, or AUTO if its dependencies are found")
  set_property(CACHE ${variable} PROPERTY STRINGS AUTO ON OFF)
endfunction()

# zirk_leave_out(<variable> <text>) leaves a part out that cannot be built. This is an error if the
# option is ON.
function(zirk_leave_out variable text)
  if(${variable} STREQUAL "AUTO")
    message(STATUS "${text}: left out, its dependencies were not found")
  else()
    message(FATAL_ERROR "${text}: its dependencies were not found; ${variable}=OFF leaves it out")
  endif()
endfunction()
