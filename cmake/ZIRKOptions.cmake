# Parts of the build that can be left out: ON, OFF, or AUTO, which builds a part where what it needs
# is found.

# zirk_choice(<variable> <default> <text>): such an option.
function(zirk_choice variable default text)
  set(${variable} ${default} CACHE STRING "${text}: ON, OFF, or AUTO for where what it needs is found")
  set_property(CACHE ${variable} PROPERTY STRINGS AUTO ON OFF)
endfunction()

# zirk_leave_out(<variable> <text>): the part cannot be built, which is an error if it is wanted by
# name.
function(zirk_leave_out variable text)
  if(${variable} STREQUAL "AUTO")
    message(STATUS "${text}: left out, what this needs was not found")
  else()
    message(FATAL_ERROR "${text}: what this needs was not found; ${variable}=OFF leaves it out")
  endif()
endfunction()
