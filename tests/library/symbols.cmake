# A unique symbol (type u) makes the dynamic linker keep its library loaded until the process ends.
execute_process(COMMAND ${NM} --dynamic --defined-only --demangle ${LIBRARY}
  OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[0-9a-f]+ u [^\n]*" unique "${symbols}")
if(unique)
  list(JOIN unique "\n  " unique)
  message(FATAL_ERROR "unique symbols:\n  ${unique}")
endif()
foreach(name SrGetInitializerNames SrGetStartupError)
  if(NOT symbols MATCHES " T ${name}")
    message(FATAL_ERROR "${name} is not exported")
  endif()
endforeach()

# Only marked classes and routines leave the library.
string(REGEX MATCHALL "[0-9a-f]+ [A-Za-z] (std|__gnu_cxx)::[^\n]*" foreign "${symbols}")
if(foreign)
  list(JOIN foreign "\n  " foreign)
  message(FATAL_ERROR "symbols that are not the library's:\n  ${foreign}")
endif()
