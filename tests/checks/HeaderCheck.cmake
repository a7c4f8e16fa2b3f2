# Fails when a header below src/ does not compile alone. The build has compiled those that a source
# of the same name includes first, which is made sure of here; the others are compiled now.
cmake_minimum_required(VERSION 3.25)

set(mistakes "")
set(seen 0)
file(GLOB_RECURSE sources RELATIVE "${SOURCE}/src" "${SOURCE}/src/*.cpp")
foreach(source IN LISTS sources)
  string(REGEX REPLACE "\\.cpp$" ".h" header "${source}")
  if(NOT EXISTS "${SOURCE}/src/${header}")
    continue()
  endif()
  math(EXPR seen "${seen} + 1")
  file(STRINGS "${SOURCE}/src/${source}" includes REGEX "^[ \t]*#[ \t]*include")
  list(POP_FRONT includes first)
  if(NOT first STREQUAL "#include \"${header}\"")
    list(APPEND mistakes "${source}: must include ${header} first")
  endif()
endforeach()

if(NOT seen)
  message(FATAL_ERROR "nothing to check below ${SOURCE}/src")
endif()
if(mistakes)
  list(JOIN mistakes "\n  " mistakes)
  message(FATAL_ERROR "headers that are not compiled alone:\n  ${mistakes}")
endif()
message(STATUS "${seen} headers are the first that their sources include")

# What runs beside it has limits of time; this has not.
execute_process(
  COMMAND nice ${CMAKE_COMMAND} --build "${BUILD}" --target all_verify_interface_header_sets
  COMMAND_ERROR_IS_FATAL ANY)
