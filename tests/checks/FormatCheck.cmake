# Fails when the layout of a source file is not what clang-format makes of it.
cmake_minimum_required(VERSION 3.25)

set(patterns "")
foreach(folder IN ITEMS src tests bench packaging)
  list(APPEND patterns "${SOURCE}/${folder}/*.h" "${SOURCE}/${folder}/*.cpp")
endforeach()
file(GLOB_RECURSE files ${patterns})
if(NOT files)
  message(FATAL_ERROR "nothing to check")
endif()

execute_process(COMMAND ${CLANG_FORMAT} --dry-run --Werror ${files} RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "to mend it: ${CLANG_FORMAT} -i FILE")
endif()
list(LENGTH files count)
message(STATUS "${count} files")
